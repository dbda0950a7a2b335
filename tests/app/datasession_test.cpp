// Imports, selections and exports of a session: what is asked, and what comes of the answers.

#include <algorithm>

#include "sessionfixture.h"

namespace {

using app::EDITEDCRITERIA;
using app::OpenResult;
using common::Answer;
using exporting::ListingForm;
using importing::Format;
using importing::ImportMode;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;
using testing_support::castText;
using testing_support::writeText;

using DataSession = testing_support::Session;

class InteractiveData : public testing_support::InteractiveSession {
protected:
    InteractiveData()
    {
        openCast();
        user->messages.clear();
        view.asked.clear();
    }
    int lines(const std::string& name) const
    {
        const std::string text = read(name);
        return static_cast<int>(std::count(text.begin(), text.end(), '\n'));
    }
};

// --- exports on a screen

TEST_F(InteractiveData, ListingOfTheOldFormIsWarnedOf)
{
    view.answer = file("out.o3x");
    ASSERT_TRUE(session.exportListing(ListingForm::version3, {}));
    ASSERT_GE(user->messages.size(), 2u);
    EXPECT_EQ(
        user->messages[0],
        "Exporting to .o3x file ...: Note that data quality flags and time of observation (hour:min) are not "
        "recorded in .o3x files.\nIf this information is crucial, use NVQ SpreadSheet export "
        "instead.\n\nProceed with .o3x export?");
    EXPECT_EQ(user->messages[1], "Exporting data ...: Only data that satisfy current selection criteria are "
                                 "exported!\n\nProceed?");
    EXPECT_THAT(view.asked, ElementsAre("Export to NVQ3.x File ...|NVQ3.x List Files (*.o3x)|" +
                                            file("data_from_cast.o3x"),
                                        "variables"));
    EXPECT_THAT(user->messages.back(), HasSubstr("4 Stations Exported to .o3x File\n\n"));
    EXPECT_TRUE(common::fileExists(file("out.var")));
}

TEST_F(InteractiveData, ListingWithFlagsIsWarnedOfToo)
{
    view.answer = file("out.o4x");
    ASSERT_TRUE(session.exportListing(ListingForm::version4, {}));
    EXPECT_EQ(user->messages[0],
              "Exporting to .o4x file ...: Note that time of observation (hour:min) is not recorded in .o4x "
              "files.\nIf this information is crucial, use NVQ SpreadSheet export instead.\n\nProceed with "
              ".o4x export?");
    EXPECT_EQ(view.asked.at(0),
              "Export to NVQ4.x File ...|NVQ4.x List Files (*.o4x)|" + file("data_from_cast.o4x"));
    EXPECT_THAT(user->messages.back(), HasSubstr("4 Stations Exported to .o4x File\n\n"));
}

TEST_F(InteractiveData, NoToAWarningEndsTheExport)
{
    view.answer = file("out.o4x");
    user->answers = {Answer::no};
    EXPECT_FALSE(session.exportListing(ListingForm::version4, {}));
    EXPECT_EQ(user->messages.size(), 1u);
    user->answers = {Answer::yes, Answer::cancel};
    EXPECT_FALSE(session.exportListing(ListingForm::version4, {}));
    EXPECT_THAT(view.asked, IsEmpty());
    EXPECT_FALSE(common::fileExists(file("out.o4x")));
}

TEST_F(InteractiveData, SpreadsheetAsksForVariablesAndTheMissingText)
{
    view.answer = file("out.txt");
    view.chosen = std::vector<int>{1, 3};
    view.line = " none ";
    ASSERT_TRUE(session.exportSpreadsheet({}));
    EXPECT_THAT(view.asked, ElementsAre("Export to NVQ Spreadsheet File ...|NVQ Spreadsheet Files (*.txt)|" +
                                            file("data_from_cast.txt"),
                                        "variables", "SpreadSheet Export - Set Missing Value String"));
    EXPECT_THAT(read("out.txt"), HasSubstr("Depth [m]\tQF\tSalinity [psu]\tQF\n"));
    EXPECT_THAT(user->messages.back(), HasSubstr("4 Stations Exported to File\n\n"));
}

TEST_F(InteractiveData, CancelOfAnyQuestionWritesNothing)
{
    EXPECT_FALSE(session.exportSpreadsheet({}));
    view.answer = file("out.txt");
    EXPECT_FALSE(session.exportSpreadsheet({})); // the missing text
    view.line = "";
    view.chosen.emplace(std::nullopt);
    EXPECT_FALSE(session.exportSpreadsheet({}));
    EXPECT_FALSE(session.exportListing(ListingForm::version4, {}));
    EXPECT_FALSE(session.exportCollection({}));
    EXPECT_FALSE(common::fileExists(file("out.txt")));
    EXPECT_FALSE(common::fileExists(file("out.var")));
}

TEST_F(InteractiveData, CollectionGoesIntoTheRecentFilesAndTheOldOneStaysOpen)
{
    view.answer = file("part");
    view.chosen = std::vector<int>{1, 2};
    ASSERT_TRUE(session.exportCollection({}));
    EXPECT_THAT(view.asked, ElementsAre("Export to NVQ Collection ...|Collection Files (*.var)|" +
                                            file("data_from_cast.var"),
                                        "variables"));
    EXPECT_EQ(session.settings.recentFiles[0], file("part.var"));
    EXPECT_EQ(session.collection.path, file("cast"));
    EXPECT_THAT(user->messages.back(), HasSubstr("4 Stations Exported to Collection\n\n"));
    ASSERT_EQ(open("part.var"), OpenResult::ok);
    EXPECT_EQ(session.collection.stationCount, 4);
    EXPECT_EQ(session.collection.variableCount, 2);
}

TEST_F(InteractiveData, CollectionThatIsThereIsAskedAbout)
{
    view.answer = file("part.var");
    ASSERT_TRUE(session.exportCollection({}));
    user->messages.clear();
    EXPECT_FALSE(session.exportCollection({})); // No is the default
    EXPECT_THAT(user->messages, ElementsAre("Export to NVQ Collection ...: Collection\n\n" +
                                            file("part.var") + "\n\nalready exists!  Replace it?"));
    user->answers = {Answer::yes};
    EXPECT_TRUE(session.exportCollection({}));
}

TEST_F(InteractiveData, FilesOfTheOpenCollectionAreNoTarget)
{
    const std::string bytes = read("cast.var") + read("cast.hob") + read("cast.dob");
    view.line = "";
    for (const char* const name : {"cast.var", "cast.hob", "cast.dob", "cast.log"}) {
        view.answer = file(name);
        EXPECT_FALSE(session.exportSpreadsheet({})) << name;
        EXPECT_THAT(user->messages.back(), HasSubstr("is a file of the open collection")) << name;
    }
    view.answer = file("cast.o3x"); // its description would be cast.var
    EXPECT_FALSE(session.exportListing(ListingForm::version3, {}));
    view.answer = file("cast");
    EXPECT_FALSE(session.exportCollection({}));
    EXPECT_EQ(read("cast.var") + read("cast.hob") + read("cast.dob"), bytes);
}

// --- imports on a screen

TEST_F(InteractiveData, ImportAsksForAFileAndRemembersItsFolder)
{
    std::filesystem::create_directories(file("more"));
    std::string other = castText(1, 2);
    for (std::size_t at = 0; (at = other.find("TEST", at)) != std::string::npos;)
        other.replace(at, 4, "ELSE");
    writeText(file("more/other.txt"), other);
    EXPECT_FALSE(session.importFile(Format::spreadsheet, {}, ImportMode::addReplace));
    view.answer = file("more/other.txt");
    EXPECT_TRUE(session.importFile(Format::spreadsheet, {}, ImportMode::addReplace));
    EXPECT_FALSE(session.importFile(Format::listing4, {}, ImportMode::addReplace)); // it is none
    EXPECT_THAT(
        view.asked,
        ElementsAre("Select SpreadSheet Data File ...|NVQ SpreadSheet Files (*.txt *.TXT);;All Files (*.* "
                    "*)|" +
                        file(""),
                    "Select SpreadSheet Data File ...|NVQ SpreadSheet Files (*.txt *.TXT);;All Files (*.* "
                    "*)|" +
                        file(""),
                    "Select .o4x Import Data File ...|NVQ4.x List Files (*.o4x *.O4X);;All Files (*.* *)|" +
                        file("more/")));
    EXPECT_EQ(view.settlers, 3); // with that of the opening
    EXPECT_EQ(session.collection.stationCount, 5);
    EXPECT_EQ(session.collection.selectedStationCount, 5);
    EXPECT_EQ(session.collection.cruises.size(), 2u);
}

TEST_F(InteractiveData, ExistingStationsAreAskedAbout)
{
    user->choices = {2, 1}; // no, yes to all
    EXPECT_TRUE(session.importFile(Format::spreadsheet, file("cast.txt"), ImportMode::addReplace));
    const auto asked =
        std::count_if(user->messages.begin(), user->messages.end(),
                      [](const std::string& text) { return text.starts_with("Confirm Station Replace: "); });
    EXPECT_EQ(asked, 2);
    EXPECT_EQ(session.collection.stationCount, 4);
}

TEST_F(InteractiveData, UndoBringsReplacedStationsBack)
{
    std::string colder = castText(4, 6);
    for (std::size_t at = 0; (at = colder.find("\t20\t0", at)) != std::string::npos;)
        colder.replace(at, 5, "\t5\t0");
    writeText(file("colder.txt"), colder);
    ASSERT_TRUE(session.exportSpreadsheet(file("before.txt")));
    user->choices = {1}; // yes to all
    user->acceptReports = false;
    EXPECT_FALSE(session.importFile(Format::spreadsheet, file("colder.txt"), ImportMode::addReplace));
    ASSERT_TRUE(session.exportSpreadsheet(file("after.txt")));
    EXPECT_EQ(read("after.txt"), read("before.txt"));
    EXPECT_EQ(session.collection.selectedStationCount, 4);
}

// Says no to the options of an import.
class RDecliner final : public importing::RImportSettler {
public:
    bool settleProperties(importing::SPREADSHEETDESC&, std::span<const std::string>) override
    {
        return false;
    }
    bool settleHeaderVariables(importing::SPREADSHEETDESC&, std::span<const std::string>) override
    {
        return false;
    }
    bool settleImport(importing::IMPORTCHOICES&) override { return false; }
    int identify(std::string_view, std::string_view, std::span<const collection::VARINFO>) override
    {
        return 0;
    }
    std::optional<std::string> chooseDescription(std::string_view, const std::string&) override
    {
        return std::nullopt;
    }
};

TEST_F(InteractiveData, CancelledOptionsImportNothing)
{
    view.makeSettler = [] { return std::make_unique<RDecliner>(); };
    writeText(file("other.txt"), castText(9, 2));
    EXPECT_FALSE(session.importFile(Format::spreadsheet, file("other.txt"), ImportMode::addReplace));
    EXPECT_EQ(session.collection.stationCount, 4);
    session.close(true);
    EXPECT_EQ(open("other.txt"), OpenResult::failed);
    EXPECT_FALSE(common::fileExists(file("other.var")));
    EXPECT_FALSE(session.collection.isOpen);
}

TEST_F(InteractiveData, ForeignTextOpensByTheSettler)
{
    session.close(true);
    writeText(file("plain.txt"), "depth;temp\n1;2\n");
    view.makeSettler = [] { return std::make_unique<RDecliner>(); };
    user->messages.clear();
    EXPECT_EQ(open("plain.txt"), OpenResult::failed);
    EXPECT_THAT(user->messages, IsEmpty()); // who cancels knows why
    EXPECT_FALSE(common::fileExists(file("plain.var")));
}

TEST_F(InteractiveData, ImportedStationsAreShownOnTheMap)
{
    std::string many = castText(0, 0); // the header
    for (const char cruise : {'A', 'B', 'C', 'D', 'E'}) {
        std::string more = castText(25, 1).substr(castText(0, 0).size());
        for (std::size_t at = 0; (at = more.find("TEST", at)) != std::string::npos;) more[at] = cruise;
        many += more;
    }
    writeText(file("many.txt"), many);
    ASSERT_TRUE(session.importFile(Format::spreadsheet, file("many.txt"), ImportMode::addReplace));
    EXPECT_EQ(view.imported, 100);
}

// --- the selection

TEST_F(DataSession, SelectionRebuildsTheListAndTellsIt)
{
    openCast();
    user->notes.clear();
    const std::vector<app::KEYVALUE> pairs = {{"station", "2:3"}, {"quality", "good"}};
    EXPECT_EQ(session.select(pairs), "");
    EXPECT_EQ(session.collection.selectedStationCount, 2);
    EXPECT_EQ(session.collection.qualityLimit, 0);
    EXPECT_TRUE(session.collection.configChanged);
    EXPECT_THAT(user->notes, ElementsAre(file("cast.var") + ": 2 of 4 stations selected"));
    const std::vector<app::KEYVALUE> reset = {{"reset", ""}};
    EXPECT_EQ(session.select(reset), "");
    EXPECT_EQ(session.collection.selectedStationCount, 4);
    EXPECT_EQ(session.collection.qualityLimit, common::noQualityLimit);
}

TEST_F(DataSession, WrongPairLeavesAllCriteriaAsTheyWere)
{
    openCast();
    const std::vector<app::KEYVALUE> pairs = {{"station", "2:3"}, {"year", "soon"}};
    EXPECT_THAT(session.select(pairs), StartsWith("year: "));
    EXPECT_EQ(session.collection.selectedStationCount, 4);
    EXPECT_FALSE(session.collection.configChanged);
}

TEST_F(DataSession, SelectionNeedsAnOpenCollection)
{
    const std::vector<app::KEYVALUE> reset = {{"reset", ""}};
    EXPECT_EQ(session.select(reset), "no collection is open");
}

TEST_F(DataSession, SameCriteriaAgainChangeNothing)
{
    openCast();
    const std::vector<app::KEYVALUE> pairs = {{"type", "C"}};
    EXPECT_EQ(session.select(pairs), "");
    session.stale = false;
    EXPECT_EQ(session.select(pairs), "");
    EXPECT_FALSE(session.stale);
}

TEST_F(DataSession, SampleCriteriaLeaveTheListAlone)
{
    openCast();
    session.setup.map.toDraw = 0;
    session.stale = false;
    const std::vector<app::KEYVALUE> pairs = {{"sample", "Depth:0:100"}};
    EXPECT_EQ(session.select(pairs), "");
    EXPECT_EQ(session.setup.map.toDraw, 0);
    EXPECT_TRUE(session.stale);
    EXPECT_EQ(session.collection.selectedStationCount, 4);
}

TEST_F(InteractiveData, EditedCriteriaAreInForceAfterOK)
{
    view.criteria = [](EDITEDCRITERIA& edited) { edited.criteria.internalMin = 3; };
    view.acceptEdit = false;
    EXPECT_FALSE(session.editSelection());
    EXPECT_EQ(session.collection.selectedStationCount, 4);
    view.acceptEdit = true;
    EXPECT_TRUE(session.editSelection());
    EXPECT_EQ(session.collection.selectedStationCount, 2);
    EXPECT_THAT(user->statusTexts.back(), HasSubstr("2 of 4 stations selected"));
}

} // namespace
