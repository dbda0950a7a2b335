#pragma once

// What the program does with the open collection, without a window: opening by kind, importing, closing,
// pictures and data out. The window owns one session, tests make their own.

#include <array>
#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "app/filekind.h"
#include "app/gate.h"
#include "app/keyvalues.h"
#include "app/scratchfolder.h"
#include "app/settings.h"
#include "app/setupvariables.h"
#include "app/stages.h"
#include "collection/collectionfiles.h"
#include "collection/collectionlock.h"
#include "collection/rcollection.h"
#include "collection/sidefiles.h"
#include "common/installation.h"
#include "common/user.h"
#include "export/listing.h"
#include "export/spreadsheet.h"
#include "graphics/plots.h"
#include "import/importfile.h"
#include "import/importsettings.h"
#include "import/importspreadsheet.h"
#include "selection/criteria.h"
#include "variables/setup.h"

namespace app {

// How a new collection gets its variables.
struct CREATIONCHOICE {
    int set = 0;              // a collection::VariableSet
    std::string templateFile; // for setTemplate: a .var, .o4x or .txt file
};

struct FILEQUESTION {
    std::string caption, filter, proposal; // the filter in the form of the toolkit's file dialogs
    bool save = false;                     // the name of a file to be made
    bool mayBeThere = false;               // who asks sees to a file of that name himself
};

// The criteria that a user edits.
struct EDITEDCRITERIA {
    collection::SELECTIONCRITERIA criteria;
    collection::DOMAINPOLYGON polygon;
};

// What a session asks of whoever shows it.
class RSessionView {
public:
    virtual ~RSessionView() = default;
    virtual void showIdle() {}    // nothing is open any more
    virtual void showPicture() {} // the picture is to be drawn anew
    virtual void captionChanged(const std::string&) {}
    virtual void statusChanged() {} // the state's own text belongs in the status line
    virtual void recentFilesChanged() {}
    virtual void requestClose() {}                          // of the program
    [[nodiscard]] virtual int askResolution() { return 0; } // dots per inch, 0 if nobody tells

    // What only a user can supply. Without one nothing is chosen, and the editor leaves its list as it is.
    // The variables of a collection `name` that is to be made; nothing if the user cancels.
    [[nodiscard]] virtual std::optional<CREATIONCHOICE> chooseVariables(const std::string&)
    {
        return std::nullopt;
    }
    // Edits a list of variables (index 0 is no variable; assocSource keeps the number of the old variable, 0
    // for a new one). `old` are the variables that they take their data from, empty for a new collection.
    // False if the user cancels.
    [[nodiscard]] virtual bool editVariables(const std::string&, std::vector<collection::VARINFO>&,
                                             std::span<const collection::VARINFO>)
    {
        return true;
    }
    // A file's path; empty if the user cancels.
    [[nodiscard]] virtual std::string askFile(const FILEQUESTION&) { return {}; }
    // A line of text; nothing if the user cancels.
    [[nodiscard]] virtual std::optional<std::string> askLine(std::string_view, std::string_view)
    {
        return std::nullopt;
    }
    // Who settles an import; null if nobody does. It is used until that import is done.
    [[nodiscard]] virtual std::unique_ptr<importing::RImportSettler> importSettler() { return nullptr; }
    // The variables of an export, of all of the open collection; nothing if the user cancels.
    [[nodiscard]] virtual std::optional<std::vector<int>>
    chooseOutputVariables(const std::vector<int>& proposed)
    {
        return proposed;
    }
    // False if the user cancels.
    [[nodiscard]] virtual bool editCriteria(EDITEDCRITERIA&) { return false; }
    // Stations that an import has just stored: dots on the map as it stands.
    virtual void showImported(std::span<const selection::SELECTEDSTATION>) {}
};

enum RunMode : int { interactiveRun = 1, commandFileRun = 2 };

enum class OpenResult : int { ok = 0, failed = 1, noTemporaryFile = 6 };

class RSession {
public:
    RSession(common::RUser& user, RSessionView& view);
    ~RSession();
    RSession(const RSession&) = delete;
    RSession& operator=(const RSession&) = delete;

    // --- what all of the program looks at
    common::INSTALLATION installation;
    SETTINGS settings;

    collection::RCollection collection;
    collection::STATIONDATA currentStation;
    variables::SURROUNDINGS surroundings; // of the derived variables
    graphics::GRAPHICSSETUP setup;
    graphics::MAPCACHE mapCache;
    collection::LASTFILES lastFiles;
    int state = stateIdle;
    int runMode = interactiveRun;
    bool stale = true;
    importing::IMPORTSETTINGS importSettings; // of the command file that runs
    const std::string title, version;

    // --- opening and closing
    // The path is relative to the current directory, which becomes the collection's.
    [[nodiscard]] OpenResult open(const std::string& path);
    // False if the user cancelled, which `force` ignores.
    bool close(bool force);
    // A file of the command line or a drop: `argument` says what it is taken for, relative paths are against
    // `directory`.
    [[nodiscard]] OpenResult openArgument(const std::string& argument, const std::string& directory);
    // False, after a message.
    [[nodiscard]] bool loadConfiguration(const std::string& path);

    // --- the collection as a whole (creating.cpp, collectioncommands.cpp). Each speaks for itself; false if
    // it failed or was cancelled. Where a path is empty, or a choice is missing, the view is asked. Paths are
    // with or without ".var". Makes and opens an empty collection.
    [[nodiscard]] bool createCollection(const std::string& path, std::optional<CREATIONCHOICE> choice);
    // Of the open collection, which is closed; afterwards the target is open.
    [[nodiscard]] bool copyCollection(const std::string& target);
    [[nodiscard]] bool moveCollection(const std::string& target);
    [[nodiscard]] bool deleteCollection();
    [[nodiscard]] bool sortAndCondense();
    // newVariables: as editVariables leaves them; empty: the view edits the present ones.
    [[nodiscard]] bool changeVariables(std::vector<collection::VARINFO> newVariables);
    [[nodiscard]] bool deleteSelected();
    [[nodiscard]] bool deleteEmpty();
    [[nodiscard]] bool deleteStation(int number); // 0: the current one
    [[nodiscard]] bool addLogComment(std::optional<std::string> text);
    // Of any collection, by its path; an empty path is the open one. True if it has no inconsistency.
    [[nodiscard]] bool checkCollection(const std::string& path);

    // --- data in and out (importcommands.cpp, exportcommands.cpp, selectioncommands.cpp). False if it failed
    // or was cancelled, after a message. Where a path is empty the view is asked for it, and for the rest.
    // Imports into the open collection.
    [[nodiscard]] bool importFile(importing::Format format, const std::string& path,
                                  importing::ImportMode mode);
    [[nodiscard]] bool exportListing(exporting::ListingForm form, const std::string& path);
    [[nodiscard]] bool exportCollection(const std::string& path);
    [[nodiscard]] bool exportSpreadsheet(const std::string& path,
                                         const exporting::SPREADSHEETOPTIONS& options = {});
    // What is wrong, empty if nothing is: then all pairs are in force, else none. "reset" has no value.
    [[nodiscard]] std::string select(std::span<const KEYVALUE> pairs);
    [[nodiscard]] bool editSelection();

    // --- derived variables (derivedcommands.cpp)
    // These give back what is wrong, empty if nothing is, or that it was told. Variables are numbers or
    // labels.
    [[nodiscard]] std::string setKey(std::string_view keyText, std::string_view variable);
    [[nodiscard]] std::string addDerived(int row, std::span<const std::string> parameters);
    [[nodiscard]] std::string addExpression(variables::EXPRESSIONDEFINITION definition,
                                            std::span<const std::string> inputs);
    [[nodiscard]] std::string addMacro(const std::string& path, std::span<const std::string> inputs);
    [[nodiscard]] std::string deleteDerived(std::string_view variable);
    // The number of a new variable of a row, whose questions the settler answers; 0 if none was added.
    int addDerivedVariable(int row, variables::RVariableSettler& settler);
    // With all that depend on it.
    void deleteDerivedVariable(int number);
    // New labels, formats and positions of all variables (index 0 is no variable).
    void takeVariableSettings(std::span<const collection::VARINFO> edited);
    void takeCoverage(const variables::COVERAGECRITERIA& coverage);
    // Variables that were computed for a station, since the session began.
    [[nodiscard]] std::int64_t calculations() const { return stages_.calculations(); }
    [[nodiscard]] selection::MAPDOMAIN mapDomain() const;
    // Number of a variable, also a derived one, by number or label; 0 if there is none.
    [[nodiscard]] int variableOf(std::string_view text) const;

    // --- pictures
    // The map and the windows of the mode in `painter`; all of them if `full`, else those that need it.
    void draw(QPainter* painter, bool full, std::function<void()> repaint);
    // Everything is to be drawn anew.
    void invalidate();
    // False if nothing was written, after a message if there is something to say. window: -1 the canvas, 0
    // the map, else a data window of the mode.
    [[nodiscard]] bool exportGraphics(const std::string& path, int window, int dpi);

    // --- the view; each gives back what is wrong, empty if nothing is
    [[nodiscard]] std::string setMode(int mode);
    [[nodiscard]] std::string useLayout(std::string_view menuText);
    [[nodiscard]] std::string setWindow(int window, std::string_view x, std::string_view y,
                                        std::optional<std::string_view> z);
    [[nodiscard]] std::string setRange(int window, int axis, float low, float high); // axis 0 x, 1 y, 2 z
    [[nodiscard]] std::string fullRange(std::optional<int> window);
    [[nodiscard]] std::string setStyle(int window, int style, std::optional<float> dotSize);
    [[nodiscard]] std::string setPalette(int window, std::string_view name); // window 0: the map
    [[nodiscard]] std::string setDomain(double lonMin, double lonMax, double latMin, double latMax,
                                        std::optional<int> projection,
                                        std::optional<std::pair<double, double>> pole);
    [[nodiscard]] std::string plotStation(std::optional<int> number); // none: all

    // --- for the gate and the status line
    [[nodiscard]] GATESTATE gateState() const;
    [[nodiscard]] bool isAllowed(int commandId, int window) const;
    [[nodiscard]] std::string refusal(int commandId) const; // why it isn't allowed; empty if it is
    [[nodiscard]] std::string statusText() const;
    [[nodiscard]] graphics::PLOTCONTEXT plotContext();

private:
    // What a new collection is made of.
    struct NEWCOLLECTION {
        std::vector<collection::VARINFO> variables; // numbered from 1; index 0 is no variable
        std::string type = "HYD";
    };

    // opening.cpp
    [[nodiscard]] OpenResult openKind(FileKind kind, const std::string& path);
    [[nodiscard]] OpenResult openCollection(const std::string& path);
    [[nodiscard]] bool setNames(const std::string& path);
    [[nodiscard]] std::string takeForWriting(const std::string& basePath);
    [[nodiscard]] bool putRight(std::string basePath, const std::string& readOnlyReason);
    [[nodiscard]] OpenResult openFiles();
    [[nodiscard]] OpenResult tellNoLists();
    void becomeReady(const std::string& path);
    void setDefaults();
    void abandon();
    void leave();
    void listChanged();
    void viewChanged();

    // importcommands.cpp
    [[nodiscard]] std::unique_ptr<importing::RImportSettler> makeSettler();
    [[nodiscard]] importing::IMPORTRESULT runImport(importing::Format format, const std::string& path,
                                                    importing::IMPORTOPTIONS options);
    [[nodiscard]] OpenResult importIntoOpen(importing::Format format, const std::string& path,
                                            importing::ImportMode mode);

    // exportcommands.cpp
    struct EXPORTFRONT { // what an export asks in front
        std::string_view extension, caption, filter;
        std::string_view warningCaption, warning; // empty: none
    };
    [[nodiscard]] bool acceptsExport(const EXPORTFRONT& front);
    [[nodiscard]] std::string askExportFile(const EXPORTFRONT& front);
    [[nodiscard]] bool mayExportTo(const std::string& file);
    [[nodiscard]] bool mayDescribe(const std::string& listing);
    [[nodiscard]] std::optional<std::vector<int>> outputVariables(bool asked);

    // derivedcommands.cpp
    [[nodiscard]] std::string tellAdded(int number, std::string_view fault);
    [[nodiscard]] std::string macroPath(const std::string& path) const;
    void takeMapDomain();

    // selectioncommands.cpp
    void takeCriteria(const EDITEDCRITERIA& edited);
    void tellSelected();

    // creating.cpp
    [[nodiscard]] OpenResult createMissing(const std::string& readOnlyReason);
    [[nodiscard]] OpenResult makeEmpty(const NEWCOLLECTION& made);
    [[nodiscard]] OpenResult newFromSource(FileKind kind, const std::string& path);
    [[nodiscard]] OpenResult importAsNew(FileKind kind, const std::string& path);
    [[nodiscard]] bool readVariables(importing::Format format, const std::string& path,
                                     importing::IMPORTOPTIONS& options);
    [[nodiscard]] bool mayReplaceStations(const std::string& basePath, std::string_view caption);
    [[nodiscard]] bool mayReplace(const std::string& basePath, std::string_view title, bool byNothing);
    [[nodiscard]] bool canMake(std::string_view title, bool byNothing);
    [[nodiscard]] bool makeFiles(std::string_view operation);
    [[nodiscard]] std::optional<NEWCOLLECTION> newCollection(const CREATIONCHOICE& choice,
                                                             const std::string& name);
    [[nodiscard]] std::optional<NEWCOLLECTION> fromTemplate(const std::string& file);

    // collectioncommands.cpp
    using FamilyOperation = collection::FilesResult (*)(const std::string& from, const std::string& to);
    struct FAMILYCOMMAND {
        std::string_view title, verb, done; // "Copy Collection", "copy", "copied"
        FamilyOperation run;
    };
    [[nodiscard]] bool copyOrMove(const FAMILYCOMMAND& command, const std::string& target);
    [[nodiscard]] bool runFamilyCommand(const FAMILYCOMMAND& command, const std::string& from,
                                        const std::string& to);
    [[nodiscard]] bool mayTakePlace(std::string_view caption, const std::string& basePath);
    [[nodiscard]] std::string targetBase(const std::string& path, const FILEQUESTION& question);
    [[nodiscard]] bool deleteStations(const std::function<int()>& remove);
    void stationsChanged();
    void variablesChanged(std::span<const int> numbers);
    void putBackDerived(const variables::DERIVEDSET& derived);
    void keepDerived(const variables::DERIVEDSET& derived, std::vector<int>& numbers,
                     const collection::SELECTIONCRITERIA& sample);
    void forgetRecentFile(const std::string& path);
    void tellDone(const std::string& text);

    [[nodiscard]] std::string openFault() const;
    [[nodiscard]] std::string windowFault(int window) const;
    [[nodiscard]] int variableNamed(std::string_view text) const;
    void findRanges();
    void findRangesOf(int window);
    [[nodiscard]] bool writeGraphics(const std::string& path, int window, int dpi);

    // unpacking.cpp; paths are absolute
    [[nodiscard]] OpenResult unpackArgument(const std::string& archive);
    [[nodiscard]] OpenResult openUnpacked(FileKind kind, const std::string& path, const std::string& archive,
                                          std::unique_ptr<RScratchFolder> folder);
    [[nodiscard]] OpenResult openTemporary(FileKind kind, const std::string& path,
                                           std::unique_ptr<RScratchFolder> folder);
    [[nodiscard]] OpenResult openBeside(FileKind kind, const std::string& path, const std::string& directory);

    common::RUser& user_;
    RSessionView& view_;
    RProgramStages stages_{surroundings};
    collection::RCollectionLock lock_;
    variables::MACROFORMAT macroFormat_;
    bool openingTemporary_ = false; // what is being opened was unpacked and goes when it is closed
    std::string importDirectory_;   // of the file that was imported last
    std::string newDirectory_;      // where a file that is being opened makes a collection; empty: beside it
    std::unique_ptr<RScratchFolder> unpacked_; // holds the open collection, if that was unpacked
    collection::STATIONDATA scratch_;          // for plots and imports
    RANGEDWINDOWS ranged_;
};

} // namespace app
