#pragma once

// The one place where bytes and characters meet. Labels in records are Latin-1 where every character
// fits, otherwise UTF-8; text files are UTF-8 when they are valid UTF-8, otherwise Latin-1.

#include <string>
#include <string_view>

#include <QString>

namespace common {

// True if `text` is well-formed UTF-8 (ASCII included).
[[nodiscard]] bool isValidUtf8(std::string_view text);

// A record's bytes for the screen: UTF-8 if they are valid UTF-8 beyond ASCII, otherwise Latin-1.
[[nodiscard]] QString decodeLabel(std::string_view bytes);

// A text for a record, at most `maxBytes` bytes, cut at a character's border.
[[nodiscard]] std::string encodeLabel(const QString& text, std::size_t maxBytes);

// A text file's bytes for a record: Latin-1 where every character fits, otherwise the UTF-8 as it is.
// `fileIsUtf8` is the answer of isValidUtf8 for the whole file.
[[nodiscard]] std::string labelFromFile(std::string_view bytes, bool fileIsUtf8);

// A record's bytes as UTF-8, for files that are written as UTF-8 and for messages.
[[nodiscard]] std::string labelToUtf8(std::string_view bytes);

// A record's bytes as Latin-1, for single-byte formats and PostScript; "?" for what does not fit.
[[nodiscard]] std::string labelToLatin1(std::string_view bytes);

} // namespace common
