#include "import/listing.h"

#include <filesystem>
#include <fstream>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/text.h"
#include "temporarydirectory.h"

namespace importing {
namespace {

using testing::HasSubstr;
using testing::StartsWith;

std::string head(const std::string& variables, const std::string& stations = "12")
{
    return "NVQ4.0 Listing\n File Name: arctic\n      Type: HYD\n     Nstat: " + stations +
           "\n Variables: " + variables + "\n\n";
}

std::string line(std::string label, const std::string& format)
{
    label.resize(60, ' ');
    return label + format + "\n";
}

const std::string station =
    "# A                    1                    C  5/ 1/1999  10.000  20.000  4000   "
    "100    1  1\n";
const std::string good = head("2 ") + line("Depth [m]", " 8.2") + line("Salinity [psu]", "10.3") + "\n";

class ListingHeader : public testing::Test {
protected:
    bool read(const std::string& text)
    {
        std::ofstream(folder.file("a.o4x"), std::ios::binary) << text;
        return readListingHeader(folder.file("a.o4x"), header, fault);
    }
    void expectFault(const std::string& text, int lineNumber, const std::string& what)
    {
        header = {};
        header.name = "before";
        EXPECT_FALSE(read(text));
        EXPECT_THAT(fault, StartsWith(folder.file("a.o4x") + common::format(":%d: ", lineNumber)));
        EXPECT_THAT(fault, HasSubstr(what));
        EXPECT_EQ(header.name, "before");
    }

    const testing_support::RTemporaryDirectory folder;
    LISTINGHEADER header;
    std::string fault;
};

TEST_F(ListingHeader, AllFieldsComeOut)
{
    ASSERT_TRUE(read(good + station)) << fault;
    EXPECT_EQ(header.name, "arctic");
    EXPECT_EQ(header.type, "HYD");
    EXPECT_EQ(header.stationCount, 12);
    ASSERT_EQ(header.variables.size(), 3U);
    EXPECT_STREQ(header.variables[1].label, "Depth [m]");
    EXPECT_STREQ(header.variables[2].shortLabel, "Salinity");
    EXPECT_EQ(header.variables[2].width, 10);
    EXPECT_EQ(header.variables[2].decimals, 3);
    EXPECT_EQ(header.variables[2].position, 2);
    EXPECT_EQ(header.lineCount, 9); // variables and seven more
}

TEST_F(ListingHeader, WithoutStations)
{
    ASSERT_TRUE(read(good)) << fault;
    EXPECT_EQ(header.lineCount, 9);
    ASSERT_TRUE(read(good.substr(0, good.size() - 2))) << fault; // no last line end
    EXPECT_EQ(header.variables.size(), 3U);
}

TEST_F(ListingHeader, WithoutVariables)
{
    ASSERT_TRUE(read(head("0 ") + "\n")) << fault;
    EXPECT_EQ(header.variables.size(), 1U);
}

TEST_F(ListingHeader, EmptyLinesBetweenTheBlocksMayBeManyOrNone)
{
    const std::string variables = line("Depth [m]", " 8.2") + line("Salinity [psu]", "10.3");
    ASSERT_TRUE(read(head("2") + "\n \n" + variables + "\n\n\n" + station)) << fault;
    EXPECT_EQ(header.lineCount, 13);
    const std::string tight = head("2");
    ASSERT_TRUE(read(tight.substr(0, tight.size() - 1) + variables + station)) << fault;
    EXPECT_EQ(header.lineCount, 7);
}

TEST_F(ListingHeader, LineEndsOfAllMachinesAreRead)
{
    for (const std::string end : {"\r\n", "\r"}) {
        ASSERT_TRUE(read(common::replaceAll(good + station, "\n", end))) << fault;
        EXPECT_EQ(header.variables.size(), 3U);
        EXPECT_EQ(header.lineCount, 9);
    }
}

TEST_F(ListingHeader, LabelsOfBothCodingsAreTheSame)
{
    const std::string latin1 = head("1") + line("Temperature [\xb0"
                                                "C]",
                                                " 8.2");
    ASSERT_TRUE(read(latin1)) << fault;
    EXPECT_STREQ(header.variables[1].label, "Temperature [\xb0"
                                            "C]");
    std::string label = "Temperature [\xc2\xb0"
                        "C]";
    for (const std::size_t width : {60U, 61U}) { // columns of bytes, columns of characters
        label.resize(width, ' ');
        ASSERT_TRUE(read("\xef\xbb\xbf" + head("1") + label + "12.2\n")) << fault;
        EXPECT_STREQ(header.variables[1].label, "Temperature [\xb0"
                                                "C]");
        EXPECT_EQ(header.variables[1].width, 12);
    }
}

TEST_F(ListingHeader, FullLabelOfTwoByteCharactersKeepsItsEnd)
{
    std::string label;
    for (int i = 0; i < 30; ++i)
        label += "\xc3\xa4"
                 "b"; // 60 characters, 90 bytes
    ASSERT_TRUE(read(head("1") + label + " 9.1\n")) << fault;
    EXPECT_EQ(common::fieldText(header.variables[1].label).size(), 60U);
    EXPECT_EQ(header.variables[1].width, 9);
}

TEST_F(ListingHeader, FullLabelKeepsItsEnd)
{
    ASSERT_TRUE(read(head("1") + line(std::string(60, 'x'), "12.4"))) << fault;
    EXPECT_EQ(common::fieldText(header.variables[1].label), std::string(60, 'x'));
    EXPECT_EQ(header.variables[1].width, 12);
}

TEST_F(ListingHeader, FormatsAreHeldWithinTheirLimits)
{
    const auto format = [&](const std::string& text) {
        EXPECT_TRUE(read(head("1") + line("X", text))) << fault;
        return common::format("%d.%d", header.variables[1].width, header.variables[1].decimals);
    };
    EXPECT_EQ(format(" 8.2)"), "8.2");
    EXPECT_EQ(format("99.9"), "19.4");
    EXPECT_EQ(format(" 0.0"), "3.0");
}

TEST_F(ListingHeader, TypeMayBeMissing)
{
    ASSERT_TRUE(read("NVQ4.0 Listing\n File Name: a\n      Type: \n     Nstat: 1\n Variables: 0\n")) << fault;
    EXPECT_EQ(header.type, "HYD");
}

TEST_F(ListingHeader, ForeignFilesAreRefused)
{
    expectFault("", 1, "");
    expectFault("NVQ4.0\nCollection: a\n", 1, "Import File is not of .o4x Format!");
    expectFault(" NVQ4.0 Listing\n", 1, "Import File is not of .o4x Format!");
    expectFault(std::string(1000, '\0'), 1, "Import File is not of .o4x Format!");
    EXPECT_FALSE(readListingHeader(folder.file("none.o4x"), header, fault));
    EXPECT_THAT(fault, HasSubstr("none.o4x:1: can't be read"));
    EXPECT_FALSE(readListingHeader(folder.path(), header, fault));
}

TEST_F(ListingHeader, CutAtEachLineItNamesTheLast)
{
    for (int lines = 0; lines < 8; ++lines) {
        std::size_t at = 0;
        for (int i = 0; i < lines; ++i) at = good.find('\n', at) + 1;
        expectFault(good.substr(0, at), std::max(lines, 1),
                    lines == 0 ? "first line" : "the file ends before");
    }
}

TEST_F(ListingHeader, CountsAreChecked)
{
    expectFault(head("51"), 5, "51 variables, but a collection has at most 50");
    expectFault(head("-1"), 5, "no valid number of variables");
    expectFault(head("many"), 5, "no valid number of variables");
    expectFault(head("99999999999"), 5, "no valid number of variables");
    expectFault(head("1", "-3"), 4, "no valid number of stations");
    expectFault(head("1", ""), 4, "no valid number of stations");
}

TEST_F(ListingHeader, MissingVariableLinesAreNoticed)
{
    expectFault(head("2") + line("Depth [m]", " 8.2") + "\n" + station, 8,
                "no format behind the label of variable 2 of 2");
    expectFault(head("2") + line("Depth [m]", " 8.2") + station, 8, "no format behind the label");
    expectFault(head("1") + "Depth [m]  8.2\n", 7, "no format behind the label of variable 1 of 1");
    expectFault(head("1") + line("Depth [m]", " 8"), 7, "no format");
    expectFault(head("1") + line("Depth [m]", "-8.2"), 7, "no format");
}

TEST_F(ListingHeader, EndlessLineIsRefused)
{
    expectFault(good.substr(0, good.find("Type")) + std::string(3 << 20, 'x'), 3, "the line is too long");
}

} // namespace
} // namespace importing
