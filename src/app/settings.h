#pragma once

// The settings file ".nvq" in the user's home directory: a group-and-key text file, and what the program
// keeps in it.

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace app {

// A map of groups. A group starts with a line "[name]", each of its lines is "key = value". Values are bytes
// (UTF-8), without white space at their ends. What is wrong with a file goes to Qt's warning channel.
class RSettingsFile {
public:
    // The core that tests call: takes the lines of `content`, behind what is already there.
    void parse(std::string_view content);
    // False, with a warning, if the file can't be read; nothing is changed then.
    bool read(const std::string& path);
    // Replaces the file; false, with a warning, if it can't be written.
    bool write(const std::string& path) const;
    [[nodiscard]] std::string text() const;

    void setGroup(std::string_view name); // makes it the current one, and creates it
    [[nodiscard]] std::string value(std::string_view key, std::string_view fallback) const;
    [[nodiscard]] int value(std::string_view key, int fallback) const;
    [[nodiscard]] float value(std::string_view key, float fallback) const;
    void setValue(std::string_view key, std::string_view text);
    void setValue(std::string_view key, int number);
    void setValue(std::string_view key, float number); // as "%g"
    // Puts these groups in front, in this order. No group is the current one then.
    void arrange(std::span<const std::string_view> order);

private:
    struct GROUP {
        std::string name;
        std::vector<std::pair<std::string, std::string>> keys;
    };
    [[nodiscard]] const std::string* find(std::string_view key) const;
    [[nodiscard]] int groupIndex(std::string_view name); // creates it
    std::vector<GROUP> groups_;                          // in the order of their first mention
    int current_ = -1;
};

inline constexpr std::string_view unknownHome = "_unknown_";
inline constexpr int recentFileCount = 8;

inline constexpr float leastFontScale = 0.85f;
inline constexpr int leastTextPoints = 8;

struct SETUPSETTINGS {
    std::string home{unknownHome}; // installation directory
    std::string temp, user, host;
};

struct SETTINGS {
    SETUPSETTINGS setup;
    int left = 10, top = 10, width = 620, height = 460; // pixels
    bool showMaximized = false;
    std::string errorLogFile;
    std::string gazetteer = "GazetteerGEBCO.gzt";
    int gazetteerMarkerColor = 6; // palette index
    float gazetteerMarkerSize = 0.8f;
    std::string browserCommand = "xdg-open", viewerCommand = "xdg-open";
    std::string fontName = "Arial";
    std::string psFontName = "Helvetica-BoldOblique", nativePsFontName = "Helvetica";
    float fontScaleFac = leastFontScale; // size factor of all text on the canvas
    int fontWeight = 3, fontItalic = 1, fontUnderline = 0, fontStrikeOut = 0;
    int txtFontPtSize = leastTextPoints; // of the text window
    // False: the two sizes are neither of the file nor of a screen, and aren't worth keeping.
    bool fontSizesKnown = false;
    std::array<std::string, recentFileCount> recentFiles; // the newest first, empty ones behind the last
};

// The default size factor of a screen of so many pixels, where a line of the program's font has lineHeight
// pixels; and the default size of the text window's font, in points, for a factor.
[[nodiscard]] float defaultFontScale(int screenHeight, int lineHeight);
[[nodiscard]] int defaultTextPoints(float fontScale);

// The family to draw with: `wanted` as it is installed, whatever its case; else `substitute`, if that is
// installed; else the first one; else `wanted`.
[[nodiscard]] std::string installedFamily(const std::string& wanted, const std::string& substitute,
                                          const std::vector<std::string>& installed);

[[nodiscard]] std::string settingsPath(const std::string& home); // home directory with or without "/"

// Overwrites the fields of `settings` that the file names; numbers that can't be are left out.
void readSettings(RSettingsFile& file, SETTINGS& settings);
// Puts the groups Geometry, Settings, Font and Recent Files into `file`, in this order behind Setup; other
// groups stay as they are, behind them.
void storeSettings(const SETTINGS& settings, RSettingsFile& file);
void storeSetup(const SETUPSETTINGS& setup, RSettingsFile& file);

// Puts `path` at the head of the list, once; the list is cleaned of gaps and of repetitions.
void addRecentFile(std::array<std::string, recentFileCount>& files, std::string_view path);

} // namespace app
