#pragma once

// The window as on a screen: it draws on its canvas and asks. Whoever makes it ask has to answer, see
// nextdialog.h.

#include <cstdlib>
#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "app/rappwindow.h"
#include "castfile.h"
#include "temporarydirectory.h"

namespace testing_support {

// A home and a folder of its own, with the spreadsheet cast.txt.
class WindowFolder : public testing::Test {
protected:
    WindowFolder()
    {
        std::filesystem::create_directories(folder.file("home"));
        ::setenv("HOME", folder.file("home").c_str(), 1);
        ::setenv("NVQMPTEMP", folder.path().c_str(), 1);
        writeText(folder.file("cast.txt"), castText(3, 5));
    }
    ~WindowFolder() override
    {
        window.reset();
        ::unsetenv("NVQMPTEMP");
        ::unsetenv("NVQMPHOME");
        std::filesystem::current_path("/");
    }
    void makeWindow(bool onScreen)
    {
        window = std::make_unique<app::RAppWindow>(NVQ_BUILD_DIR "/bin/nvqmp", onScreen);
        window->restoreGeometryOfSettings();
        window->buildMenus();
    }
    // By a command file, so that the report of the import needs no answer.
    void openCast() { runLines("open_collection " + folder.file("cast.txt") + "\n"); }
    void runLines(const std::string& lines)
    {
        writeText(folder.file("run.cmd"), lines);
        ASSERT_TRUE(window->runCommandFile(folder.file("run.cmd")));
    }
    std::string status() { return window->statusLabel().text().toStdString(); }
    QImage picture() { return window->canvas().picture().toImage(); }

    const RTemporaryDirectory folder;
    std::unique_ptr<app::RAppWindow> window;
};

// Behind its start.
class WindowFixture : public WindowFolder {
protected:
    WindowFixture()
    {
        ::setenv("NVQMPHOME", NVQ_BUILD_DIR, 1); // nothing is asked
        makeWindow(true);
        EXPECT_TRUE(window->checkInstallation());
        window->paintIdleScreen();
    }
};

} // namespace testing_support
