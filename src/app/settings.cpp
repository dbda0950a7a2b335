#include "app/settings.h"

#include <algorithm>
#include <cmath>

#include <QtGlobal>

#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

constexpr auto groupOrder =
    std::to_array<std::string_view>({"Setup", "Geometry", "Settings", "Font", "Recent Files"});

constexpr std::int64_t largestFile = 1 << 20; // bytes; more isn't a settings file

// A value stands in one line.
std::string oneLine(std::string_view text)
{
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r' || c == '\0'; }, ' ');
    return std::string(common::trimBlanks(line));
}

void warnNoGroup()
{
    qWarning("no group set");
}

bool isGroupLine(std::string_view line)
{
    return !line.empty() && line.front() == '[';
}

std::string_view groupName(std::string_view line)
{
    line.remove_prefix(1);
    return common::trimBlanks(line.substr(0, line.find(']')));
}

// Reads into `target` if the key is there.
template <typename T>
void take(const RSettingsFile& file, std::string_view key, T& target)
{
    target = file.value(key, target);
}

void take(const RSettingsFile& file, std::string_view key, std::string& target)
{
    target = file.value(key, std::string_view(target));
}

void readGeometry(RSettingsFile& file, SETTINGS& settings)
{
    file.setGroup("Geometry");
    take(file, "Left", settings.left);
    take(file, "Top", settings.top);
    const int width = file.value("Width", settings.width);
    const int height = file.value("Height", settings.height);
    if (width > 0) settings.width = width;
    if (height > 0) settings.height = height;
    settings.showMaximized = file.value("showMaximized", settings.showMaximized ? 1 : 0) != 0;
}

void readGeneral(RSettingsFile& file, SETTINGS& settings)
{
    file.setGroup("Settings");
    take(file, "ErrorLogFile", settings.errorLogFile);
    take(file, "Gazetteer", settings.gazetteer);
    take(file, "GazetteerMarkerColor", settings.gazetteerMarkerColor);
    take(file, "GazetteerMarkerSize", settings.gazetteerMarkerSize);
    if (!(settings.gazetteerMarkerSize >= 0.1f)) settings.gazetteerMarkerSize = 0.8f;
    take(file, "BrowserCommand", settings.browserCommand);
    take(file, "ViewerCommand", settings.viewerCommand);
}

void readFont(RSettingsFile& file, SETTINGS& settings)
{
    file.setGroup("Font");
    take(file, "fontName", settings.fontName);
    take(file, "PSFontName", settings.psFontName);
    take(file, "nativePSFontName", settings.nativePsFontName);
    const float scale = file.value("fontScaleFac", settings.fontScaleFac);
    if (scale > 0) settings.fontScaleFac = scale;
    if (!file.value("fontScaleFac", std::string_view()).empty()) settings.fontSizesKnown = true;
    const int weight = file.value("fontWeight", settings.fontWeight);
    if (weight >= 0 && weight <= 3) settings.fontWeight = weight;
    take(file, "fontItalic", settings.fontItalic);
    take(file, "fontUnderline", settings.fontUnderline);
    take(file, "fontStrikeOut", settings.fontStrikeOut);
    const int points = file.value("txtFontPtSize", settings.txtFontPtSize);
    if (points > 0) settings.txtFontPtSize = points;
}

void readRecentFiles(RSettingsFile& file, SETTINGS& settings)
{
    file.setGroup("Recent Files");
    for (int i = recentFileCount - 1; i >= 0; --i) {
        const std::string path = file.value(common::format("File%d", i), std::string_view());
        if (!path.empty()) addRecentFile(settings.recentFiles, path);
    }
}

void readSetup(RSettingsFile& file, SETTINGS& settings)
{
    file.setGroup("Setup");
    take(file, "NVQMPHOME", settings.setup.home);
    take(file, "NVQMPTEMP", settings.setup.temp);
    take(file, "NVQMPUSER", settings.setup.user);
    take(file, "NVQMPHOST", settings.setup.host);
}

} // namespace

void RSettingsFile::parse(std::string_view content)
{
    int group = -1;
    while (!content.empty()) {
        const std::size_t end = std::min(content.find('\n'), content.size());
        const std::string_view line = common::trimBlanks(content.substr(0, end));
        content.remove_prefix(std::min(end + 1, content.size()));
        if (line.empty()) continue;
        const std::string shown(line);
        if (isGroupLine(line)) {
            group = groupIndex(groupName(line));
            continue;
        }
        if (group < 0) {
            qWarning("line `%s' out of group", shown.c_str());
            continue;
        }
        GROUP& target = groups_[static_cast<std::size_t>(group)];
        const std::size_t equals = line.find('=');
        if (equals == std::string_view::npos) {
            qWarning("corrupted line `%s' in group `%s'", shown.c_str(), target.name.c_str());
            continue;
        }
        const int keep = current_;
        current_ = group;
        setValue(common::trimBlanks(line.substr(0, equals)), common::trimBlanks(line.substr(equals + 1)));
        current_ = keep;
    }
}

bool RSettingsFile::read(const std::string& path)
{
    const std::optional<std::string> content = common::readFile(path, largestFile);
    if (!content) {
        qWarning("could not open for reading `%s'", path.c_str());
        return false;
    }
    parse(*content);
    return true;
}

bool RSettingsFile::write(const std::string& path) const
{
    const bool written = common::writeFile(path, text());
    if (!written) qWarning("could not open for writing `%s'", path.c_str());
    return written;
}

std::string RSettingsFile::text() const
{
    std::string all;
    for (const GROUP& group : groups_) {
        if (group.keys.empty()) continue;
        all += "[" + group.name + "]\n";
        for (const auto& [key, value] : group.keys) all.append(key).append(" = ").append(value) += '\n';
    }
    return all;
}

int RSettingsFile::groupIndex(std::string_view name)
{
    const auto same = [name](const GROUP& group) { return group.name == name; };
    const auto found = std::find_if(groups_.begin(), groups_.end(), same);
    if (found != groups_.end()) return static_cast<int>(found - groups_.begin());
    groups_.push_back({oneLine(name), {}});
    return static_cast<int>(groups_.size()) - 1;
}

void RSettingsFile::setGroup(std::string_view name)
{
    current_ = groupIndex(name);
}

const std::string* RSettingsFile::find(std::string_view key) const
{
    if (current_ < 0) {
        warnNoGroup();
        return nullptr;
    }
    const auto& keys = groups_[static_cast<std::size_t>(current_)].keys;
    const auto found =
        std::find_if(keys.begin(), keys.end(), [key](const auto& k) { return k.first == key; });
    return found == keys.end() ? nullptr : &found->second;
}

std::string RSettingsFile::value(std::string_view key, std::string_view fallback) const
{
    const std::string* const text = find(key);
    return text ? *text : std::string(fallback);
}

int RSettingsFile::value(std::string_view key, int fallback) const
{
    const std::string* const text = find(key);
    return text ? common::parseInt(*text).value_or(fallback) : fallback;
}

float RSettingsFile::value(std::string_view key, float fallback) const
{
    const std::string* const text = find(key);
    return text ? static_cast<float>(common::parseDouble(*text).value_or(fallback)) : fallback;
}

void RSettingsFile::setValue(std::string_view key, std::string_view text)
{
    if (current_ < 0) {
        warnNoGroup();
        return;
    }
    auto& keys = groups_[static_cast<std::size_t>(current_)].keys;
    const auto found =
        std::find_if(keys.begin(), keys.end(), [key](const auto& k) { return k.first == key; });
    if (found == keys.end()) {
        keys.emplace_back(oneLine(key), oneLine(text));
    } else {
        found->second = oneLine(text);
    }
}

void RSettingsFile::setValue(std::string_view key, int number)
{
    setValue(key, std::string_view(std::to_string(number)));
}

void RSettingsFile::setValue(std::string_view key, float number)
{
    setValue(key, std::string_view(common::formatG(number)));
}

void RSettingsFile::arrange(std::span<const std::string_view> order)
{
    const auto rank = [order](const GROUP& group) {
        return std::find(order.begin(), order.end(), group.name) - order.begin();
    };
    std::stable_sort(groups_.begin(), groups_.end(),
                     [rank](const GROUP& a, const GROUP& b) { return rank(a) < rank(b); });
    current_ = -1;
}

float defaultFontScale(int screenHeight, int lineHeight)
{
    if (lineHeight <= 0) return leastFontScale;
    return std::max(leastFontScale,
                    static_cast<float>(screenHeight) * 0.013f / static_cast<float>(lineHeight));
}

int defaultTextPoints(float fontScale)
{
    return std::max(leastTextPoints, static_cast<int>(8 * fontScale));
}

std::string installedFamily(const std::string& wanted, const std::string& substitute,
                            const std::vector<std::string>& installed)
{
    for (const std::string& name : {wanted, substitute}) {
        const auto same = [&name](const std::string& family) {
            return common::equalsIgnoreCase(family, name);
        };
        const auto found = std::find_if(installed.begin(), installed.end(), same);
        if (found != installed.end()) return *found;
    }
    return installed.empty() ? wanted : installed.front();
}

std::string settingsPath(const std::string& home)
{
    return common::replaceAll(home + "/", "//", "/") + ".nvq";
}

void readSettings(RSettingsFile& file, SETTINGS& settings)
{
    readSetup(file, settings);
    readGeometry(file, settings);
    readGeneral(file, settings);
    readFont(file, settings);
    readRecentFiles(file, settings);
}

void storeSettings(const SETTINGS& settings, RSettingsFile& file)
{
    file.setGroup("Geometry");
    file.setValue("Left", settings.left);
    file.setValue("Top", settings.top);
    file.setValue("Width", settings.width);
    file.setValue("Height", settings.height);
    file.setValue("showMaximized", settings.showMaximized ? 1 : 0);
    file.setGroup("Settings");
    file.setValue("ErrorLogFile", settings.errorLogFile);
    file.setValue("Gazetteer", settings.gazetteer);
    file.setValue("GazetteerMarkerColor", settings.gazetteerMarkerColor);
    file.setValue("GazetteerMarkerSize", settings.gazetteerMarkerSize);
    file.setValue("BrowserCommand", settings.browserCommand);
    file.setValue("ViewerCommand", settings.viewerCommand);
    file.setGroup("Font");
    file.setValue("fontName", settings.fontName);
    file.setValue("PSFontName", settings.psFontName);
    file.setValue("nativePSFontName", settings.nativePsFontName);
    file.setValue("fontWeight", settings.fontWeight);
    file.setValue("fontItalic", settings.fontItalic);
    file.setValue("fontUnderline", settings.fontUnderline);
    file.setValue("fontStrikeOut", settings.fontStrikeOut);
    if (settings.fontSizesKnown) {
        file.setValue("fontScaleFac", settings.fontScaleFac);
        file.setValue("txtFontPtSize", settings.txtFontPtSize);
    }
    file.setGroup("Recent Files");
    for (int i = 0; i < recentFileCount; ++i)
        file.setValue(common::format("File%d", i), settings.recentFiles[static_cast<std::size_t>(i)]);
    file.arrange(groupOrder);
}

void storeSetup(const SETUPSETTINGS& setup, RSettingsFile& file)
{
    file.setGroup("Setup");
    file.setValue("NVQMPHOME", setup.home);
    file.setValue("NVQMPTEMP", setup.temp);
    file.setValue("NVQMPUSER", setup.user);
    file.setValue("NVQMPHOST", setup.host);
}

void addRecentFile(std::array<std::string, recentFileCount>& files, std::string_view path)
{
    std::vector<std::string> list;
    const auto add = [&list](std::string_view name) {
        if (!name.empty() && std::find(list.begin(), list.end(), name) == list.end()) list.emplace_back(name);
    };
    add(path);
    for (const std::string& file : files) add(file);
    list.resize(recentFileCount);
    std::move(list.begin(), list.end(), files.begin());
}

} // namespace app
