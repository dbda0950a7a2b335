// The menus of the main window, and what their entries do.

#include <QMenu>
#include <QMenuBar>

#include "app/commandhelp.h"
#include "app/rappwindow.h"
#include "common/text.h"
#include "graphics/layouts.h"

namespace app {
namespace {

constexpr int recentIds = cmdExit - cmdFirstRecent;
static_assert(recentIds == recentFileCount);

struct MODEENTRY {
    int mode;
    const char* text;
};
constexpr MODEENTRY modeEntries[] = {{graphics::modeMap, "MAP Mode"},
                                     {graphics::modeStation, "STATION Mode"},
                                     {graphics::modeScatter, "SCATTER Mode"}};

// Layout templates have the ids from 40220 on, in the order of their menu; 40227 is no template.
struct LAYOUTENTRY {
    int id;
    const char* text;
};
constexpr LAYOUTENTRY layoutEntries[] = {{cmdFirstLayout, "STATION 2 Win"},
                                         {cmdFirstLayout + 1, "STATION 6 Win"},
                                         {cmdFirstLayout + 2, "SCATTER 2 Win"},
                                         {cmdFirstLayout + 3, "SCATTER 6 Win"}};

// The commands of the collection as a whole; the session asks for what they need, and tells what was done.
struct COLLECTIONCOMMAND {
    int id;
    bool (*run)(RSession&);
};
template <importing::Format format>
bool importInto(RSession& session)
{
    return session.importFile(format, {}, importing::ImportMode::addReplace);
}
constexpr auto collectionCommands = std::to_array<COLLECTIONCOMMAND>({
    {cmdNew, [](RSession& s) { return s.createCollection({}, std::nullopt); }},
    {cmdCopy, [](RSession& s) { return s.copyCollection({}); }},
    {cmdMove, [](RSession& s) { return s.moveCollection({}); }},
    {cmdDelete, [](RSession& s) { return s.deleteCollection(); }},
    {cmdSortAndCondense, [](RSession& s) { return s.sortAndCondense(); }},
    {cmdChangeVariables, [](RSession& s) { return s.changeVariables({}); }},
    {cmdDeleteSelected, [](RSession& s) { return s.deleteSelected(); }},
    {cmdDeleteEmpty, [](RSession& s) { return s.deleteEmpty(); }},
    {cmdDeleteCurrent, [](RSession& s) { return s.deleteStation(0); }},
    {cmdLogComment, [](RSession& s) { return s.addLogComment(std::nullopt); }},
});

// The commands that bring data in and out; the session asks for what they need.
constexpr auto dataCommands = std::to_array<COLLECTIONCOMMAND>({
    {cmdSelectionCriteria, [](RSession& s) { return s.editSelection(); }},
    {cmdImportSpreadsheet, importInto<importing::Format::spreadsheet>},
    {cmdImportListing3, importInto<importing::Format::listing3>},
    {cmdImportListing4, importInto<importing::Format::listing4>},
    {cmdExportListing3, [](RSession& s) { return s.exportListing(exporting::ListingForm::version3, {}); }},
    {cmdExportListing4, [](RSession& s) { return s.exportListing(exporting::ListingForm::version4, {}); }},
    {cmdExportSpreadsheet, [](RSession& s) { return s.exportSpreadsheet({}); }},
    {cmdExportCollection, [](RSession& s) { return s.exportCollection({}); }},
});

// The menus whose entries are all commands. An id of 0 is a separator.
struct MENUENTRY {
    int id;
    const char* text;
};
struct MENU {
    const char* title;
    std::span<const MENUENTRY> entries;
};
constexpr MENUENTRY collectionEntries[] = {{cmdNew, "&New"},
                                           {cmdOpen, "&Open Collection"},
                                           {cmdClose, "&Close"},
                                           {0, nullptr},
                                           {cmdCopy, "C&opy"},
                                           {cmdMove, "&Move/Rename"},
                                           {cmdDelete, "&Delete"},
                                           {0, nullptr},
                                           {cmdSortAndCondense, "&Sort and Condense"},
                                           {cmdChangeVariables, "&Add/Delete Variables"},
                                           {0, nullptr},
                                           {cmdDeleteSelected, "Delete Station Subset"},
                                           {cmdDeleteEmpty, "Delete Empty Stations"},
                                           {cmdDeleteCurrent, "Delete Current Station"}};
constexpr MENUENTRY configurationEntries[] = {{cmdSelectionCriteria, "Selection Criteria"},
                                              {cmdDerivedVariables, "Derived Variables"},
                                              {cmdVariablesSettings, "Variables Settings"},
                                              {cmdKeyVariables, "Identify Key Variables"},
                                              {0, nullptr},
                                              {cmdGeneralSettings, "General Settings"}};
constexpr MENUENTRY importEntries[] = {{cmdImportSpreadsheet, "NVQ SpreadSheet"},
                                       {cmdImportListing4, "NVQ 4.x Listing"},
                                       {cmdImportListing3, "NVQ 3.0 Listing"}};
constexpr MENUENTRY exportEntries[] = {{cmdExportSpreadsheet, "NVQ SpreadSheet"},
                                       {cmdExportCollection, "NVQ Collection"},
                                       {cmdExportListing4, "NVQ 4.x Listing"},
                                       {cmdExportListing3, "NVQ 3.0 Listing"}};
constexpr MENUENTRY utilityEntries[] = {
    {cmdLogComment, "Add log File Comment"}, {0, nullptr}, {cmdMacroEditor, "Invoke Macro Editor"}};
constexpr MENU commandMenus[] = {{"&Collection", collectionEntries},
                                 {"C&onfiguration", configurationEntries},
                                 {"&Import", importEntries},
                                 {"&Export", exportEntries},
                                 {"&Utilities", utilityEntries}};

// The commands that the window carries out by dialogs over the session.
struct WINDOWCOMMAND {
    int id;
    bool (RAppWindow::*run)();
};

QString fromUtf8(const std::string& text)
{
    return QString::fromStdString(text);
}

} // namespace

// A command that stands in several menus is one action.
void RAppWindow::addEntry(QMenu* menu, int commandId, const QString& text, const QKeySequence& key)
{
    QAction*& entry = actions_[commandId];
    if (entry) {
        menu->addAction(entry);
        return;
    }
    entry = menu->addAction(text);
    entry->setShortcut(key);
    connect(entry, &QAction::triggered, this, [this, commandId] { processMenuItem(commandId); });
    connect(entry, &QAction::hovered, this, [this, commandId] { showMenuHelp(commandId); });
}

void RAppWindow::buildMenus()
{
    menuBar()->clear();
    actions_.clear();
    buildFileMenu();
    buildCommandMenus();
    buildViewMenu();
}

void RAppWindow::buildCommandMenus()
{
    for (const MENU& commands : commandMenus) {
        QMenu* const menu = menuBar()->addMenu(QString::fromLatin1(commands.title));
        for (const MENUENTRY& entry : commands.entries) {
            if (entry.id == 0) menu->addSeparator();
            if (entry.id != 0) addEntry(menu, entry.id, QString::fromLatin1(entry.text));
        }
        enableMenu(menu);
    }
}

void RAppWindow::buildFileMenu()
{
    QMenu* const menu = menuBar()->addMenu(QStringLiteral("&File"));
    addEntry(menu, cmdNew, QStringLiteral("&New"), QKeySequence(QStringLiteral("Ctrl+N")));
    addEntry(menu, cmdOpen, QStringLiteral("&Open Collection"), QKeySequence(QStringLiteral("Ctrl+O")));
    addEntry(menu, cmdClose, QStringLiteral("&Close"));
    addEntry(menu, cmdExecuteBatchFile, QStringLiteral("Execute Batch File"));
    menu->addSeparator();
    addEntry(menu, cmdSaveScreen, QStringLiteral("&Save As"), QKeySequence(QStringLiteral("Ctrl+S")));
    menu->addSeparator();
    addEntry(menu, cmdExit, QStringLiteral("&Exit"), QKeySequence(QStringLiteral("Ctrl+Q")));
    menu->addSeparator();
    for (int i = 0; i < recentIds; ++i) addEntry(menu, cmdFirstRecent + i, {});
    enableMenu(menu);
}

void RAppWindow::buildViewMenu()
{
    QMenu* const menu = menuBar()->addMenu(QStringLiteral("&View"));
    for (const MODEENTRY& entry : modeEntries)
        addEntry(menu, cmdFirstMode + 1 + entry.mode, QString::fromLatin1(entry.text));
    menu->addSeparator();
    for (const LAYOUTENTRY& entry : layoutEntries) addEntry(menu, entry.id, QString::fromLatin1(entry.text));
    menu->addSeparator();
    addEntry(menu, cmdFullRange, QStringLiteral("Full Range (All)"), QKeySequence(QStringLiteral("Ctrl+F")));
    addEntry(menu, cmdRedraw, QStringLiteral("Redraw (All)"), QKeySequence(QStringLiteral("Ctrl+R")));
    enableMenu(menu);
}

// Entries are brought up to date each time their menu opens. In between all are enabled, so that their keys
// reach processMenuItem, which asks the gate itself.
void RAppWindow::enableMenu(QMenu* menu)
{
    connect(menu, &QMenu::aboutToShow, this, [this] {
        fillRecentFiles();
        for (const auto& [id, entry] : actions_)
            entry->setEnabled(session_.isAllowed(id, 0) && !entry->text().isEmpty());
    });
    connect(menu, &QMenu::aboutToHide, this, [this] {
        for (const auto& [id, entry] : actions_) entry->setEnabled(true);
        statusMessage();
    });
}

void RAppWindow::fillRecentFiles()
{
    for (int i = 0; i < recentIds; ++i) {
        const std::string& path = session_.settings.recentFiles[static_cast<std::size_t>(i)];
        QAction* const entry = actions_.at(cmdFirstRecent + i);
        entry->setText(fromUtf8(common::replaceAll(path, "&", "&&")));
        entry->setVisible(!path.empty());
    }
}

void RAppWindow::showMenuHelp(int commandId)
{
    const bool recent = commandId >= cmdFirstRecent && commandId < cmdExit;
    user_.status(commandHelp(recent ? cmdExit - 1 : commandId));
}

QAction* RAppWindow::action(int commandId) const
{
    const auto found = actions_.find(commandId);
    return found == actions_.end() ? nullptr : found->second;
}

bool RAppWindow::isBusy() const
{
    return dispatching_ || session_.state == stateBusy;
}

void RAppWindow::processMenuItem(int commandId)
{
    if (isBusy() || !session_.isAllowed(commandId, 0)) return; // busy also for commands without a rule
    dispatching_ = true;
    const bool toldResult = dispatch(commandId);
    dispatching_ = false;
    if (!toldResult) statusMessage();
}

// True if the status line tells what was done.
bool RAppWindow::dispatch(int commandId)
{
    for (const COLLECTIONCOMMAND& command : collectionCommands) {
        if (command.id == commandId) {
            const bool done = command.run(session_);
            if (done && commandId == cmdNew && onScreen_) bringMapIntoView();
            return done;
        }
    }
    for (const COLLECTIONCOMMAND& command : dataCommands) {
        if (command.id == commandId) return command.run(session_) && commandId == cmdSelectionCriteria;
    }
    constexpr WINDOWCOMMAND windowCommands[] = {{cmdDerivedVariables, &RAppWindow::editDerivedVariables},
                                                {cmdVariablesSettings, &RAppWindow::editVariablesSettings},
                                                {cmdKeyVariables, &RAppWindow::resetKeyVariables},
                                                {cmdGeneralSettings, &RAppWindow::editGeneralSettings},
                                                {cmdMacroEditor, &RAppWindow::editMacro}};
    for (const WINDOWCOMMAND& command : windowCommands) {
        if (command.id == commandId) return (this->*command.run)();
    }
    if (commandId == cmdOpen) openByDialog();
    if (commandId == cmdClose) session_.close(false);
    if (commandId == cmdExecuteBatchFile) executeByDialog();
    if (commandId == cmdSaveScreen) saveScreen();
    if (commandId == cmdExit) requestClose();
    if (commandId == cmdFullRange) static_cast<void>(session_.fullRange(std::nullopt));
    if (commandId == cmdRedraw) session_.invalidate();
    if (commandId >= cmdFirstRecent && commandId < cmdFirstRecent + recentIds) {
        const std::string path =
            session_.settings.recentFiles[static_cast<std::size_t>(commandId - cmdFirstRecent)];
        if (!path.empty()) openFile(path);
    }
    for (const MODEENTRY& entry : modeEntries) {
        if (commandId == cmdFirstMode + 1 + entry.mode) static_cast<void>(session_.setMode(entry.mode));
    }
    for (const LAYOUTENTRY& entry : layoutEntries) {
        if (commandId == entry.id) static_cast<void>(session_.useLayout(entry.text));
    }
    return false;
}

void RAppWindow::openByDialog()
{
    const std::string path = askFile({"Open Collection ...",
                                      "Collection Files (*.var);;NVQ SpreadSheet Files (*.txt);;"
                                      "NVQ4.x List Files (*.o4x);;NVQ3.0 Data Files (*.o3x);;All Files (*)",
                                      session_.collection.directory});
    if (!path.empty()) openFile(path);
}

void RAppWindow::executeByDialog()
{
    const std::string path = askFile({"Execute Batch File ...", "Command Files (*.cmd);;All Files (*)",
                                      session_.installation.userTree + "cmd_files"});
    if (!path.empty()) runCommandFile(path);
}

void RAppWindow::saveScreen()
{
    const std::string path =
        askFile({"Save Screen to File ...", "PNG (*.png);;JPEG (*.jpg);;PostScript (*.eps)",
                 session_.lastFiles.graphics, true});
    if (!path.empty() && session_.exportGraphics(path, -1, 0))
        user_.about("Save Screen to File ...", "Plot written to: " + session_.lastFiles.graphics);
}

} // namespace app
