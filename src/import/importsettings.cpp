#include "import/importsettings.h"

#include <algorithm>
#include <cmath>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "import/conversions.h"
#include "import/metadefaults.h"
#include "variables/timeconversions.h"

namespace importing {
namespace {

using common::format;

constexpr int maxLineNumber = 1000000;

// What is wrong with the value of a setting.
std::string fault(std::string_view key, std::string_view value, std::string_view what)
{
    return format("%s: \"%s\" %s", std::string(key).c_str(), std::string(value).c_str(),
                  std::string(what).c_str());
}

std::string withoutBlanks(std::string_view text)
{
    std::string result = common::toLower(text);
    std::erase(result, ' ');
    return result;
}

bool sameLabel(std::string_view a, std::string_view b)
{
    return withoutBlanks(a) == withoutBlanks(b);
}

// --- single values

std::optional<int> separatorNamed(std::string_view text)
{
    for (std::size_t i = 0; i < separators.size(); ++i) {
        const bool isCharacter = text.size() == 1 && text.front() == separators[i].character;
        if (isCharacter || common::equalsIgnoreCase(common::trimBlanks(text), separators[i].name) ||
            common::parseInt(text) == static_cast<int>(i))
            return static_cast<int>(i);
    }
    return std::nullopt;
}

std::optional<bool> switchNamed(std::string_view text)
{
    const std::string word = common::toLower(common::trimBlanks(text));
    if (word == "yes" || word == "on" || word == "true" || word == "1") return true;
    if (word == "no" || word == "off" || word == "false" || word == "0") return false;
    return std::nullopt;
}

std::optional<Existing> existingNamed(std::string_view text)
{
    const std::string word = common::toLower(common::trimBlanks(text));
    if (word == "replace") return Existing::replace;
    if (word == "keep") return Existing::keep;
    if (word == "abort") return Existing::abort;
    return std::nullopt;
}

std::optional<int> lineNamed(std::string_view text)
{
    const auto number = common::parseInt(text);
    return number && *number >= 1 && *number <= maxLineNumber ? number : std::nullopt;
}

std::optional<float> numberNamed(std::string_view text)
{
    const auto number = common::parseDouble(text);
    if (!number || !std::isfinite(static_cast<float>(*number))) return std::nullopt;
    return static_cast<float>(*number);
}

// Stores what was read; tells if nothing was.
template <typename Target, typename Value>
std::string store(Target& target, const std::optional<Value>& value, std::string_view key,
                  std::string_view text, std::string_view what)
{
    if (!value) return fault(key, text, what);
    target = *value;
    return {};
}

std::string setDefault(IMPORTSETTINGS& settings, int meta, std::string_view key, std::string_view value)
{
    auto& setting = settings.defaults[static_cast<std::size_t>(meta)];
    if (common::trimBlanks(value).empty()) {
        setting.reset();
        return {};
    }
    SPREADSHEETDESC scratch{};
    if (const std::string wrong = setMetaDefault(scratch, meta, value); !wrong.empty())
        return fault(key, value, wrong);
    setting = std::string(value);
    return {};
}

// --- links

// Takes a label in quotes, two quotes for one, or up to one of `ends`. Nothing if there is none, or if
// something stands between its closing quote and the next of `ends`.
std::optional<std::string> takeLabel(std::string_view& rest, std::string_view ends)
{
    rest = common::trimBlanks(rest);
    std::string label;
    if (rest.starts_with('"')) {
        for (;;) {
            const std::size_t close = rest.find('"', 1);
            if (close == std::string_view::npos) return std::nullopt;
            label.append(rest.substr(1, close - 1));
            rest.remove_prefix(close + 1);
            if (!rest.starts_with('"')) break;
            label += '"';
        }
        rest = common::trimBlanks(rest);
        if (!rest.empty() && ends.find(rest.front()) == std::string_view::npos) return std::nullopt;
    } else {
        const std::size_t end = std::min(rest.find_first_of(ends), rest.size());
        label = common::trimBlanks(rest.substr(0, end));
        rest.remove_prefix(end);
    }
    if (label.empty()) return std::nullopt;
    return label;
}

bool takeMark(std::string_view& rest, char mark)
{
    if (!rest.starts_with(mark)) return false;
    rest.remove_prefix(1);
    return true;
}

// linear:a:b
std::optional<CHOSENCONVERSION> linearNamed(std::string_view text, int row)
{
    constexpr std::string_view word = "linear:";
    if (!common::equalsIgnoreCase(text.substr(0, word.size()), word)) return std::nullopt;
    const std::string_view numbers = text.substr(word.size());
    const std::size_t colon = numbers.find(':');
    if (colon == std::string_view::npos) return std::nullopt;
    const auto a = numberNamed(numbers.substr(0, colon)), b = numberNamed(numbers.substr(colon + 1));
    if (!a || !b || *b == common::MISSING_VALUE) return std::nullopt;
    return CHOSENCONVERSION{row, *a, *b};
}

std::optional<CHOSENCONVERSION> variableConversionNamed(std::string_view text)
{
    if (const auto linear = linearNamed(text, generalLinearRow)) return linear;
    for (const CONVERSIONROW& row : variableConversions) {
        if (row.id == generalLinearRow) continue; // its constants have to be given
        if (sameLabel(row.label, text) || common::parseInt(text) == row.id)
            return CHOSENCONVERSION{row.id, row.a, row.b};
    }
    return std::nullopt;
}

// True if a row makes what the metavariable takes from it.
bool suits(int meta, int id)
{
    if (id == variables::identityRow) return true;
    if (meta == metaDate || meta == metaTime) return id > variables::linearRow;
    return false;
}

std::optional<CHOSENCONVERSION> headerConversionNamed(int meta, std::string_view text)
{
    const auto linear = linearNamed(text, variables::linearRow);
    if (linear && meta >= metaLongitude) return linear;
    for (const variables::HEADERROW& row : variables::headerRows) {
        const bool named = sameLabel(variables::headerRowLabel(row), text) || sameLabel(row.source, text) ||
                           common::parseInt(text) == row.id;
        if (named && suits(meta, row.id)) return CHOSENCONVERSION{row.id, 1, 0};
    }
    return std::nullopt;
}

std::string setAssociation(IMPORTSETTINGS& settings, std::string_view value)
{
    std::string_view rest = value;
    const auto source = takeLabel(rest, "=");
    const auto target = source && takeMark(rest, '=') ? takeLabel(rest, ":") : std::nullopt;
    if (!target) return fault("assoc", value, "is not \"source\"=\"target\"[:conversion]");
    ASSOCIATIONSETTING association{*source, *target, {}};
    if (takeMark(rest, ':')) {
        std::string_view text = common::trimBlanks(rest);
        if (text.size() > 1 && text.front() == '"' && text.back() == '"')
            text = text.substr(1, text.size() - 2);
        const int meta = metaNamed(*target);
        const auto conversion = meta < 0 ? variableConversionNamed(text) : headerConversionNamed(meta, text);
        if (!conversion)
            return fault("assoc", text,
                         "is no conversion for \"" + *target + "\" (the general one is linear:a:b)");
        association.conversion = *conversion;
    }
    std::erase_if(settings.associations, [&](const ASSOCIATIONSETTING& old) {
        const int meta = metaNamed(old.target);
        return common::equalsIgnoreCase(old.source, *source) ||
               common::equalsIgnoreCase(old.target, *target) || (meta >= 0 && meta == metaNamed(*target));
    });
    settings.associations.push_back(std::move(association));
    return {};
}

std::string setCruise(IMPORTSETTINGS& settings, std::string_view value)
{
    std::string_view rest = value;
    const auto source = takeLabel(rest, "=");
    const auto target = source && takeMark(rest, '=') ? takeLabel(rest, "") : std::nullopt;
    if (!target || !rest.empty()) return fault("cruise", value, "is not \"source\"=\"target\"");
    CRUISEASSOCIATION cruise{common::labelFromFile(*source, true), {}, common::labelFromFile(*target, true)};
    for (const std::string* const label : {&cruise.sourceLabel, &cruise.name}) {
        if (label->size() > common::labelLength)
            return fault("cruise", common::labelToUtf8(*label),
                         format("is longer than %d bytes", common::labelLength));
    }
    std::erase_if(settings.cruises,
                  [&](const CRUISEASSOCIATION& old) { return old.sourceLabel == cruise.sourceLabel; });
    settings.cruises.push_back(std::move(cruise));
    return {};
}

} // namespace

int metaNamed(std::string_view target)
{
    for (int meta = 0; meta < metaCount; ++meta) {
        const auto slot = static_cast<std::size_t>(meta);
        if (common::equalsIgnoreCase(target, metaLabels[slot]) ||
            common::equalsIgnoreCase(target, metaNames[slot]))
            return meta;
    }
    return -1;
}

std::string setImportSetting(IMPORTSETTINGS& settings, std::string_view key, std::string_view value)
{
    if (key == "sep")
        return store(settings.separator, separatorNamed(value), key, value,
                     "is no separator (TAB, ;, SPACE, /)");
    if (key == "header_line")
        return store(settings.headerLine, lineNamed(value), key, value, "is no line number from 1");
    if (key == "first_data_line")
        return store(settings.firstDataLine, lineNamed(value), key, value, "is no line number from 1");
    if (key == "missing") return store(settings.missing, numberNamed(value), key, value, "is no number");
    if (key == "check") return store(settings.check, switchNamed(value), key, value, "is neither yes nor no");
    if (key == "overwrite")
        return store(settings.overwrite, switchNamed(value), key, value, "is neither yes nor no");
    if (key == "existing")
        return store(settings.existing, existingNamed(value), key, value, "is none of replace, keep, abort");
    if (key == "reset" && value.empty()) {
        settings = {};
        return {};
    }
    if (key == "assoc") return setAssociation(settings, value);
    if (key == "cruise") return setCruise(settings, value);
    for (int meta = 0; meta < metaCount; ++meta) {
        if (key == "default_" + std::string(metaNames[static_cast<std::size_t>(meta)]))
            return setDefault(settings, meta, key, value);
    }
    return format("there is no setting \"%s\"", std::string(key).c_str());
}

} // namespace importing
