#include <new>

#include <gtest/gtest.h>

#include "export/stationexport.h"
#include "samplecollection.h"
#include "selection/selectedlist.h"

namespace {

using namespace testing_support;
using exporting::ExportEnd;

// Takes so many stations, and then does as it is told.
class RTestSink : public exporting::RStationSink {
public:
    enum class Then { refuse, throwNoMemory };
    RTestSink(int stations, Then then, std::string text = {})
        : left_(stations), then_(then), text_(std::move(text))
    {
    }
    bool write(const collection::STATIONDATA& station) override
    {
        numbers.push_back(station.number);
        if (left_-- > 0) return true;
        if (then_ == Then::throwNoMemory) throw std::bad_alloc();
        return false;
    }
    bool commit() override
    {
        committed = true;
        return left_ > 0;
    }
    std::string fault() const override { return text_; }

    std::vector<int> numbers;
    bool committed = false;

private:
    int left_;
    Then then_;
    std::string text_;
};

class StationExport : public testing::Test {
protected:
    StationExport()
    {
        for (const char* name : {"1", "2", "3"}) sample.put(profile(3, 4), 0, "A", name);
        sample.collection.makeTempId();
        EXPECT_TRUE(sample.collection.openTemporaryFiles());
        EXPECT_EQ(selection::buildSelectedList(sample.collection, {}, "test", sample.user), 3);
        sample.collection.neededMask.fill(7);
    }
    ~StationExport() override { sample.collection.closeTemporaryFiles(); }

    ExportEnd run(RTestSink& sink)
    {
        const ExportEnd end = exporting::exportStations(
            {sample.collection, sample.station, variables, "path", texts, sample.user}, sink);
        EXPECT_EQ(sample.user.busy, 0);
        EXPECT_EQ(sample.collection.neededMask[3], 7);
        EXPECT_EQ(sample.station.number, 3); // as before
        return end;
    }

    RSampleCollection sample;
    const std::vector<int> variables{1, 2};
    static constexpr exporting::EXPORTTEXTS texts{"Caption", "Busy", "Abort?", "%d to %s"};
};

TEST_F(StationExport, ReportsWhatASinkHasTaken)
{
    RTestSink sink(9, RTestSink::Then::refuse);
    EXPECT_EQ(run(sink), ExportEnd::complete);
    EXPECT_EQ(sink.numbers, (std::vector<int>{1, 2, 3}));
    EXPECT_EQ(sample.user.messages, std::vector<std::string>{"Caption: 3 to path"});
}

TEST_F(StationExport, ASinkThatRefusesEndsItAndSaysWhy)
{
    RTestSink silent(1, RTestSink::Then::refuse), speaking(1, RTestSink::Then::refuse, "It is full.");
    EXPECT_EQ(run(silent), ExportEnd::unwritable);
    EXPECT_EQ(run(speaking), ExportEnd::unwritable);
    EXPECT_EQ(sample.user.messages,
              (std::vector<std::string>{"Caption: Could not write file path!", "Caption: It is full."}));
    EXPECT_FALSE(silent.committed);
}

TEST_F(StationExport, WithoutMemoryItEndsWithAMessage)
{
    RTestSink sink(1, RTestSink::Then::throwNoMemory);
    EXPECT_EQ(run(sink), ExportEnd::unwritable);
    EXPECT_EQ(sample.user.messages, std::vector<std::string>{"Caption: There is not enough memory."});
}

TEST_F(StationExport, ChosenVariablesAreThoseThatThereAreAndEachOfThemOnce)
{
    sample.collection.totalVariableCount = 6; // two of them derived
    EXPECT_EQ(exporting::chosenVariables(sample.collection, {}), (std::vector<int>{1, 2, 3, 4}));
    EXPECT_EQ(exporting::chosenVariables(sample.collection, {6, 2, 0, 7, -1, 2, 6}),
              (std::vector<int>{6, 2}));
    EXPECT_EQ(exporting::chosenVariables(sample.collection, {7}), std::vector<int>());
}

} // namespace
