#include "app/commandfile.h"

#include <set>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "common/text.h"
#include "variables/registry.h"

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

std::string optionalText(const std::optional<int>& number)
{
    return number ? std::to_string(*number) : "all";
}

// Writes down what it is asked for.
class RRecorder : public app::RCommandTarget {
public:
    std::vector<std::string> calls;
    std::set<int> refused;
    bool good = true, abort = false;
    std::string wrong;

    bool isAllowed(int id) override { return !refused.contains(id); }
    std::string refusal(int id) override { return refused.contains(id) ? "no collection is open" : ""; }
    bool isAborted() override { return abort; }
    bool openCollection(const std::string& path) override { return keep("open " + path); }
    bool loadConfiguration(const std::string& path) override { return keep("cfg " + path); }
    bool exportGraphics(int window, const std::string& path, int dpi) override
    {
        return keep(common::format("graphics %d %s %d", window, path.c_str(), dpi));
    }
    bool exportData(const std::string& path) override { return keep("data " + path); }
    void quit() override { calls.emplace_back("quit"); }
    std::string createCollection(const std::string& path, const std::string& set) override
    {
        return tell("create " + path + "|" + set);
    }
    std::string copyCollection(const std::string& path) override { return tell("copy " + path); }
    std::string moveCollection(const std::string& path) override { return tell("move " + path); }
    std::string deleteCollection() override { return tell("delete"); }
    std::string sortAndCondense() override { return tell("sort"); }
    std::string changeVariables(const std::string& file) override { return tell("variables " + file); }
    std::string deleteSelected() override { return tell("delete selected"); }
    std::string deleteEmpty() override { return tell("delete empty"); }
    std::string deleteStation(int number) override
    {
        return tell("delete station " + std::to_string(number));
    }
    std::string addLogComment(std::string_view text) override { return tell("log " + std::string(text)); }
    std::string closeCollection() override { return tell("close"); }
    std::string checkCollection(const std::string& path) override { return tell("check " + path); }
    std::string setMode(int mode) override { return tell(common::format("mode %d", mode)); }
    std::string useLayout(std::string_view text) override { return tell("layout " + std::string(text)); }
    std::string setWindow(const app::WINDOWVARIABLES& v) override
    {
        return tell(common::format("window %d %s|%s|%s", v.window, v.x.c_str(), v.y.c_str(),
                                   v.z ? v.z->c_str() : "none"));
    }
    std::string setRange(const app::WINDOWRANGES& r) override
    {
        const double zMin = r.z ? r.z->first : 0, zMax = r.z ? r.z->second : 0;
        return tell(common::format("range %d %g %g %g %g %g %g", r.window, double(r.x.first),
                                   double(r.x.second), double(r.y.first), double(r.y.second), zMin, zMax));
    }
    std::string fullRange(std::optional<int> window) override { return tell("full " + optionalText(window)); }
    std::string setStyle(const app::WINDOWSTYLE& s) override
    {
        return tell(common::format("style %d %d %g", s.window, s.style, double(s.dotSize.value_or(-1))));
    }
    std::string setPalette(int window, std::string_view name) override
    {
        return tell(common::format("palette %d ", window) + std::string(name));
    }
    std::string setDomain(const app::DOMAINCHOICE& d) override
    {
        return tell(common::format("domain %g %g %g %g %d %g %g", d.lonMin, d.lonMax, d.latMin, d.latMax,
                                   d.projection.value_or(-1), d.pole ? d.pole->first : -999,
                                   d.pole ? d.pole->second : -999));
    }
    std::string plotStation(std::optional<int> number) override
    {
        return tell("plot " + optionalText(number));
    }
    std::string setImport(std::span<const app::KEYVALUE> pairs) override
    {
        return tell("import" + textOf(pairs));
    }
    std::string select(std::span<const app::KEYVALUE> pairs) override
    {
        return tell("select" + textOf(pairs));
    }
    std::string importFile(const app::FILEIMPORT& file) override
    {
        return tell(common::format("file %d %s %d", static_cast<int>(file.format), file.path.c_str(),
                                   static_cast<int>(file.mode)));
    }
    std::string exportListing(exporting::ListingForm form, const std::string& path) override
    {
        return tell(common::format("listing %d %s", static_cast<int>(form), path.c_str()));
    }
    std::string exportCollection(const std::string& path) override { return tell("collection " + path); }
    std::string exportSpreadsheet(const app::TABLEEXPORT& table) override
    {
        std::string text = "table " + table.path + "|" + table.missingText;
        for (const std::string& variable : table.variables) text += "|" + variable;
        return tell(text);
    }
    std::string setKey(const std::string& keyText, const std::string& variable) override
    {
        return tell("key " + keyText + "|" + variable);
    }
    std::string addDerived(const app::DERIVEDCHOICE& choice) override
    {
        const auto row = static_cast<std::size_t>(choice.row);
        return tell("derived " + std::string(variables::derivedRows()[row].label) +
                    joined(choice.parameters));
    }
    std::string addExpression(const app::FORMULACHOICE& choice) override
    {
        return tell("expression " + choice.label + common::format("|%d.%d|", choice.width, choice.decimals) +
                    choice.formula + joined(choice.inputs));
    }
    std::string addMacro(const std::string& path, const std::vector<std::string>& inputs) override
    {
        return tell("macro " + path + joined(inputs));
    }
    std::string deleteDerived(const std::string& variable) override { return tell("without " + variable); }

private:
    static std::string joined(const std::vector<std::string>& parts)
    {
        std::string text;
        for (const std::string& part : parts) text += "|" + part;
        return text;
    }
    static std::string textOf(std::span<const app::KEYVALUE> pairs)
    {
        std::string text;
        for (const app::KEYVALUE& pair : pairs) text += " " + pair.key + "|" + pair.value;
        return text;
    }
    bool keep(const std::string& call)
    {
        calls.push_back(call);
        return good;
    }
    std::string tell(const std::string& call)
    {
        calls.push_back(call);
        return wrong;
    }
};

struct RRun {
    RRecorder recorder;
    std::vector<std::string> notes;
    bool complete = false;

    void run(std::string_view content)
    {
        complete = app::runCommands(content, "run.cmd", recorder,
                                    [this](std::string_view note) { notes.emplace_back(note); });
    }
};

RRun run(std::string_view content)
{
    RRun result;
    result.run(content);
    return result;
}

TEST(CommandFile, RunsTheFiveCommands)
{
    const RRun r = run("open_collection /data/a.var\nload_cfg /data/b.cfg\n"
                       "export_graphics -1, /out/c.png , 300\nexport_data out.txt\nquit\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("open /data/a.var", "cfg /data/b.cfg",
                                              "graphics -1 /out/c.png 300", "data out.txt", "quit"));
    EXPECT_THAT(r.notes, IsEmpty());
}

TEST(CommandFile, EmptyUnknownAndCommentLinesAreIgnored)
{
    const RRun r = run("\n   \n# open_collection x.var\nhello world\n\t\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls, IsEmpty());
    EXPECT_THAT(r.notes, IsEmpty());
}

TEST(CommandFile, EmptyFileIsComplete)
{
    EXPECT_TRUE(run("").complete);
}

TEST(CommandFile, CommentIsCutAndBlanksTrimmed)
{
    const RRun r = run("open_collection   /data/a.var   # the first one\n");
    EXPECT_THAT(r.recorder.calls, ElementsAre("open /data/a.var"));
}

TEST(CommandFile, BothSeparatorsWorkInPaths)
{
    const RRun r = run("open_collection \\data\\a.var\nexport_graphics 0,out\\b.eps,1\n");
    EXPECT_THAT(r.recorder.calls, ElementsAre("open /data/a.var", "graphics 0 out/b.eps 1"));
}

TEST(CommandFile, KeywordMayStandAnywhere)
{
    const RRun r = run("please open_collection a.var\n...export_data b.txt\n");
    EXPECT_THAT(r.recorder.calls, ElementsAre("open a.var", "data b.txt"));
}

TEST(CommandFile, TwoKeywords_OnlyTheFirstInTableOrderRuns)
{
    const RRun r = run("quit export_data b.txt\nload_cfg open_collection a.var\n");
    EXPECT_THAT(r.recorder.calls, ElementsAre("data b.txt", "open a.var"));
}

TEST(CommandFile, RefusedKeywordGivesWayToTheNext)
{
    RRun r;
    r.recorder.refused = {40403};
    r.run("export_data b.txt quit\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("quit"));
    EXPECT_THAT(r.notes, IsEmpty());
}

TEST(CommandFile, RefusedCommandIsSkippedAndNoted)
{
    RRun r;
    r.recorder.refused = {40007};
    r.run("export_graphics -1,a.png,100\nexport_data b.txt\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("data b.txt"));
    EXPECT_THAT(r.notes, ElementsAre("run.cmd:1: export_graphics isn't possible now, line skipped"));
}

TEST(CommandFile, GateIsAskedWithTheRowsId)
{
    RRun r;
    r.recorder.refused = {40209, 40016};
    r.run("load_cfg a\nquit\nopen_collection a.var\n");
    EXPECT_THAT(r.recorder.calls, ElementsAre("open a.var"));
}

TEST(CommandFile, GraphicsWithTwoFields_SkippedAsANumberThatDoesNotRead)
{
    const RRun r = run("export_graphics 1,a.png\nexport_graphics\nexport_graphics x,a.png,10\nquit\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("quit"));
    ASSERT_EQ(r.notes.size(), 3u);
    EXPECT_EQ(r.notes[0],
              "run.cmd:1: export_graphics: resolution \"\" doesn't read as a number, line skipped");
    EXPECT_EQ(r.notes[2], "run.cmd:3: export_graphics: window \"x\" doesn't read as a number, line skipped");
}

TEST(CommandFile, GraphicsWithManyFields_OnlyTheFirstThreeCount)
{
    std::string line = "export_graphics 0,a.png,90";
    for (int i = 0; i < 200; ++i) line += ",7";
    EXPECT_THAT(run(line).recorder.calls, ElementsAre("graphics 0 a.png 90"));
}

TEST(CommandFile, PathsThatLookLikeNumbersStayWhole)
{
    EXPECT_THAT(run("export_graphics 0,./1.50,100\nopen_collection 12.50\n").recorder.calls,
                ElementsAre("graphics 0 ./1.50 100", "open 12.50"));
}

TEST(CommandFile, FailingCommandEndsTheFile)
{
    RRun r;
    r.recorder.good = false;
    r.run("# first\nopen_collection a.var\nexport_data b.txt\n");
    EXPECT_FALSE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("open a.var"));
    EXPECT_THAT(r.notes, ElementsAre("run.cmd:2: open_collection failed"));
}

TEST(CommandFile, QuitGoesOnToTheNextLine)
{
    EXPECT_THAT(run("quit\nopen_collection a.var").recorder.calls, ElementsAre("quit", "open a.var"));
}

TEST(CommandFile, AbortLeavesTheFileBehindTheCommand)
{
    RRun r;
    r.recorder.abort = true;
    r.run("open_collection a.var\nquit\n");
    EXPECT_FALSE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("open a.var"));
}

TEST(CommandFile, CarriageReturnsAndTheByteOrderMarkAreCut)
{
    const RRun r = run("\xef\xbb\xbfset_mode MAP\r\nopen_collection a.var\r\n");
    EXPECT_THAT(r.recorder.calls, ElementsAre("mode -1", "open a.var"));
}

TEST(CommandFile, LastLineWithoutAnEndRuns)
{
    EXPECT_THAT(run("quit").recorder.calls, ElementsAre("quit"));
}

TEST(CommandFile, FirstWordsAreLookedAtBeforeKeywords)
{
    const RRun r = run("use_layout open_collection\nplot_station all quit\n");
    EXPECT_EQ(r.recorder.calls.at(0), "layout open_collection");
    EXPECT_FALSE(r.complete); // "all quit" is no station
}

TEST(CommandFile, FirstWordOnly_OtherLinesKeepTheirMeaning)
{
    EXPECT_THAT(run("export_data set_mode.txt\nset_modes MAP\n").recorder.calls,
                ElementsAre("data set_mode.txt"));
}

TEST(CommandFile, SetMode)
{
    EXPECT_THAT(run("set_mode MAP\nset_mode  STATION \nset_mode scatter\nset_mode SECTION\nset_mode SURFACE")
                    .recorder.calls,
                ElementsAre("mode -1", "mode 0", "mode 1", "mode 2", "mode 3"));
    const RRun r = run("set_mode PIE\nquit\n");
    EXPECT_FALSE(r.complete);
    EXPECT_THAT(r.notes, ElementsAre("run.cmd:1: set_mode: there is no mode \"PIE\""));
    EXPECT_THAT(run("set_mode").notes, ElementsAre("run.cmd:1: set_mode needs 1 field, not 0"));
}

TEST(CommandFile, SetWindow)
{
    const RRun r = run("set_window 1,Salinity,-Temperature,Depth [m]\nset_window 2, 3 , 1\n");
    EXPECT_THAT(r.recorder.calls,
                ElementsAre("window 1 Salinity|-Temperature|Depth [m]", "window 2 3|1|none"));
    EXPECT_FALSE(run("set_window 1,2").complete);
    EXPECT_FALSE(run("set_window 1,2,3,4,5").complete);
    EXPECT_THAT(run("set_window one,2,3").notes,
                ElementsAre("run.cmd:1: set_window: window \"one\" doesn't read as a number"));
}

TEST(CommandFile, SetRange)
{
    EXPECT_THAT(run("set_range 1,30,40,-2,30\nset_range 2,0,1,0,1,-5,5.5").recorder.calls,
                ElementsAre("range 1 30 40 -2 30 0 0", "range 2 0 1 0 1 -5 5.5"));
    EXPECT_THAT(run("set_range 1,40,30,0,1").notes,
                ElementsAre("run.cmd:1: set_range: x minimum must be below x maximum"));
    EXPECT_THAT(run("set_range 1,0,1,nan,1").notes,
                ElementsAre("run.cmd:1: set_range: y minimum \"nan\" doesn't read as a number"));
    EXPECT_FALSE(run("set_range 1,0,1,0,1,5").complete);
    EXPECT_FALSE(run("set_range 1,0,1e30,0,1").complete);
    EXPECT_TRUE(run("set_range 1,0,1e-29,0,1").complete);
    EXPECT_THAT(run("set_range 1,0,1,0,1e-38").notes,
                ElementsAre("run.cmd:1: set_range: y minimum and maximum are too close"));
    EXPECT_FALSE(run("set_range 1,0,,0,1").complete);
}

TEST(CommandFile, FullRange)
{
    EXPECT_THAT(run("full_range\nfull_range 3\n").recorder.calls, ElementsAre("full all", "full 3"));
    EXPECT_FALSE(run("full_range x").complete);
}

TEST(CommandFile, SetStyle)
{
    EXPECT_THAT(run("set_style 1,0\nset_style 2,4,1.5").recorder.calls,
                ElementsAre("style 1 0 -1", "style 2 4 1.5"));
    EXPECT_FALSE(run("set_style 1,0,-1").complete);
    EXPECT_TRUE(run("set_style 1,0,100").complete);
    EXPECT_THAT(run("set_style 1,0,1e9").notes, ElementsAre("run.cmd:1: set_style: dot size is above 100"));
}

TEST(CommandFile, SetPalette)
{
    EXPECT_THAT(run("set_palette 0,Viridis.pal\n").recorder.calls, ElementsAre("palette 0 Viridis.pal"));
}

TEST(CommandFile, SetDomain)
{
    EXPECT_THAT(run("set_domain -40,20,-60.5,70\nset_domain 0,360,40,90,1\nset_domain 0,360,-90,90,5,-30,45")
                    .recorder.calls,
                ElementsAre("domain -40 20 -60.5 70 -1 -999 -999", "domain 0 360 40 90 1 -999 -999",
                            "domain 0 360 -90 90 5 -30 45"));
    EXPECT_FALSE(run("set_domain 0,360,-90").complete);
    EXPECT_FALSE(run("set_domain 0,360,-90,90,5,10").complete);
}

TEST(CommandFile, PlotStation)
{
    EXPECT_THAT(run("plot_station 12\nplot_station ALL\n").recorder.calls,
                ElementsAre("plot 12", "plot all"));
    EXPECT_FALSE(run("plot_station").complete);
    EXPECT_FALSE(run("plot_station 1 2").complete);
}

// --- data in and out

TEST(CommandFile, SetImport)
{
    EXPECT_THAT(run("set_import overwrite=yes\nset_import sep = ; , missing=-9\n"
                    "set_import assoc \"a b\"=\"c d\":linear:2:0 existing=keep")
                    .recorder.calls,
                ElementsAre("import overwrite|yes", "import sep|; missing|-9",
                            "import assoc|\"a b\"=\"c d\":linear:2:0 existing|keep"));
    EXPECT_FALSE(run("set_import").complete);
    EXPECT_FALSE(run("set_import overwrite").complete);
}

TEST(CommandFile, Select)
{
    EXPECT_THAT(run("select cruise=\"A, 1*\" type=B,month=1:3\nselect reset\n").recorder.calls,
                ElementsAre("select cruise|A, 1* type|B month|1:3", "select reset|"));
    EXPECT_THAT(run("select cruise=\"A").notes,
                ElementsAre("run.cmd:1: select: the quote in \"A isn't closed"));
    EXPECT_FALSE(run("select").complete);
}

TEST(CommandFile, ImportFileHasAFormatAPathAndAMode)
{
    EXPECT_THAT(run("import_file spreadsheet,a.txt\nimport_file o4x , b\\a b.o4x , merge\n"
                    "import_file o3x,c.o3x,update\nimport_file spreadsheet,d.txt,add\n")
                    .recorder.calls,
                ElementsAre("file 0 a.txt 1", "file 2 b/a b.o4x 2", "file 1 c.o3x 3", "file 0 d.txt 1"));
}

TEST(CommandFile, ResetOfTheImportSettingsHasNoValue)
{
    EXPECT_TRUE(run("set_import reset\n").complete);
    EXPECT_FALSE(run("set_import missing\n").complete);
}

TEST(CommandFile, PathOfAnImportMayHoldCommas)
{
    EXPECT_THAT(run("import_file spreadsheet,a, merge.txt\nimport_file spreadsheet,a,b,merge\n"
                    "import_file spreadsheet,\"a,merge\"\n")
                    .recorder.calls,
                ElementsAre("file 0 a, merge.txt 1", "file 0 a,b 2", "file 0 a,merge 1"));
}

TEST(CommandFile, FormatOfAnImportMustExist)
{
    EXPECT_THAT(run("import_file sd2,a.sd2\n").notes,
                ElementsAre("run.cmd:1: import_file: there is no format \"sd2\" (spreadsheet, o4x, o3x)"));
    EXPECT_FALSE(run("import_file a.txt").complete);
    EXPECT_FALSE(run("import_file o4x,").complete);
    EXPECT_FALSE(run("import_file o4x, ,merge").complete);
}

TEST(CommandFile, Exports)
{
    EXPECT_THAT(run("export_listing o3x,a.o3x\nexport_listing o4x , \"b c.o4x\"\nexport_collection d\\e\n"
                    "export_spreadsheet f.txt\nexport_spreadsheet \"f,g.txt\",no data,1 \"Salinity [psu]\"\n"
                    "export_spreadsheet h.txt,,2\n")
                    .recorder.calls,
                ElementsAre("listing 3 a.o3x", "listing 4 b c.o4x", "collection d/e", "table f.txt|",
                            "table f,g.txt|no data|1|Salinity [psu]", "table h.txt||2"));
    EXPECT_FALSE(run("export_listing txt,a.txt").complete);
    EXPECT_FALSE(run("export_listing o4x").complete);
    EXPECT_FALSE(run("export_collection").complete);
    EXPECT_FALSE(run("export_spreadsheet ,x").complete);
    EXPECT_FALSE(run("export_spreadsheet a.txt,x,\"1").complete);
}

TEST(CommandFile, DataCommandsAskTheGate)
{
    const std::pair<const char*, int> commands[] = {
        {"select reset", 40201},         {"import_file spreadsheet,a", 40313},
        {"import_file o3x,a", 40314},    {"import_file o4x,a", 40315},
        {"export_listing o3x,a", 40401}, {"export_listing o4x,a", 40402},
        {"export_spreadsheet a", 40403}, {"export_collection a", 40404}};
    for (const auto& [line, id] : commands) {
        RRun r;
        r.recorder.refused = {id};
        r.run(std::string(line) + "\nplot_station all\n");
        EXPECT_THAT(r.recorder.calls, IsEmpty()) << line;
        ASSERT_EQ(r.notes.size(), 1u) << line;
        EXPECT_TRUE(r.notes[0].ends_with(": no collection is open")) << r.notes[0];
        EXPECT_FALSE(r.complete);
    }
}

// --- the collection as a whole

TEST(CommandFile, CollectionCommands)
{
    const RRun r = run("create_collection new\\a, WOCE WHP CTD variables \ncopy_collection b\\c.var\n"
                       "move_collection d e\nsort_condense\nchange_variables \\lists\\v.txt\n"
                       "delete_selected\ndelete_empty\ndelete_station 12\ncheck_collection\n"
                       "check_collection a\\b.var # quietly\nclose\ndelete_collection\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls,
                ElementsAre("create new/a|WOCE WHP CTD variables", "copy b/c.var", "move d e", "sort",
                            "variables /lists/v.txt", "delete selected", "delete empty", "delete station 12",
                            "check ", "check a/b.var", "close", "delete"));
}

TEST(CommandFile, CreationIsSplitAtTheFirstComma)
{
    EXPECT_THAT(run("create_collection a.var,.var, .o4x or .txt file as template\n").recorder.calls,
                ElementsAre("create a.var|.var, .o4x or .txt file as template"));
    EXPECT_THAT(run("create_collection a.var").notes,
                ElementsAre("run.cmd:1: create_collection needs 2 fields, not 1"));
    EXPECT_THAT(run("create_collection a.var, ").notes,
                ElementsAre("run.cmd:1: create_collection: names no set of variables"));
    EXPECT_THAT(run("create_collection ,x").notes,
                ElementsAre("run.cmd:1: create_collection: names no collection"));
}

TEST(CommandFile, LogCommentIsTakenAsItStands)
{
    EXPECT_THAT(run("log_comment  cruise 5, leg 2: \\checked/by hand, again  # not this\n").recorder.calls,
                ElementsAre("log cruise 5, leg 2: \\checked/by hand, again"));
    EXPECT_THAT(run("log_comment   \n").notes, ElementsAre("run.cmd:1: log_comment needs 1 field, not 0"));
}

TEST(CommandFile, CollectionCommandsAskTheGate)
{
    const std::pair<int, const char*> lines[] = {{40005, "close"},
                                                 {40101, "copy_collection a"},
                                                 {40102, "move_collection a"},
                                                 {40103, "delete_collection"},
                                                 {40104, "sort_condense"},
                                                 {40105, "change_variables v"},
                                                 {40106, "delete_selected"},
                                                 {40107, "delete_empty"},
                                                 {40108, "delete_station 1"},
                                                 {40505, "log_comment x"}};
    for (const auto& [id, line] : lines) {
        RRun r;
        r.recorder.refused = {id};
        r.run(std::string(line) + "\nquit\n");
        const std::string word = std::string(line).substr(0, std::string(line).find(' '));
        EXPECT_FALSE(r.complete) << line;
        EXPECT_THAT(r.notes, ElementsAre("run.cmd:1: " + word + ": no collection is open"));
        EXPECT_THAT(r.recorder.calls, IsEmpty()) << line;
    }
    RRun r;
    for (const auto& [id, line] : lines) r.recorder.refused.insert(id);
    r.run("create_collection a,b\ncheck_collection a\n");
    EXPECT_TRUE(r.complete);
}

TEST(CommandFile, CommandThatHasToldItsFaultIsNamedWithItsLine)
{
    RRun r;
    r.recorder.wrong = app::toldFault;
    r.run("\nsort_condense\nquit\n");
    EXPECT_FALSE(r.complete);
    EXPECT_THAT(r.notes, ElementsAre("run.cmd:2: sort_condense failed"));
}

TEST(CommandFile, CollectionCommandsWithWrongFields)
{
    for (const char* const line :
         {"copy_collection", "move_collection", "change_variables", "delete_station", "delete_station 1,2",
          "delete_station x", "delete_station 0", "delete_station -3", "delete_collection a",
          "sort_condense now", "delete_selected 3", "delete_empty 3", "close it"}) {
        const RRun r = run(std::string(line) + "\nquit\n");
        EXPECT_FALSE(r.complete) << line;
        EXPECT_EQ(r.notes.size(), 1u) << line;
        EXPECT_THAT(r.recorder.calls, IsEmpty()) << line;
    }
    EXPECT_THAT(run("delete_station 0").notes,
                ElementsAre("run.cmd:1: delete_station: station numbers begin at 1"));
}

TEST(CommandFile, WordsOfDerivedVariables)
{
    const RRun r = run("set_key Depth [m]=1\n"
                       "set_key \"CFC-11 [pmol/kg]\" = \"CFC, 11 [pmol/kg]\"\n"
                       "add_derived potential temperature,0\n"
                       "add_derived Cruise Number\n"
                       "add_derived Ratio, Oxygen , \"Nitrate, filtered\",0.5\n"
                       "add_macro aou.mac,Oxygen\n"
                       "add_macro \"a,b.mac\"\n"
                       "delete_derived Tpot-0\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("key Depth [m]|1", "key CFC-11 [pmol/kg]|CFC, 11 [pmol/kg]",
                                              "derived Potential Temperature|0", "derived Cruise Number",
                                              "derived Ratio|Oxygen|Nitrate, filtered|0.5",
                                              "macro aou.mac|Oxygen", "macro a,b.mac", "without Tpot-0"));
}

TEST(CommandFile, RowsWithCommasInTheirLabels)
{
    const RRun r = run("add_derived CO2(TCO2,TALK)\nadd_derived pH(TCO2,TALK),7,8\n"
                       "add_derived \"in situ Temperature(z,Tp,s)\",Theta\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("derived CO2(TCO2,TALK)", "derived pH(TCO2,TALK)|7|8",
                                              "derived in situ Temperature(z,Tp,s)|Theta"));
}

TEST(CommandFile, InputsOfAFormulaAreNoComments)
{
    const RRun r = run("add_expression N:P [],8.2,#1 #2 / 3 **,Nitrate,Phosphate # of bottles\n"
                       "add_expression Time [yr],8,%t\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("expression N:P []|8.2|#1 #2 / 3 **|Nitrate|Phosphate",
                                              "expression Time [yr]|8.0|%t"));
}

TEST(CommandFile, LabelsOfWindowsMayStandInQuotes)
{
    const RRun r = run(
        "set_window 1,\"pCO2(TCO2,TALK)\",-\"CO3--(TCO2,TALK)\",\"-a,b\"\nset_window 2,5\" pipe,-Depth\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls, ElementsAre("window 1 pCO2(TCO2,TALK)|-CO3--(TCO2,TALK)|-a,b",
                                              "window 2 5\" pipe|-Depth|none"));
}

TEST(CommandFile, MarksOfLabelsAndQuotedTextAreNoComments)
{
    const RRun r = run("set_key a=Neutral Density ~$g~#~^n # the comment\n"
                       "add_expression A [~$m~#g],8.2,#1 #2 *,\"Station #\",2 # 1 and 2\n"
                       "log_comment 5\" pipe # a comment\n");
    EXPECT_TRUE(r.complete);
    EXPECT_THAT(r.recorder.calls,
                ElementsAre("key a|Neutral Density ~$g~#~^n", "expression A [~$m~#g]|8.2|#1 #2 *|Station #|2",
                            "log 5\" pipe"));
}

TEST(CommandFile, FaultyWordsOfDerivedVariablesEndTheFile)
{
    for (const auto& [line, note] : std::vector<std::pair<std::string, std::string>>{
             {"set_key Depth [m]", "set_key: \"Depth [m]\" stands without \"=\" and a variable"},
             {"set_key Depth [m]=", "set_key: \"Depth [m]\" is given no variable"},
             {"set_key =1", "set_key: names no key"},
             {"add_derived Potential", "add_derived: there is no derived variable \"Potential\""},
             {"add_derived CO2(TCO2", "add_derived: there is no derived variable \"CO2(TCO2\""},
             {"add_expression A,8.2", "add_expression: needs a label, a format and a formula"},
             {"add_expression A,x,1", "add_expression: \"x\" is no format \"width.decimals\""},
             {"add_expression A,0.2,1", "add_expression: \"0.2\" is no format \"width.decimals\""},
             {"add_macro ,1", "add_macro: names no file"},
             {"delete_derived", "delete_derived needs 1 field, not 0"}}) {
        const RRun r = run(line + "\nquit\n");
        EXPECT_FALSE(r.complete) << line;
        EXPECT_THAT(r.notes, ElementsAre("run.cmd:1: " + note)) << line;
        EXPECT_THAT(r.recorder.calls, IsEmpty()) << line;
    }
}

TEST(CommandFile, WrongNumberOfFieldsIsTold)
{
    EXPECT_THAT(run("set_mode").notes, ElementsAre("run.cmd:1: set_mode needs 1 field, not 0"));
    EXPECT_THAT(run("set_window 1,2").notes, ElementsAre("run.cmd:1: set_window needs 3 fields, not 2"));
    EXPECT_THAT(run("full_range 1,2").notes, ElementsAre("run.cmd:1: full_range takes 1 field, not 2"));
}

TEST(CommandFile, WhatATargetFindsWrongEndsTheFile)
{
    RRun r;
    r.recorder.wrong = "there is no window 9";
    r.run("\nfull_range 9\nquit\n");
    EXPECT_FALSE(r.complete);
    EXPECT_THAT(r.notes, ElementsAre("run.cmd:2: full_range: there is no window 9"));
    EXPECT_THAT(r.recorder.calls, ElementsAre("full 9"));
}

TEST(CommandFile, LinesUpToOneMebibyte)
{
    std::string path(app::longestCommandLine - 16, 'a');
    EXPECT_THAT(run("open_collection " + path + "\n").recorder.calls, ElementsAre("open " + path));
    const RRun r = run("open_collection " + path + "a\nquit\n");
    EXPECT_FALSE(r.complete);
    EXPECT_THAT(r.notes, ElementsAre("run.cmd:1: the line is longer than 1 MiB"));
}

TEST(CommandFile, ZeroBytesAreOrdinaryBytes)
{
    const std::string_view text("a\0b\nquit\0", 9);
    EXPECT_THAT(run(text).recorder.calls, ElementsAre("quit"));
}

TEST(CommandFile, CutAtEveryLengthItNeverCrashes)
{
    const std::string text =
        "set_window 1,a,b,c\r\nset_range 1,0,1,0,1,0,1 # x\nset_domain 0,360,-90,90,5,1,2\n"
        "open_collection a\nexport_graphics -1,b.png,100\nplot_station all\nquit\n";
    for (std::size_t n = 0; n <= text.size(); ++n) (void)run(std::string_view(text).substr(0, n));
}

} // namespace
