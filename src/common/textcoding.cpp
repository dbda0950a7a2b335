#include "common/textcoding.h"

#include <algorithm>
#include <cstdint>

#include <QStringConverter>

#include "common/text.h"

namespace common {
namespace {

bool isAscii(std::string_view text)
{
    return std::all_of(text.begin(), text.end(), [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

bool fitsLatin1(const QString& text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x100; });
}

QString fromUtf8(std::string_view bytes)
{
    return QString::fromUtf8(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

QString fromLatin1(std::string_view bytes)
{
    return QString::fromLatin1(bytes.data(), static_cast<qsizetype>(bytes.size()));
}

} // namespace

bool isValidUtf8(std::string_view text)
{
    std::size_t i = 0;
    const auto byte = [&](std::size_t at) { return static_cast<std::uint8_t>(text[at]); };
    while (i < text.size()) {
        const std::uint8_t lead = byte(i);
        if (lead < 0x80) {
            ++i;
            continue;
        }
        const std::size_t length = lead >= 0xC2 && lead < 0xE0   ? 2
                                   : lead >= 0xE0 && lead < 0xF0 ? 3
                                   : lead >= 0xF0 && lead < 0xF5 ? 4
                                                                 : 0;
        if (length == 0 || i + length > text.size()) return false;
        for (std::size_t k = 1; k < length; ++k) {
            if ((byte(i + k) & 0xC0) != 0x80) return false;
        }
        const std::uint8_t second = byte(i + 1); // no overlong forms, surrogates or planes beyond the last
        if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
            (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F)) {
            return false;
        }
        i += length;
    }
    return true;
}

QString decodeLabel(std::string_view bytes)
{
    return isValidUtf8(bytes) ? fromUtf8(bytes) : fromLatin1(bytes);
}

std::string encodeLabel(const QString& text, std::size_t maxBytes)
{
    if (fitsLatin1(text)) {
        std::string latin1 = text.toLatin1().toStdString();
        // A Latin-1 text that happens to read as UTF-8 would come back changed: keep it as UTF-8 then.
        if (isAscii(latin1) || !isValidUtf8(latin1)) {
            latin1.resize(std::min(latin1.size(), maxBytes));
            if (isAscii(latin1) || !isValidUtf8(latin1)) return latin1;
        }
    }
    return std::string(cutAtCharacter(text.toStdString(), maxBytes));
}

std::string labelFromFile(std::string_view bytes, bool fileIsUtf8)
{
    if (isAscii(bytes)) return std::string(bytes);
    return encodeLabel(fileIsUtf8 ? fromUtf8(bytes) : fromLatin1(bytes), std::string::npos);
}

std::string labelToUtf8(std::string_view bytes)
{
    return isAscii(bytes) ? std::string(bytes) : decodeLabel(bytes).toStdString();
}

std::string labelToLatin1(std::string_view bytes)
{
    return isAscii(bytes) ? std::string(bytes) : decodeLabel(bytes).toLatin1().toStdString();
}

} // namespace common
