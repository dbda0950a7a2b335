// The program is killed at random moments of its work on a collection of some size. Afterwards it opens the
// collection, its check finds nothing, and the collection is as it was or as it was to be.

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <random>
#include <thread>

#include <fcntl.h>
#include <poll.h>
#include <sys/inotify.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <gtest/gtest.h>

#include "common/files.h"
#include "common/text.h"
#include "faults.h"
#include "folder.h"
#include "program.h"
#include "rounds.h"

namespace reliability {
namespace {

using Seconds = std::chrono::duration<double>;

constexpr int stations = 3000, levels = 25;

struct WORK {
    const char* name;
    std::string lines;                                 // of the command file, behind the opening
    std::function<int(const std::string& folder)> run; // instead, in a process of its own
    int kills;
};

std::vector<CAST> manyCasts(int first, int last, int depth, float seed)
{
    std::vector<CAST> casts;
    for (int i = first; i <= last; ++i) {
        casts.push_back({common::format("C%d", i * 7 % 11), std::to_string(i),
                         i % 10 == 0 ? 1 : depth + i % 5, seed + static_cast<float>(i % 100),
                         i % 10 == 0 ? 1 : 4});
    }
    return casts;
}

// Edits each third header in one change.
int editHeaders(const std::string& folder)
{
    ROpenCollection open(folder, "big");
    if (!open.isOpen() || !open.collection.beginChange("EDIT")) return 1;
    for (int n = 1; n <= open.collection.stationCount; n += 3) {
        collection::STATIONHDR header;
        if (!open.collection.readStationHeader(n, header, nullptr)) return 1;
        header.bottomDepth = static_cast<float>(n);
        if (!open.collection.writeStationHeader(n, header, nullptr)) return 1;
    }
    return open.collection.commitChange() ? 0 : 1;
}

// Tells when files of a folder change.
class RWatch {
public:
    explicit RWatch(const std::string& folder) : queue_(::inotify_init1(IN_CLOEXEC | IN_NONBLOCK))
    {
        ::inotify_add_watch(queue_, folder.c_str(), IN_CREATE | IN_MODIFY | IN_MOVED_TO | IN_DELETE);
    }
    ~RWatch() { ::close(queue_); }
    RWatch(const RWatch&) = delete;
    RWatch& operator=(const RWatch&) = delete;

    // Waits for a change of the collection's files; false if there was none in that time.
    bool wait(int milliseconds)
    {
        pollfd poll{queue_, POLLIN, 0};
        while (::poll(&poll, 1, milliseconds) > 0) {
            alignas(inotify_event) char buffer[16384];
            const ssize_t got = ::read(queue_, buffer, sizeof buffer);
            for (ssize_t at = 0; at < got;) {
                const auto* const event = reinterpret_cast<const inotify_event*>(buffer + at);
                if (event->len > 0 && isOfTheWork(event->name)) return true;
                at += static_cast<ssize_t>(sizeof(inotify_event) + event->len);
            }
        }
        return false;
    }

private:
    static bool isOfTheWork(const std::string& name)
    {
        return !name.starts_with("write_test") && !name.ends_with(".lck") && !name.starts_with("big.cfl");
    }
    int queue_;
};

// What stands in a folder: names, sizes and times of the files that the operations change.
std::string snapshot(const std::string& folder, bool withTimes)
{
    std::string text;
    for (const std::string& file : filesOf(folder)) {
        const bool described = file.ends_with(".inv") || file.ends_with(".cid") || file.ends_with(".cfl") ||
                               file.ends_with(".lck") || file.ends_with(".log");
        if (described) continue;
        struct stat status {};
        ::stat((folder + file).c_str(), &status);
        text += common::format("%s %lld", file.c_str(), static_cast<long long>(status.st_size));
        if (withTimes)
            text += common::format(" %lld.%ld", static_cast<long long>(status.st_mtim.tv_sec),
                                   status.st_mtim.tv_nsec);
        text += "\n";
    }
    return text;
}

double secondsOf(const timespec& time)
{
    return static_cast<double>(time.tv_sec) + 1e-9 * static_cast<double>(time.tv_nsec);
}

double now()
{
    timespec time{};
    ::clock_gettime(CLOCK_REALTIME, &time);
    return secondsOf(time);
}

// The work is on a real disk if there is one, where flushes take their time.
class ROnDisk {
public:
    ROnDisk() : inMemory_(std::getenv("TMPDIR") && std::string(std::getenv("TMPDIR")) == "/dev/shm")
    {
        if (inMemory_) ::unsetenv("TMPDIR");
    }
    ~ROnDisk()
    {
        if (inMemory_) ::setenv("TMPDIR", "/dev/shm", 1);
    }
    ROnDisk(const ROnDisk&) = delete;
    ROnDisk& operator=(const ROnDisk&) = delete;

private:
    bool inMemory_;
};

// A process that does the work: the program, or one of our own.
class RWorker {
public:
    RWorker(const WORK& work, const std::string& home, const std::string& folder)
    {
        if (!work.run) {
            program_ = std::make_unique<RProgram>(home, folder, "open_collection big.var\n" + work.lines);
            return;
        }
        std::fflush(nullptr);
        pid_ = ::fork();
        if (pid_ == 0) ::_exit(work.run(folder));
    }
    ~RWorker() { kill(); }
    RWorker(const RWorker&) = delete;
    RWorker& operator=(const RWorker&) = delete;

    int wait()
    {
        if (program_) return program_->wait();
        int status = 0;
        if (pid_ > 0) ::waitpid(pid_, &status, 0);
        pid_ = -1;
        return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    }
    void kill()
    {
        if (program_) {
            program_->kill();
        } else if (pid_ > 0) {
            ::kill(pid_, SIGKILL);
            wait();
        }
    }
    [[nodiscard]] std::string error() const { return program_ ? program_->error() : std::string(); }

private:
    std::unique_ptr<RProgram> program_;
    pid_t pid_ = -1;
};

class ProgramKills : public testing::Test {
protected:
    ProgramKills()
    {
        for (const char* const name : {"home", "start", "work"})
            std::filesystem::create_directories(folder(name));
        makeCollection(folder("start"), "big", "NVQ4.0", manyCasts(1, stations, levels, 1));
        write("new.txt", spreadsheetOf(manyCasts(stations + 1, 2 * stations, levels, 2)));
        write("again.txt", spreadsheetOf(manyCasts(1, stations, levels + 4, 3)));
        write("variables.txt",
              "Depth [m]\t8.1\t1\nOxygen [ml/l]\t7.2\t4\nNew [1]\t6.2\t0\nTemperature [C]\t8.3\t2\n");
    }

    [[nodiscard]] std::string folder(const std::string& name) const { return directory.file(name) + "/"; }
    void write(const std::string& name, const std::string& text) const
    {
        ASSERT_TRUE(common::writeFile(folder("start") + name, text));
    }
    [[nodiscard]] EXAMINATION look() const { return examine(folder("work"), names, inputs); }

    // Does the work undisturbed: how long files change, and the new state.
    void measure(const WORK& work)
    {
        copyFolder(folder("start"), folder("work"));
        before = look().contents;
        copyFolder(folder("start"), folder("work"));
        untouched = snapshot(folder("work"), true);
        RWatch watch(folder("work"));
        RWorker worker(work, folder("home"), folder("work"));
        ASSERT_TRUE(watch.wait(60000));
        const double begin = now();
        ASSERT_EQ(worker.wait(), 0) << worker.error();
        span = Seconds(std::max(0.0, lastChange() - begin));
        finished = snapshot(folder("work"), false);
        const EXAMINATION examination = look();
        EXPECT_EQ(examination.faults, std::vector<std::string>());
        after = examination.contents;
        EXPECT_NE(before, after);
    }

    // Kills the work once, at a part of its span behind the first change. Says when that was.
    const char* killAt(const WORK& work, double part)
    {
        copyFolder(folder("start"), folder("work"));
        untouched = snapshot(folder("work"), true);
        RWatch watch(folder("work"));
        RWorker worker(work, folder("home"), folder("work"));
        if (!watch.wait(60000)) return "before";
        std::this_thread::sleep_for(part * span);
        worker.kill();
        if (snapshot(folder("work"), true) == untouched) return "before";
        return snapshot(folder("work"), false) == finished ? "after" : "inside";
    }

    void killOften(const WORK& work)
    {
        measure(work);
        if (HasFatalFailure()) return;
        const Seconds first = span;
        measure(work);
        const Seconds measured = span = std::max(span, first);
        std::uniform_real_distribution<double> part(0.0, 1.1);
        std::map<std::string, int> fell, states;
        RFaults faults;
        const int kills = work.kills * rounds();
        for (int i = 0; i < kills; ++i) {
            const double when = part(random);
            const std::string where = killAt(work, when);
            ++fell[where];
            // The machine may have more to do now than when the span was measured, or less.
            span *= where == "after" ? 0.93 : 1.03;
            span = std::clamp(span, 0.3 * measured, 3 * measured);
            const PROGRAMRUN opened =
                runProgram(folder("home"), folder("work"), "open_collection big.var\ncheck_collection\n");
            std::string fault;
            if (opened.code != 0)
                fault += "the program ends with " + std::to_string(opened.code) + ": " + opened.error;
            const EXAMINATION found = look();
            for (const std::string& text : found.faults) fault += text + "\n";
            const char* const state = found.contents == before  ? "old"
                                      : found.contents == after ? "new"
                                                                : "broken";
            ++states[state];
            if (found.contents != before && found.contents != after)
                fault += "neither old nor new state: " + describe(found.contents);
            faults.note(common::format("%s, killed at %.3f of %.1f ms", work.name, when, span.count() * 1000),
                        fault);
        }
        std::printf(
            "%s: %d kills over %.1f ms: %d before, %d inside, %d after the changes; %d old, %d new states\n",
            work.name, kills, span.count() * 1000, fell["before"], fell["inside"], fell["after"],
            states["old"], states["new"]);
        EXPECT_GE(fell["inside"], kills / 3) << "too few kills fell inside the work";
    }

    // When the files of the collection changed last.
    [[nodiscard]] double lastChange() const
    {
        double last = 0;
        for (const char* const suffix : {".hob", ".dob", ".var", ".inv", ".log"}) {
            struct stat status {};
            if (::stat((folder("work") + "big" + suffix).c_str(), &status) == 0)
                last = std::max(last, secondsOf(status.st_mtim));
        }
        return last;
    }

    const ROnDisk onDisk;
    const testing_support::RTemporaryDirectory directory;
    const std::vector<std::string> names{"big", "new", "again"};
    const std::vector<std::string> inputs{"new.txt", "again.txt", "variables.txt"};
    std::mt19937 random{static_cast<unsigned>(::getpid())};
    Contents before, after;
    std::string untouched, finished;
    Seconds span{0};
};

TEST_F(ProgramKills, DuringAnImport)
{
    killOften({"import", "open_collection new.txt\n", {}, 55});
}

TEST_F(ProgramKills, DuringAReplacingImport)
{
    killOften({"replace", "open_collection again.txt\n", {}, 55});
}

TEST_F(ProgramKills, DuringSortAndCondense)
{
    killOften({"sort and condense", "sort_condense\n", {}, 55});
}

TEST_F(ProgramKills, DuringAChangeOfVariables)
{
    killOften({"change of variables", "change_variables variables.txt\n", {}, 55});
}

TEST_F(ProgramKills, DuringAHeaderEdit)
{
    killOften({"header edit", "", editHeaders, 55});
}

TEST_F(ProgramKills, DuringADeletion)
{
    killOften({"deletion", "delete_empty\n", {}, 55});
}

} // namespace
} // namespace reliability
