#pragma once

// The command gate: whether a command is possible now. Menus ask it when they open, and every command asks it
// before it runs, from a menu or from a command file.

#include <string>

namespace app {

enum AppState : int {
    stateIdle = 0, // nothing is open, the idle screen stands
    stateReady = 1,
    stateZoom = 2,
    stateBarZoom = 3,
    stateLayout = 4,
    stateBusy = 5,
    stateOutliers = 7,
    statePickPoint = 9,
    statePickPoints = 10
};

// Command ids that the program itself names.
enum CommandId : int {
    cmdNew = 40001,
    cmdOpen = 40002,
    cmdClose = 40005,
    cmdSaveScreen = 40007,
    cmdFirstRecent = 40008, // to 40015
    cmdExit = 40016,
    cmdCopy = 40101,
    cmdMove = 40102,
    cmdDelete = 40103,
    cmdSortAndCondense = 40104,
    cmdChangeVariables = 40105,
    cmdDeleteSelected = 40106,
    cmdDeleteEmpty = 40107,
    cmdDeleteCurrent = 40108,
    cmdSelectionCriteria = 40201,
    cmdDerivedVariables = 40202,
    cmdVariablesSettings = 40205,
    cmdKeyVariables = 40206,
    cmdGeneralSettings = 40207,
    cmdLoadConfiguration = 40209,
    cmdFirstLayout = 40220,
    cmdImportSpreadsheet = 40313,
    cmdImportListing3 = 40314,
    cmdImportListing4 = 40315,
    cmdExportListing3 = 40401,
    cmdExportListing4 = 40402,
    cmdExportSpreadsheet = 40403,
    cmdExportCollection = 40404,
    cmdLogComment = 40505,
    cmdViewLog = 40506,
    cmdExecuteBatchFile = 40512,
    cmdVersion = 40603,
    cmdFirstMode = 40700, // MAP; mode + 40701
    cmdFullRange = 40918,
    cmdMacroEditor = 40997,
    cmdRedraw = 40999
};

// All that the gate looks at.
struct GATESTATE {
    int state = stateIdle;
    int mode = 0;
    bool stale = true; // the plots on the canvas are no longer valid
    bool open = false, writable = false, sectionDefined = false;
    int kind = 0; // of the collection: 1 native, 2 a netCDF file
    std::string type = "HYD";
    int stationCount = 0, selectedStationCount = 0;
    int windowCount = 0;  // data windows of the mode
    std::string basePath; // of the open collection, for the tests of its side files

    [[nodiscard]] bool drawn() const { return !stale || mode < 0; }
};

// sub: the data window that the command would apply to, 0 for the map, negative for none. An id without a
// rule is always allowed.
[[nodiscard]] bool isCommandEnabled(int id, const GATESTATE& state, int sub);

} // namespace app
