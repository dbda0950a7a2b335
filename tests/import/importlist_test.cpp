// Several files in one run.

#include <filesystem>

#include <gtest/gtest.h>

#include "import/importfixture.h"
#include "import/importsettings.h"
#include "import/listsettler.h"

namespace {

using namespace importing;
using namespace testing_support;

class RListImports : public RImports {
public:
    // Writes files 1.txt, 2.txt, ... and their list, and imports it.
    RListImports& importAll(const std::vector<std::string>& contents,
                            ImportMode mode = ImportMode::addReplace)
    {
        std::ofstream list(listPath());
        for (std::size_t i = 0; i < contents.size(); ++i) {
            std::ofstream(file(i + 1)) << contents[i];
            list << i + 1 << ".txt\r\n";
        }
        list.close();
        user().messages.clear();
        stored.clear();
        options.mode = mode;
        result = importing::importFile(Format::spreadsheet, collection(), sample.station, listPath(), options,
                                       user());
        expectSoundFiles();
        return *this;
    }
    [[nodiscard]] std::string listPath() const { return sample.directory.file("casts.lst"); }
    [[nodiscard]] std::string file(std::size_t number) const
    {
        return sample.directory.file(std::to_string(number) + ".txt");
    }
    [[nodiscard]] std::string bytes() const
    {
        return sample.bytes(".hob") + sample.bytes(".dob") + sample.bytes(".var");
    }
    [[nodiscard]] int countInLog(const std::string& part) const
    {
        const std::string log = sample.bytes(".log");
        int count = 0;
        for (std::size_t at = log.find(part); at != std::string::npos; at = log.find(part, at + 1)) ++count;
        return count;
    }
};

TEST(ImportList, AllFilesComeInOneRunWithOneReport)
{
    RListImports run;
    run.importAll({threeVariables + cast("1", 3) + cast("2", 3), threeVariables + cast("3", 4)});
    EXPECT_EQ(run.result.end, ImportEnd::done);
    EXPECT_EQ(run.result.stationsStored, 3);
    EXPECT_EQ(run.result.stationsRead, 3);
    EXPECT_EQ(run.labels(), (Labels{"1", "2", "3"}));
    EXPECT_EQ(run.messages(),
              Labels{"Importing Station-Data ...: 3 Stations Imported from\n\nMultiple Files"});
    EXPECT_TRUE(run.told("Stations: 3 read, 3 added, 0 replaced."));
    EXPECT_TRUE(run.told("30 stored."));
    EXPECT_EQ(run.user().busy, 0);
    EXPECT_EQ(run.collection().cruiseCount, 1);
    EXPECT_FALSE(run.collection().isChanging());
}

TEST(ImportList, SettingsHoldForEveryFile)
{
    RListImports run;
    IMPORTSETTINGS settings;
    ASSERT_EQ(setImportSetting(settings, "missing", "9"), "");
    RSettingsSettler settler(settings, run.user());
    run.options.settler = &settler;
    run.importAll({threeVariables + cast("1", 3, 9), threeVariables + cast("2", 3, 8)});
    EXPECT_EQ(run.result.end, ImportEnd::done);
    EXPECT_EQ(run.load(1).counts[2], 0); // all values of variable 2 are 9
    EXPECT_EQ(run.load(2).counts[2], 3);
}

TEST(ImportList, AFileThatSettingsDoNotFitIsNamed)
{
    RListImports run;
    IMPORTSETTINGS settings;
    ASSERT_EQ(setImportSetting(settings, "assoc", "\"nothing\"=\"Depth [m]\""), "");
    RSettingsSettler settler(settings, run.user());
    run.options.settler = &settler;
    run.importAll({threeVariables + cast("1", 3), threeVariables + cast("2", 3)});
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_TRUE(run.told(run.file(1)));
    EXPECT_TRUE(run.told("has ended the import of the list"));
}

TEST(ImportList, EachFileHasALineInTheLogAndAllOneAccount)
{
    RListImports run;
    run.importAll({threeVariables + cast("1", 3) + cast("2", 3), threeVariables + cast("3", 4)});
    EXPECT_EQ(run.countInLog("IMPORT     2 Stations " + run.file(1) + " ("), 1);
    EXPECT_EQ(run.countInLog("IMPORT     1 Stations " + run.file(2) + " ("), 1);
    EXPECT_EQ(run.countInLog("ACCOUNT "), 1);
}

TEST(ImportList, UndoTakesAllFilesBackAndRestoresWhatTheyReplaced)
{
    RListImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 11));
    const std::string before = run.bytes();
    run.user().acceptReports = false;
    run.options.run.existing = Existing::replace;
    run.importAll({threeVariables + cast("1", 9, 20), threeVariables + cast("2", 2, 21) + cast("7", 2),
                   threeVariables + cast("1", 20, 22)});
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_EQ(run.result.stationsStored, 0);
    EXPECT_TRUE(run.bytes() == before);
    EXPECT_EQ(run.load(1).values[2][0], 10);
    EXPECT_EQ(run.countInLog("ERROR: IMPORT     0 Stations"), 3);
    EXPECT_EQ(run.countInLog("4 undone"), 1);
}

TEST(ImportList, NothingReachesTheCollectionBeforeTheLastFileIsDone)
{
    RListImports run;
    run.import(cast("1", 3, 10));
    const std::string var = run.sample.bytes(".var");
    run.options.run.stationStored = [&](const collection::STATIONHDR&) {
        EXPECT_TRUE(run.collection().isChanging());
        EXPECT_EQ(run.sample.bytes(".var"), var);
    };
    run.importAll({threeVariables + cast("2", 3), threeVariables + cast("3", 4)});
    EXPECT_NE(run.sample.bytes(".var"), var);
}

TEST(ImportList, AStationOfAnEarlierFileThatOutgrewItsPlaceIsFoundByALaterOne)
{
    RListImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 10) + cast("3", 3, 10));
    run.options.run.existing = Existing::replace;
    run.importAll({threeVariables + cast("1", 9, 20) + cast("2", 9, 20), threeVariables + cast("1", 12, 30),
                   threeVariables + cast("3", 4, 30)});
    EXPECT_EQ(run.collection().stationCount, 3);
    EXPECT_TRUE(run.told("Stations: 4 read, 0 added, 4 replaced."));
    for (int n = 1; n <= 3; ++n)
        EXPECT_EQ(run.load(n).values[2][0], run.load(n).label() == "2" ? 20 : 30) << run.load(n).label();
}

TEST(ImportList, AReadersErrorEndsTheListAndNamesTheFile)
{
    RListImports run;
    run.importAll({threeVariables + cast("1", 3), threeVariables + replaced(cast("2", 3), "07/", "77/"),
                   threeVariables + cast("3", 3)});
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.labels(), Labels{"1"}); // what was stored before stays
    EXPECT_TRUE(run.told("File " + run.file(2) + " has ended the import of the list."));
    EXPECT_TRUE(run.told("1 Stations Imported from\n\nMultiple Files"));
}

TEST(ImportList, AMissingFileEndsTheList)
{
    RListImports run;
    std::ofstream(run.listPath()) << "1.txt\nnone.txt\n1.txt\n";
    std::ofstream(run.file(1)) << threeVariables + cast("1", 3);
    run.result = importing::importFile(Format::spreadsheet, run.collection(), run.sample.station,
                                       run.listPath(), run.options, run.user());
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.labels(), Labels{"1"});
    EXPECT_TRUE(run.told(run.sample.directory.file("none.txt")));
}

TEST(ImportList, AnEmptyFileIsPassedOverWithANoteAndALineInTheLog)
{
    RListImports run;
    run.importAll({threeVariables + cast("1", 3), "", threeVariables + cast("3", 3)});
    EXPECT_EQ(run.result.end, ImportEnd::done);
    EXPECT_EQ(run.labels(), (Labels{"1", "3"}));
    EXPECT_EQ(run.user().notes, Labels{run.file(2) + ": is empty"});
    EXPECT_EQ(run.countInLog("ERROR: IMPORT     0 Stations " + run.file(2)), 1);
}

TEST(ImportList, EscapeEndsTheWholeListAndKeepsWhatWasStored)
{
    std::string many;
    for (int i = 0; i < 15; ++i) many += cast(std::to_string(i), 2);
    RListImports run;
    run.user().abortAfter = 1;
    run.importAll({threeVariables + many, threeVariables + cast("x", 2)});
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_EQ(run.collection().stationCount, 10);
    EXPECT_TRUE(run.told("10 Stations Imported from\n\nMultiple Files"));
    EXPECT_TRUE(run.told("Stations: 11 read, 10 added, 0 replaced, 1 not written."));
    EXPECT_FALSE(run.user().abort);
}

TEST(ImportList, YesToAllHoldsForTheFilesBehind)
{
    RListImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 10));
    run.user().choices = {1, 2};
    run.importAll({threeVariables + cast("1", 3, 20), threeVariables + cast("2", 3, 20)});
    EXPECT_EQ(run.user().choices.size(), 1U);
    EXPECT_EQ(run.load(2).values[2][0], 20);
}

TEST(ImportList, MergesAreSummedUp)
{
    RListImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 10));
    run.importAll({threeVariables + cast("1", 3, 20), threeVariables + cast("2", 3, 30)}, ImportMode::merge);
    EXPECT_EQ(run.messages(), Labels{"Importing Station-Data ...: 2 Stations Merged from\n\nMultiple Files"});
    EXPECT_TRUE(run.told("Stations: 2 read, 2 merged."));
    EXPECT_TRUE(run.told("0 stored, 12 averaged, 6 levels there already."));
    EXPECT_EQ(run.load(1).values[2][0], 15);
    EXPECT_EQ(run.load(2).values[2][0], 20);
}

TEST(ImportList, AFaultyListIsToldWithItsLine)
{
    RListImports run;
    std::ofstream(run.listPath()) << "\n\n";
    run.result = importing::importFile(Format::spreadsheet, run.collection(), run.sample.station,
                                       run.listPath(), run.options, run.user());
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.user().messages, Labels{"NVQ Data Import: " + run.listPath() + ":2: names no file"});
    EXPECT_FALSE(run.collection().isChanging());
}

// Answers each question the same way and counts them.
class RCountingSettler : public RImportSettler {
public:
    int properties = 0, headerVariables = 0, imports = 0, identified = 0;
    bool settleProperties(SPREADSHEETDESC& desc, std::span<const std::string>) override
    {
        ++properties;
        desc.sepChars = ';';
        desc.sepIndex = 1;
        return true;
    }
    bool settleHeaderVariables(SPREADSHEETDESC&, std::span<const std::string>) override
    {
        ++headerVariables;
        return true;
    }
    bool settleImport(IMPORTCHOICES& choices) override
    {
        ++imports;
        choices.checkExisting = false;
        choices.sources[2].scale = 2;
        return true;
    }
    int identify(std::string_view, std::string_view, std::span<const collection::VARINFO>) override
    {
        ++identified;
        return 0;
    }
    std::optional<std::string> chooseDescription(std::string_view, const std::string&) override
    {
        return std::nullopt;
    }
};

TEST(ImportList, AListWhoseFirstFileIsCancelledHasNoReport)
{
    class RCancel : public RCountingSettler {
    public:
        bool settleImport(IMPORTCHOICES&) override { return false; }
    } settler;
    RListImports run;
    run.import(cast("1", 3));
    const std::string log = run.sample.bytes(".log");
    run.options.settler = &settler;
    run.importAll({threeVariables + cast("2", 3), threeVariables + cast("3", 3)});
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_TRUE(run.user().messages.empty());
    EXPECT_EQ(run.sample.bytes(".log"), log);
    EXPECT_FALSE(run.collection().isChanging());
    EXPECT_EQ(run.collection().cruiseCount, 1);
    EXPECT_EQ(run.user().busy, 0);
    EXPECT_EQ(run.labels(), Labels{"1"});
}

TEST(ImportList, FilesOfOneLayoutAreSettledOnce)
{
    RCountingSettler settler;
    RListImports run;
    run.options.settler = &settler;
    const auto semicolons = [](const std::string& text) { return replaced(text, "\t", ";"); };
    run.importAll({semicolons(threeVariables + cast("1", 3, 10)),
                   semicolons(threeVariables + cast("1", 3, 10)), threeVariables + cast("3", 3, 10)});
    EXPECT_EQ(run.result.end, ImportEnd::done);
    EXPECT_EQ(settler.properties, 1);
    EXPECT_EQ(settler.imports, 1);
    EXPECT_EQ(run.labels(), (Labels{"1", "1", "3"}));
    for (int n = 1; n <= 3; ++n) EXPECT_EQ(run.load(n).values[2][0], 20);
}

TEST(ImportList, AFileOfOtherColumnsIsSettledAnew)
{
    RCountingSettler settler;
    RListImports run;
    run.options.settler = &settler;
    const std::string other = metaHeader + "\tDepth [m]\tSalinity [psu]\n";
    run.importAll({threeVariables + cast("1", 3), other + line("2", "10\t35")});
    EXPECT_EQ(run.result.end, ImportEnd::done);
    EXPECT_EQ(settler.imports, 2);
    EXPECT_EQ(run.load(2).values[3][0], 70);
}

TEST(ImportList, TheDescriptionOfListingsIsAskedForOnce)
{
    class RDescribing : public RCountingSettler {
    public:
        std::string answer;
        int asked = 0;
        std::optional<std::string> chooseDescription(std::string_view, const std::string& proposal) override
        {
            ++asked;
            return answer.empty() ? proposal : answer;
        }
    };
    const RTemporaryDirectory directory;
    std::ofstream(directory.file("b.var")) << "x";
    RDescribing beside;
    RListSettler each(beside);
    EXPECT_EQ(each.chooseDescription("a.o3x", directory.file("a.var")), directory.file("a.var"));
    EXPECT_EQ(each.chooseDescription("b.o3x", directory.file("b.var")), directory.file("b.var"));
    EXPECT_EQ(beside.asked, 1);
    EXPECT_EQ(each.chooseDescription("c.o3x", directory.file("c.var")), directory.file("c.var"));
    EXPECT_EQ(beside.asked, 2); // it isn't there
    RDescribing other;
    other.answer = "common.var";
    RListSettler all(other);
    EXPECT_EQ(all.chooseDescription("a.o3x", "a.var"), "common.var");
    EXPECT_EQ(all.chooseDescription("b.o3x", "b.var"), "common.var");
    EXPECT_EQ(other.asked, 1);
}

TEST(ImportFile, APathOfAListIsKnownByItsEnding)
{
    EXPECT_TRUE(isFileList("a.lst"));
    EXPECT_TRUE(isFileList("/x/A.LST"));
    EXPECT_FALSE(isFileList(".lst"));
    EXPECT_FALSE(isFileList("a.lst.txt"));
    EXPECT_FALSE(isFileList("alst"));
}

} // namespace
