#include "collection/varfile.h"

#include <filesystem>

#include <gtest/gtest.h>

#include "common/text.h"
#include "filesizelimit.h"
#include "samplecollection.h"

namespace collection {
namespace {

std::string head(const std::string& name, const std::string& stations, const std::string& variables)
{
    return "NVQ4.0\nCollection: " + name + "\n      Type: HYD\n     Nstat: " + stations +
           "\n Variables: " + variables + "\n\n";
}

std::string line(std::string label, const std::string& format)
{
    label.resize(60, ' ');
    return label + format + "\n";
}

const std::string good = head("abc", "12", "2") + line("Depth [m]", " 8.2") + line("Salinity [psu]", " 9.3");

VarFileResult parse(std::string_view text, VARDESCRIPTION& out)
{
    VARFAULT fault;
    return parseVarFile(text, out, fault);
}

int faultLine(std::string_view text)
{
    VARDESCRIPTION out;
    VARFAULT fault;
    EXPECT_EQ(parseVarFile(text, out, fault), VarFileResult::badFormat);
    EXPECT_FALSE(fault.text.empty());
    return fault.line;
}

// The format of a single variable as it comes out of a file.
std::string formatOf(const std::string& text)
{
    VARDESCRIPTION out;
    EXPECT_EQ(parse(head("a", "0", "1") + line("X", text), out), VarFileResult::ok);
    return common::format("%d.%d", out.variables[1].width, out.variables[1].decimals);
}

TEST(ParseVarFile, AllFieldsComeOut)
{
    VARDESCRIPTION out;
    ASSERT_EQ(parse(good, out), VarFileResult::ok);
    EXPECT_EQ(out.name, "abc");
    EXPECT_EQ(out.type, "HYD");
    EXPECT_EQ(out.stationCount, 12);
    EXPECT_EQ(out.variableCount, 2);
    EXPECT_STREQ(out.variables[1].label, "Depth [m]");
    EXPECT_STREQ(out.variables[2].shortLabel, "Salinity");
    EXPECT_EQ(out.variables[2].width, 9);
    EXPECT_EQ(out.variables[2].decimals, 3);
    EXPECT_EQ(out.variables[2].position, 2);
}

TEST(ParseVarFile, LabelOfSixtyCharactersHasNoBlankBeforeTheWidthAndStillParses)
{
    const std::string label(60, 'L');
    VARDESCRIPTION out;
    ASSERT_EQ(parse(head("a", "0", "1") + label + "12.3\n", out), VarFileResult::ok);
    EXPECT_EQ(common::fieldText(out.variables[1].label), label);
    EXPECT_EQ(out.variables[1].width, 12);
    EXPECT_EQ(out.variables[1].decimals, 3);
}

TEST(ParseVarFile, WidthIsKeptBetweenDecimalsPlus3AndPlus15)
{
    EXPECT_EQ(formatOf(" 2.3"), "6.3");
    EXPECT_EQ(formatOf("30.1"), "16.1");
    EXPECT_EQ(formatOf(" 8.2"), "8.2");
}

TEST(ParseVarFile, DecimalsAreKeptBetween0And4)
{
    EXPECT_EQ(formatOf(" 8.-1"), "8.0");
    EXPECT_EQ(formatOf(" 8.7"), "8.4");
}

TEST(ParseVarFile, AFormatThatIsMissingOrNonsenseGivesTheSmallest)
{
    EXPECT_EQ(formatOf(""), "3.0");
    EXPECT_EQ(formatOf("abc"), "3.0");
    EXPECT_EQ(formatOf("9"), "9.0");
    EXPECT_EQ(formatOf("99999999999.9"), "3.0");
}

TEST(ParseVarFile, OnlyThreeCharactersOfTheFirstLineCount)
{
    VARDESCRIPTION out;
    std::string text = good;
    text.replace(0, 6, "NVQ9.7");
    EXPECT_EQ(parse(text, out), VarFileResult::ok);
    text.replace(0, 3, "nvq");
    EXPECT_EQ(faultLine(text), 1);
    EXPECT_EQ(faultLine(""), 1);
}

TEST(ParseVarFile, CountsThatDontReadAreRefused)
{
    EXPECT_EQ(faultLine(head("a", "x", "1")), 4);
    EXPECT_EQ(faultLine(head("a", "", "1")), 4);
    EXPECT_EQ(faultLine(head("a", "99999999999", "1")), 4);
    EXPECT_EQ(faultLine(head("a", "1", "one")), 5);
}

TEST(ParseVarFile, NegativeCountsAreRefused)
{
    EXPECT_EQ(faultLine(head("a", "-1", "1")), 4);
    EXPECT_EQ(faultLine(head("a", "1", "-1")), 5);
}

TEST(ParseVarFile, FiftyVariablesAreReadAndFiftyOneRefused)
{
    VARDESCRIPTION out;
    EXPECT_EQ(parse(head("a", "1", "50"), out), VarFileResult::ok);
    EXPECT_EQ(faultLine(head("a", "1", "51")), 5);
}

TEST(ParseVarFile, ANameThatLeadsElsewhereIsRefused)
{
    EXPECT_EQ(faultLine(head("../x", "1", "1")), 2);
    EXPECT_EQ(faultLine(head("", "1", "1")), 2);
    EXPECT_EQ(faultLine(head(std::string("a\0b", 3), "1", "1")), 2);
}

TEST(ParseVarFile, ANameOfDigitsKeepsThem)
{
    VARDESCRIPTION out;
    ASSERT_EQ(parse(head("2010.10", "1", "0"), out), VarFileResult::ok);
    EXPECT_EQ(out.name, "2010.10");
}

TEST(ParseVarFile, ALongNameIsReadWhole)
{
    const std::string name(255, 'n');
    VARDESCRIPTION out;
    ASSERT_EQ(parse(head(name, "1", "0"), out), VarFileResult::ok);
    EXPECT_EQ(out.name, name);
}

TEST(ParseVarFile, CarriageReturnsBeforeLineFeedsAreDropped)
{
    VARDESCRIPTION out;
    ASSERT_EQ(parse(common::replaceAll(good, "\n", "\r\n"), out), VarFileResult::ok);
    EXPECT_EQ(out.name, "abc");
    EXPECT_EQ(out.variables[2].decimals, 3);
}

TEST(ParseVarFile, FewerLinesThanVariablesLeaveEmptyLabels)
{
    VARDESCRIPTION out;
    ASSERT_EQ(parse(head("a", "1", "3") + line("Depth [m]", " 8.2"), out), VarFileResult::ok);
    EXPECT_EQ(out.variableCount, 3);
    EXPECT_STREQ(out.variables[3].label, "");
    EXPECT_EQ(out.variables[3].width, 3);
}

TEST(ReadVarFile, ADescriptionWithoutItsLastLinesIsTold)
{
    const testing_support::RTemporaryDirectory directory;
    testing_support::RScriptedUser user;
    ASSERT_TRUE(common::writeFile(directory.file("a.var"), head("a", "1", "3") + line("Depth [m]", " 8.2")));
    RCollection collection;
    EXPECT_EQ(collection.readVarFile(directory.file("a.var"), "", user), VarFileResult::ok);
    ASSERT_EQ(user.notes.size(), 1u);
    EXPECT_EQ(user.notes[0],
              directory.file("a.var") + ": ends before line 8; variables 2 to 3 have no label");
}

TEST(ParseVarFile, CutAtEveryLengthIsRefusedOrReadsAPart)
{
    const std::size_t counted = head("abc", "12", "2").find("Variables: 2") + 12;
    for (std::size_t length = 0; length <= good.size(); ++length) {
        VARDESCRIPTION out;
        VARFAULT fault;
        const VarFileResult result = parseVarFile(std::string_view(good).substr(0, length), out, fault);
        EXPECT_EQ(result == VarFileResult::ok, length >= counted) << length;
        EXPECT_EQ(out.variableCount, length >= counted ? 2 : 0) << length;
    }
}

TEST(FormatVarFile, WritesWhatTheReaderReads)
{
    VARDESCRIPTION out;
    ASSERT_EQ(parse(good, out), VarFileResult::ok);
    EXPECT_EQ(formatVarFile(out.name, out.type, out.stationCount, out.variableCount, out.variables), good);
}

TEST(FormatVarFile, ALabelThatReadsAsANumberDoesntChange)
{
    for (const std::string& label : {std::string("12.50"), std::string(60, '.'), std::string("1..")}) {
        VARDESCRIPTION first, second;
        ASSERT_EQ(parse(head("a", "0", "1") + line(label, " 8.2"), first), VarFileResult::ok);
        EXPECT_EQ(common::fieldText(first.variables[1].label), label);
        ASSERT_EQ(parse(formatVarFile("a", "HYD", 0, 1, first.variables), second), VarFileResult::ok);
        EXPECT_EQ(common::fieldText(second.variables[1].label), label);
    }
}

TEST(FormatVarFile, ControlCharactersInLabelsDontBreakTheLines)
{
    VARDESCRIPTION out;
    std::array<VARINFO, 2> variables{emptyVariable(0), emptyVariable(1)};
    setLabel(variables[1], "a\nb [m]");
    ASSERT_EQ(parse(formatVarFile("n", "HYD", 0, 1, variables), out), VarFileResult::ok);
    EXPECT_STREQ(out.variables[1].label, "a b [m]");
}

class VarFile : public testing::Test {
protected:
    void put(const std::string& name, std::string_view text)
    {
        const common::FilePtr file = common::openFile(directory.file(name), "wb");
        ASSERT_EQ(std::fwrite(text.data(), 1, text.size(), file.get()), text.size());
    }
    testing_support::RTemporaryDirectory directory;
    testing_support::RScriptedUser user;
    RCollection collection;
};

TEST_F(VarFile, MissingFileIsReportedUnderATitleOnly)
{
    const std::string path = directory.file("none");
    EXPECT_EQ(collection.readVarFile(path, "", user), VarFileResult::missing);
    EXPECT_TRUE(user.messages.empty());
    EXPECT_EQ(collection.readVarFile(path, "Title", user), VarFileResult::missing);
    ASSERT_EQ(user.messages.size(), 1U);
    EXPECT_EQ(user.messages[0], "Title: Collection \"" + path + ".var\" does not exist!");
}

TEST_F(VarFile, OldFormatIsRefusedWithItsText)
{
    put("old.var", "LIST3.0\n");
    EXPECT_EQ(collection.readVarFile(directory.file("old"), "Title", user), VarFileResult::badFormat);
    EXPECT_EQ(user.messages.at(0), "Title: Collection is of pre-NVQ4.0 Format");
}

TEST_F(VarFile, BadCountIsToldWithFileAndLineAndChangesNothing)
{
    const std::string text = head("a", "1", "51");
    put("a.var", text);
    collection.name = "before";
    EXPECT_EQ(collection.readVarFile(directory.file("a.var"), "", user), VarFileResult::badFormat);
    ASSERT_EQ(user.messages.size(), 1U);
    EXPECT_NE(user.messages[0].find(directory.file("a.var") + ":5: 51 variables"), std::string::npos);
    EXPECT_EQ(collection.name, "before");
    EXPECT_EQ(common::readFile(directory.file("a.var")), text);
}

TEST_F(VarFile, AllFieldsAreSetWithOrWithoutTheExtension)
{
    put("abc.var", good);
    for (const char* const file : {"abc", "abc.var"}) {
        RCollection read;
        ASSERT_EQ(read.readVarFile(directory.file(file), "", user), VarFileResult::ok);
        EXPECT_EQ(read.path, directory.file("abc"));
        EXPECT_EQ(read.directory, directory.path());
        EXPECT_EQ(read.stationCount, 12);
        EXPECT_EQ(read.totalVariableCount, 2);
        EXPECT_EQ(read.headerRecordSize, 84);
    }
}

TEST_F(VarFile, ACopyUnderAnotherNameLooksForTheOldDataFiles)
{
    put("copy.var", good);
    ASSERT_EQ(collection.readVarFile(directory.file("copy"), "", user), VarFileResult::ok);
    EXPECT_EQ(collection.name, "abc");
    EXPECT_EQ(collection.path, directory.file("abc"));
}

TEST_F(VarFile, APointInTheNameIsNoExtension)
{
    put("a.b.var", head("a.b", "0", "1"));
    ASSERT_EQ(collection.readVarFile(directory.file("a.b"), "", user), VarFileResult::ok);
    EXPECT_EQ(collection.path, directory.file("a.b"));
}

TEST_F(VarFile, AnEndlessFileIsNotRead)
{
    put("big.var", good + std::string(2 << 20, 'x'));
    EXPECT_EQ(collection.readVarFile(directory.file("big"), "", user), VarFileResult::badFormat);
    EXPECT_EQ(user.messages.size(), 1U);
}

TEST_F(VarFile, ADirectoryOfThatNameIsMissing)
{
    std::filesystem::create_directory(directory.file("d.var"));
    EXPECT_EQ(collection.readVarFile(directory.file("d"), "", user), VarFileResult::missing);
}

TEST_F(VarFile, IsNotWrittenUnlessTheCollectionIsWritable)
{
    collection.variableCount = 0;
    EXPECT_FALSE(collection.writeVarFile(directory.file("x")));
    EXPECT_FALSE(common::fileExists(directory.file("x.var")));
    collection.writable = true;
    EXPECT_TRUE(collection.writeVarFile(directory.file("x")));
    EXPECT_TRUE(common::fileExists(directory.file("x.var")));
}

TEST_F(VarFile, IsWrittenThroughTheNameOfTheTarget)
{
    collection.writable = true;
    collection.name = "source";
    ASSERT_TRUE(collection.writeVarFile(directory.file("target")));
    RCollection read;
    ASSERT_EQ(read.readVarFile(directory.file("target"), "", user), VarFileResult::ok);
    EXPECT_EQ(read.name, "target");
}

TEST_F(VarFile, AFailedWriteLeavesTheOldFile)
{
    collection.writable = true;
    ASSERT_TRUE(collection.writeVarFile(directory.file("x")));
    const auto before = common::readFile(directory.file("x.var"));
    collection.stationCount = 5;
    {
        const testing_support::RFileSizeLimit full(10);
        EXPECT_FALSE(collection.writeVarFile(directory.file("x")));
    }
    EXPECT_EQ(common::readFile(directory.file("x.var")), before);
    EXPECT_EQ(std::distance(std::filesystem::directory_iterator(directory.path()), {}), 1);
}

TEST_F(VarFile, AMissingDirectoryCantBeWrittenTo)
{
    collection.writable = true;
    EXPECT_FALSE(collection.writeVarFile(directory.file("no/such/x")));
}

} // namespace
} // namespace collection
