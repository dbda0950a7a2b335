// Collections that are made where there was none.

#include "sessionfixture.h"

#include "collection/collectionlock.h"
#include "collection/variablesets.h"
#include "filesizelimit.h"

namespace {

namespace fs = std::filesystem;
using app::CREATIONCHOICE;
using app::OpenResult;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing_support::castText;
using testing_support::writeText;

class Creating : public testing_support::Session {
protected:
    std::string label(int variable) const
    {
        return std::string(
            common::fieldText(session.collection.variables[static_cast<std::size_t>(variable)].label));
    }
    bool create(const std::string& name, const CREATIONCHOICE& choice)
    {
        return session.createCollection(file(name), choice);
    }
};

class InteractiveCreating : public testing_support::InteractiveSession {};

TEST_F(Creating, EverySetMakesAnEmptyOpenCollection)
{
    for (const collection::VARIABLESETROW& row : collection::variableSets) {
        if (row.number == collection::setTemplate) continue;
        const std::string name = "set" + std::to_string(row.number);
        ASSERT_TRUE(create(name, {row.number, {}})) << row.entry;
        EXPECT_TRUE(session.collection.isOpen);
        EXPECT_TRUE(session.collection.writable);
        EXPECT_EQ(session.collection.stationCount, 0);
        EXPECT_EQ(session.collection.type, "HYD");
        EXPECT_EQ(session.collection.headerRecordSize, 80 + 2 * session.collection.variableCount);
        EXPECT_EQ(session.collection.variableCount,
                  static_cast<int>(collection::variablesOfSet(row.number).size()) - 1);
        EXPECT_THAT(read(name + ".log"), HasSubstr("ann:box CREATE\n"));
        EXPECT_EQ(session.settings.recentFiles[0], file(name + ".var"));
        EXPECT_EQ(view.caption, "NVQ - " + file(name + ".var"));
        EXPECT_THAT(user->notes.back(), HasSubstr(name + ".var: made with "));
    }
}

TEST_F(Creating, ManualVariablesWithoutAUserAreTheThreeDefaults)
{
    ASSERT_TRUE(create("manual.var", {collection::setManual, {}}));
    EXPECT_EQ(session.collection.variableCount, 3);
    EXPECT_EQ(label(1), "Depth [m]");
    EXPECT_EQ(label(3), "Salinity [psu]");
    EXPECT_EQ(session.collection.variables[3].decimals, 3);
    ASSERT_FALSE(user->notes.empty());
    EXPECT_THAT(user->notes.front(), HasSubstr("nobody can specify the variables of manual"));
    EXPECT_THAT(view.asked, IsEmpty());
}

TEST_F(Creating, CollectionCanBeFilledAndOpensAgain)
{
    ASSERT_TRUE(create("made", {collection::setManual, {}}));
    ASSERT_EQ(open("cast.txt"), OpenResult::ok);
    EXPECT_EQ(session.collection.name, "made");
    EXPECT_EQ(session.collection.stationCount, 4);
    session.close(true);
    ASSERT_EQ(open("made.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 4);
}

TEST_F(Creating, NameLosesItsDividers)
{
    ASSERT_TRUE(create("a b:c.var", {collection::setSeaLevel, {}}));
    EXPECT_EQ(session.collection.name, "a_b_c");
    EXPECT_TRUE(common::fileExists(file("a_b_c.var")));
    EXPECT_TRUE(common::fileExists(file("a_b_c.hob")));
}

TEST_F(Creating, PointsInANameStay)
{
    ASSERT_TRUE(create("2010.10", {collection::setSeaLevel, {}}));
    EXPECT_EQ(session.collection.name, "2010.10");
    session.close(true);
    EXPECT_EQ(open("2010.10.var"), OpenResult::ok);
}

TEST_F(Creating, MissingDirectoryIsTold)
{
    EXPECT_FALSE(session.createCollection("/nowhere/a.var", CREATIONCHOICE{collection::setSeaLevel, {}}));
    EXPECT_THAT(user->messages, ElementsAre("Collection Directory: /nowhere/\n\ndoes not exist!"));
    EXPECT_FALSE(session.createCollection(folder.path(), CREATIONCHOICE{collection::setSeaLevel, {}}));
    EXPECT_FALSE(session.createCollection(file(".var"), CREATIONCHOICE{collection::setSeaLevel, {}}));
}

// --- templates

TEST_F(Creating, DescriptionAsATemplate)
{
    openCast();
    session.close(true);
    std::string description = read("cast.var");
    description.replace(description.find("HYD"), 3, "TST");
    writeText(file("other.var"), description); // names the collection "cast" and tells of stations
    ASSERT_TRUE(create("made", {collection::setTemplate, file("other.var")}));
    EXPECT_EQ(session.collection.name, "made");
    EXPECT_EQ(session.collection.stationCount, 0);
    EXPECT_EQ(session.collection.type, "TST");
    EXPECT_EQ(session.collection.variableCount, 3);
    EXPECT_EQ(label(2), "Temperature [\xb0"
                        "C]");
    EXPECT_THAT(read("made.var"), HasSubstr("Collection: made\n"));
}

TEST_F(Creating, OpenCollectionAsATemplate)
{
    openCast();
    ASSERT_TRUE(create("made", {collection::setTemplate, "cast.var"})); // relative to its directory
    EXPECT_EQ(session.collection.variableCount, 3);
    EXPECT_EQ(session.collection.stationCount, 0);
}

TEST_F(Creating, SpreadsheetAsATemplate)
{
    ASSERT_TRUE(create("made", {collection::setTemplate, file("cast.txt")}));
    EXPECT_EQ(session.collection.variableCount, 3);
    EXPECT_EQ(session.collection.type, "HYD");
    EXPECT_EQ(session.collection.stationCount, 0);
    ASSERT_EQ(open("cast.txt"), OpenResult::ok); // into it
    EXPECT_EQ(session.collection.stationCount, 4);
}

TEST_F(Creating, TemplateThatCannotBeUsedIsToldAndTheOpenCollectionStays)
{
    openCast();
    writeText(file("bad.var"), "no description");
    writeText(file("bad.o4x"), "no listing");
    writeText(file("bad.txt"), "just words\n");
    writeText(file("bad.doc"), "");
    for (const char* const name : {"bad.var", "bad.o4x", "bad.txt", "bad.doc", "none.var", "none.txt"}) {
        user->messages.clear();
        EXPECT_FALSE(create("made", {collection::setTemplate, file(name)})) << name;
        ASSERT_FALSE(user->messages.empty()) << name;
        EXPECT_EQ(user->messages.back(),
                  "Template usage failed ...: Make sure file format of " + file(name) +
                      " is valid\nand file is currently not in use by another application!");
    }
    EXPECT_FALSE(common::fileExists(file("made.var")));
    EXPECT_TRUE(session.collection.isOpen);
}

// --- where there is one already

TEST_F(Creating, CollectionWithOtherChangesIsNotReplaced)
{
    openCast();
    session.collection.addLogLine("DELETE 2 Stations");
    session.close(true);
    const std::string before = read("cast.hob") + read("cast.dob") + read("cast.var") + read("cast.log");
    EXPECT_FALSE(create("cast", {collection::setSeaLevel, {}}));
    EXPECT_EQ(read("cast.hob") + read("cast.dob") + read("cast.var") + read("cast.log"), before);
    EXPECT_THAT(user->messages.back(), HasSubstr("set_import overwrite=yes"));
    session.importSettings.overwrite = true;
    EXPECT_TRUE(create("cast", {collection::setSeaLevel, {}}));
    EXPECT_EQ(session.collection.stationCount, 0);
    EXPECT_EQ(session.collection.variableCount, 2);
    EXPECT_THAT(read("cast.log"), HasSubstr("DELETE 2 Stations")); // the log goes on
    EXPECT_THAT(read("cast.inv"), testing::Not(HasSubstr("TEST")));
}

TEST_F(Creating, IdentifiedVariablesOfAnOldCollectionAreForgotten)
{
    openCast();
    session.close(true);
    writeText(file("cast.idv"), "Depth [m]=1\n");
    ASSERT_TRUE(create("cast", {collection::setSeaLevel, {}}));
    EXPECT_FALSE(common::fileExists(file("cast.idv")));
}

TEST_F(InteractiveCreating, UserIsAskedBeforeACollectionIsReplaced)
{
    openCast();
    session.close(true);
    user->answers = {common::Answer::no};
    EXPECT_FALSE(session.createCollection(file("cast"), CREATIONCHOICE{collection::setSeaLevel, {}}));
    EXPECT_THAT(user->messages.back(), HasSubstr("already exists!  Replace it?"));
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 4);
}

TEST_F(Creating, CollectionThatIsOpenElsewhereIsNotReplaced)
{
    openCast();
    session.close(true);
    collection::RCollectionLock theirs;
    ASSERT_TRUE(theirs.acquire(file("cast")));
    const std::string before = read("cast.hob") + read("cast.dob") + read("cast.var");
    EXPECT_FALSE(create("cast", {collection::setSeaLevel, {}}));
    EXPECT_THAT(user->messages.back(), HasSubstr("is open for writing in another NVQ session"));
    EXPECT_EQ(read("cast.hob") + read("cast.dob") + read("cast.var"), before);
    EXPECT_FALSE(session.collection.isOpen);
}

TEST_F(Creating, FullDiskMakesNothing)
{
    bool made = true;
    {
        const testing_support::RFileSizeLimit limit(0);
        made = create("full", {collection::setWhpBottle, {}});
    }
    EXPECT_FALSE(made);
    EXPECT_FALSE(session.collection.isOpen);
    EXPECT_FALSE(user->messages.empty());
    for (const char* const suffix : {".var", ".hob", ".dob", ".jnl", ".lck"})
        EXPECT_FALSE(common::fileExists(file("full") + suffix)) << suffix;
}

TEST_F(Creating, FullDiskKeepsTheOldCollection)
{
    openCast();
    session.close(true);
    const std::string before = read("cast.hob") + read("cast.dob") + read("cast.var");
    {
        const testing_support::RFileSizeLimit limit(0);
        EXPECT_FALSE(create("cast", {collection::setWhpBottle, {}}));
    }
    EXPECT_EQ(read("cast.hob") + read("cast.dob") + read("cast.var"), before);
    EXPECT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 4);
}

// --- by opening a description that isn't there

TEST_F(InteractiveCreating, MissingDescriptionIsCreatedByChoice)
{
    view.choice = CREATIONCHOICE{collection::setWhpCtd, {}};
    ASSERT_EQ(open("new one.var"), OpenResult::ok);
    EXPECT_THAT(view.asked, ElementsAre("variables of new_one"));
    EXPECT_EQ(session.collection.path, file("new_one"));
    EXPECT_EQ(session.collection.variableCount, 4);
    EXPECT_EQ(session.settings.recentFiles[0], file("new_one.var"));
}

TEST_F(InteractiveCreating, CancelledChoiceMakesNothing)
{
    EXPECT_EQ(open("new.var"), OpenResult::failed);
    EXPECT_THAT(view.asked, ElementsAre("variables of new"));
    EXPECT_THAT(user->messages, IsEmpty());
    EXPECT_FALSE(common::fileExists(file("new.var")));
    EXPECT_FALSE(common::fileExists(file("new.lck")));
    EXPECT_FALSE(session.collection.isOpen);
}

TEST_F(InteractiveCreating, ManualVariablesAreEdited)
{
    view.choice = CREATIONCHOICE{collection::setManual, {}};
    view.edited = collection::variablesOfSet(collection::setSeaLevel);
    ASSERT_EQ(open("new.var"), OpenResult::ok);
    EXPECT_THAT(view.asked, ElementsAre("variables of new", "edit new"));
    EXPECT_EQ(view.oldVariables, 0);
    EXPECT_EQ(session.collection.variableCount, 2);
    view.acceptEdit = false;
    EXPECT_EQ(open("other.var"), OpenResult::failed);
    EXPECT_FALSE(common::fileExists(file("other.var")));
}

TEST_F(InteractiveCreating, TemplateFileIsAskedFor)
{
    view.choice = CREATIONCHOICE{collection::setTemplate, {}};
    EXPECT_EQ(open("new.var"), OpenResult::failed); // cancelled
    EXPECT_THAT(view.asked,
                ElementsAre("variables of new",
                            "Select Template for new ...|Collection Files (*.var);;NVQ SpreadSheet Files "
                            "(*.txt);;o4x Files (*.o4x)|"));
    view.answer = file("cast.txt");
    ASSERT_EQ(open("new.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.variableCount, 3);
}

TEST_F(InteractiveCreating, PathIsAskedFor)
{
    EXPECT_FALSE(session.createCollection({}, CREATIONCHOICE{collection::setSeaLevel, {}}));
    view.answer = file("asked.var");
    EXPECT_TRUE(session.createCollection({}, CREATIONCHOICE{collection::setSeaLevel, {}}));
    EXPECT_EQ(session.collection.name, "asked");
}

TEST_F(InteractiveCreating, WriteProtectedDirectoryFailsWithoutAQuestion)
{
    view.choice = CREATIONCHOICE{collection::setSeaLevel, {}};
    EXPECT_EQ(session.open("/proc/new.var"), OpenResult::failed); // takes no files, whoever asks
    EXPECT_THAT(view.asked, IsEmpty());
    ASSERT_EQ(user->messages.size(), 1u);
    EXPECT_THAT(user->messages[0], HasSubstr("Collection \"/proc/new.var\" does not exist!"));
    EXPECT_THAT(user->messages[0], HasSubstr("write-protected!"));
}

TEST_F(InteractiveCreating, SomethingElseUnderTheNameIsNoPlaceForACollection)
{
    fs::create_directories(file("dir.var"));
    view.choice = CREATIONCHOICE{collection::setSeaLevel, {}};
    EXPECT_EQ(open("dir.var"), OpenResult::failed);
    EXPECT_THAT(view.asked, IsEmpty());
    EXPECT_EQ(user->messages.size(), 1u);
}

// --- from files that bring only variables

TEST_F(Creating, ArchiveListingAndStationSummaryMakeEmptyCollections)
{
    writeText(file("a.ol"), "whatever");
    writeText(file("b.sum"), "whatever");
    ASSERT_EQ(open("a.ol"), OpenResult::ok);
    EXPECT_EQ(session.collection.path, file("a"));
    EXPECT_EQ(session.collection.variableCount, 7);
    EXPECT_EQ(session.collection.stationCount, 0);
    session.close(true);
    ASSERT_EQ(open("b.sum"), OpenResult::ok);
    EXPECT_EQ(session.collection.variableCount, 39);
    EXPECT_EQ(label(39), "SAMPNO []");
    session.close(true);
    EXPECT_EQ(open("b.sum"), OpenResult::ok); // an empty one may be made again
}

TEST_F(Creating, MissingSourceMakesNothing)
{
    EXPECT_EQ(open("none.sum"), OpenResult::failed);
    EXPECT_THAT(user->messages,
                ElementsAre("Opening Collection ...: File " + file("none.sum") + " does not exist!"));
    EXPECT_FALSE(common::fileExists(file("none.var")));
}

TEST_F(Creating, CollectionWithStationsDoesNotGiveWayToAnEmptyOne)
{
    openCast();
    session.close(true);
    writeText(file("cast.sum"), "whatever");
    EXPECT_EQ(open("cast.sum"), OpenResult::failed);
    EXPECT_THAT(user->messages.back(), HasSubstr("already exists!"));
    ASSERT_EQ(open("cast.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 4);
}

TEST_F(Creating, SourceOfVariablesIsRefusedWhereACollectionIsOpen)
{
    openCast();
    writeText(file("a.ol"), "whatever");
    user->messages.clear();
    EXPECT_EQ(open("a.ol"), OpenResult::failed);
    EXPECT_THAT(user->messages, ElementsAre(HasSubstr("NVQ can't open this kind of file yet")));
    EXPECT_EQ(session.collection.name, "cast");
}

} // namespace
