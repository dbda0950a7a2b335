#include "collection/checksidefiles.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <unistd.h>

#include "collection/journal.h"
#include "collection/variableids.h"
#include "common/files.h"
#include "common/text.h"

namespace collection {
namespace {

namespace fs = std::filesystem;

constexpr std::int64_t largestSideFile = 16 << 20;
constexpr int variableLine = 7; // of variable 1

// The lines of a side file, one by one; false if it is there but can't be read.
template <typename Visit>
bool forEachLine(const std::string& file, Visit&& visit)
{
    if (common::fileSize(file) < 0) return true;
    const auto text = common::readFile(file, largestSideFile);
    if (!text) return false;
    std::string_view rest = *text;
    for (int number = 1; !rest.empty(); ++number) visit(number, common::takeLine(rest));
    return true;
}

bool isHeld(const std::string& lockFile)
{
    const int descriptor = ::open(lockFile.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY);
    if (descriptor < 0) return false;
    const bool held = ::flock(descriptor, LOCK_SH | LOCK_NB) != 0 && errno == EWOULDBLOCK;
    ::close(descriptor); // with the lock
    return held;
}

// By the content of a lock file, which names its holder.
bool isOwn(const std::string& lockFile)
{
    constexpr std::int64_t largest = 4096;
    const std::string holder = common::readFile(lockFile, largest).value_or(std::string());
    return common::trimBlanks(holder).ends_with(
        common::format(", process %ld", static_cast<long>(::getpid())));
}

// "<name>.<process>.<count>.tmp", a file that was being replaced, or "<name>.old...", one that was put aside.
bool isLeftover(std::string_view file, const std::string& name)
{
    return file.starts_with(name + ".") &&
           (file.ends_with(".tmp") || file.substr(name.size()).starts_with(".old"));
}

// A file of the collection by which others are rewritten.
bool isOfTarget(std::string_view file)
{
    constexpr std::string_view suffixes[] = {".var", ".hob", ".dob", ".cfl", ".idv"};
    return file.starts_with("TRG.") &&
           std::find(std::begin(suffixes), std::end(suffixes), file.substr(3)) != std::end(suffixes);
}

void checkLeftovers(const std::string& basePath, RFindings& findings)
{
    const common::PATHPARTS parts = common::splitPath(basePath);
    const std::string name = basePath.substr(parts.directory.size());
    const std::string directory = parts.directory.empty() ? "." : parts.directory;
    const bool targetIsDead = name != "TRG" && !isHeld(parts.directory + "TRG.lck");
    std::error_code error;
    int more = 0, told = 0;
    for (fs::directory_iterator it(directory, error), end; !error && it != end; it.increment(error)) {
        const std::string file = it->path().filename().string();
        if (!isLeftover(file, name) && !(targetIsDead && isOfTarget(file))) continue;
        constexpr int largest = 10;
        if (told == largest) {
            ++more;
            continue;
        }
        ++told;
        findings.addOther(FINDING::remark, file + ": left behind by a program that was broken off");
    }
    if (more > 0)
        findings.addOther(FINDING::remark, common::format("%d more files were left behind like this", more));
}

} // namespace

void checkDescriptionLines(std::string_view text, const VARDESCRIPTION& description, RFindings& findings)
{
    constexpr int lines = variableLine - 1;
    for (int i = 0; i < lines; ++i) static_cast<void>(common::takeLine(text));
    const int described = description.describedCount;
    if (described < description.variableCount) {
        findings.add(FINDING::inconsistency, ".var",
                     common::format("ends before line %d: variables %d to %d have no label",
                                    variableLine + described, described + 1, description.variableCount));
    }
    RDamageReport unnamed, clamped;
    for (int v = 1; v <= described; ++v) {
        const VARINFO& variable = description.variables[static_cast<std::size_t>(v)];
        const auto format = formatOfLine(common::takeLine(text));
        if (variable.label[0] == '\0') unnamed.add(variableLine + v - 1);
        if (format.first != variable.width || format.second != variable.decimals)
            clamped.add(variableLine + v - 1);
    }
    findings.addShared(FINDING::inconsistency, ".var", "line", unnamed, "no label");
    findings.addShared(FINDING::inconsistency, ".var", "line", clamped,
                       "no width and decimals, or others than a format can have");
    if (!text.empty()) findings.add(FINDING::remark, ".var", "lines behind the last variable");
}

void checkVariableIds(const std::string& basePath, int variableCount, RFindings& findings)
{
    constexpr std::size_t longest = 119;
    RDamageReport form, range;
    const auto visit = [&](int number, std::string_view line) {
        const std::size_t length = idKeyLength(line);
        const bool hasForm = length < line.size() && line.size() <= longest;
        if (!hasForm) {
            form.add(number);
            return;
        }
        const auto variable = common::parseInt(line.substr(length + 1));
        if (!variable || *variable < 1 || *variable > variableCount) range.add(number);
    };
    constexpr auto bad = FINDING::inconsistency;
    if (!forEachLine(basePath + ".idv", visit)) findings.add(bad, ".idv", "can't be read");
    findings.addShared(bad, ".idv", "line", form, "not a key, \"=\" and a number in at most 119 bytes");
    findings.addShared(bad, ".idv", "line", range, "not the number of a variable of the collection");
}

void checkLastFiles(const std::string& basePath, RFindings& findings)
{
    constexpr std::size_t longest = 255;
    RDamageReport tooLong;
    int lines = 0;
    const auto visit = [&](int number, std::string_view line) {
        lines = number;
        if (line.size() > longest || line.find('\0') != std::string_view::npos) tooLong.add(number);
    };
    constexpr auto bad = FINDING::inconsistency;
    if (!forEachLine(basePath + ".cfl", visit)) {
        findings.add(bad, ".cfl", "can't be read");
    } else if (lines != 5 && common::fileSize(basePath + ".cfl") >= 0) {
        findings.add(bad, ".cfl", common::format("%d lines instead of 5", lines));
    }
    findings.addShared(bad, ".cfl", "line", tooLong, "not a file's name of at most 255 bytes");
}

void checkMarks(const std::string& basePath, RFindings& findings)
{
    const bool held = isHeld(basePath + ".lck");
    if (common::fileSize(journalPath(basePath)) >= 0) {
        findings.add(held ? FINDING::remark : FINDING::inconsistency, ".jnl",
                     held ? "a change is going on"
                          : "a change was cut off; the next opening for writing puts it right");
    }
    if (held && !isOwn(basePath + ".lck"))
        findings.add(FINDING::remark, ".lck", "the collection is open for writing in a program");
    checkLeftovers(basePath, findings);
}

} // namespace collection
