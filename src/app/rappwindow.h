#pragma once

// The one top-level window: menus, canvas, status line. It owns the session and all that the program does
// goes through it.

#include <map>
#include <string>

#include <QAction>
#include <QLabel>
#include <QMainWindow>
#include <QScrollArea>

#include "app/filekind.h"
#include "app/rcanvas.h"
#include "app/session.h"
#include "app/windowuser.h"

namespace app {

class RAppWindow : public QMainWindow, private RSessionView {
    Q_OBJECT
public:
    // onScreen: somebody can see it. Without a screen nothing is drawn on the canvas and nothing is asked.
    RAppWindow(std::string programPath, bool onScreen);
    ~RAppWindow() override;

    // The start-up behind the construction, in the order of main().
    void restoreGeometryOfSettings();
    void buildMenus();
    [[nodiscard]] bool checkInstallation(); // false after a message
    void paintIdleScreen();
    void loadHistories();
    // Works through the command line; relative paths are against the directory in which the program started.
    void workThrough(std::span<const ARGUMENT> arguments);

    // False if the file can't be read or was left at a line.
    bool runCommandFile(const std::string& path);

    [[nodiscard]] bool isClosed() const { return closed_; } // a close was asked for and accepted
    [[nodiscard]] int exitCode() const { return failed_ ? 1 : 0; }
    // Ends what was opened again behind a close, and keeps the settings.
    void finish();

    [[nodiscard]] RSession& session() { return session_; }
    [[nodiscard]] RCanvas& canvas() { return *canvas_; }
    [[nodiscard]] QLabel& statusLabel() { return *statusLabel_; }
    [[nodiscard]] QLabel& stationLabel() { return *stationLabel_; }
    [[nodiscard]] QLabel& positionLabel() { return *positionLabel_; }
    // The action of a command, null if no menu has it.
    [[nodiscard]] QAction* action(int commandId) const;
    void processMenuItem(int commandId);
    // The path that a drop stands for: the first line, behind "file:"; empty if there is none.
    [[nodiscard]] static std::string droppedPath(const QString& text);
    [[nodiscard]] static bool acceptsDrop(const QString& text);

protected:
    void closeEvent(QCloseEvent* event) override;
    void resizeEvent(QResizeEvent* event) override;
    void keyPressEvent(QKeyEvent* event) override;
    void dragEnterEvent(QDragEnterEvent* event) override;
    void dropEvent(QDropEvent* event) override;

private:
    // What the session asks for.
    void showIdle() override { paintIdleScreen(); }
    void showPicture() override;
    void captionChanged(const std::string& caption) override;
    void statusChanged() override { statusMessage(); }
    void recentFilesChanged() override;
    void requestClose() override;
    [[nodiscard]] int askResolution() override;
    [[nodiscard]] std::optional<CREATIONCHOICE> chooseVariables(const std::string& name) override;
    [[nodiscard]] bool editVariables(const std::string& name, std::vector<collection::VARINFO>& variables,
                                     std::span<const collection::VARINFO> old) override;
    [[nodiscard]] std::string askFile(const FILEQUESTION& question) override;
    [[nodiscard]] std::optional<std::string> askLine(std::string_view title,
                                                     std::string_view prompt) override;
    [[nodiscard]] std::unique_ptr<importing::RImportSettler> importSettler() override;
    [[nodiscard]] std::optional<std::vector<int>>
    chooseOutputVariables(const std::vector<int>& proposed) override;
    [[nodiscard]] bool editCriteria(EDITEDCRITERIA& edited) override;
    void showImported(std::span<const selection::SELECTEDSTATION> stations) override;
    void highlightCruise(const std::string& cruise, const std::string& type);
    void takeHighlightAway();
    void drawDots(std::span<const selection::SELECTEDSTATION> stations, float size, int color);
    [[nodiscard]] std::optional<SETUPSETTINGS> askSetup(const SETUPSETTINGS& proposal,
                                                        const std::string& systemTemp);

    void setDefaultSettings();
    void readSettingsFile();
    void writeSettingsFile();
    void applyFonts();
    void buildStatusBar();
    void chooseDevice();
    void statusMessage();
    void fillStatusBar();
    void redraw(bool full);
    void addEntry(QMenu* menu, int commandId, const QString& text, const QKeySequence& key = {});
    void buildFileMenu();
    void buildCommandMenus();
    void buildViewMenu();
    void enableMenu(QMenu* menu);
    void showMenuHelp(int commandId);
    void fillRecentFiles();
    [[nodiscard]] bool dispatch(int commandId);
    [[nodiscard]] bool isBusy() const; // a command runs, or a long operation: no other one may begin
    // deriveddialogs.cpp; true if the status line tells what was done.
    [[nodiscard]] bool editDerivedVariables();
    [[nodiscard]] bool editVariablesSettings();
    [[nodiscard]] bool resetKeyVariables();
    [[nodiscard]] bool editGeneralSettings();
    [[nodiscard]] bool editMacro();
    void openByDialog();
    void executeByDialog();
    void saveScreen();
    bool openFile(const std::string& path); // false, after a message
    void bringMapIntoView();

    const std::string programPath_;
    const bool onScreen_;
    std::string startDirectory_;
    RSettingsFile settingsFile_;
    RWindowUser user_;
    RSession session_;
    QScrollArea* scrollView_ = nullptr;
    RCanvas* canvas_ = nullptr;
    QLabel *statusLabel_ = nullptr, *stationLabel_ = nullptr, *positionLabel_ = nullptr;
    std::map<int, QAction*> actions_;
    bool dispatching_ = false, drawing_ = false, highlighted_ = false;
    bool closed_ = false, failed_ = false;
};

// The single window, null before it is made and after it has gone.
[[nodiscard]] RAppWindow* mainWindow();

} // namespace app
