#include "graphics/labeltext.h"

#include <array>
#include <cmath>
#include <string>

#include "common/text.h"
#include "common/textcoding.h"
#include "graphics/drawing.h"

namespace graphics {
namespace {

using namespace std::string_view_literals;

// The symbol font's codes 0x20 to 0x7E and 0xA0 to 0xFE; 0 where it has no character, or one that Unicode
// lacks. It is the encoding that PostScript interpreters give their Symbol font.
constexpr std::u32string_view lowSymbols = U" !∀#∃%&∋()∗+,−./0123456789:;<=>?"
                                           U"≅ΑΒΧΔΕΦΓΗΙϑΚΛΜΝΟΠΘΡΣΤΥςΩΞΨΖ[∴]⊥_"
                                           U"‾αβχδεφγηιϕκλμνοπθρστυϖωξψζ{|}∼";
constexpr std::u32string_view highSymbols = U"€ϒ′≤⁄∞ƒ♣♦♥♠↔←↑→↓°±″≥×∝∂•÷≠≡≈…⏐⎯↵"
                                            U"ℵℑℜ℘⊗⊕∅∩∪⊃⊇⊄⊂⊆∈∉∠∇®©™∏√⋅¬∧∨⇔⇐⇑⇒⇓"
                                            U"◊〈®©™∑⎛⎜⎝⎡⎢⎣⎧⎨⎩⎪\0〉∫⌠⎮⌡⎞⎟⎠⎤⎥⎦⎫⎬⎭"sv;
static_assert(lowSymbols.size() == 0x7F - 0x20 && highSymbols.size() == 0xFF - 0xA0);

// What the preamble's fonts hold beyond Latin-1 and in place of two of its letters, with their codes.
struct EXTRACODE {
    char32_t character;
    unsigned char code;
};
constexpr auto extraCodes = std::to_array<EXTRACODE>({
    {U'\u00B0', 0312}, // degree
    {U'\u00CA', 0200}, // Ecircumflex, whose place the degree sign took
    {U'\u00FB', 0201}, // ucircumflex, whose place the sharp s took
    {U'‰', 0202},      {U'–', 0203}, {U'—', 0204}, {U'‘', 0205}, {U'’', 0206}, {U'“', 0207}, {U'”', 0210},
    {U'…', 0211},      {U'•', 0212}, {U'œ', 0213}, {U'Œ', 0214}, {U'š', 0215}, {U'Š', 0216}, {U'ž', 0217},
    {U'Ž', 0220},      {U'Ÿ', 0221}, {U'ł', 0222}, {U'Ł', 0223}, {U'€', 0224}, {U'ı', 0225}, {U'−', '-'},
});

// Small figures of Unicode, which few fonts have, are drawn as marked ones.
constexpr std::u32string_view lowered = U"₀₁₂₃₄₅₆₇₈₉₊₋", raised = U"⁰¹²³⁴⁵⁶⁷⁸⁹⁺⁻", figures = U"0123456789+-";

struct SCRIPTFIGURE {
    char32_t figure = 0;
    int script = 0; // 0: the character is none
};
SCRIPTFIGURE scriptFigure(char32_t character)
{
    if (const std::size_t at = lowered.find(character); at != std::u32string_view::npos)
        return {figures[at], -1};
    if (const std::size_t at = raised.find(character); at != std::u32string_view::npos)
        return {figures[at], 1};
    return {};
}

constexpr std::u32string_view plainUmlauts = U"aAoOuU", umlauts = U"äÄöÖüÜ";

char32_t umlautOf(char32_t letter)
{
    const std::size_t at = plainUmlauts.find(letter);
    return at == std::u32string_view::npos ? 0 : umlauts[at];
}

std::u32string decoded(std::string_view text)
{
    return common::decodeLabel(text).toStdU32String();
}

// The code of a character in the preamble's text fonts; 0 if they lack it.
int textCode(char32_t character)
{
    for (const EXTRACODE& extra : extraCodes) {
        if (extra.character == character) return extra.code;
    }
    const bool printable =
        (character >= 0x20 && character < 0x7F) || (character >= 0xA0 && character < 0x100);
    return printable ? static_cast<int>(character) : 0;
}

void appendCode(std::string& out, int code)
{
    const bool special = code == '(' || code == ')' || code == '\\';
    if (special) out += '\\';
    if (code < 127) {
        out += static_cast<char>(code);
    } else {
        out += common::format("\\%03o", code);
    }
}

// Writes labels for PostScript strings, character by character, with the font in force.
class RPsLabel {
public:
    // `mark` is "~_" or "~^" if the character is a script, else empty.
    void add(std::string_view mark, char32_t character)
    {
        const int other = font_ == symbolFont ? textFont : symbolFont;
        if (const int code = codeIn(font_, character); code != 0) {
            put(mark, code);
        } else if (const int foreign = codeIn(other, character); foreign != 0) {
            const int back = font_;
            setFont(other);
            put(mark, foreign);
            setFont(back);
        } else {
            put(mark, '?');
        }
    }
    void sequence(std::string_view text) { out_ += text; }
    void setFont(int font)
    {
        font_ = font;
        out_ += font == symbolFont ? "~$" : "~#";
    }
    [[nodiscard]] std::string take() { return std::move(out_); }

private:
    static int codeIn(int font, char32_t character)
    {
        if (font == textFont) return textCode(character);
        const bool printable = character >= 0x20 && character < 0x100 && character != 0x7F;
        return printable ? static_cast<int>(character) : unicodeToSymbol(character);
    }
    void put(std::string_view mark, int code)
    {
        out_ += mark;
        appendCode(out_, code);
    }

    int font_ = textFont;
    std::string out_;
};

// annotation: umlauts as "two-mark" sequences, the sharp s at the place that text objects use.
void addPlain(RPsLabel& out, std::string_view mark, char32_t character, bool annotation)
{
    const std::size_t umlaut = umlauts.find(character);
    if (annotation && mark.empty() && umlaut != std::u32string_view::npos) {
        out.sequence("~\"");
        out.add({}, plainUmlauts[umlaut]);
    } else if (annotation && mark.empty() && character == U'ß') {
        out.sequence("\\373");
    } else if (const SCRIPTFIGURE small = scriptFigure(character); small.script != 0) {
        out.add(small.script < 0 ? "~_" : "~^", small.figure);
    } else {
        out.add(mark, character);
    }
}

std::string psLabel(std::string_view text, bool annotation)
{
    const std::u32string label = decoded(text);
    RPsLabel out;
    for (std::size_t i = 0; i < label.size(); ++i) {
        const char32_t next = label[i] == U'~' && i + 1 < label.size() ? label[i + 1] : 0;
        if (next == U'#' || next == U'$') {
            out.setFont(next == U'$' ? symbolFont : textFont);
            ++i;
        } else if ((next == U'_' || next == U'^') && i + 2 < label.size()) {
            addPlain(out, next == U'_' ? "~_" : "~^", label[i + 2], annotation);
            i += 2;
        } else {
            addPlain(out, {}, label[i], annotation);
        }
    }
    return out.take();
}

std::string degrees(double value, const char* letter)
{
    const std::string number = common::format("%10.4f", std::fabs(value));
    return std::string(common::trimLabel(number)) + "\xB0" + letter;
}

} // namespace

char32_t symbolToUnicode(char32_t code)
{
    if (code >= 0x20 && code < 0x7F) return lowSymbols[code - 0x20];
    if (code < 0xA0 || code >= 0xFF) return code;
    const char32_t character = highSymbols[code - 0xA0];
    return character ? character : code;
}

int unicodeToSymbol(char32_t character)
{
    if (character < 0x7F) return 0;
    if (const std::size_t at = lowSymbols.find(character); at != std::u32string_view::npos)
        return static_cast<int>(at) + 0x20;
    if (const std::size_t at = highSymbols.find(character); at != std::u32string_view::npos)
        return static_cast<int>(at) + 0xA0;
    return 0;
}

std::vector<LABELCHARACTER> parseLabel(std::string_view text)
{
    const std::u32string label = decoded(text);
    std::vector<LABELCHARACTER> result;
    result.reserve(label.size());
    int font = textFont;
    for (std::size_t i = 0; i < label.size(); ++i) {
        const char32_t next = label[i] == U'~' && i + 1 < label.size() ? label[i + 1] : 0;
        const char32_t third = next != 0 && i + 2 < label.size() ? label[i + 2] : 0;
        if (next == U'#' || next == U'$') {
            font = next == U'$' ? symbolFont : textFont;
            ++i;
        } else if ((next == U'_' || next == U'^') && third != 0) {
            result.push_back({third, font, next == U'_' ? -1 : 1});
            i += 2;
        } else if (next == U'"' && umlautOf(third) != 0) {
            result.push_back({umlautOf(third), font, 0});
            i += 2;
        } else if (const SCRIPTFIGURE small = scriptFigure(label[i]); font == textFont && small.script != 0) {
            result.push_back({small.figure, font, small.script});
        } else {
            result.push_back({label[i], font, 0});
        }
    }
    return result;
}

std::string axisNumber(double value, double step)
{
    if (std::fabs(value) < 1e-5 * std::fabs(step)) return "0";
    return std::string(common::trimLabel(common::formatG(value)));
}

std::string longitudeLabel(double lon)
{
    lon = std::remainder(lon, 360.0);
    if (lon <= -180.0) lon = 180.0;
    if (std::fabs(lon) < 0.00005) return "0";
    return degrees(lon, lon < 0 ? "W" : "E");
}

std::string latitudeLabel(double lat)
{
    if (std::fabs(lat) < 0.00005) return "EQ";
    return degrees(lat, lat < 0 ? "S" : "N");
}

std::string psString(std::string_view text)
{
    return psLabel(text, false);
}

std::string psAnnotationText(std::string_view text)
{
    return psLabel(text, true);
}

} // namespace graphics
