// What an import makes of each station, and the account of it.

#include <random>

#include <gtest/gtest.h>

#include "import/importfixture.h"

namespace {

using namespace importing;
using namespace testing_support;
using collection::STATIONDATA;

void expectSums(const STOREACCOUNT& a)
{
    EXPECT_EQ(a.delivered, a.added + a.replaced + a.merged + a.kept + a.notFound + a.tooLarge + a.unreadable +
                               a.unwritten + a.undone);
    EXPECT_EQ(a.valuesDelivered, a.valuesStored + a.valuesAveraged + a.valuesMatched + a.valuesDropped);
    EXPECT_EQ(static_cast<int>(a.firstNotFound.size()), std::min(a.notFound, 5));
}

// --- what existing stations get

TEST(ImportRun, ReplacesWithoutAQuestionIfThatIsSettled)
{
    RImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 10));
    run.options.run.existing = Existing::replace;
    run.import(cast("2", 3, 20) + cast("3", 3, 20));
    EXPECT_FALSE(run.told("Replace It?"));
    EXPECT_EQ(run.load(2).values[2][0], 20);
    EXPECT_TRUE(run.told("Stations: 2 read, 1 added, 1 replaced."));
}

TEST(ImportRun, KeepsStoredStationsWithoutAQuestionIfThatIsSettled)
{
    RImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 10));
    run.options.run.existing = Existing::keep;
    run.import(cast("2", 3, 20) + cast("3", 3, 20));
    EXPECT_FALSE(run.told("Replace It?"));
    EXPECT_EQ(run.load(2).values[2][0], 10);
    EXPECT_EQ(run.labels(), (Labels{"1", "2", "3"}));
    EXPECT_EQ(run.result.end, ImportEnd::done);
    EXPECT_TRUE(run.told("Stations: 2 read, 1 added, 0 replaced, 1 kept as they were."));
    EXPECT_TRUE(run.told("9 stored, 9 dropped."));
}

TEST(ImportRun, EndsAtTheFirstExistingStationIfThatIsSettled)
{
    RImports run;
    run.import(cast("1", 3, 10) + cast("2", 3, 10));
    run.options.run.existing = Existing::abort;
    run.import(cast("3", 3, 20) + cast("2", 3, 20) + cast("4", 3, 20));
    EXPECT_EQ(run.result.end, ImportEnd::failed);
    EXPECT_EQ(run.labels(), (Labels{"1", "2", "3"})); // what was stored before stays
    EXPECT_EQ(run.load(2).values[2][0], 10);
    EXPECT_EQ(run.user().messages.at(0),
              "Importing Station-Data ...: Station: A16  - 2  - B Already in Collection!\n\nThe import ends "
              "here; what was stored before stays.");
    EXPECT_TRUE(run.told("Stations: 2 read, 1 added, 0 replaced, 1 not written."));
}

// Nobody can be asked.
class RSilentUser : public RScriptedUser {
public:
    bool interactive() const override { return false; }
};

TEST(ImportRun, WhereNobodyIsAskedStationsAreReplacedAndMissingOnesToldTogether)
{
    RImports run;
    run.import(cast("1", 3, 10));
    RSilentUser silent;
    std::string data = threeVariables + cast("1", 3, 20);
    for (int i = 0; i < 8; ++i) data += cast("N" + std::to_string(i), 2);
    std::ofstream(run.path()) << data;
    run.options.mode = ImportMode::merge;
    run.options.run.existing = Existing::ask;
    run.result = importSpreadsheet(run.collection(), run.sample.station, run.path(), run.options, silent);
    ASSERT_EQ(silent.messages.size(), 1U);
    EXPECT_NE(silent.messages[0].find("Stations: 9 read, 1 merged, 8 not in the collection."),
              std::string::npos)
        << silent.messages[0];
    EXPECT_NE(silent.messages[0].find("Not in the collection: A16 - N0 - B, A16 - N1 - B, A16 - N2 - B, "
                                      "A16 - N3 - B, A16 - N4 - B and 3 more."),
              std::string::npos)
        << silent.messages[0];
    run.options.mode = ImportMode::addReplace;
    silent.messages.clear();
    run.result = importSpreadsheet(run.collection(), run.sample.station, run.path(), run.options, silent);
    EXPECT_EQ(silent.messages.size(), 1U);
    EXPECT_EQ(run.load(1).values[2][0], 20);
}

// --- accounts

TEST(ImportRun, TheLogHasTheAccountBehindTheImport)
{
    RImports run;
    run.import(cast("1", 3));
    const std::string log = run.sample.bytes(".log");
    const std::size_t import = log.find("> ann:ship IMPORT     1 Stations ");
    const std::size_t account = log.find("> ann:ship ACCOUNT Lines: ");
    ASSERT_NE(import, std::string::npos);
    ASSERT_NE(account, std::string::npos);
    EXPECT_LT(import, account);
    EXPECT_EQ(std::count(log.begin() + static_cast<std::ptrdiff_t>(import), log.end(), '\n'), 2);
}

TEST(ImportRun, AnUndoneImportIsAccountedAsUndone)
{
    RImports run;
    run.import(cast("1", 3, 10));
    run.user().acceptReports = false;
    run.import(cast("1", 3, 20) + cast("2", 3));
    EXPECT_TRUE(run.told("Stations: 2 read, 1 added, 1 replaced."));
    EXPECT_NE(run.sample.bytes(".log").find("; Stations: 2 read, 0 added, 0 replaced, 2 undone; Values: "),
              std::string::npos)
        << run.sample.bytes(".log");
}

TEST(ImportRun, AnEmptyFileHasAnAccountToo)
{
    RImports run;
    run.importFile("");
    EXPECT_NE(run.sample.bytes(".log").find("ACCOUNT Lines: 0 read; Stations: 0 read, 0 added"),
              std::string::npos);
}

TEST(StoreAccount, TheSumOfFilesNamesTheFirstMissingStationsOnly)
{
    STOREACCOUNT a, b;
    for (int i = 0; i < 3; ++i) addNotFound(a, "a" + std::to_string(i));
    for (int i = 0; i < 9; ++i) addNotFound(b, "b" + std::to_string(i));
    a += b;
    EXPECT_EQ(a.notFound, 12);
    EXPECT_EQ(a.firstNotFound, (std::vector<std::string>{"a0", "a1", "a2", "b0", "b1"}));
}

// A collection of random stations and what random imports do to it.
class RRandomRun {
public:
    RSampleCollection sample{3};
    std::mt19937 random;

    explicit RRandomRun(unsigned seed) : random(seed)
    {
        for (int i = 0; i < 12; ++i) {
            make(sample.station, i);
            EXPECT_EQ(sample.collection.writeStation(0, sample.station, true), collection::WriteResult::ok);
        }
        EXPECT_TRUE(sample.collection.writeVarFile(sample.collection.path));
        sample.collection.readInventory(true, sample.user);
    }

    [[nodiscard]] int upTo(int largest)
    {
        return static_cast<int>(random() % static_cast<unsigned>(largest + 1));
    }

    // Levels that lie close or not, with holes anywhere, also where there is nothing but depth.
    void make(STATIONDATA& station, int label_)
    {
        std::vector<std::vector<float>> columns(3);
        const int levels = 1 + upTo(12);
        for (int k = 0; k < levels; ++k) {
            columns[0].push_back(upTo(20) == 0 ? missing : static_cast<float>(upTo(300)));
            for (std::size_t v = 1; v < 3; ++v)
                columns[v].push_back(upTo(2) == 0 ? missing : static_cast<float>(upTo(100)));
        }
        if (upTo(4) == 0) columns[1 + random() % 2].clear();
        fillStation(station, columns, static_cast<std::uint8_t>(upTo(8)));
        label(station, label_ % 2 == 0 ? "A" : "B", std::to_string(label_), "B");
        place(station, 10, 20);
    }

    [[nodiscard]] std::int64_t valuesInAll()
    {
        std::int64_t count = 0;
        for (int n = 1; n <= sample.collection.stationCount; ++n) {
            EXPECT_EQ(sample.collection.loadStation(n, sample.station, false), collection::LoadResult::ok);
            count += countValues(sample.station, 3);
        }
        return count;
    }
};

TEST(ImportRun, EveryAccountAddsUpWhateverHappens)
{
    for (unsigned seed = 0; seed < 120; ++seed) {
        SCOPED_TRACE(seed);
        RRandomRun world(seed);
        auto& sample = world.sample;
        const auto mode = static_cast<ImportMode>(1 + world.upTo(2));
        RUNOPTIONS options;
        options.existing = static_cast<Existing>(world.upTo(3));
        for (int i = 0; i < 6; ++i) sample.user.choices.push_back(world.upTo(3));
        if (world.upTo(3) == 0) sample.user.abortAfter = 1 + world.upTo(3);
        sample.user.acceptReports = world.upTo(3) != 0;
        const std::int64_t before = world.valuesInAll();
        const int stationsBefore = sample.collection.stationCount;

        RImportRun run(sample.collection, sample.user, options);
        run.state.checkExisting = world.upTo(4) != 0;
        ASSERT_GT(run.openImport(sample.collection.path + ".var", "x.txt", 0, mode), 0);
        std::int64_t delivered = 0;
        int stations = 0;
        STATIONDATA station;
        for (bool ended = false; !ended && stations < 30; ++stations) {
            world.make(station, world.upTo(20));
            delivered += countValues(station, 3);
            run.state.bytesRead += 100;
            ended = run.importStation(station, 3, 1000);
        }
        run.closeImport(true);

        const STOREACCOUNT& a = run.state.account;
        expectSums(a);
        EXPECT_EQ(a.delivered, stations);
        EXPECT_EQ(a.valuesDelivered, delivered);
        EXPECT_EQ(a.added + a.replaced + a.merged, run.state.stationsStored);
        EXPECT_EQ(sample.collection.stationCount, stationsBefore + a.added);
        EXPECT_EQ(run.state.undoRequested, !sample.user.acceptReports && mode == ImportMode::addReplace);
        const std::int64_t gained = world.valuesInAll() - before;
        if (run.state.undoRequested) {
            EXPECT_EQ(gained, 0);
            EXPECT_EQ(a.added + a.replaced + a.merged, 0);
        } else if (mode == ImportMode::merge || a.replaced + a.merged == 0) {
            EXPECT_EQ(gained, a.valuesStored);
        } else {
            EXPECT_LE(gained, a.valuesStored); // what was replaced has gone
        }
        EXPECT_NE(sample.bytes(".log").find(accountLine(run.state.read, a, mode) + "\n"), std::string::npos);
        EXPECT_EQ(sample.user.busy, 0);
    }
}

TEST(ImportRun, AStationThatCantBeReadOrHeldIsAccountedAndStays)
{
    RImports run;
    run.import(cast("1", 3, 10) + cast("2", 20000, 10));
    std::string many; // beyond what a station can hold together with what is there
    for (int k = 0; k < 20000; ++k)
        many += line("2", common::format("%d.5\t0\t1\t0\t1\t0", 1000000 + 30000 * k));
    run.import(many, ImportMode::merge);
    EXPECT_TRUE(run.told("Too many data points for Station A16 2"));
    EXPECT_TRUE(run.told("Stations: 1 read, 0 merged, 1 too large when merged."));
    EXPECT_EQ(run.load(2).counts[1], 20000);
}

TEST(ImportRun, ProgressIsNotShownForEachStationThatIsDropped)
{
    RImports run;
    std::string data;
    for (int i = 0; i < 10; ++i) data += cast(std::to_string(i), 1);
    run.import(data);
    class RCounting : public RScriptedUser {
    public:
        int updates = 0;
        void setProgress(double percent) override
        {
            ++updates;
            RScriptedUser::setProgress(percent);
        }
    } counting;
    for (int i = 10; i < 210; ++i) data += cast(std::to_string(i), 1);
    std::ofstream(run.path()) << threeVariables << data;
    run.options.mode = ImportMode::update;
    run.result = importSpreadsheet(run.collection(), run.sample.station, run.path(), run.options, counting);
    EXPECT_EQ(run.result.stationsStored, 10);
    EXPECT_EQ(counting.updates, 1);
}

} // namespace
