#include "collection/sidefiles.h"

#include <algorithm>
#include <array>
#include <sys/stat.h>
#include <unistd.h>

#include "collection/rcollection.h"
#include "collection/variableids.h"
#include "common/files.h"
#include "common/text.h"

namespace collection {
namespace {

constexpr std::int64_t largestSideFile = 16 << 20;
constexpr std::size_t longestName = 255;   // bytes of a `.cfl` line
constexpr std::size_t longestIdLine = 119; // bytes of an `.idv` line

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

// An extension that a program gives to such a file: it may go when the line is read.
bool isFileExtension(std::string_view extension)
{
    constexpr auto known = std::to_array<std::string_view>(
        {".bmp", ".cfg", ".eps", ".gif", ".jpeg", ".jpg", ".png", ".ps", ".sec", ".tif", ".tiff", ".txt"});
    return std::find(known.begin(), known.end(), common::toLower(extension)) != known.end();
}

// The reader will cut an extension: a point that begins none is protected by one.
std::string lineOfName(const std::string& name, const std::string& directory, std::string_view extension)
{
    std::string line = withoutLineBreaks(common::makeRelative(name, directory));
    const std::string_view last = std::string_view(line).substr(common::cutExtension(line).size());
    if (!last.empty() && !isFileExtension(last)) line += extension;
    if (line.size() > longestName) line.clear();
    return line + "\n";
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
    return idKeyLength(line) == key.size() && line.starts_with(key);
}

// The line as it is written: its key and value with "=" between them.
std::string idLine(std::string_view line)
{
    const std::size_t length = idKeyLength(line);
    std::string result(line.substr(0, length));
    result += '=';
    return length < line.size() ? result.append(line.substr(length + 1)) : result;
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
        const std::string_view line = common::takeLine(rest);
        if (line.size() > longestName || (line.empty() && name == &files.configName)) continue;
        *name = nameOfLine(line, directory);
    }
    return true;
}

bool writeLastFiles(const std::string& basePath, const std::string& directory, const LASTFILES& files)
{
    const std::string present = common::readFile(basePath + ".cfl", largestSideFile).value_or(std::string());
    std::string_view rest = present;
    std::string text;
    for (const std::string* const name :
         {&files.configName, &files.graphics, &files.others[0], &files.others[1], &files.others[2]}) {
        const bool isFirst = name == &files.configName;
        const std::string_view line = common::takeLine(rest);
        if (!line.empty() && (name->empty() || *name == nameOfLine(line, directory))) {
            text.append(line) += '\n';
        } else {
            text +=
                lineOfName(isFirst && name->empty() ? basePath : *name, directory, isFirst ? ".cfg" : ".");
        }
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
        if (message.starts_with("UNDONE ")) continue; // it left nothing behind
        if (message.starts_with("COMPLETED IMPORT") || message.starts_with("COMPLETED CREATE")) continue;
        if (message.starts_with("ACCOUNT ")) continue; // of an import
        if (message != "CREATE" && !message.starts_with("IMPORT")) return false;
        ++lines;
    }
    return lines > 0;
}

bool appendLogLine(const std::string& basePath, std::string_view message, std::string_view user,
                   std::string_view host)
{
    const common::FilePtr log = common::openFile(basePath + ".log", "a+b");
    if (!log) return false;
    std::string line = logTime(std::time(nullptr)) + "> " + withoutLineBreaks(user) + ":" +
                       withoutLineBreaks(host) + " " + withoutLineBreaks(message) + "\n";
    // Behind a line that was cut off
    const bool startsLine = std::fseek(log.get(), -1, SEEK_END) != 0 || std::fgetc(log.get()) == '\n';
    if (!startsLine) line.insert(line.begin(), '\n');
    return std::fseek(log.get(), 0, SEEK_END) == 0 &&
           std::fwrite(line.data(), 1, line.size(), log.get()) == line.size() && std::fflush(log.get()) == 0;
}

void RCollection::addLogLine(std::string_view message) const
{
    appendLogLine(path, message, userName, hostName);
}

int RCollection::getVariableId(std::string_view key) const
{
    const auto text = common::readFile(path + ".idv", largestSideFile);
    if (!text) return 0;
    std::string_view rest = *text;
    while (!rest.empty()) {
        const std::string_view line = common::takeLine(rest);
        if (line.size() > longestIdLine || line.size() == key.size() || !isKeyLine(line, key)) continue;
        std::string_view value = line.substr(key.size() + 1);
        int number = 0;
        return common::takeInt(value, number) && number >= 1 && number <= variableCount ? number : 0;
    }
    return 0;
}

bool RCollection::setVariableId(std::string_view key, int number)
{
    const std::string file = path + ".idv";
    const auto old = common::readFile(file, largestSideFile);
    if (!old && common::fileSize(file) >= 0) return false; // it may hold ids that can't be read now
    const std::string text = old.value_or(std::string());
    const std::string newLine = std::string(key) + common::format("=%d\n", number);
    const bool hasForm = !key.empty() && key.find_first_of("=\t\r\n") == std::string_view::npos &&
                         newLine.size() - 1 <= longestIdLine;
    if (!hasForm || number < 1 || number > variableCount) return false;
    std::string result;
    bool found = false;
    std::string_view rest = text;
    while (!rest.empty()) {
        const std::string_view line = common::takeLine(rest);
        if (isKeyLine(line, key)) {
            if (!found) result += newLine;
            found = true;
        } else {
            result += idLine(line) + "\n";
        }
    }
    if (!found) result += newLine;
    return common::writeFile(file, result);
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

} // namespace collection
