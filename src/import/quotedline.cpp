#include "import/quotedline.h"

#include <algorithm>

#include "common/text.h"

namespace importing {
namespace {

void skipBlanks(std::string_view& rest)
{
    rest.remove_prefix(std::min(rest.find_first_not_of(' '), rest.size()));
}

// Appends the text up to the closing quote, two quotes as one, and moves behind it. False if none closes it.
bool takeToClosingQuote(std::string_view& rest, std::string& fields)
{
    for (;;) {
        const std::size_t quote = rest.find('"');
        if (quote == std::string_view::npos) return false;
        fields.append(rest.substr(0, quote));
        rest.remove_prefix(quote + 1);
        if (!rest.starts_with('"')) return true;
        fields += '"';
        rest.remove_prefix(1);
    }
}

// Appends the text of the quoted field at the front of `rest` and moves to what divides it from the next one.
bool takeQuoted(std::string_view& rest, char separator, std::string& fields)
{
    const std::size_t before = fields.size();
    std::string_view look = rest;
    skipBlanks(look);
    if (!look.starts_with('"')) return false;
    look.remove_prefix(1);
    bool whole = takeToClosingQuote(look, fields);
    if (separator != ' ') skipBlanks(look);
    whole = whole && (look.empty() || look.front() == separator);
    if (!whole) {
        fields.resize(before);
        return false;
    }
    std::replace(fields.begin() + static_cast<std::ptrdiff_t>(before), fields.end(), fieldMark, ' ');
    rest = look;
    return true;
}

void takePlain(std::string_view& rest, char separator, std::string& fields)
{
    const std::size_t end = std::min(rest.find(separator), rest.size());
    for (const char c : rest.substr(0, end)) fields += c == fieldMark ? ' ' : c;
    rest.remove_prefix(end);
}

} // namespace

bool unquoteLine(std::string_view line, char separator, std::string& fields)
{
    fields.clear();
    bool any = false;
    std::string_view rest = line;
    for (;;) {
        if (separator == ' ') {
            skipBlanks(rest);
            if (rest.empty()) break;
        }
        if (takeQuoted(rest, separator, fields)) {
            any = true;
        } else {
            takePlain(rest, separator, fields);
        }
        if (rest.empty()) return any;
        rest.remove_prefix(1);
        fields += fieldMark;
    }
    if (fields.ends_with(fieldMark)) fields.pop_back(); // blanks behind the last field
    return any;
}

int splitQuoted(std::string_view line, char separator, std::string& buffer,
                std::span<std::string_view> fields)
{
    line = line.substr(0, line.find_first_of("\r\n"));
    const bool unquoted = line.find('"') != std::string_view::npos && unquoteLine(line, separator, buffer);
    return unquoted ? common::splitFields(buffer, fieldMark, fields)
                    : common::splitFields(line, separator, fields);
}

} // namespace importing
