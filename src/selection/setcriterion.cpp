#include "selection/setcriterion.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <optional>
#include <vector>

#include "common/limits.h"
#include "common/text.h"
#include "common/textcoding.h"
#include "selection/criteriawords.h"

namespace selection {
namespace {

using collection::SELECTIONCRITERIA;

bool isNone(std::string_view value)
{
    return common::equalsIgnoreCase(value, "none");
}

// --- ranges

struct WORDRANGE {
    std::string_view from, to;
};

// "a:b", or "a" for both.
WORDRANGE splitRange(std::string_view value)
{
    const std::size_t colon = value.find(':');
    if (colon == std::string_view::npos) return {value, value};
    return {common::trimBlanks(value.substr(0, colon)), common::trimBlanks(value.substr(colon + 1))};
}

struct LIMITS {
    std::int32_t low, high;     // what may be given
    std::int32_t noLow, noHigh; // what stands for no limit
};

std::string readEnd(std::string_view word, std::int32_t missing, const LIMITS& limits, std::int32_t& end)
{
    end = missing;
    if (word.empty()) return {};
    const std::optional<int> number = common::parseInt(word);
    if (!number) return common::quoted(word) + " doesn't read as a whole number";
    if (*number < limits.low || *number > limits.high)
        return common::format("%d isn't within %d to %d", *number, limits.low, limits.high);
    end = *number;
    return {};
}

std::string readRange(std::string_view value, const LIMITS& limits, std::int32_t& low, std::int32_t& high)
{
    if (value.empty()) return "a range such as 5:10 is missing";
    const WORDRANGE words = splitRange(value);
    std::int32_t from = 0, to = 0;
    std::string wrong = readEnd(words.from, limits.noLow, limits, from);
    if (wrong.empty()) wrong = readEnd(words.to, limits.noHigh, limits, to);
    if (wrong.empty() && from > to) wrong = common::format("%d is above %d", from, to);
    if (!wrong.empty()) return wrong;
    low = from;
    high = to;
    return {};
}

// A number of a coordinate or a value.
std::string readNumber(std::string_view word, double low, double high, double& number)
{
    const std::optional<double> value = common::parseDouble(word);
    if (!value) return common::quoted(word) + " doesn't read as a number";
    if (!(*value >= low && *value <= high))
        return common::quoted(word) + common::format(" isn't within %g to %g", low, high);
    number = *value;
    return {};
}

// --- labels

std::string copyLabel(std::string_view value, std::span<char> field)
{
    const std::string label = common::labelFromFile(value, common::isValidUtf8(value));
    if (label.size() > common::labelLength)
        return common::quoted(value) + common::format(" has more than %d characters", common::labelLength);
    common::copyText(field, label);
    return {};
}

std::string setCruise(SELECTIONCRITERIA& criteria, std::string_view value)
{
    return copyLabel(value.empty() ? "*" : value, criteria.cruisePattern);
}

std::string setType(SELECTIONCRITERIA& criteria, std::string_view value)
{
    const std::optional<char> type = typeOf(value);
    if (!type) return common::quoted(value) + " is no station type: B, C, X or *";
    common::copyText(criteria.stationType, {&*type, 1});
    return {};
}

std::string setLabelFrom(SELECTIONCRITERIA& criteria, std::string_view value)
{
    return copyLabel(value, criteria.stationLabelFrom);
}

std::string setLabelTo(SELECTIONCRITERIA& criteria, std::string_view value)
{
    return copyLabel(value.empty() ? collection::lastLabelBound : value, criteria.stationLabelTo);
}

// --- labels as numbers. Both bounds of the record must be set to take effect.

void setNumbers(SELECTIONCRITERIA& criteria, std::int32_t low, std::int32_t high)
{
    const bool bounded = low > 0 || high < anyLabelNumber;
    criteria.stationNumberMin = bounded ? low : -1;
    criteria.stationNumberMax = bounded ? high : -1;
}

bool numbersCount(const SELECTIONCRITERIA& criteria)
{
    return criteria.stationNumberMin >= 0 && criteria.stationNumberMax >= 0;
}

constexpr LIMITS labelNumbers{0, anyLabelNumber, 0, anyLabelNumber};

std::string setNumberFrom(SELECTIONCRITERIA& criteria, std::string_view value)
{
    std::int32_t low = 0;
    const std::string wrong = readEnd(value, 0, labelNumbers, low);
    if (!wrong.empty()) return wrong;
    setNumbers(criteria, low, numbersCount(criteria) ? criteria.stationNumberMax : anyLabelNumber);
    // A 0 that is given, and not left out, still wants labels that are numbers.
    if (!value.empty() && !numbersCount(criteria)) {
        criteria.stationNumberMin = 0;
        criteria.stationNumberMax = anyLabelNumber;
    }
    return {};
}

std::string setNumberTo(SELECTIONCRITERIA& criteria, std::string_view value)
{
    std::int32_t high = 0;
    const std::string wrong = readEnd(value, anyLabelNumber, labelNumbers, high);
    if (!wrong.empty()) return wrong;
    setNumbers(criteria, numbersCount(criteria) ? criteria.stationNumberMin : 0, high);
    return {};
}

// --- whole numbers

std::string setStation(SELECTIONCRITERIA& criteria, std::string_view value)
{
    constexpr LIMITS limits{1, collection::anyNumber, 1, collection::anyNumber};
    return readRange(value, limits, criteria.internalMin, criteria.internalMax);
}

std::string setDay(SELECTIONCRITERIA& criteria, std::string_view value)
{
    constexpr LIMITS limits{0, 31, 1, 31}; // 0 is a day that isn't known
    return readRange(value, limits, criteria.dayMin, criteria.dayMax);
}

std::string setYear(SELECTIONCRITERIA& criteria, std::string_view value)
{
    constexpr LIMITS limits{-collection::anyYear, collection::anyYear, -collection::anyYear,
                            collection::anyYear};
    return readRange(value, limits, criteria.yearMin, criteria.yearMax);
}

constexpr LIMITS depths{-collection::anyDepth, collection::anyDepth, -collection::anyDepth,
                        collection::anyDepth};

std::string setBottom(SELECTIONCRITERIA& criteria, std::string_view value)
{
    return readRange(value, depths, criteria.bottomMin, criteria.bottomMax);
}

std::string setLastDepth(SELECTIONCRITERIA& criteria, std::string_view value)
{
    return readRange(value, depths, criteria.lastDepthMin, criteria.lastDepthMax);
}

std::string setMonths(SELECTIONCRITERIA& criteria, std::string_view value)
{
    std::string mask(12, ' ');
    const std::string wrong = readMonths(value, mask);
    if (wrong.empty()) common::copyText(criteria.months, mask);
    return wrong;
}

// --- domain

// An end that is left out is the date line for one that is west of Greenwich, else Greenwich: "-30:" ends at
// 180, "10:" at 360, ":10" begins at -180.
std::string readLongitudes(std::string_view value, double& west, double& east)
{
    constexpr double least = -360, most = 720;
    if (value.empty()) return "a range such as -30:20 is missing";
    const WORDRANGE words = splitRange(value);
    west = 0;
    east = 360;
    if (words.from.empty() && words.to.empty()) return {};
    std::string wrong;
    if (!words.from.empty()) wrong = readNumber(words.from, least, most, west);
    if (wrong.empty() && !words.to.empty()) wrong = readNumber(words.to, least, most, east);
    if (words.from.empty()) west = east <= 180 ? -180 : 0;
    if (words.to.empty()) east = west < 0 ? 180 : 360;
    return wrong;
}

std::string setLongitudeRange(SELECTIONCRITERIA& criteria, std::string_view value)
{
    double west = 0, east = 0;
    const std::string wrong = readLongitudes(value, west, east);
    if (!wrong.empty()) return wrong;
    return setLongitudes(criteria, west, east) ? std::string()
                                               : common::quoted(value) + " is wider than 360 degrees";
}

std::string setLatitudes(SELECTIONCRITERIA& criteria, std::string_view value)
{
    if (value.empty()) return "a range such as -30:20 is missing";
    const WORDRANGE words = splitRange(value);
    double south = -90, north = 90;
    std::string wrong;
    if (!words.from.empty()) wrong = readNumber(words.from, -90, 90, south);
    if (wrong.empty() && !words.to.empty()) wrong = readNumber(words.to, -90, 90, north);
    if (wrong.empty() && south > north) wrong = common::format("%g is above %g", south, north);
    if (!wrong.empty()) return wrong;
    criteria.latMin = static_cast<float>(south);
    criteria.latMax = static_cast<float>(north);
    return {};
}

std::string setPolygon(CRITERIATARGET& target, std::string_view value)
{
    if (value.empty()) return "the name of a file is missing";
    if (isNone(value)) { // the rectangle around it goes as well
        if (target.criteria.usePolygon != 0) {
            const SELECTIONCRITERIA all = collection::defaultCriteria();
            target.criteria.lonMin = all.lonMin;
            target.criteria.lonMax = all.lonMax;
            target.criteria.latMin = all.latMin;
            target.criteria.latMax = all.latMax;
        }
        target.criteria.usePolygon = 0;
        return {};
    }
    std::string fault;
    if (!readPolygon(std::string(value), target.polygon, fault)) return fault;
    setPolygonDomain(target.criteria, target.polygon);
    return {};
}

// --- samples

std::string setQuality(SELECTIONCRITERIA& criteria, std::string_view value)
{
    const std::optional<int> limit = qualityOf(value);
    if (!limit)
        return common::quoted(value) + " is no quality: good, unknown, questionable, all, or 0, 1, 4, 8";
    criteria.qualityLimit = *limit;
    return {};
}

int variablesOf(const CRITERIATARGET& target)
{
    return std::min(common::maxVariables, static_cast<int>(target.variables.size()) - 1);
}

std::string readValue(std::string_view word, float missing, float& value)
{
    value = missing;
    if (word.empty()) return {};
    double number = 0;
    std::string wrong = readNumber(word, -double{anyValue}, anyValue, number);
    if (wrong.empty()) value = static_cast<float>(number);
    return wrong;
}

std::string setSample(CRITERIATARGET& target, std::string_view value)
{
    SELECTIONCRITERIA& criteria = target.criteria;
    if (isNone(value)) {
        criteria.sampleVariable = 0;
        criteria.sampleMin = criteria.sampleMax = 0;
        return {};
    }
    const std::vector<std::string_view> words = splitAtColons(value);
    if (words.size() < 3) return common::quoted(value) + " isn't variable:minimum:maximum";
    const std::string_view last = words[words.size() - 1], secondLast = words[words.size() - 2];
    const std::string_view name =
        value.substr(0, static_cast<std::size_t>(secondLast.data() - value.data()) - 1);
    const int variable = collection::findVariable(target.variables, variablesOf(target), unquoted(name));
    if (variable == 0) return "there is no variable " + common::quoted(unquoted(name));
    float low = 0, high = 0;
    std::string wrong = readValue(common::trimBlanks(secondLast), -anyValue, low);
    if (wrong.empty()) wrong = readValue(common::trimBlanks(last), anyValue, high);
    if (!wrong.empty()) return wrong;
    criteria.sampleVariable = variable;
    criteria.sampleMin = low;
    criteria.sampleMax = high;
    return {};
}

// --- required variables

// The variable that the words from `first` on name, as many of them as possible: a label may hold a colon.
// `count` is how many words it took, 0 if there is none.
int takeVariable(const CRITERIATARGET& target, std::span<const std::string_view> words, std::size_t& count)
{
    for (count = words.size(); count > 0; --count) {
        const char* const begin = words[0].data();
        const std::string_view& last = words[count - 1];
        const std::string_view name(begin, static_cast<std::size_t>(last.data() + last.size() - begin));
        const int variable = collection::findVariable(target.variables, variablesOf(target), unquoted(name));
        if (variable > 0) return variable;
    }
    return 0;
}

std::string setRequired(CRITERIATARGET& target, std::string_view value)
{
    if (value.empty()) return "a variable is missing";
    std::vector<int> required;
    if (!isNone(value)) {
        const std::vector<std::string_view> words = splitAtColons(value);
        for (std::size_t at = 0, count = 0; at < words.size(); at += count) {
            const int variable = takeVariable(target, std::span(words).subspan(at), count);
            if (count == 0) return "there is no variable " + common::quoted(unquoted(words[at]));
            if (variable > target.variableCount)
                return common::quoted(target.variables[static_cast<std::size_t>(variable)].plainLabel) +
                       " is derived; only variables of the collection can be required";
            required.push_back(variable);
        }
    }
    collection::setRequiredVariables(target.criteria, required);
    return {};
}

// --- all of them

struct PLAINKEY {
    std::string_view key;
    std::string (*set)(SELECTIONCRITERIA&, std::string_view);
};
constexpr auto plainKeys = std::to_array<PLAINKEY>({{"cruise", setCruise},
                                                    {"type", setType},
                                                    {"label_from", setLabelFrom},
                                                    {"label_to", setLabelTo},
                                                    {"number_from", setNumberFrom},
                                                    {"number_to", setNumberTo},
                                                    {"station", setStation},
                                                    {"day", setDay},
                                                    {"month", setMonths},
                                                    {"year", setYear},
                                                    {"lon", setLongitudeRange},
                                                    {"lat", setLatitudes},
                                                    {"bottom", setBottom},
                                                    {"last_depth", setLastDepth},
                                                    {"quality", setQuality}});

struct TARGETKEY {
    std::string_view key;
    std::string (*set)(CRITERIATARGET&, std::string_view);
};
constexpr auto targetKeys =
    std::to_array<TARGETKEY>({{"sample", setSample}, {"require", setRequired}, {"polygon", setPolygon}});

} // namespace

std::string setCriterion(CRITERIATARGET target, std::string_view key, std::string_view value)
{
    const std::string_view clean = common::trimBlanks(value);
    const auto isKey = [key](const auto& one) { return one.key == key; };
    std::string wrong;
    if (const auto plain = std::find_if(plainKeys.begin(), plainKeys.end(), isKey);
        plain != plainKeys.end()) {
        wrong = plain->set(target.criteria, clean);
    } else if (const auto other = std::find_if(targetKeys.begin(), targetKeys.end(), isKey);
               other != targetKeys.end()) {
        wrong = other->set(target, clean);
    } else {
        return "there is no criterion " + common::quoted(key);
    }
    return wrong.empty() ? wrong : std::string(key) + ": " + wrong;
}

bool setLongitudes(SELECTIONCRITERIA& criteria, double west, double east)
{
    constexpr double circle = 360;
    if (east < west) west -= circle;
    if (!(east >= west && east - west <= circle)) return false;
    const double turns = west < -circle                    ? std::ceil((-circle - west) / circle)
                         : west >= circle || east > circle ? -std::ceil((east - circle) / circle)
                                                           : 0;
    west += turns * circle;
    east += turns * circle;
    if (west >= circle || (east == circle && west > 0)) { // stations have 0 and not 360
        west -= circle;
        east -= circle;
    }
    criteria.lonMin = static_cast<float>(west);
    criteria.lonMax = static_cast<float>(east);
    return true;
}

} // namespace selection
