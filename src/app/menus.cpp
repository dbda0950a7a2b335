// The menus of the main window, and what their entries do.

#include <QFileDialog>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>

#include "app/commandhelp.h"
#include "app/rappwindow.h"
#include "common/files.h"
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

QString fromUtf8(const std::string& text)
{
    return QString::fromStdString(text);
}

// The chosen name with the extension of the chosen filter, if it has none of its own.
std::string withFilterExtension(const QString& name, const QString& filter)
{
    std::string path = name.toStdString();
    if (!common::splitPath(path).extension.empty()) return path;
    const qsizetype star = filter.indexOf(QLatin1String("*."));
    const qsizetype end = filter.indexOf(QLatin1Char(')'), star);
    return star < 0 ? path : path + filter.mid(star + 1, end - star - 1).toStdString();
}

} // namespace

void RAppWindow::addEntry(QMenu* menu, int commandId, const QString& text, const QKeySequence& key)
{
    QAction* const entry = menu->addAction(text);
    entry->setShortcut(key);
    connect(entry, &QAction::triggered, this, [this, commandId] { processMenuItem(commandId); });
    connect(entry, &QAction::hovered, this, [this, commandId] { showMenuHelp(commandId); });
    actions_[commandId] = entry;
}

void RAppWindow::buildMenus()
{
    menuBar()->clear();
    actions_.clear();
    buildFileMenu();
    buildViewMenu();
}

void RAppWindow::buildFileMenu()
{
    QMenu* const menu = menuBar()->addMenu(QStringLiteral("&File"));
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

void RAppWindow::processMenuItem(int commandId)
{
    const bool busy = dispatching_ || session_.state == stateBusy; // also for commands without a rule
    if (busy || !session_.isAllowed(commandId, 0)) return;
    dispatching_ = true;
    dispatch(commandId);
    dispatching_ = false;
    statusMessage();
}

void RAppWindow::dispatch(int commandId)
{
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
}

void RAppWindow::openByDialog()
{
    const QString name = QFileDialog::getOpenFileName(
        this, QStringLiteral("Open Collection ..."), fromUtf8(session_.collection.directory),
        QStringLiteral("Collection Files (*.var);;NVQ SpreadSheet Files (*.txt);;All Files (*)"));
    if (!name.isEmpty()) openFile(name.toStdString());
}

void RAppWindow::executeByDialog()
{
    const QString name = QFileDialog::getOpenFileName(this, QStringLiteral("Execute Batch File ..."),
                                                      fromUtf8(session_.installation.userTree + "cmd_files"),
                                                      QStringLiteral("Command Files (*.cmd);;All Files (*)"));
    if (!name.isEmpty()) runCommandFile(name.toStdString());
}

void RAppWindow::saveScreen()
{
    QString filter;
    const QString name = QFileDialog::getSaveFileName(
        this, QStringLiteral("Save Screen to File ..."), fromUtf8(session_.lastFiles.graphics),
        QStringLiteral("PNG (*.png);;JPEG (*.jpg);;PostScript (*.eps)"), &filter);
    if (name.isEmpty()) return;
    if (session_.exportGraphics(withFilterExtension(name, filter), -1, 0))
        user_.about("Save Screen to File ...", "Plot written to: " + session_.lastFiles.graphics);
}

} // namespace app
