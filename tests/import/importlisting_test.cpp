// Listings on their way into a collection.

#include "import/importlisting.h"

#include <filesystem>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "import/listingfixture.h"
#include "samplecollection.h"

namespace {

using namespace importing;
using namespace testing_support;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::SizeIs;
using testing::StartsWith;

const std::string body4 = "              1              2              3\n"
                          "            0 0       20.125 4           35 1\n"
                          "         10.5 1       -1e+10 8     34.98766 2\n";
const std::string body3 = "            1            2            3\n"
                          "            0       20.125           35\n"
                          "         10.5    -1.0e+010     34.98766\n";

std::string station4(const std::string& label)
{
    HEAD4 head;
    head.station = label;
    return head.line() + body4;
}

// Settles as it is told, and keeps what it was asked.
class RTestSettler : public RImportSettler {
public:
    std::optional<std::string> description;
    bool agrees = true;
    std::vector<std::string> asked;

    bool settleProperties(SPREADSHEETDESC&, std::span<const std::string>) override { return false; }
    bool settleHeaderVariables(SPREADSHEETDESC&, std::span<const std::string>) override { return false; }
    bool settleImport(IMPORTCHOICES& choices) override
    {
        EXPECT_EQ(choices.mode, ImportMode::addReplace);
        EXPECT_TRUE(choices.checkExisting || choices.emptyCollection);
        EXPECT_FALSE(choices.mayUseDefaults);
        return agrees;
    }
    int identify(std::string_view, std::string_view, std::span<const collection::VARINFO>) override
    {
        return 0;
    }
    std::optional<std::string> chooseDescription(std::string_view listing,
                                                 const std::string& proposal) override
    {
        asked = {std::string(listing), proposal};
        return description;
    }
};

class RListingImports {
public:
    RSampleCollection sample{3};
    IMPORTOPTIONS options;
    IMPORTRESULT result;

    [[nodiscard]] std::string file(const std::string& name) const { return sample.directory.file(name); }
    void write(const std::string& name, const std::string& content) const
    {
        std::ofstream(file(name), std::ios::binary) << content;
    }
    RListingImports& import4(const std::string& content)
    {
        write("casts.o4x", content);
        return run(Format::listing4, "casts.o4x");
    }
    RListingImports& run(Format form, const std::string& name)
    {
        sample.user.messages.clear();
        sample.user.notes.clear();
        result = importListing(form, sample.collection, sample.station, file(name), options, sample.user);
        return *this;
    }
    [[nodiscard]] std::vector<std::string>& messages() { return sample.user.messages; }
    [[nodiscard]] READSTATION load(int number)
    {
        EXPECT_EQ(sample.collection.loadStation(number, sample.station, false), collection::LoadResult::ok);
        return copyOf(sample.station, 3);
    }
};

TEST(ImportListing, StoresTheStationsOfAVersion4File)
{
    RListingImports run;
    run.import4(head4(threeLabels, 2) + station4("1") + station4("2"));
    EXPECT_EQ(run.result.end, ImportEnd::done);
    EXPECT_EQ(run.result.stationsStored, 2);
    EXPECT_THAT(run.messages(),
                ElementsAre(StartsWith("Importing Station-Data ...: 2 Stations Imported from\n\ncasts.o4x")));
    EXPECT_THAT(run.sample.user.notes, IsEmpty());
    EXPECT_EQ(run.load(2).label(), "2");
    EXPECT_THAT(run.load(2).flags[2], ElementsAre(4, 1));
    EXPECT_EQ(run.sample.user.busy, 0);
    EXPECT_NE(run.sample.bytes(".var").find("Nstat: 2\n"), std::string::npos);
}

TEST(ImportListing, StoresTheStationsOfAVersion3FileWithItsDescriptionBesideIt)
{
    RListingImports run;
    run.write("casts.o3x", HEAD4().line3() + body3);
    run.write("casts.var", description3(threeLabels));
    run.run(Format::listing3, "casts.o3x");
    EXPECT_EQ(run.result.stationsStored, 1);
    EXPECT_THAT(run.load(1).values[3], ElementsAre(35, 34.98766f));
    EXPECT_THAT(run.load(1).flags[3], ElementsAre(1, 1));
}

TEST(ImportListing, AForeignFileIsRefused)
{
    RListingImports run;
    run.import4("Cruise\tStation\n");
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_THAT(run.messages(), ElementsAre("Opening .o4x file ...: Import File is not of .o4x Format!\n\n" +
                                            run.file("casts.o4x")));
}

TEST(ImportListing, AHeaderThatCantBeReadIsToldWithItsLine)
{
    RListingImports run;
    run.import4(replaced(head4(threeLabels), "Nstat: 1", "Nstat: x") + station4("1"));
    EXPECT_THAT(run.messages(), ElementsAre("Opening .o4x file ...: " + run.file("casts.o4x") +
                                            ":4: no valid number of stations"));
}

TEST(ImportListing, AMissingDescriptionIsToldByName)
{
    RListingImports run;
    run.write("casts.o3x", HEAD4().line3() + body3);
    run.run(Format::listing3, "casts.o3x");
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_THAT(run.messages(), ElementsAre(HasSubstr("File " + run.file("casts.var") + " not found!")));
}

TEST(ImportListing, NumbersThatDontFitADescriptionAreToldWithTheirLine)
{
    RListingImports run;
    run.write("casts.o3x", HEAD4().line3() + body3);
    run.write("casts.var", replaced(description3(threeLabels), "Nvar:   3", "Nvar:   x"));
    run.run(Format::listing3, "casts.o3x");
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_THAT(run.messages(), ElementsAre("NVQ Data Import: " + run.file("casts.var") +
                                            ":1: no valid number of variables"));
}

TEST(ImportListing, TheUserMayChooseAnotherDescriptionOrCancel)
{
    RListingImports run;
    RTestSettler settler;
    run.options.settler = &settler;
    run.write("casts.o3x", HEAD4().line3() + body3);
    run.write("other.var", description3(threeLabels));
    run.run(Format::listing3, "casts.o3x");
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_THAT(settler.asked, ElementsAre(run.file("casts.o3x"), run.file("casts.var")));
    EXPECT_THAT(run.messages(), IsEmpty());
    settler.description = run.file("other.var");
    run.run(Format::listing3, "casts.o3x");
    EXPECT_EQ(run.result.stationsStored, 1);
    settler.agrees = false;
    run.run(Format::listing3, "casts.o3x");
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_EQ(run.sample.collection.stationCount, 1);
}

TEST(ImportListing, AMissingFileIsTold)
{
    RListingImports run;
    run.run(Format::listing4, "none.o4x");
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_THAT(run.messages(), ElementsAre(HasSubstr(run.file("none.o4x"))));
    run.write("none.var", description3(threeLabels));
    run.run(Format::listing3, "none.o3x");
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_THAT(run.messages(), ElementsAre(HasSubstr(run.file("none.o3x"))));
}

TEST(ImportListing, ABadHeaderKeepsTheStationsBeforeItAndGivesTheReason)
{
    RListingImports run;
    run.import4(head4(threeLabels, 3) + station4("1") + replaced(station4("2"), " 7/15/", " x/15/") +
                station4("3"));
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.sample.collection.stationCount, 1);
    ASSERT_THAT(run.messages(), SizeIs(2));
    EXPECT_THAT(run.messages()[0],
                StartsWith("Error reading input file ...: Could not interpret header line 15."));
    EXPECT_THAT(run.messages()[0], HasSubstr("\n\nreason: stopped at character 47 (month)."));
    EXPECT_THAT(run.messages()[1], HasSubstr("1 Stations Imported from"));
}

TEST(ImportListing, AnInvalidDateIsToldAndEndsTheImport)
{
    RListingImports run;
    run.import4(head4(threeLabels, 2) + station4("1") + replaced(station4("2"), "/1995", "/1899"));
    EXPECT_EQ(run.sample.collection.stationCount, 1);
    EXPECT_THAT(run.messages()[0],
                StartsWith("NVQ Data Import: Invalid Date (mm/dd/yyyy) 7/15/1899 for Station\n\nA16 2\n\n"));
    EXPECT_THAT(run.messages()[1], HasSubstr("Could not interpret header line 15."));
}

TEST(ImportListing, AnotherNumberOfStationsThanAnnouncedIsNoted)
{
    RListingImports run;
    run.import4(head4(threeLabels, 3) + station4("1") + station4("2"));
    EXPECT_THAT(run.sample.user.notes,
                ElementsAre(run.file("casts.o4x") + ": 3 stations are announced, but there are 2"));
}

TEST(ImportListing, CancelAtALimitEndsTheImportAndKeepsWhatWasStored)
{
    RListingImports run;
    HEAD4 head;
    head.levels = 20001;
    run.sample.user.choices = {1};
    run.import4(head4(threeLabels, 2) + station4("1") + head.line() + body4);
    EXPECT_EQ(run.result.end, ImportEnd::cancelled);
    EXPECT_EQ(run.sample.collection.stationCount, 1);
}

TEST(ImportListing, StationsThatAreThereAreReplaced)
{
    RListingImports run;
    run.import4(head4(threeLabels, 2) + station4("1") + station4("2"));
    run.options.run.existing = Existing::replace;
    run.sample.user.choices = {1}; // all
    run.import4(head4(threeLabels, 2) + replaced(station4("1"), "20.125 4", "21.125 3") + station4("3"));
    EXPECT_EQ(run.sample.collection.stationCount, 3);
    EXPECT_THAT(run.load(1).values[2], ElementsAre(21.125f, missing));
    EXPECT_THAT(run.load(1).flags[2], ElementsAre(3, 1));
}

TEST(ImportListing, VariablesFindTheirTargetsByLabel)
{
    RListingImports run;
    run.import4(head4({"SALINITY [PSU]", "Silicate [x]", "depth [m]"}) + station4("1"));
    EXPECT_THAT(run.sample.user.notes, ElementsAre(HasSubstr("not imported: \"Silicate [x]\"")));
    const READSTATION s = run.load(1);
    EXPECT_THAT(s.values[1], ElementsAre(34.98766f, 35)); // sorted by it
    EXPECT_THAT(s.values[2], IsEmpty());
    EXPECT_THAT(s.values[3], ElementsAre(10.5f, 0));
}

TEST(ImportListing, TheDispatchKnowsBothForms)
{
    RListingImports run;
    run.write("casts.o4x", head4(threeLabels) + station4("1"));
    EXPECT_EQ(importFile(Format::listing4, run.sample.collection, run.sample.station, run.file("casts.o4x"),
                         run.options, run.sample.user)
                  .stationsStored,
              1);
}

// --- the variables of a new collection

TEST(ListingVariables, BecomeThoseOfTheCollection)
{
    RListingImports run;
    run.write("casts.o4x", replaced(head4({"Depth [m]", "X"}), "HYD", "TRJ"));
    collection::RCollection made;
    LISTINGHEADER header;
    ASSERT_TRUE(
        listingVariables(Format::listing4, run.file("casts.o4x"), nullptr, made, header, run.sample.user));
    EXPECT_EQ(made.variableCount, 2);
    EXPECT_EQ(made.totalVariableCount, 2);
    EXPECT_EQ(made.headerRecordSize, 84);
    EXPECT_EQ(made.type, "TRJ");
    EXPECT_STREQ(made.variables[2].label, "X");
    EXPECT_STREQ(made.variables[3].label, "");
}

TEST(ListingVariables, TheDescriptionIsChosenOnlyOnce)
{
    RListingImports run;
    RTestSettler settler;
    settler.description = run.file("other.var");
    run.options.settler = &settler;
    run.write("casts.o3x", HEAD4().line3() + body3);
    run.write("other.var", description3(threeLabels));
    collection::RCollection made;
    LISTINGHEADER header;
    ASSERT_TRUE(
        listingVariables(Format::listing3, run.file("casts.o3x"), &settler, made, header, run.sample.user));
    settler.asked.clear();
    run.options.listing = header;
    run.run(Format::listing3, "casts.o3x");
    EXPECT_THAT(settler.asked, IsEmpty());
    EXPECT_EQ(run.result.stationsStored, 1);
}

TEST(ListingVariables, WithoutVariablesThereIsNoCollection)
{
    RListingImports run;
    run.write("casts.o4x", head4({}));
    collection::RCollection made;
    LISTINGHEADER header;
    EXPECT_FALSE(
        listingVariables(Format::listing4, run.file("casts.o4x"), nullptr, made, header, run.sample.user));
    EXPECT_THAT(run.messages(), ElementsAre(HasSubstr("casts.o4x has no variables.")));
    EXPECT_FALSE(
        listingVariables(Format::listing3, run.file("none.o3x"), nullptr, made, header, run.sample.user));
    EXPECT_THAT(run.messages(), Not(SizeIs(1)));
}

} // namespace
