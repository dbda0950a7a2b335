#pragma once

// Command files: a text file of commands, one a line, "#" begins a comment. This unit turns lines into calls;
// what a command does stands behind RCommandTarget.

#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/keyvalues.h"
#include "export/listing.h"
#include "import/importfile.h"

namespace app {

inline constexpr std::size_t longestCommandLine = 1 << 20; // bytes

using RANGE = std::pair<float, float>; // minimum and maximum, minimum below maximum

struct WINDOWVARIABLES { // each a number or a label, "-" in front reverses the axis
    int window = 1;
    std::string x, y;
    std::optional<std::string> z; // none: no colour variable
};
struct WINDOWRANGES {
    int window = 1;
    RANGE x, y;
    std::optional<RANGE> z;
};
struct WINDOWSTYLE {
    int window = 1;
    int style = 0;
    std::optional<float> dotSize;
};
struct DOMAINCHOICE { // degrees
    double lonMin = 0, lonMax = 360, latMin = -90, latMax = 90;
    std::optional<int> projection;
    std::optional<std::pair<double, double>> pole; // longitude, latitude
};

struct FILEIMPORT {
    importing::Format format = importing::Format::spreadsheet;
    std::string path;
    importing::ImportMode mode = importing::ImportMode::addReplace;
};
struct TABLEEXPORT { // a spreadsheet
    std::string path, missingText;
    std::vector<std::string> variables; // each a number or a label; empty: all of the collection
};

struct DERIVEDCHOICE {
    int row = 0;                         // of variables::derivedRows
    std::vector<std::string> parameters; // answers to the questions of its set-up, in their order
};
struct FORMULACHOICE {
    std::string label, formula;
    int width = 8, decimals = 3;
    std::vector<std::string> inputs; // each a number or a label
};

// What a call gives back that has failed and has told why.
inline constexpr std::string_view toldFault = "failed";

using Fields = std::span<const std::string_view>;

class RCommandTarget {
public:
    virtual ~RCommandTarget() = default;

    [[nodiscard]] virtual bool isAllowed(int commandId) = 0; // by the gate, for window 0
    // Why the gate refuses a command; empty if it doesn't.
    [[nodiscard]] virtual std::string refusal(int commandId) = 0;
    [[nodiscard]] virtual bool isAborted() = 0;

    // These tell the user themselves what is wrong. False ends the file.
    [[nodiscard]] virtual bool openCollection(const std::string& path) = 0;
    [[nodiscard]] virtual bool loadConfiguration(const std::string& path) = 0;
    // window: -1 the whole canvas, 0 the map, else a data window of the mode. dpi below 1: to be asked for.
    [[nodiscard]] virtual bool exportGraphics(int window, const std::string& path, int dpi) = 0;
    [[nodiscard]] virtual bool exportData(const std::string& path) = 0;
    virtual void quit() = 0;

    // These give back what is wrong, empty if nothing is; anything wrong ends the file.
    // set: the entry text of a set of variables, or a template file.
    [[nodiscard]] virtual std::string createCollection(const std::string& path, const std::string& set) = 0;
    [[nodiscard]] virtual std::string copyCollection(const std::string& path) = 0;
    [[nodiscard]] virtual std::string moveCollection(const std::string& path) = 0;
    [[nodiscard]] virtual std::string deleteCollection() = 0;
    [[nodiscard]] virtual std::string sortAndCondense() = 0;
    [[nodiscard]] virtual std::string changeVariables(const std::string& listFile) = 0;
    [[nodiscard]] virtual std::string deleteSelected() = 0;
    [[nodiscard]] virtual std::string deleteEmpty() = 0;
    [[nodiscard]] virtual std::string deleteStation(int number) = 0;
    [[nodiscard]] virtual std::string addLogComment(std::string_view text) = 0;
    [[nodiscard]] virtual std::string closeCollection() = 0;
    [[nodiscard]] virtual std::string checkCollection(const std::string& path) = 0; // empty: the open one
    [[nodiscard]] virtual std::string setMode(int mode) = 0;                        // -1 MAP to 3 SURFACE
    [[nodiscard]] virtual std::string useLayout(std::string_view menuText) = 0;
    [[nodiscard]] virtual std::string setWindow(const WINDOWVARIABLES& variables) = 0;
    [[nodiscard]] virtual std::string setRange(const WINDOWRANGES& ranges) = 0;
    [[nodiscard]] virtual std::string fullRange(std::optional<int> window) = 0; // none: all windows
    [[nodiscard]] virtual std::string setStyle(const WINDOWSTYLE& style) = 0;
    [[nodiscard]] virtual std::string setPalette(int window, std::string_view name) = 0; // window 0: the map
    [[nodiscard]] virtual std::string setDomain(const DOMAINCHOICE& domain) = 0;
    [[nodiscard]] virtual std::string plotStation(std::optional<int> number) = 0; // none: all
    // Pairs of one line are in force together, or none of them is.
    [[nodiscard]] virtual std::string setImport(std::span<const KEYVALUE> pairs) = 0;
    [[nodiscard]] virtual std::string select(std::span<const KEYVALUE> pairs) = 0; // "reset" has no value
    [[nodiscard]] virtual std::string importFile(const FILEIMPORT& file) = 0;
    [[nodiscard]] virtual std::string exportListing(exporting::ListingForm form, const std::string& path) = 0;
    [[nodiscard]] virtual std::string exportCollection(const std::string& path) = 0;
    [[nodiscard]] virtual std::string exportSpreadsheet(const TABLEEXPORT& table) = 0;
    // Variables are numbers or labels.
    [[nodiscard]] virtual std::string setKey(const std::string& keyText, const std::string& variable) = 0;
    [[nodiscard]] virtual std::string addDerived(const DERIVEDCHOICE& choice) = 0;
    [[nodiscard]] virtual std::string addExpression(const FORMULACHOICE& choice) = 0;
    [[nodiscard]] virtual std::string addMacro(const std::string& path,
                                               const std::vector<std::string>& inputs) = 0;
    [[nodiscard]] virtual std::string deleteDerived(const std::string& variable) = 0;
};

// Runs the lines of a command file. `name` is its name in messages; `note` takes each message, in the form
// "<name>:<line>: <what is wrong>". False if the file was left before its end.
[[nodiscard]] bool runCommands(std::string_view content, std::string_view name, RCommandTarget& target,
                               const std::function<void(std::string_view)>& note);

} // namespace app
