#include "common/text.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace common {
namespace {

bool isLeadingJunk(char c)
{
    const auto byte = static_cast<unsigned char>(c);
    return byte < 33 || byte == 127;
}

char lower(char c)
{
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

char upper(char c)
{
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool isUtf8Continuation(char c)
{
    return (static_cast<unsigned char>(c) & 0xC0) == 0x80;
}

// Where a number may begin: behind white space and a plus sign, which from_chars does not take.
std::string_view numberStart(std::string_view text)
{
    std::size_t i = 0;
    while (i < text.size() && (text[i] == ' ' || (text[i] >= '\t' && text[i] <= '\r'))) ++i;
    if (i + 1 < text.size() && text[i] == '+' && text[i + 1] != '-') ++i;
    return text.substr(i);
}

template <typename Number>
bool takeNumber(std::string_view& rest, Number& value)
{
    const std::string_view start = numberStart(rest);
    Number read{};
    const auto [end, error] = std::from_chars(start.data(), start.data() + start.size(), read);
    if (error != std::errc{}) return false;
    if constexpr (std::is_floating_point_v<Number>) {
        if (!std::isfinite(read)) return false;
    }
    value = read;
    rest = std::string_view(end, static_cast<std::size_t>(start.data() + start.size() - end));
    return true;
}

template <typename Number>
std::optional<Number> parseNumber(std::string_view text)
{
    std::string_view rest = trimBlanks(text);
    Number value{};
    if (!takeNumber(rest, value) || !rest.empty()) return std::nullopt;
    return value;
}

} // namespace

std::string_view trimLabel(std::string_view text)
{
    while (!text.empty() && isLeadingJunk(text.front())) text.remove_prefix(1);
    while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
    const auto inNumber = [](char c) { return c >= '+' && c <= '9'; };
    if (text.find('.') == std::string_view::npos || !std::all_of(text.begin(), text.end(), inNumber))
        return text;
    while (text.back() == '0') text.remove_suffix(1);
    if (text.back() == '.') text.remove_suffix(1);
    return text;
}

std::string_view trimBlanks(std::string_view text)
{
    const auto isBlank = [](char c) { return static_cast<unsigned char>(c) <= 32 || c == 127; };
    while (!text.empty() && isBlank(text.front())) text.remove_prefix(1);
    while (!text.empty() && isBlank(text.back())) text.remove_suffix(1);
    return text;
}

std::string_view takeLine(std::string_view& rest)
{
    const std::size_t end = std::min(rest.find('\n'), rest.size());
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(std::min(end + 1, rest.size()));
    if (line.ends_with('\r')) line.remove_suffix(1);
    return line;
}

int splitFields(std::string_view line, char separator, std::span<std::string_view> fields)
{
    line = line.substr(0, line.find_first_of("\r\n"));
    std::size_t count = 0;
    if (separator == ' ') {
        while (count < fields.size()) {
            const std::size_t begin = line.find_first_not_of(' ');
            if (begin == std::string_view::npos) break;
            line.remove_prefix(begin);
            const std::size_t end = std::min(line.find(' '), line.size());
            fields[count++] = line.substr(0, end);
            line.remove_prefix(end);
        }
        return static_cast<int>(count);
    }
    if (line.empty()) return 0;
    while (count < fields.size()) {
        const std::size_t end = line.find(separator);
        fields[count++] = line.substr(0, end);
        if (end == std::string_view::npos) break;
        line.remove_prefix(end + 1);
    }
    return static_cast<int>(count);
}

std::string replaceAll(std::string_view text, std::string_view from, std::string_view to)
{
    std::string result;
    result.reserve(text.size());
    for (;;) {
        const std::size_t at = text.find(from);
        result.append(text.substr(0, at));
        if (at == std::string_view::npos) return result;
        result.append(to);
        text.remove_prefix(at + from.size());
    }
}

std::string_view cutExtension(std::string_view path)
{
    const std::size_t point = path.rfind('.');
    const std::size_t slash = path.rfind('/');
    if (point == std::string_view::npos || (slash != std::string_view::npos && point < slash)) return path;
    return path.substr(0, point);
}

bool equalsIgnoreCase(std::string_view a, std::string_view b)
{
    return std::equal(a.begin(), a.end(), b.begin(), b.end(),
                      [](char x, char y) { return lower(x) == lower(y); });
}

std::string toLower(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

std::string toUpper(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), upper);
    return result;
}

bool takeInt(std::string_view& rest, int& value)
{
    return takeNumber(rest, value);
}
bool takeFloat(std::string_view& rest, float& value)
{
    return takeNumber(rest, value);
}
bool takeDouble(std::string_view& rest, double& value)
{
    return takeNumber(rest, value);
}
std::optional<int> parseInt(std::string_view text)
{
    return parseNumber<int>(text);
}
std::optional<double> parseDouble(std::string_view text)
{
    return parseNumber<double>(text);
}

std::string quoted(std::string_view text)
{
    return "\"" + std::string(text) + "\"";
}

std::string counted(int count, const char* one, const char* many)
{
    return format("%d %s", count, count == 1 ? one : many);
}

std::string formatG(double value)
{
    return format("%g", value);
}

std::string format(const char* pattern, ...)
{
    va_list arguments;
    va_start(arguments, pattern);
    va_list again;
    va_copy(again, arguments);
    const int length = std::vsnprintf(nullptr, 0, pattern, arguments);
    va_end(arguments);
    std::string result(length > 0 ? static_cast<std::size_t>(length) : 0, '\0');
    if (length > 0) std::vsnprintf(result.data(), result.size() + 1, pattern, again);
    va_end(again);
    return result;
}

void copyText(std::span<char> field, std::string_view text)
{
    if (field.empty()) return;
    const std::string_view kept = cutAtCharacter(text.substr(0, text.find('\0')), field.size() - 1);
    std::memcpy(field.data(), kept.data(), kept.size());
    std::memset(field.data() + kept.size(), 0, field.size() - kept.size());
}

std::string_view fieldText(std::span<const char> field)
{
    const auto end = std::find(field.begin(), field.end(), '\0');
    return {field.data(), static_cast<std::size_t>(end - field.begin())};
}

std::string_view cutAtCharacter(std::string_view text, std::size_t bytes)
{
    if (text.size() <= bytes) return text;
    std::size_t end = bytes;
    // A cut in front of a continuation byte splits a UTF-8 character: go back to its first byte. In
    // single-byte text such bytes can stand anywhere, so no more than a character's length is given up.
    for (std::size_t back = 0; back < 4 && end > 0 && isUtf8Continuation(text[end]); ++back) --end;
    if (isUtf8Continuation(text[end]) || static_cast<unsigned char>(text[end]) < 0xC0) end = bytes;
    return text.substr(0, end);
}

} // namespace common
