// The commands on a collection as a whole, through the program itself.

#include <csignal>
#include <sys/stat.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "collection/journal.h"
#include "programfixture.h"

namespace {

namespace fs = std::filesystem;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing_support::castText;
using testing_support::fromUtf8;
using testing_support::RUN;
using testing_support::writeText;

class MaintenanceProgram : public testing_support::Program {
protected:
    std::vector<std::string> family(const std::string& name) const
    {
        std::vector<std::string> found;
        for (const auto& entry : fs::directory_iterator(folder.path())) {
            const std::string file = entry.path().filename().string();
            if (file.starts_with(name + ".")) found.push_back(file);
        }
        std::sort(found.begin(), found.end());
        return found;
    }
    // Runs the lines behind the opening of the collection, whose line has the number 1.
    RUN onCast(const std::string& lines) const { return commands("open_collection cast.var\n" + lines); }
    std::string at(int line) const { return file("run.cmd") + ":" + std::to_string(line) + ": "; }
    void expectSound(const std::string& name) const
    {
        const RUN r = commands("check_collection " + name + "\n");
        EXPECT_EQ(r.code, 0) << r.error;
        EXPECT_THAT(r.error, HasSubstr(" 0 inconsistencies")) << r.error;
    }
};

// A program that has the collection open until it is let go.
class RHolder {
public:
    RHolder(const QProcessEnvironment& environment, const std::string& folder, const std::string& name)
    {
        process_.setProcessEnvironment(environment);
        process_.setWorkingDirectory(fromUtf8(folder));
        // It waits for the end of its command file, which comes from here.
        process_.start(QStringLiteral(NVQ_BUILD_DIR "/bin/nvqmp"),
                       {fromUtf8(name + ".var"), QStringLiteral("-x"), QStringLiteral("/dev/stdin"),
                        QStringLiteral("-q")});
        for (int i = 0; i < 600 && !isOpen_; ++i) {
            process_.waitForReadyRead(50);
            const std::string recent = common::readFile(folder + "home/.nvq").value_or("");
            isOpen_ = common::fileExists(folder + name + ".lck") &&
                      common::fileExists(folder + name + ".inv") &&
                      recent.find(name + ".var") != std::string::npos;
        }
        process_.waitForReadyRead(200);
    }
    ~RHolder()
    {
        process_.kill();
        process_.waitForFinished(5000);
    }
    RHolder(const RHolder&) = delete;
    RHolder& operator=(const RHolder&) = delete;

    bool isOpen() const { return isOpen_; }
    qint64 id() const { return process_.processId(); }
    void kill()
    {
        process_.kill();
        process_.waitForFinished(10000);
    }
    // Lets it run these lines and come to its end.
    RUN finish(const std::string& lines)
    {
        process_.write(lines.data(), static_cast<qint64>(lines.size()));
        process_.closeWriteChannel();
        RUN run;
        if (process_.waitForFinished(60000) && process_.exitStatus() == QProcess::NormalExit)
            run.code = process_.exitCode();
        run.error = process_.readAllStandardError().toStdString();
        return run;
    }

private:
    QProcess process_;
    bool isOpen_ = false;
};

TEST_F(MaintenanceProgram, LifeOfACollection)
{
    writeText(file("vars.txt"), "# kept ones\nDepth [m]\t8.1\t1\nSalinity [psu]\t8.3\t3\nNew [1]\t8.2\t0\n");
    const RUN r = commands("create_collection made,cast.txt   # its variables\n"
                           "open_collection cast.txt          # into it\n"
                           "copy_collection copied.var\n"
                           "delete_station 2\n"
                           "sort_condense\n"
                           "change_variables vars.txt\n"
                           "log_comment thinned, sorted\n"
                           "check_collection\n"
                           "move_collection kept\n"
                           "export_data out.txt\n"
                           "close\n"
                           "check_collection kept\n"
                           "open_collection made\n");
    EXPECT_EQ(r.code, 1) << r.error; // "made" has no extension: a file of unknown kind
    const auto told = [&](const std::string& line) { EXPECT_THAT(r.error, HasSubstr(line + "\n")); };
    told(file("made.var") + ": made with 3 variables");
    told(file("made.var") + ": copied to " + file("copied.var"));
    told("Confirm Deletion ...: Really want to delete current station?");
    told(file("copied.var") + ": 1 station deleted");
    EXPECT_THAT(r.error,
                HasSubstr(file("copied.var") + ": 4 stations sorted and condensed, 0.00 MB freed\n"));
    told(file("copied.var") + ": has 3 variables now, had 3");
    EXPECT_THAT(r.error, HasSubstr(file("copied.var") + ": 4 stations, 0 inconsistencies, "));
    told(file("copied.var") + ": moved to " + file("kept.var"));
    EXPECT_THAT(r.error, HasSubstr(file("kept.var") + ": 4 stations, 0 inconsistencies, "));
    EXPECT_THAT(r.error, EndsWith(at(13) + "open_collection failed\n"));
    EXPECT_THAT(family("copied"), IsEmpty());
    EXPECT_THAT(read("kept.log"), HasSubstr("DELETE_SINGLE TEST 2 C\n"));
    EXPECT_THAT(read("kept.log"), HasSubstr("SORTCONDENSE\n"));
    EXPECT_THAT(read("kept.log"), HasSubstr("CHANGEVARSET\n"));
    EXPECT_THAT(read("kept.log"), EndsWith("COMMENT thinned, sorted\n"));
    EXPECT_THAT(read("out.txt"), HasSubstr("Depth [m]\tQF\tSalinity [psu]\tQF\tNew [1]\tQF"));
    EXPECT_THAT(read("out.txt"), HasSubstr("\t100\t0\t34.1\t8\t"));
    EXPECT_THAT(read("home/.nvq"), HasSubstr("File0 = " + file("kept.var")));
    EXPECT_THAT(read("home/.nvq"), Not(HasSubstr("copied.var")));
    EXPECT_EQ(temporaryFiles(), 0);
}

TEST_F(MaintenanceProgram, DeletedCollectionIsGoneAndItsExitCodeIsGood)
{
    makeCollection();
    const RUN r = onCast("delete_collection\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_EQ(r.error,
              "Confirm Deletion ...: Really want to delete current collection?\nDelete Collection: " +
                  file("cast.var") +
                  " deleted! Note that associated .cfg and .sec files must be deleted manually.\n");
    EXPECT_THAT(family("cast"), testing::ElementsAre("cast.txt"));
    EXPECT_THAT(read("home/.nvq"), Not(HasSubstr("cast.var")));
}

TEST_F(MaintenanceProgram, SetsOfVariablesByTheirEntryText)
{
    const RUN r = commands("create_collection a,WOCE WHP Bottle variables\n"
                           "create_collection b.var, woa94/sd2 VARIABLES \n"
                           "create_collection c d,user specifies variables manually\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_THAT(read("a.var"), HasSubstr("Variables: 39\n"));
    EXPECT_THAT(read("b.var"), HasSubstr("Variables: 7\n"));
    EXPECT_THAT(read("c_d.var"), HasSubstr("Variables: 3\n"));
    EXPECT_THAT(r.error, HasSubstr("nobody can specify the variables of c_d"));
    for (const char* const name : {"a", "b", "c_d"}) expectSound(name);
}

TEST_F(MaintenanceProgram, RunThatMakesAndFillsACollectionCanBeRepeated)
{
    for (int run = 0; run < 2; ++run) {
        const RUN r = commands("create_collection made,cast.txt\nopen_collection cast.txt\n");
        EXPECT_EQ(r.code, 0) << r.error;
        expectSound("made");
    }
}

TEST_F(MaintenanceProgram, StationsWithoutADescriptionAreNotReplacedUnasked)
{
    makeCollection();
    std::filesystem::remove(file("cast.var"));
    const std::string hob = read("cast.hob"), dob = read("cast.dob");
    for (const char* const line :
         {"create_collection cast,WOCE ADCP variables", "open_collection cast.txt"}) {
        const RUN r = commands(std::string(line) + "\n");
        EXPECT_EQ(r.code, 1) << line;
        EXPECT_THAT(r.error, HasSubstr("holds stations, but there is no description")) << line;
        EXPECT_EQ(read("cast.hob"), hob) << line;
        EXPECT_EQ(read("cast.dob"), dob) << line;
    }
    const RUN r = commands("set_import overwrite=yes\ncreate_collection cast,WOCE ADCP variables\n");
    EXPECT_EQ(r.code, 0) << r.error;
}

TEST_F(MaintenanceProgram, CreationTellsWhatItReplaces)
{
    makeCollection();
    const RUN r = commands("create_collection cast,WOCE ADCP variables\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_THAT(r.error, HasSubstr("made with 3 variables in the place of 5 stations"));
}

TEST_F(MaintenanceProgram, BadCreationsEndTheFile)
{
    makeCollection();
    writeText(file("cast.log"), read("cast.log") + "Jan/01/2020 00:00:00> a:b DELETE 1 Stations\n");
    const std::string before = collectionBytes();
    for (const char* const line :
         {"create_collection", "create_collection a", "create_collection a,", "create_collection a,WHP",
          "create_collection a,.var, .o4x or .txt file as template", "create_collection a,none.var",
          "create_collection a,run.cmd", "create_collection /nowhere/a,WOCE WHP CTD variables",
          "create_collection cast,WOCE WHP CTD variables", "create_collection .,WOCE WHP CTD variables"}) {
        const RUN r = commands(std::string(line) + "\nopen_collection cast.txt\n");
        EXPECT_EQ(r.code, 1) << line;
        EXPECT_THAT(r.error, HasSubstr(at(1) + "create_collection")) << line;
        EXPECT_EQ(collectionBytes(), before) << line;
        EXPECT_FALSE(exists("a.var")) << line;
    }
}

TEST_F(MaintenanceProgram, CommandsNeedAnOpenCollection)
{
    makeCollection();
    for (const std::string word : {"copy_collection a", "move_collection a", "delete_collection",
                                   "sort_condense", "change_variables v.txt", "delete_selected",
                                   "delete_empty", "delete_station 1", "log_comment x", "close"}) {
        const RUN r = commands(word + "\nopen_collection cast.var\n");
        EXPECT_EQ(r.code, 1) << word;
        EXPECT_EQ(r.error, at(1) + word.substr(0, word.find(' ')) + ": no collection is open\n");
    }
    const RUN r = commands("check_collection\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.error, "there is no open collection to check\n" + at(1) + "check_collection failed\n");
}

TEST_F(MaintenanceProgram, BadFieldsEndTheFile)
{
    makeCollection();
    const std::string before = collectionBytes();
    for (const char* const line :
         {"copy_collection", "copy_collection cast", "copy_collection /nowhere/a", "move_collection",
          "move_collection cast.var", "delete_collection now", "sort_condense now", "change_variables",
          "change_variables none.txt", "change_variables cast.txt", "delete_station", "delete_station 0",
          "delete_station 6", "delete_station x", "log_comment", "check_collection none.var"}) {
        const RUN r = onCast(std::string(line) + "\nexport_data out.txt\n");
        EXPECT_EQ(r.code, 1) << line;
        EXPECT_THAT(r.error, HasSubstr(at(2))) << line;
        EXPECT_FALSE(exists("out.txt")) << line;
        EXPECT_EQ(collectionBytes(), before) << line;
    }
}

TEST_F(MaintenanceProgram, BadLineOfAVariableListIsNamed)
{
    makeCollection();
    writeText(file("vars.txt"), "Depth [m]\t8.1\t1\n\nSalinity [psu]\t8.3\t4\n");
    const RUN r = onCast("change_variables vars.txt\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_EQ(r.error, at(2) + "change_variables: " + file("vars.txt") +
                           ":3: there is no old variable 4; the collection has 3\n");
}

TEST_F(MaintenanceProgram, StationsCanBeThinned)
{
    makeCollection();
    const RUN r = onCast("delete_empty\nset_domain -40,0,-52,-30\ndelete_selected\n"
                         "delete_selected\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("No empty station found.\n"));
    EXPECT_THAT(r.error, HasSubstr("Really want to delete 4 stations?\n"));
    EXPECT_THAT(r.error, HasSubstr(file("cast.var") + ": 4 stations deleted\n"));
    EXPECT_THAT(r.error, EndsWith(at(5) + "delete_selected: no stations are selected\n"));
    EXPECT_THAT(read("cast.inv"), HasSubstr("1 cruises 1 stations"));
    expectSound("cast");
}

TEST_F(MaintenanceProgram, DeletionOfEverythingEmptiesTheDataFile)
{
    makeCollection();
    const RUN r = onCast("delete_selected\ncheck_collection\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_EQ(common::fileSize(file("cast.dob")), 0);
    expectSound("cast");
    EXPECT_EQ(onCast("open_collection cast.txt\n").code, 0);
    expectSound("cast");
}

TEST_F(MaintenanceProgram, ReadOnlyCollectionIsCopiedAndNothingElse)
{
    makeCollection();
    letOthersWrite();
    fs::permissions(file("cast.hob"), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    const std::string before = collectionBytes();
    for (const std::string word :
         {"move_collection a", "delete_collection", "sort_condense", "change_variables v.txt",
          "delete_selected", "delete_empty", "delete_station 1"}) {
        const RUN r = commandsWithoutRights("open_collection cast.var\n" + word + "\n");
        EXPECT_EQ(r.code, 1) << word;
        EXPECT_THAT(r.error,
                    EndsWith(at(2) + word.substr(0, word.find(' ')) + ": the collection is read-only\n"));
    }
    const RUN r = commandsWithoutRights("open_collection cast.var\ncheck_collection\ncopy_collection two\n"
                                        "delete_station 1\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_EQ(collectionBytes(), before);
    expectSound("two");
}

TEST_F(MaintenanceProgram, MissingDescriptionInAReadOnlyFolderFails)
{
    letOthersWrite();
    fs::create_directories(file("locked"));
    fs::permissions(file("locked"), fs::perms::owner_read | fs::perms::owner_exec | fs::perms::others_read |
                                        fs::perms::others_exec);
    const RUN r = commandsWithoutRights("open_collection locked/a.var\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("Opening Collection ...: Collection \"" + file("locked/a.var") +
                                   "\" does not exist! Collection files and/or collection directory are "
                                   "write-protected! Data may not be modified!\n"));
    fs::permissions(file("locked"), fs::perms::owner_all);
    EXPECT_TRUE(fs::is_empty(file("locked")));
}

TEST_F(MaintenanceProgram, InconsistencyFailsTheCheck)
{
    makeCollection();
    writeText(file("cast.dob"), read("cast.dob").substr(0, 100));
    const std::string before = collectionBytes();
    const RUN r = commands("check_collection cast\nopen_collection cast.txt\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, testing::StartsWith("inconsistency: "));
    EXPECT_THAT(r.error, EndsWith(at(1) + "check_collection failed\n"));
    EXPECT_EQ(collectionBytes(), before);
}

// --- two programs

TEST_F(MaintenanceProgram, SecondProgramOpensReadOnly)
{
    makeCollection();
    RHolder first(environment, folder.path(), "cast");
    ASSERT_TRUE(first.isOpen());
    const RUN second = onCast("check_collection\nexport_data out.txt\nsort_condense\n");
    EXPECT_EQ(second.code, 1);
    EXPECT_THAT(second.error,
                HasSubstr("Opening Collection ...: Collection files and/or collection directory are "
                          "write-protected! Data may not be modified! Collection " +
                          file("cast.var") + " is open for writing in another NVQ session"));
    EXPECT_THAT(second.error, HasSubstr("process " + std::to_string(first.id())));
    EXPECT_THAT(second.error, EndsWith(at(4) + "sort_condense: the collection is read-only\n"));
    EXPECT_TRUE(exists("out.txt"));
    const RUN third = commands("open_collection cast.txt\n"); // would replace it
    EXPECT_EQ(third.code, 1);
    writeText(file("other.txt"), castText(2, 2));
    const RUN fourth = commands("open_collection other.txt\ncopy_collection cast\n");
    EXPECT_EQ(fourth.code, 1);
    EXPECT_THAT(fourth.error, HasSubstr("Could not copy collection!"));
    const RUN end = first.finish("delete_station 1\ncheck_collection\n");
    EXPECT_EQ(end.code, 0) << end.error;
    EXPECT_THAT(end.error, HasSubstr(file("cast.var") + ": 1 station deleted\n"));
    EXPECT_FALSE(exists("cast.lck"));
    EXPECT_EQ(onCast("sort_condense\n").code, 0);
}

TEST_F(MaintenanceProgram, MarkOfAKilledProgramIsTakenOver)
{
    makeCollection();
    RHolder first(environment, folder.path(), "cast");
    ASSERT_TRUE(first.isOpen());
    first.kill();
    ASSERT_TRUE(exists("cast.lck")); // it could not take it away
    const RUN second = onCast("sort_condense\n");
    EXPECT_EQ(second.code, 0) << second.error;
    EXPECT_FALSE(exists("cast.lck"));
}

// --- a change that was cut off

TEST_F(MaintenanceProgram, CutOffChangeIsUndoneByTheNextOpening)
{
    makeCollection();
    const std::string before = collectionBytes(), hob = read("cast.hob");
    const auto cutOff = [&] {
        collection::RJournal journal;
        ASSERT_TRUE(
            journal.begin(file("cast"), "DELETE 3 Stations",
                          {common::fileSize(file("cast.hob")), common::fileSize(file("cast.dob")), 5}));
        ASSERT_TRUE(
            journal.save(collection::JournalFile::hob, 6, std::as_bytes(std::span(hob).subspan(6, 30))));
        ASSERT_TRUE(journal.sync());
        writeText(file("cast.hob"), hob.substr(0, 6) + std::string(30, 'x') + hob.substr(36));
    };
    cutOff();
    const std::string cut = collectionBytes();
    const RUN check = commands("check_collection cast\n");
    EXPECT_EQ(check.code, 1) << check.error;
    EXPECT_EQ(collectionBytes(), cut); // a check ends nothing
    const RUN r = onCast("check_collection\n");
    EXPECT_EQ(r.code, 0) << r.error;
    EXPECT_THAT(r.error, testing::StartsWith("Collection " + file("cast.var") +
                                             ": DELETE 3 Stations was cut off and has been undone\n"));
    EXPECT_EQ(collectionBytes(), before);
    EXPECT_FALSE(exists("cast.jnl"));
    EXPECT_THAT(read("cast.log"), EndsWith("UNDONE DELETE 3 Stations\n"));
    cutOff();
    EXPECT_EQ(commands("open_collection cast.txt\n").code, 0); // the rule of repeated runs still holds
    expectSound("cast");
}

TEST_F(MaintenanceProgram, ReadOnlyProgramDoesNotOpenWhatWasCutOff)
{
    makeCollection();
    letOthersWrite();
    {
        collection::RJournal journal;
        ASSERT_TRUE(
            journal.begin(file("cast"), "EDITHEADER",
                          {common::fileSize(file("cast.hob")), common::fileSize(file("cast.dob")), 5}));
        ASSERT_TRUE(journal.sync());
    }
    fs::permissions(file("cast.jnl"), fs::perms::all);
    fs::permissions(file("cast.dob"), fs::perms::owner_read | fs::perms::group_read | fs::perms::others_read);
    const RUN r = commandsWithoutRights("open_collection cast.var\n");
    EXPECT_EQ(r.code, 1);
    EXPECT_THAT(r.error, HasSubstr("is in the middle of a change"));
    EXPECT_TRUE(exists("cast.jnl"));
}

} // namespace
