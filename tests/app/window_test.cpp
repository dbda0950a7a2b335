#include "app/rappwindow.h"

#include <filesystem>

#include <QApplication>
#include <QCloseEvent>
#include <QDragEnterEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QMouseEvent>
#include <QProgressBar>
#include <QStatusBar>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "app/position.h"
#include "common/files.h"
#include "windowfixture.h"

namespace {

namespace fs = std::filesystem;
using app::RAppWindow;
using testing_support::writeText;
using Window = testing_support::WindowFixture;

QString text(const char* utf8)
{
    return QString::fromUtf8(utf8);
}

TEST_F(Window, StartsIdle)
{
    EXPECT_EQ(app::mainWindow(), window.get());
    EXPECT_EQ(window->windowTitle(), text("NVQ"));
    EXPECT_EQ(window->objectName(), text("main window"));
    EXPECT_EQ(status(), "Choose File>Open to open or File>New to create a collection.");
    EXPECT_EQ(window->session().state, app::stateIdle);
    EXPECT_TRUE(window->session().stale);
    EXPECT_EQ(window->session().runMode, app::interactiveRun);
    EXPECT_FALSE(picture().isNull());
}

TEST_F(Window, HasTheStoredSize)
{
    EXPECT_EQ(window->size(), QSize(620, 460));
    EXPECT_EQ(window->pos(), QPoint(10, 10));
}

TEST_F(Window, CanvasHasOneScaleAndAtLeastTheReferenceSize)
{
    for (const QSize size : {QSize(1900, 1000), QSize(800, 1200), QSize(100, 100), QSize(5000, 800)}) {
        const graphics::DEVICE device = app::RCanvas::deviceFor(size);
        EXPECT_GE(device.widthCm, 29.0f);
        EXPECT_GE(device.heightCm, 20.2f);
        EXPECT_NEAR(device.widthPx, device.widthCm * device.pixelsPerCm, 1);
        EXPECT_NEAR(device.heightPx, device.heightCm * device.pixelsPerCm, 1);
    }
    const graphics::DEVICE device = app::RCanvas::deviceFor({1900, 1000});
    EXPECT_NEAR(device.heightCm, 20.2f, 1e-3);
    EXPECT_NEAR(device.widthPx, 1900, 1);
}

TEST_F(Window, OpenedCollectionIsDrawnAndNamed)
{
    openCast();
    EXPECT_EQ(window->windowTitle().toStdString(), "NVQ - " + folder.file("cast.var"));
    EXPECT_FALSE(window->session().stale);
    EXPECT_EQ(status(), "Press 'p' to plot current station.");
    const QImage image = picture();
    int colored = 0;
    for (int y = 0; y < image.height(); y += 3) {
        for (int x = 0; x < image.width(); x += 3)
            colored += image.pixelColor(x, y) != QColor(Qt::white) ? 1 : 0;
    }
    EXPECT_GT(colored, 500);
}

TEST_F(Window, ModeSwitchChangesThePicture)
{
    openCast();
    const QImage before = picture();
    window->processMenuItem(app::cmdFirstMode + 2); // SCATTER
    EXPECT_EQ(window->session().setup.mode, graphics::modeScatter);
    EXPECT_NE(picture(), before);
    EXPECT_EQ(status(), "Press 'p' or double-click on the map to plot.");
    window->processMenuItem(app::cmdFirstMode); // MAP
    EXPECT_EQ(window->session().setup.mode, graphics::modeMap);
    EXPECT_EQ(status(), "Ready");
}

TEST_F(Window, ExportOfAPictureLeavesTheCanvasAlone)
{
    openCast();
    window->processMenuItem(app::cmdFirstMode + 2);
    const QImage before = picture();
    runLines("export_graphics -1," + folder.file("a.png") + ",300\n");
    window->processMenuItem(app::cmdRedraw);
    EXPECT_EQ(picture(), before);
}

TEST_F(Window, RefusedCommandDoesNothing)
{
    window->processMenuItem(app::cmdFirstMode + 2);
    window->processMenuItem(app::cmdRedraw);
    window->processMenuItem(app::cmdClose);
    EXPECT_EQ(window->session().setup.mode, graphics::modeStation);
}

TEST_F(Window, MenusAskTheGateWhenTheyOpen)
{
    QMenu* const file = window->menuBar()->actions().first()->menu();
    Q_EMIT file->aboutToShow();
    EXPECT_TRUE(window->action(app::cmdOpen)->isEnabled());
    EXPECT_FALSE(window->action(app::cmdClose)->isEnabled());
    EXPECT_FALSE(window->action(app::cmdSaveScreen)->isEnabled());
    EXPECT_FALSE(window->action(app::cmdFirstRecent)->isVisible());
    Q_EMIT file->aboutToHide();
    openCast();
    Q_EMIT file->aboutToShow();
    EXPECT_TRUE(window->action(app::cmdClose)->isEnabled());
    EXPECT_TRUE(window->action(app::cmdSaveScreen)->isEnabled());
    EXPECT_FALSE(window->action(app::cmdFirstMode + 1)->isEnabled()); // already STATION
    EXPECT_TRUE(window->action(app::cmdFirstMode + 2)->isEnabled());
    EXPECT_EQ(window->action(app::cmdFirstRecent)->text().toStdString(), folder.file("cast.var"));
    Q_EMIT file->aboutToHide();
    EXPECT_TRUE(window->action(app::cmdFirstMode + 1)->isEnabled()); // keys reach the gate again
}

TEST_F(Window, HighlightedEntryShowsItsHelp)
{
    window->action(app::cmdExit)->hover();
    EXPECT_EQ(status(), "Exits NVQ.");
    window->action(app::cmdFirstRecent)->hover();
    EXPECT_EQ(status(), "Opens specified NVQ collection or netCDF file.");
}

TEST_F(Window, RecentFileOpens)
{
    openCast();
    window->processMenuItem(app::cmdClose);
    EXPECT_FALSE(window->session().collection.isOpen);
    EXPECT_EQ(window->windowTitle(), text("NVQ"));
    window->processMenuItem(app::cmdFirstRecent);
    EXPECT_TRUE(window->session().collection.isOpen);
}

TEST_F(Window, CommandFileWithoutQuitLeavesTheWindowOpen)
{
    openCast();
    EXPECT_FALSE(window->isClosed());
    EXPECT_EQ(window->session().runMode, app::interactiveRun);
    EXPECT_EQ(window->exitCode(), 0);
}

TEST_F(Window, QuitClosesAndWritesTheSettings)
{
    openCast();
    runLines("quit\n");
    EXPECT_TRUE(window->isClosed());
    EXPECT_FALSE(window->isVisible());
    EXPECT_FALSE(window->session().collection.isOpen);
    EXPECT_TRUE(common::fileExists(folder.file("cast.cfl")));
    EXPECT_TRUE(common::fileExists(folder.file("home/.nvq")));
}

TEST_F(Window, CloseWhileBusyIsRefusedAndAsksToAbort)
{
    openCast();
    window->session().state = app::stateBusy;
    QCloseEvent event;
    QApplication::sendEvent(window.get(), &event);
    EXPECT_FALSE(event.isAccepted());
    EXPECT_TRUE(window->session().collection.isOpen);
    window->session().state = app::stateReady;
}

TEST_F(Window, EscapeOutsideALongOperationIsForgotten)
{
    openCast();
    QKeyEvent escape(QEvent::KeyPress, Qt::Key_Escape, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &escape);
    runLines("export_graphics 0," + folder.file("a.png") + ",30\n");
    EXPECT_TRUE(common::fileExists(folder.file("a.png")));
}

TEST_F(Window, BusyProgramTakesNoCommandAtAll)
{
    openCast();
    window->session().state = app::stateBusy;
    window->processMenuItem(app::cmdExecuteBatchFile); // would open a dialog
    window->processMenuItem(app::cmdExit);
    EXPECT_FALSE(window->isClosed());
    window->session().state = app::stateReady;
}

TEST_F(Window, BadLineGivesAnExitCode)
{
    writeText(folder.file("bad.cmd"), "open_collection " + folder.file("none.var") + "\n");
    testing::internal::CaptureStderr();
    EXPECT_FALSE(window->runCommandFile(folder.file("bad.cmd")));
    EXPECT_THAT(testing::internal::GetCapturedStderr(),
                testing::HasSubstr("bad.cmd:1: open_collection failed"));
    EXPECT_EQ(window->exitCode(), 1);
}

TEST_F(Window, StatusFieldsShareTheWidth)
{
    window->resize(1000, 600);
    QApplication::processEvents();
    EXPECT_GT(window->positionLabel().width(), 100);
    EXPECT_GT(window->stationLabel().width(), 100);
    EXPECT_GT(window->statusLabel().width(), 400);
    window->resize(200, 200);
    QApplication::processEvents();
    EXPECT_LE(window->positionLabel().width(), 206 * 20 / 100);
}

TEST_F(Window, PositionUnderTheMouse)
{
    openCast();
    window->processMenuItem(app::cmdFirstMode + 2);
    graphics::GRAPHICSSETUP& setup = window->session().setup;
    const auto [left, top, right, bottom] = setup.window(1).plotRect;
    ASSERT_LT(left, right);
    QMouseEvent move(QEvent::MouseMove, QPointF(left, bottom), QPointF(left, bottom), Qt::NoButton,
                     Qt::NoButton, Qt::NoModifier);
    QApplication::sendEvent(&window->canvas(), &move);
    const std::string shown = window->positionLabel().text().toStdString();
    EXPECT_EQ(shown,
              common::format("Win 1:  %g/%g", double(setup.window(1).xMin), double(setup.window(1).yMin)));
    const auto map = setup.map.plotRect;
    const QPoint middle((map[0] + map[2]) / 2, (map[1] + map[3]) / 2);
    EXPECT_THAT(app::positionText(setup, window->session().collection, middle),
                testing::StartsWith("Map:  "));
    EXPECT_EQ(app::positionText(setup, window->session().collection, {-5, -5}), "");
}

TEST_F(Window, DroppedCollectionOpens)
{
    openCast();
    window->processMenuItem(app::cmdClose);
    QMimeData data;
    data.setText(QString::fromStdString("file://" + folder.file("cast.var") + "\r\nfile:///other.var\r\n"));
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &enter);
    EXPECT_TRUE(enter.isAccepted());
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QApplication::sendEvent(window.get(), &drop);
    EXPECT_TRUE(window->session().collection.isOpen);
    EXPECT_EQ(window->windowTitle().toStdString(), "NVQ - " + folder.file("cast.var"));
}

TEST_F(Window, DropOfSomethingElseIsNotTaken)
{
    QMimeData data;
    data.setText(text("file:///picture.jpg"));
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    enter.ignore();
    QApplication::sendEvent(window.get(), &enter);
    EXPECT_FALSE(enter.isAccepted());
}

TEST(Drop, AcceptsTheKnownKinds)
{
    for (const char* const path : {"file:/a.var", "x.txt", "a.o4x", "a.nc", "a.cdf", "a.zip", "a.gz"})
        EXPECT_TRUE(RAppWindow::acceptsDrop(text(path))) << path;
    EXPECT_FALSE(RAppWindow::acceptsDrop(text("file:/a.pdf")));
    EXPECT_FALSE(RAppWindow::acceptsDrop(text("")));
}

TEST(Drop, OnlyTheFirstOfSeveralLines)
{
    EXPECT_EQ(RAppWindow::droppedPath(text("file:///data/a.var\r\nfile:///data/b.var\r\n")), "/data/a.var");
    EXPECT_EQ(RAppWindow::droppedPath(text("file:///data/a.var\nfile:///data/b.var")), "/data/a.var");
}

TEST(Drop, EncodedCharactersAreDecoded)
{
    EXPECT_EQ(RAppWindow::droppedPath(text("file:///data/my%20cast%7c.txt")), "/data/my cast|.txt");
    EXPECT_EQ(RAppWindow::droppedPath(text("look: file:/data/a.var")), "/data/a.var");
    EXPECT_EQ(RAppWindow::droppedPath(text("/data/a.var")), "");
}

} // namespace
