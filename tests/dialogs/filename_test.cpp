#include "dialogs/filename.h"

#include <fstream>

#include <QFileDialog>

#include <gtest/gtest.h>

#include "nextdialog.h"
#include "temporarydirectory.h"

namespace {

using dialogs::withFilterExtension;
using testing_support::answerNext;
using testing_support::withNext;

const QString pictures = QStringLiteral("PNG (*.png);;JPEG (*.jpg);;PostScript (*.eps)");

std::string extended(const char* name, const char* chosen, const QString& filters)
{
    return withFilterExtension(QString::fromUtf8(name), QString::fromUtf8(chosen), filters).toStdString();
}

TEST(FilterExtension, OfTheChosenFilterIsAdded)
{
    EXPECT_EQ(extended("/a/plot", "JPEG (*.jpg)", pictures), "/a/plot.jpg");
    EXPECT_EQ(extended("/a.b/plot", "PNG (*.png)", pictures), "/a.b/plot.png");
}

TEST(FilterExtension, NameWithAPointIsStillANameWithoutExtension)
{
    EXPECT_EQ(
        extended("/a/cruise.2010", "Collection Name (*.var)", QStringLiteral("Collection Name (*.var)")),
        "/a/cruise.2010.var");
}

TEST(FilterExtension, OneOfAnotherFilterIsKept)
{
    EXPECT_EQ(extended("plot.eps", "PNG (*.png)", pictures), "plot.eps");
    EXPECT_EQ(extended("plot.PNG", "PNG (*.png)", pictures), "plot.PNG");
}

TEST(FilterExtension, FilterOfAllFilesAddsNothing)
{
    EXPECT_EQ(extended("plot", "All Files (*)", QStringLiteral("PNG (*.png);;All Files (*)")), "plot");
    EXPECT_EQ(extended("plot", "", QString()), "plot");
}

class FileName : public testing::Test {
protected:
    QString path(const char* name) { return QString::fromStdString(folder.file(name)); }
    void make(const char* name) { std::ofstream(folder.file(name)) << "x"; }
    // Leaves the next dialog with this name and filter.
    void choose(const char* name, const char* filter = nullptr)
    {
        withNext<QFileDialog>([this, name, filter](QFileDialog& dialog) {
            seen = dialog.windowTitle().toStdString();
            proposed = dialog.selectedFiles().value(0).toStdString();
            if (filter) dialog.selectNameFilter(QLatin1StringView(filter));
            testing_support::enterFile(dialog, path(name));
        });
    }

    const testing_support::RTemporaryDirectory folder;
    std::string seen, proposed;
};

TEST_F(FileName, SaveProposesAndAddsTheExtension)
{
    choose("plot", "JPEG (*.jpg)");
    EXPECT_EQ(dialogs::askSaveName(nullptr, QStringLiteral("Save ..."), pictures, path("copy_of_a"), true),
              path("plot.jpg"));
    EXPECT_EQ(seen, "Save ...");
    EXPECT_EQ(proposed, folder.file("copy_of_a"));
}

TEST_F(FileName, ReplacingAFileIsAskedAboutItsWholeName)
{
    make("plot.png");
    choose("plot");
    testing_support::BOX box;
    answerNext("&Yes", &box);
    EXPECT_EQ(dialogs::askSaveName(nullptr, QStringLiteral("Save ..."), pictures, {}, true),
              path("plot.png"));
    EXPECT_EQ(box.title, "Save ...");
    EXPECT_EQ(box.text, folder.file("plot.png") + " already exists.\n\nReplace it?");
}

TEST_F(FileName, RefusedReplacingAsksForAnotherName)
{
    make("plot.png");
    choose("plot");
    withNext<QMessageBox>([this](QMessageBox& box) {
        choose("other");
        box.defaultButton()->click();
    });
    EXPECT_EQ(dialogs::askSaveName(nullptr, QStringLiteral("Save ..."), pictures, {}, true),
              path("other.png"));
    EXPECT_EQ(proposed, folder.file("plot.png")); // the refused one
}

TEST_F(FileName, OpenGivesAnExistingFile)
{
    make("a.var");
    choose("a.var");
    EXPECT_EQ(dialogs::askOpenName(nullptr, QStringLiteral("Open ..."), QStringLiteral("All (*.var)"),
                                   path("none/b.var")),
              path("a.var"));
    EXPECT_EQ(seen, "Open ...");
}

TEST_F(FileName, FileThatMayBeThereIsTakenUnasked)
{
    make("plot.png");
    choose("plot");
    EXPECT_EQ(dialogs::askSaveName(nullptr, QStringLiteral("Save ..."), pictures, {}, false),
              path("plot.png"));
}

TEST_F(FileName, CancelGivesNothing)
{
    for (int i = 0; i < 2; ++i) {
        withNext<QFileDialog>([](QFileDialog& dialog) { dialog.reject(); });
        const QString caption = QStringLiteral("t"), start = path("a.png");
        EXPECT_TRUE((i == 0 ? dialogs::askOpenName(nullptr, caption, pictures, start)
                            : dialogs::askSaveName(nullptr, caption, pictures, start, true))
                        .isEmpty());
    }
}

} // namespace
