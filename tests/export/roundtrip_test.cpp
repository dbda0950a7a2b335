// What goes out comes back: random stations through a spreadsheet, and from collection to collection.

#include <algorithm>
#include <clocale>
#include <memory>

#include <QLocale>

#include <gtest/gtest.h>

#include "collection/contents.h"
#include "export/exportcollection.h"
#include "export/spreadsheet.h"
#include "import/importspreadsheet.h"
#include "randomstations.h"
#include "selection/selectedlist.h"

namespace {

using namespace testing_support;
using collection::RCollection;
using collection::STATIONDATA;

// An open collection of random stations, and new ones made of what it exports.
class RTrip {
public:
    explicit RTrip(const std::string& magic, int variables) : sample_(magic, variables) {}

    void fill(const RANDOMSTATIONS& kind) { RRandomStations(kind).fillCollection(sample_.collection); }
    // unflagged: a variable whose flags are those that an import gives by itself.
    void put(RRandomStations& random, int levels)
    {
        random.fill(sample_.station, sample_.collection.variableCount, levels);
        ASSERT_EQ(sample_.collection.writeStation(0, sample_.station, false), collection::WriteResult::ok);
    }
    [[nodiscard]] RCollection& source() { return sample_.collection; }
    [[nodiscard]] std::string file(const std::string& name) const { return sample_.directory.file(name); }
    [[nodiscard]] const RScriptedUser& user() const { return sample_.user; }

    // The spreadsheet of a collection.
    std::string spreadsheetOf(RCollection& collection, const std::string& missingText = {})
    {
        exporting::SPREADSHEETOPTIONS options;
        options.missingText = missingText;
        select(collection);
        STATIONDATA station;
        EXPECT_TRUE(
            exporting::exportSpreadsheet(collection, station, file("out.txt"), options, sample_.user));
        collection.closeTemporaryFiles();
        return common::readFile(file("out.txt")).value_or("no file");
    }

    // The collection that an import makes of a spreadsheet.
    std::unique_ptr<RCollection> imported(const std::string& text, const std::string& magic,
                                          float missingValue = common::MISSING_VALUE)
    {
        const std::string path = file("in.txt");
        EXPECT_TRUE(common::writeFile(path, text));
        auto made = std::make_unique<RCollection>();
        made->directory = made->tempDirectory = sample_.directory.path();
        made->name = common::format("trip%d", ++trips_);
        made->path = file(made->name);
        made->writable = true;
        made->newMagic = magic;
        importing::IMPORTOPTIONS options;
        options.header.emplace();
        EXPECT_TRUE(importing::spreadsheetVariables(path, nullptr, *made, *options.header, sample_.user));
        options.header->desc.missingValue = missingValue;
        EXPECT_TRUE(made->createEmptyFiles());
        EXPECT_EQ(made->openStationFiles(made->path, sample_.user), collection::OpenFilesResult::ok);
        STATIONDATA station;
        EXPECT_EQ(importing::importSpreadsheet(*made, station, path, options, sample_.user).end,
                  importing::ImportEnd::done);
        return made;
    }

    bool exportAs(const std::string& name)
    {
        select(sample_.collection);
        return exporting::exportCollection(sample_.collection, sample_.station, file(name), {}, sample_.user);
    }

private:
    void select(RCollection& collection)
    {
        collection.makeTempId();
        EXPECT_TRUE(collection.openTemporaryFiles());
        EXPECT_EQ(selection::buildSelectedList(collection, {}, "test", sample_.user),
                  collection.stationCount);
    }

    RMagicCollection sample_;
    int trips_ = 0;
};

// All that a station says but the place of its data and what it never had.
std::string bytesOf(RCollection& collection, int number)
{
    STATIONDATA station;
    if (collection.loadStation(number, station, false) != collection::LoadResult::ok) return "unreadable";
    station.header.dataOffset = 0;
    station.header.reserved = 0;
    std::string bytes(reinterpret_cast<const char*>(&station.header), sizeof station.header);
    bytes.append(reinterpret_cast<const char*>(station.levelCount.data()), sizeof station.levelCount);
    const auto cells = static_cast<std::size_t>(station.header.valueCount);
    bytes.append(reinterpret_cast<const char*>(station.values.get()), cells * sizeof(float));
    return bytes.append(reinterpret_cast<const char*>(station.flags.get()), cells);
}

void expectSame(RCollection& a, RCollection& b)
{
    ASSERT_EQ(a.stationCount, b.stationCount);
    for (int n = 1; n <= a.stationCount; ++n)
        ASSERT_EQ(bytesOf(a, n), bytesOf(b, n)) << stationText(a, n) << "\n" << stationText(b, n);
}

void expectSameVariables(const RCollection& a, const RCollection& b)
{
    ASSERT_EQ(a.variableCount, b.variableCount);
    for (std::size_t v = 1; v <= static_cast<std::size_t>(a.variableCount); ++v)
        EXPECT_STREQ(a.variables.at(v).label, b.variables.at(v).label);
}

TEST(RoundTrip, ASpreadsheetBringsValuesOfSixDigitsFlagsLabelsAndTimesBack)
{
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        const std::string& magic = seed % 2 == 0 ? otherMagic : hostMagic;
        RTrip trip(magic, 1 + static_cast<int>(seed) % 7);
        trip.fill({.seed = seed});
        const auto back = trip.imported(trip.spreadsheetOf(trip.source()), magic);
        expectSameVariables(trip.source(), *back);
        expectSame(trip.source(), *back);
    }
}

TEST(RoundTrip, ASpreadsheetOfAnyFloatsIsWhatItsImportExports)
{
    for (unsigned seed = 1; seed <= 12; ++seed) {
        SCOPED_TRACE(seed);
        RTrip trip(hostMagic, 1 + static_cast<int>(seed) % 7);
        trip.fill({.seed = seed, .anyFloat = true});
        const std::string once = trip.spreadsheetOf(trip.source());
        const auto back = trip.imported(once, hostMagic);
        EXPECT_EQ(trip.spreadsheetOf(*back), once);
    }
}

TEST(RoundTrip, AMissingTextThatIsANumberIsReadAsTheMissingValue)
{
    RTrip trip(hostMagic, 4);
    trip.fill({.seed = 5, .anyFloat = false});
    const std::string once = trip.spreadsheetOf(trip.source(), "-123456789");
    EXPECT_NE(once.find("\t-123456789\t8"), std::string::npos);
    const auto back = trip.imported(once, hostMagic, -123456789.0f);
    expectSame(trip.source(), *back);
}

TEST(RoundTrip, ASpreadsheetOfTwentyThousandLevelsComesBack)
{
    RTrip trip(hostMagic, 4);
    RRandomStations random({.seed = 9});
    for (const int levels : {20000, 1, 24999, 501}) trip.put(random, levels);
    const auto back = trip.imported(trip.spreadsheetOf(trip.source()), otherMagic);
    expectSame(trip.source(), *back);
}

TEST(RoundTrip, ASpreadsheetOfManyVariablesComesBack)
{
    RTrip trip(hostMagic, 49);
    trip.fill({.seed = 3, .stations = 12});
    const auto back = trip.imported(trip.spreadsheetOf(trip.source()), hostMagic);
    expectSameVariables(trip.source(), *back);
    expectSame(trip.source(), *back);
}

TEST(RoundTrip, ASpreadsheetOfFiftyVariablesComesBackWithTheFlagsOfTheLast)
{
    RTrip trip(hostMagic, 50);
    RRandomStations random({.seed = 4});
    for (const int levels : {1999, 30, 1}) trip.put(random, levels);
    const auto back = trip.imported(trip.spreadsheetOf(trip.source()), hostMagic);
    expectSameVariables(trip.source(), *back);
    expectSame(trip.source(), *back);
}

TEST(RoundTrip, ASpreadsheetIsTheSameInEveryLocaleOfTheToolkit)
{
    RTrip trip(hostMagic, 5);
    trip.fill({.seed = 7, .anyFloat = true});
    const std::string plain = trip.spreadsheetOf(trip.source());
    const QLocale old;
    for (const QLocale::Language language : {QLocale::German, QLocale::Arabic, QLocale::Hindi}) {
        QLocale::setDefault(QLocale(language));
        EXPECT_EQ(trip.spreadsheetOf(trip.source()), plain) << language;
        EXPECT_EQ(trip.spreadsheetOf(*trip.imported(plain, hostMagic)), plain) << language;
    }
    QLocale::setDefault(old);
}

TEST(RoundTrip, ASpreadsheetIsTheSameWhereTheDecimalPointIsAComma)
{
    bool comma = false;
    for (const char* const name : {"de_DE.UTF-8", "fr_FR.UTF-8", "ru_RU.UTF-8", "de_DE"})
        comma = comma || (std::setlocale(LC_ALL, name) && *std::localeconv()->decimal_point == ',');
    if (!comma) GTEST_SKIP() << "no locale with a decimal comma is installed";
    RTrip trip(hostMagic, 5);
    trip.fill({.seed = 7, .anyFloat = true});
    const std::string there = trip.spreadsheetOf(trip.source());
    EXPECT_EQ(trip.spreadsheetOf(*trip.imported(there, hostMagic)), there);
    std::setlocale(LC_ALL, "C");
    EXPECT_EQ(trip.spreadsheetOf(trip.source()), there);
}

TEST(RoundTrip, FromCollectionToCollectionAllBytesOfTheStationsAreTheSame)
{
    for (unsigned seed = 1; seed <= 8; ++seed) {
        SCOPED_TRACE(seed);
        RTrip trip(seed % 2 == 0 ? otherMagic : hostMagic, seed == 8 ? 50 : 2 + static_cast<int>(seed));
        trip.fill({.seed = seed, .anyFloat = true});
        ASSERT_TRUE(trip.exportAs("made"));
        const std::string path = trip.source().path;
        ASSERT_TRUE(trip.source().writeVarFile(path));
        for (const char* const suffix : {".hob", ".dob"})
            EXPECT_TRUE(common::readFile(path + suffix) == common::readFile(trip.file("made") + suffix))
                << suffix;
        EXPECT_EQ(common::readFile(trip.file("made.var")),
                  common::replaceAll(common::readFile(path + ".var").value_or(""), "Collection: sample",
                                     "Collection: made"));
    }
}

} // namespace
