#include "selection/polygonfile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

#include "common/files.h"
#include "common/text.h"
#include "common/textcoding.h"

namespace selection {
namespace {

using collection::DOMAINPOLYGON;

constexpr int mostPoints = static_cast<int>(std::tuple_size_v<decltype(DOMAINPOLYGON::lon)>);
constexpr int mostCorners = mostPoints - 1, fewestCorners = 3;
constexpr std::int64_t largestFile = 1 << 20; // bytes
constexpr double westmost = -360, eastmost = 720;

// A part of a line for a message: not too long, and nothing that moves the cursor.
std::string shown(std::string_view text)
{
    constexpr std::size_t longest = 40;
    std::string cut = common::labelToUtf8(text.substr(0, longest));
    for (char& c : cut) {
        if (static_cast<unsigned char>(c) < 32 || c == 127) c = '?';
    }
    return "\"" + cut + (text.size() > longest ? "...\"" : "\"");
}

bool isSeparator(char c)
{
    return c == ' ' || c == '\t' || c == ',' || c == ';';
}

// The next word of a line, without what stands around it; one comma or semicolon ends it.
std::string_view takeWord(std::string_view& line)
{
    line = common::trimBlanks(line);
    std::size_t end = 0;
    while (end < line.size() && !isSeparator(line[end])) ++end;
    const std::string_view word = line.substr(0, end);
    line = common::trimBlanks(line.substr(end));
    if (!line.empty() && (line.front() == ',' || line.front() == ';')) line.remove_prefix(1);
    return word;
}

// Reads a coordinate; what is wrong, empty if nothing is.
std::string readCoordinate(std::string_view& line, std::string_view name, double low, double high,
                           float& value)
{
    if (common::trimBlanks(line).empty()) return "the " + std::string(name) + " is missing";
    const std::string_view word = takeWord(line);
    const auto number = common::parseDouble(word);
    if (!number) return "the " + std::string(name) + " " + shown(word) + " doesn't read as a number";
    if (!(*number >= low && *number <= high))
        return common::format("the %s %s isn't within %g to %g", std::string(name).c_str(),
                              shown(word).c_str(), low, high);
    value = static_cast<float>(*number);
    return {};
}

// Gathers the vertices line by line.
class RPolygonReader {
public:
    // What is wrong, empty if nothing is.
    std::string take(std::string_view line)
    {
        line = common::trimBlanks(line.substr(0, line.find('#')));
        if (line.empty()) return {};
        float lon = 0, lat = 0;
        std::string wrong = readCoordinate(line, "longitude", westmost, eastmost, lon);
        if (wrong.empty()) wrong = readCoordinate(line, "latitude", -90, 90, lat);
        if (wrong.empty() && !line.empty()) wrong = "more than a longitude and a latitude: " + shown(line);
        return wrong.empty() ? add(lon, lat) : wrong;
    }
    // What is wrong with the whole.
    std::string finish()
    {
        if (!isClosed() && polygon_.nPoints > mostCorners) return tooMany();
        closePolygon(polygon_);
        const int corners = std::max(0, polygon_.nPoints - 1);
        if (corners < fewestCorners)
            return common::format("a polygon has at least %d corners, not %d", fewestCorners, corners);
        return moveToStations();
    }
    [[nodiscard]] const DOMAINPOLYGON& polygon() const { return polygon_; }

private:
    static std::string tooMany() { return common::format("more than %d corners", mostCorners); }

    std::string add(float lon, float lat)
    {
        if (polygon_.nPoints == mostPoints) return tooMany();
        const auto at = static_cast<std::size_t>(polygon_.nPoints++);
        polygon_.lon[at] = lon;
        polygon_.lat[at] = lat;
        return {};
    }

    [[nodiscard]] bool isClosed() const
    {
        if (polygon_.nPoints < 2) return false;
        const auto last = static_cast<std::size_t>(polygon_.nPoints - 1);
        return polygon_.lon[0] == polygon_.lon[last] && polygon_.lat[0] == polygon_.lat[last];
    }

    // Stations have longitudes of 0 to 360, or 360 less where the polygon reaches below 0.
    std::string moveToStations()
    {
        const auto end = polygon_.lon.begin() + polygon_.nPoints;
        const auto [low, high] = std::minmax_element(polygon_.lon.begin(), end);
        const float west = *low, east = *high;
        if (east - west > 360) return "the longitudes span more than 360 degrees";
        const float step = east > 360 ? -360.0f : 0.0f;
        std::for_each(polygon_.lon.begin(), end, [step](float& lon) { lon += step; });
        return {};
    }

    DOMAINPOLYGON polygon_;
};

// The next line, whether lines end with LF, CR LF or CR.
std::string_view takeAnyLine(std::string_view& rest)
{
    const std::size_t end = rest.find_first_of("\r\n");
    const std::string_view line = rest.substr(0, end);
    if (end == std::string_view::npos) {
        rest = {};
    } else {
        rest.remove_prefix(rest.substr(end).starts_with("\r\n") ? end + 2 : end + 1);
    }
    return line;
}

} // namespace

void closePolygon(DOMAINPOLYGON& polygon)
{
    const int count = std::clamp(polygon.nPoints, 0, mostPoints);
    polygon.nPoints = count;
    if (count < 2) return;
    const auto last = static_cast<std::size_t>(count - 1);
    if (polygon.lon[0] == polygon.lon[last] && polygon.lat[0] == polygon.lat[last]) return;
    const std::size_t place = count == mostPoints ? last : last + 1;
    polygon.lon[place] = polygon.lon[0];
    polygon.lat[place] = polygon.lat[0];
    polygon.nPoints = static_cast<std::int32_t>(place + 1);
}

void setPolygonDomain(collection::SELECTIONCRITERIA& criteria, const DOMAINPOLYGON& polygon)
{
    const int count = std::clamp(polygon.nPoints, 0, mostPoints);
    criteria.usePolygon = 1;
    if (count == 0) return;
    const auto [west, east] = std::minmax_element(polygon.lon.begin(), polygon.lon.begin() + count);
    const auto [south, north] = std::minmax_element(polygon.lat.begin(), polygon.lat.begin() + count);
    criteria.lonMin = *west;
    criteria.lonMax = *east;
    criteria.latMin = *south;
    criteria.latMax = *north;
}

bool parsePolygon(std::string_view content, DOMAINPOLYGON& polygon, std::string& fault)
{
    if (content.starts_with("\xEF\xBB\xBF")) content.remove_prefix(3);
    RPolygonReader reader;
    int line = 0;
    std::string wrong;
    while (!content.empty() && wrong.empty()) {
        ++line;
        wrong = reader.take(takeAnyLine(content));
    }
    if (wrong.empty()) wrong = reader.finish();
    if (wrong.empty()) {
        polygon = reader.polygon();
        return true;
    }
    fault = std::to_string(std::max(line, 1)) + ": " + wrong;
    return false;
}

bool readPolygon(const std::string& path, DOMAINPOLYGON& polygon, std::string& fault)
{
    const auto content = common::readFile(path, largestFile);
    if (!content) {
        const bool large = common::fileSize(path) > largestFile;
        fault = path + (large ? ": is too large for a polygon" : ": can't be read");
    } else if (parsePolygon(*content, polygon, fault)) {
        return true;
    } else {
        fault = path + ":" + fault;
    }
    return false;
}

} // namespace selection
