#include "collection/sidefiles.h"

#include <algorithm>
#include <array>
#include <chrono>
#include <sys/stat.h>
#include <unistd.h>

#include "collection/rcollection.h"
#include "common/files.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::int64_t largestSideFile = 16 << 20;

std::string withoutLineBreaks(std::string_view text)
{
    std::string line(text);
    std::replace_if(
        line.begin(), line.end(), [](char c) { return c == '\n' || c == '\r'; }, ' ');
    return line;
}

// The name of a `.cfl` line, absolute.
std::string nameOfLine(std::string_view line, const std::string& directory)
{
    const std::string name = common::replaceAll(line, "\\", "/");
    return common::makeAbsolute(std::string(common::cutExtension(name)), directory);
}

std::string lineOfName(const std::string& name, const std::string& directory)
{
    return withoutLineBreaks(common::makeRelative(name, directory)) + "\n";
}

bool isWritableOrMissing(const std::string& file)
{
    return common::fileSize(file) < 0 || common::isWritable(file);
}

bool removeOne(const std::string& file)
{
    return ::unlink(file.c_str()) == 0 || errno == ENOENT;
}

// The message of a log line "<time>> <user>:<host> <message>".
std::string_view messageOf(std::string_view line)
{
    const std::size_t user = line.find("> ");
    if (user == std::string_view::npos) return {};
    const std::size_t host = line.find(':', user);
    const std::size_t message = host == std::string_view::npos ? host : line.find(' ', host);
    return message == std::string_view::npos ? std::string_view() : line.substr(message + 1);
}

bool isKeyLine(std::string_view line, std::string_view key)
{
    return line.size() > key.size() && line.starts_with(key) && line[key.size()] == '=';
}

// A number that no two openings share: time and process, well mixed.
std::uint64_t mixedNumber()
{
    const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
    std::uint64_t x = static_cast<std::uint64_t>(now) + (static_cast<std::uint64_t>(::getpid()) << 40U);
    x = (x ^ (x >> 30U)) * 0xbf58476d1ce4e5b9ULL;
    x = (x ^ (x >> 27U)) * 0x94d049bb133111ebULL;
    return x ^ (x >> 31U);
}

} // namespace

std::string logTime(std::time_t time)
{
    static constexpr const char* months[] = {"Jan", "Feb", "Mar", "Apr", "May", "Jun",
                                             "Jul", "Aug", "Sep", "Oct", "Nov", "Dec"};
    std::tm local{};
    if (!::localtime_r(&time, &local)) return {};
    return common::format("%s/%02d/%04d %02d:%02d:%02d", months[local.tm_mon], local.tm_mday,
                          local.tm_year + 1900, local.tm_hour, local.tm_min, local.tm_sec);
}

std::string fileTime(const std::string& file)
{
    struct stat status {};
    return ::stat(file.c_str(), &status) == 0 ? logTime(status.st_mtime) : std::string();
}

bool readLastFiles(const std::string& basePath, const std::string& directory, LASTFILES& files)
{
    const auto text = common::readFile(basePath + ".cfl", largestSideFile);
    if (!text) return false;
    std::string_view rest = *text;
    for (std::string* const name :
         {&files.configName, &files.graphics, &files.others[0], &files.others[1], &files.others[2]}) {
        if (rest.empty()) break;
        *name = nameOfLine(common::takeLine(rest), directory);
    }
    return true;
}

bool writeLastFiles(const std::string& basePath, const std::string& directory, const LASTFILES& files)
{
    std::string text = lineOfName(files.configName.empty() ? basePath : files.configName, directory);
    for (const std::string* const name :
         {&files.graphics, &files.others[0], &files.others[1], &files.others[2]}) {
        text += lineOfName(*name, directory);
    }
    return common::writeFile(basePath + ".cfl", text);
}

bool filesAreWritable(const std::string& basePath, const std::string& directory, bool isNew)
{
    if (!common::directoryIsWritable(directory.empty() ? "." : directory)) return false;
    return isNew || (isWritableOrMissing(basePath + ".var") && isWritableOrMissing(basePath + ".hob") &&
                     isWritableOrMissing(basePath + ".dob"));
}

bool removeCollectionFiles(const std::string& basePath, bool withLog, bool withConfiguration)
{
    if (!removeOne(basePath + ".hob")) return false;
    bool all = true;
    for (const std::string_view suffix : collectionSuffixes)
        all = removeOne(basePath + std::string(suffix)) && all;
    if (withLog) all = removeOne(basePath + ".log") && all;
    if (withConfiguration) all = removeOne(basePath + ".cfg") && all;
    return all;
}

bool isMadeByImportsOnly(const std::string& basePath)
{
    const auto text = common::readFile(basePath + ".log", largestSideFile);
    if (!text) return false;
    std::string_view rest = *text;
    int lines = 0;
    while (!rest.empty()) {
        const std::string_view line = common::takeLine(rest);
        if (common::trimBlanks(line).empty()) continue;
        if (line.starts_with("ERROR: IMPORT")) continue; // one that stored nothing
        const std::string_view message = messageOf(line);
        if (message != "CREATE" && !message.starts_with("IMPORT")) return false;
        ++lines;
    }
    return lines > 0;
}

void RCollection::addLogLine(std::string_view message) const
{
    const common::FilePtr log = common::openFile(path + ".log", "ab");
    if (!log) return;
    const std::string line = logTime(std::time(nullptr)) + "> " + withoutLineBreaks(userName) + ":" +
                             withoutLineBreaks(hostName) + " " + withoutLineBreaks(message) + "\n";
    static_cast<void>(std::fwrite(line.data(), 1, line.size(), log.get()));
}

int RCollection::getVariableId(std::string_view key) const
{
    const auto text = common::readFile(path + ".idv", largestSideFile);
    if (!text) return 0;
    std::string_view rest = *text;
    while (!rest.empty()) {
        const std::string_view line = common::takeLine(rest);
        if (!isKeyLine(line, key)) continue;
        std::string_view value = line.substr(key.size() + 1);
        int number = 0;
        return common::takeInt(value, number) && number >= 1 && number <= variableCount ? number : 0;
    }
    return 0;
}

bool RCollection::setVariableId(std::string_view key, int number)
{
    const std::string text = common::readFile(path + ".idv", largestSideFile).value_or(std::string());
    const std::string newLine = withoutLineBreaks(key) + common::format("=%d\n", number);
    std::string result;
    bool found = false;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view line = common::takeLine(rest);
        if (isKeyLine(line, key)) {
            if (!found) result += newLine;
            found = true;
        } else {
            result += line;
            result += line.find('=') == std::string_view::npos ? "=\n" : "\n";
        }
    }
    if (!found) result += newLine;
    return common::writeFile(path + ".idv", result);
}

bool RCollection::createEmptyFiles()
{
    if (!removeOne(path + ".idv")) return false;
    stationCount = 0;
    totalVariableCount = variableCount;
    headerRecordSize = 80 + 2 * variableCount;
    if (!writeVarFile(path)) return false;
    addLogLine("CREATE");
    return true;
}

std::string RCollection::infoFile() const
{
    const bool elsewhere = kind == 2 && !common::directoryIsWritable(directory.empty() ? "." : directory);
    return elsewhere ? tempDirectory + tempId + "_" + name + ".info" : directory + name + ".info";
}

void RCollection::makeTempId()
{
    const std::string last = tempId;
    do {
        tempId = common::format("NVQ_%llu", static_cast<unsigned long long>(mixedNumber() % 10000000000ULL));
    } while (tempId == last);
}

bool RCollection::openTemporaryFiles()
{
    closeTemporaryFiles();
    constexpr int tries = 100; // the names of other running programs are theirs
    for (int i = 0; i < tries; ++i) {
        if (tempId.empty() || i > 0) makeTempId();
        const std::string base = tempDirectory + tempId;
        valFile = common::openFile(base + ".val", "wbx+");
        if (!valFile) continue;
        selFile = common::openFile(base + ".sel", "wbx+");
        if (selFile) return true;
        valFile.reset();
        removeOne(base + ".val");
    }
    return false;
}

void RCollection::closeTemporaryFiles()
{
    if (!valFile && !selFile) return;
    valFile.reset();
    selFile.reset();
    selectedStationCount = plottedStationCount = 0;
    common::deleteMatching(tempDirectory.empty() ? "." : tempDirectory, tempId + ".*", -1);
    common::deleteMatching(tempDirectory.empty() ? "." : tempDirectory, tempId + "_*", -1);
}

} // namespace collection
