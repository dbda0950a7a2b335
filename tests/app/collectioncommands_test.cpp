// The commands on the open collection as a whole, by the session.

#include "sessionfixture.h"

#include "collection/collectionlock.h"
#include "collection/journal.h"
#include "filesizelimit.h"

namespace {

namespace fs = std::filesystem;
using app::OpenResult;
using common::Answer;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing_support::castText;
using testing_support::writeText;

constexpr auto suffixes = std::to_array<const char*>({".var", ".hob", ".dob", ".inv", ".cid", ".log"});

class Commands : public testing_support::Session {
protected:
    std::string files(const std::string& name) const
    {
        return read(name + ".var") + "|" + read(name + ".hob") + "|" + read(name + ".dob");
    }
    // Files of the folder whose names begin with "name.".
    std::vector<std::string> family(const std::string& name) const
    {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            const std::string file = entry.path().filename().string();
            if (file.starts_with(name + ".")) found.push_back(file);
        }
        return found;
    }
};

class InteractiveCommands : public testing_support::InteractiveSession {};

// --- copy

TEST_F(Commands, CopyIsOpenAndWhole)
{
    openCast();
    writeText(file("cast.info"), "about it");
    writeText(file("cast.idv"), "Depth [m]=1\n");
    writeText(file("cast.cfg"), "default");
    const std::string hob = read("cast.hob"), dob = read("cast.dob");
    ASSERT_TRUE(session.copyCollection(file("two.var")));
    EXPECT_EQ(session.collection.path, file("two"));
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_TRUE(session.collection.writable);
    EXPECT_EQ(view.caption, "NVQ - " + file("two.var"));
    EXPECT_EQ(session.settings.recentFiles[0], file("two.var"));
    EXPECT_EQ(session.settings.recentFiles[1], file("cast.var"));
    EXPECT_EQ(read("two.hob"), hob);
    EXPECT_EQ(read("two.dob"), dob);
    EXPECT_THAT(read("two.var"), HasSubstr("Collection: two\n"));
    EXPECT_EQ(read("two.info"), "about it");
    EXPECT_EQ(read("two.idv"), "Depth [m]=1\n");
    EXPECT_THAT(read("two.log"), HasSubstr("IMPORT"));
    EXPECT_FALSE(common::fileExists(file("two.cfg")));
    EXPECT_THAT(user->notes, Contains(file("cast.var") + ": copied to " + file("two.var")));
    EXPECT_THAT(family("cast"), Not(Contains("cast.lck")));
    session.close(true);
    EXPECT_EQ(open("cast.var"), OpenResult::ok);
}

TEST_F(Commands, CopyIsRelativeToTheCurrentDirectoryAndItsNameLosesDividers)
{
    openCast();
    fs::create_directories(file("sub"));
    ASSERT_TRUE(session.copyCollection("sub/a b"));
    EXPECT_EQ(session.collection.path, file("sub/a_b"));
}

TEST_F(Commands, CopyOntoItselfIsRefused)
{
    openCast();
    fs::create_directory_symlink(folder.path(), file("link"));
    const std::string before = files("cast");
    for (const std::string& target :
         {file("cast.var"), file("cast"), file("link/cast"), std::string("./cast")}) {
        user->messages.clear();
        EXPECT_FALSE(session.copyCollection(target)) << target;
        ASSERT_EQ(user->messages.size(), 1u) << target;
        EXPECT_THAT(user->messages[0], HasSubstr("is the open collection itself")) << target;
        EXPECT_FALSE(session.moveCollection(target)) << target;
    }
    EXPECT_TRUE(session.collection.isOpen);
    EXPECT_TRUE(session.collection.writable);
    EXPECT_EQ(files("cast"), before);
}

TEST_F(Commands, CopyThatFailsReopensTheSource)
{
    openCast();
    fs::create_directories(file("two.hob/inside"));
    user->messages.clear();
    EXPECT_FALSE(session.copyCollection(file("two")));
    EXPECT_THAT(user->messages, Contains(testing::StartsWith(
                                    "Copy Collection: Could not copy collection!\n\nIf it is currently used "
                                    "by another application, close it and try again.")));
    EXPECT_TRUE(session.collection.isOpen);
    EXPECT_TRUE(session.collection.writable);
    EXPECT_EQ(session.collection.path, file("cast"));
    EXPECT_FALSE(common::fileExists(file("two.var")));
}

TEST_F(Commands, CopyOntoACollectionThatIsOpenElsewhereIsRefused)
{
    openCast();
    ASSERT_TRUE(session.copyCollection(file("two")));
    session.close(true);
    openCast();
    collection::RCollectionLock theirs;
    ASSERT_TRUE(theirs.acquire(file("two")));
    const std::string before = files("two");
    user->messages.clear();
    EXPECT_FALSE(session.copyCollection(file("two")));
    EXPECT_THAT(user->messages, Contains(HasSubstr("Could not copy collection!")));
    EXPECT_EQ(files("two"), before);
    EXPECT_EQ(session.collection.path, file("cast"));
    EXPECT_TRUE(session.collection.isOpen);
}

TEST_F(Commands, CopyReplacesAnOlderCollection)
{
    writeText(file("two.txt"), castText(2, 3));
    ASSERT_EQ(open("two.txt"), OpenResult::ok);
    session.close(true);
    openCast();
    ASSERT_TRUE(session.copyCollection(file("two")));
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_EQ(read("two.hob"), read("cast.hob"));
}

TEST_F(InteractiveCommands, UserIsAskedBeforeACopyReplacesACollection)
{
    writeText(file("two.txt"), castText(2, 3));
    ASSERT_EQ(open("two.txt"), OpenResult::ok);
    session.close(true);
    openCast();
    user->answers = {Answer::no};
    EXPECT_FALSE(session.copyCollection(file("two")));
    EXPECT_EQ(session.collection.path, file("cast"));
    user->answers = {Answer::yes};
    EXPECT_TRUE(session.copyCollection(file("two")));
}

TEST_F(InteractiveCommands, TargetIsAskedForWithAProposal)
{
    openCast();
    EXPECT_FALSE(session.copyCollection({}));
    EXPECT_THAT(view.asked, ElementsAre("Select Target Collection Name ...|Collection Name (*.var)|" +
                                        file("copy_of_cast.var")));
    view.answer = file("copy_of_cast.var");
    EXPECT_TRUE(session.copyCollection({}));
    EXPECT_EQ(session.collection.name, "copy_of_cast");
}

TEST_F(Commands, FullDiskFailsACopy)
{
    openCast();
    {
        const testing_support::RFileSizeLimit limit(200);
        EXPECT_FALSE(session.copyCollection(file("two")));
    }
    EXPECT_THAT(user->messages, Contains(HasSubstr("Could not copy collection!\n\nIf it is currently used by "
                                                   "another application, close it and try again.")));
    EXPECT_THAT(family("two"), IsEmpty());
    EXPECT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 4);
}

// --- move

TEST_F(Commands, MovedCollectionIsOpenAtItsNewPlace)
{
    openCast();
    writeText(file("cast.info"), "about it");
    const std::string hob = read("cast.hob"), dob = read("cast.dob");
    fs::create_directories(file("sub"));
    ASSERT_TRUE(session.moveCollection(file("sub/moved")));
    EXPECT_EQ(session.collection.path, file("sub/moved"));
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_EQ(read("sub/moved.hob"), hob);
    EXPECT_EQ(read("sub/moved.dob"), dob);
    EXPECT_EQ(read("sub/moved.info"), "about it");
    EXPECT_THAT(read("sub/moved.var"), HasSubstr("Collection: moved\n"));
    EXPECT_THAT(family("cast"), ElementsAre("cast.txt"));
    EXPECT_EQ(session.settings.recentFiles[0], file("sub/moved.var"));
    for (const std::string& recent : session.settings.recentFiles) EXPECT_NE(recent, file("cast.var"));
    EXPECT_THAT(user->notes, Contains(file("cast.var") + ": moved to " + file("sub/moved.var")));
}

TEST_F(Commands, MoveThatFailsReopensTheSource)
{
    openCast();
    fs::create_directories(file("two.hob/inside"));
    user->messages.clear();
    EXPECT_FALSE(session.moveCollection(file("two")));
    EXPECT_THAT(user->messages, Contains(HasSubstr("Could not rename collection!")));
    EXPECT_EQ(session.collection.path, file("cast"));
    EXPECT_TRUE(session.collection.writable);
    EXPECT_EQ(session.collection.stationCount, 4);
}

// --- delete

TEST_F(Commands, DeletedCollectionLeavesNothing)
{
    openCast();
    writeText(file("cast.info"), "about it");
    writeText(file("cast.cfg"), "default");
    user->messages.clear();
    ASSERT_TRUE(session.deleteCollection());
    EXPECT_THAT(user->messages,
                ElementsAre("Confirm Deletion ...: Really want to delete current collection?",
                            "Delete Collection: " + file("cast.var") +
                                " deleted!\n\nNote that associated .cfg and .sec files\nmust be deleted "
                                "manually."));
    EXPECT_THAT(family("cast"), ElementsAre("cast.txt"));
    EXPECT_FALSE(session.collection.isOpen);
    EXPECT_EQ(session.state, app::stateIdle);
    EXPECT_EQ(view.caption, "NVQ");
    EXPECT_EQ(session.settings.recentFiles[0], "");
}

TEST_F(InteractiveCommands, DeletionThatIsNotConfirmedDoesNothing)
{
    openCast();
    for (const Answer answer : {Answer::no, Answer::cancel}) {
        user->answers = {answer};
        EXPECT_FALSE(session.deleteCollection());
        EXPECT_TRUE(session.collection.isOpen);
    }
    EXPECT_TRUE(common::fileExists(file("cast.hob")));
}

TEST_F(Commands, DeletionOfACollectionWhoseHeadersCannotGoRemovesNothing)
{
    openCast();
    const std::string path = session.collection.path;
    // A folder in the place of the file can't be unlinked, by any user.
    fs::rename(file("cast.hob"), file("kept"));
    fs::create_directories(file("cast.hob"));
    user->messages.clear();
    EXPECT_FALSE(session.deleteCollection());
    EXPECT_THAT(user->messages,
                Contains("Delete Collection: Could not delete collection!\n\nIf it is currently used by "
                         "another application, close it and try again."));
    for (const char* const suffix : {".var", ".dob", ".inv", ".log"})
        EXPECT_TRUE(common::fileExists(path + suffix)) << suffix;
}

// --- sort and condense

TEST_F(Commands, SortingPutsStationsInOrderAndTellsIt)
{
    writeText(file("mixed.txt"), castText(12, 3));
    ASSERT_EQ(open("mixed.txt"), OpenResult::ok);
    ASSERT_EQ(session.plotStation(std::nullopt), "");
    session.collection.currentStation = 3;
    const std::string log = read("mixed.log");
    ASSERT_TRUE(session.sortAndCondense());
    EXPECT_EQ(session.collection.stationCount, 12);
    EXPECT_EQ(session.collection.selectedStationCount, 12);
    EXPECT_EQ(session.collection.plottedStationCount, 0);
    EXPECT_EQ(session.collection.currentStation, 0);
    EXPECT_TRUE(session.stale);
    EXPECT_TRUE(session.collection.writable);
    EXPECT_THAT(read("mixed.log"), HasSubstr("SORTCONDENSE"));
    EXPECT_THAT(user->notes,
                Contains(HasSubstr("mixed.var: 12 stations sorted and condensed, 0.00 MB freed")));
    EXPECT_TRUE(session.checkCollection({}));
}

TEST_F(Commands, SortingKeepsTheViewAndTheCriteria)
{
    openCast();
    ASSERT_EQ(session.setMode(graphics::modeScatter), "");
    ASSERT_EQ(session.setWindow(1, "Salinity", "Temperature", "Depth"), "");
    ASSERT_EQ(session.setRange(1, 1, 3, 17), "");
    ASSERT_EQ(session.setDomain(-40, 0, -52, -30, {}, {}), "");
    ASSERT_EQ(session.collection.selectedStationCount, 3);
    ASSERT_TRUE(session.sortAndCondense());
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_EQ(session.collection.selectedStationCount, 3);
    EXPECT_EQ(session.setup.mode, graphics::modeScatter);
    EXPECT_FLOAT_EQ(session.setup.window(1).yMax, 17);
}

TEST_F(Commands, TargetFilesOfSomebodyElseAreToldAndLeftAlone)
{
    openCast();
    writeText(file("TRG.hob"), "theirs");
    const std::string before = files("cast");
    user->messages.clear();
    EXPECT_FALSE(session.sortAndCondense());
    EXPECT_EQ(user->messages.size(), 1u);
    EXPECT_EQ(read("TRG.hob"), "theirs");
    EXPECT_EQ(files("cast"), before);
    EXPECT_TRUE(session.collection.isOpen);
}

// --- another list of variables

collection::VARINFO variable(const std::string& label, int old)
{
    collection::VARINFO made = collection::emptyVariable(1);
    collection::setLabel(made, label);
    made.assocSource = old;
    return made;
}

TEST_F(Commands, ChangedVariablesReachFilesAndWindows)
{
    openCast();
    ASSERT_EQ(session.setMode(graphics::modeScatter), "");
    ASSERT_EQ(session.setWindow(1, "Salinity", "Temperature", std::nullopt), "");
    ASSERT_EQ(session.setWindow(2, "Salinity", "-Depth", "Temperature"), "");
    ASSERT_EQ(session.setRange(2, 0, 33, 37), "");
    ASSERT_TRUE(session.changeVariables({collection::emptyVariable(0), variable("Depth [m]", 1),
                                         variable("Oxygen [ml/l]", 0), variable("Salt [psu]", 3)}));
    EXPECT_EQ(session.collection.variableCount, 3);
    EXPECT_EQ(session.collection.totalVariableCount, 3);
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_THAT(read("cast.var"), HasSubstr("Oxygen [ml/l]"));
    EXPECT_THAT(read("cast.log"), HasSubstr("CHANGEVARSET"));
    EXPECT_EQ(session.setup.window(2).xVar, 3);
    EXPECT_EQ(session.setup.window(2).yVar, -1);
    EXPECT_EQ(session.setup.window(2).zVar, 0); // Temperature is gone
    EXPECT_FLOAT_EQ(session.setup.window(2).xMax, 37);
    for (const int axis : {session.setup.window(1).xVar, session.setup.window(1).yVar})
        EXPECT_LE(std::abs(axis), 3); // the defaults
    EXPECT_THAT(user->notes, Contains(file("cast.var") + ": has 3 variables now, had 3"));
    EXPECT_TRUE(session.checkCollection({}));
    ASSERT_TRUE(session.exportGraphics(file("a.png"), -1, 20));
    ASSERT_TRUE(session.exportSpreadsheet(file("out.txt")));
    EXPECT_THAT(read("out.txt"), HasSubstr("\t34.1\t8\n"));
}

TEST_F(InteractiveCommands, VariablesAreEditedWhereNoneAreGiven)
{
    openCast();
    view.acceptEdit = false;
    EXPECT_FALSE(session.changeVariables({}));
    EXPECT_EQ(view.oldVariables, 4); // with the one that is none
    EXPECT_THAT(view.asked, ElementsAre("edit cast"));
    view.acceptEdit = true;
    view.edited = {collection::emptyVariable(0), variable("Depth [m]", 1), variable("Salinity [psu]", 3)};
    EXPECT_TRUE(session.changeVariables({}));
    EXPECT_EQ(session.collection.variableCount, 2);
}

TEST_F(Commands, FirstVariableWithoutDataLeavesTheCollectionAsItWas)
{
    openCast();
    const std::string before = files("cast");
    user->messages.clear();
    EXPECT_FALSE(session.changeVariables({collection::emptyVariable(0), variable("New [1]", 0)}));
    EXPECT_EQ(user->messages.size(), 1u);
    EXPECT_EQ(files("cast"), before);
    EXPECT_EQ(session.collection.variableCount, 3);
    EXPECT_TRUE(session.collection.isOpen);
    EXPECT_TRUE(session.checkCollection({}));
}

// --- deletions

TEST_F(Commands, DeletionOfTheSelectedStations)
{
    openCast();
    ASSERT_EQ(session.plotStation(std::nullopt), "");
    ASSERT_EQ(session.setDomain(-40, 0, -52, -30, {}, {}), "");
    user->messages.clear();
    ASSERT_TRUE(session.deleteSelected());
    EXPECT_THAT(user->messages, ElementsAre("Confirm Deletion ...: Really want to delete 3 stations?"));
    EXPECT_THAT(user->notes, Contains(file("cast.var") + ": 3 stations deleted"));
    EXPECT_EQ(session.collection.stationCount, 1);
    EXPECT_EQ(session.collection.selectedStationCount, 0);
    EXPECT_EQ(session.collection.plottedStationCount, 0);
    EXPECT_THAT(read("cast.log"), HasSubstr("DELETE 3 Stations"));
    EXPECT_THAT(read("cast.inv"), HasSubstr("1 cruises 1 stations"));
    EXPECT_TRUE(session.checkCollection({}));
}

TEST_F(Commands, DeletionOfAllStationsLeavesAnEmptyDataFile)
{
    openCast();
    ASSERT_TRUE(session.deleteSelected());
    EXPECT_EQ(session.collection.stationCount, 0);
    EXPECT_EQ(common::fileSize(file("cast.dob")), 0);
    EXPECT_TRUE(session.collection.isOpen);
    EXPECT_THAT(read("cast.log"), HasSubstr("SORTCONDENSE"));
    ASSERT_EQ(open("cast.txt"), OpenResult::ok); // it can be filled again
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_TRUE(session.checkCollection({}));
}

TEST_F(Commands, DeletionOfOneStation)
{
    openCast();
    ASSERT_TRUE(session.deleteStation(2));
    EXPECT_EQ(session.collection.stationCount, 3);
    EXPECT_EQ(session.collection.selectedStationCount, 3);
    EXPECT_THAT(read("cast.log"), HasSubstr("DELETE_SINGLE TEST 2 C"));
    EXPECT_THAT(user->notes, Contains(file("cast.var") + ": 1 station deleted"));
    user->messages.clear();
    EXPECT_FALSE(session.deleteStation(4));
    EXPECT_FALSE(session.deleteStation(-1));
    EXPECT_THAT(user->messages,
                ElementsAre("Confirm Deletion ...: There is no station 4; the collection has 3.",
                            "Confirm Deletion ...: There is no station -1; the collection has 3."));
    EXPECT_TRUE(session.checkCollection({}));
}

TEST_F(Commands, DeletionOfTheCurrentStation)
{
    openCast();
    user->messages.clear();
    EXPECT_FALSE(session.deleteStation(0));
    EXPECT_THAT(user->messages, ElementsAre("Confirm Deletion ...: There is no current station."));
    ASSERT_EQ(session.setDomain(-40, 0, -52, -30, {}, {}), ""); // stations 2 to 4
    session.collection.currentStation = 2;
    ASSERT_TRUE(session.deleteStation(0));
    EXPECT_THAT(read("cast.log"), HasSubstr("DELETE_SINGLE TEST 3 C"));
    EXPECT_EQ(session.collection.currentStation, 0);
}

TEST_F(Commands, DeletionOfEmptyStations)
{
    std::string text = castText(3, 2);
    for (int k = 0; k < 2; ++k)
        text += common::format("TEST\t9\tC\t5/9/1999\t10:30\t-25\t-20\t4000\t%d\t0\t\t\t\t\n", k);
    writeText(file("cast.txt"), text);
    openCast();
    ASSERT_EQ(session.collection.stationCount, 4);
    ASSERT_TRUE(session.deleteEmpty());
    EXPECT_EQ(session.collection.stationCount, 3);
    EXPECT_THAT(read("cast.log"), HasSubstr("DELETE 1 Empty Stations"));
    user->messages.clear();
    EXPECT_TRUE(session.deleteEmpty()); // nothing to do is no fault
    EXPECT_THAT(user->messages, Contains(HasSubstr("No empty station found.")));
    EXPECT_EQ(session.collection.stationCount, 3);
}

TEST_F(InteractiveCommands, UnconfirmedDeletionsDoNothing)
{
    openCast();
    user->answers = {Answer::no, Answer::cancel};
    EXPECT_FALSE(session.deleteSelected());
    EXPECT_FALSE(session.deleteStation(1));
    EXPECT_EQ(session.collection.stationCount, 4);
}

TEST_F(Commands, FullDiskFailsMaintenanceAndKeepsTheCollection)
{
    openCast();
    const std::string before = files("cast");
    {
        const testing_support::RFileSizeLimit limit(60);
        EXPECT_FALSE(session.sortAndCondense());
        EXPECT_FALSE(session.deleteStation(1));
        EXPECT_FALSE(session.deleteSelected());
        EXPECT_FALSE(session.changeVariables({collection::emptyVariable(0), variable("Depth [m]", 1)}));
    }
    EXPECT_EQ(files("cast"), before);
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_TRUE(session.collection.isOpen);
    EXPECT_TRUE(session.checkCollection({}));
    EXPECT_TRUE(session.sortAndCondense()); // when there is room again
}

// --- the log

TEST_F(Commands, CommentGoesToTheLog)
{
    openCast();
    EXPECT_TRUE(session.addLogComment("checked by hand, twice"));
    EXPECT_THAT(read("cast.log"), HasSubstr("ann:box COMMENT checked by hand, twice\n"));
}

TEST_F(Commands, LogThatCannotBeWrittenIsTold)
{
    openCast();
    fs::remove(file("cast.log"));
    fs::create_directories(file("cast.log"));
    user->messages.clear();
    EXPECT_FALSE(session.addLogComment("x"));
    EXPECT_THAT(user->messages,
                ElementsAre("Add log File Comment: " + file("cast.log") + " could not be written!"));
}

TEST_F(InteractiveCommands, CommentIsAskedFor)
{
    openCast();
    EXPECT_FALSE(session.addLogComment(std::nullopt)); // cancelled
    view.line = "typed";
    EXPECT_TRUE(session.addLogComment(std::nullopt));
    EXPECT_THAT(read("cast.log"), HasSubstr("COMMENT typed\n"));
    EXPECT_THAT(view.asked, ElementsAre("Add log File Comment", "Add log File Comment"));
}

// --- the check

TEST_F(Commands, GoodCollectionPassesTheCheck)
{
    openCast();
    user->notes.clear();
    EXPECT_TRUE(session.checkCollection({}));
    ASSERT_FALSE(user->notes.empty());
    EXPECT_THAT(user->notes.back(),
                testing::StartsWith(file("cast.var") + ": 4 stations, 0 inconsistencies, "));
    EXPECT_THAT(user->notes.back(), HasSubstr(" MB are dead space, "));
    EXPECT_THAT(user->notes.back(), testing::EndsWith(" % full"));
    session.close(true);
    EXPECT_TRUE(session.checkCollection(file("cast"))); // also closed, with and without its extension
    EXPECT_TRUE(session.checkCollection("cast.var"));
}

TEST_F(Commands, InconsistenciesFailTheCheckAndChangeNothing)
{
    openCast();
    session.close(true);
    writeText(file("cast.hob"), read("cast.hob").substr(0, 100));
    const std::string before = files("cast");
    user->notes.clear();
    EXPECT_FALSE(session.checkCollection(file("cast.var")));
    EXPECT_THAT(user->notes, Contains(testing::StartsWith("inconsistency: ")));
    EXPECT_EQ(files("cast"), before);
}

TEST_F(Commands, CollectionThatCannotBeOpenedIsChecked)
{
    openCast();
    session.close(true);
    writeText(file("cast.var"), "rubbish\n");
    EXPECT_FALSE(session.checkCollection(file("cast.var")));
    EXPECT_FALSE(session.checkCollection(file("none.var")));
    EXPECT_FALSE(session.checkCollection({}));
    EXPECT_EQ(user->notes.back(), "there is no open collection to check");
}

TEST_F(Commands, RefusalsHaveReasons)
{
    EXPECT_EQ(session.refusal(app::cmdCopy), "no collection is open");
    openCast();
    EXPECT_EQ(session.refusal(app::cmdDeleteSelected), "");
    ASSERT_EQ(session.setDomain(100, 120, 0, 10, {}, {}), "");
    EXPECT_EQ(session.refusal(app::cmdDeleteSelected), "no stations are selected");
    session.collection.writable = false;
    EXPECT_EQ(session.refusal(app::cmdDeleteSelected), "the collection is read-only");
    EXPECT_EQ(session.refusal(app::cmdSortAndCondense), "the collection is read-only");
    EXPECT_EQ(session.refusal(app::cmdCopy), "");
    EXPECT_EQ(session.refusal(app::cmdLogComment), "");
    session.collection.writable = true;
    session.state = app::stateBusy;
    EXPECT_EQ(session.refusal(app::cmdCopy), "it isn't possible now");
    session.state = app::stateReady;
}

} // namespace
