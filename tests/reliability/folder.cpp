#include "folder.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <filesystem>

#include <fcntl.h>
#include <sys/stat.h>

#include <gtest/gtest.h>

#include "collection/check.h"
#include "collection/leftovers.h"
#include "collection/sidefiles.h"
#include "common/files.h"
#include "common/text.h"
#include "samplecollection.h"
#include "selection/selectedlist.h"

namespace reliability {
namespace {

namespace fs = std::filesystem;
using collection::RCollection;
using common::format;

constexpr auto labels =
    std::to_array<std::string_view>({"", "Depth [m]", "Temperature [C]", "Salinity [psu]", "Oxygen [ml/l]"});
constexpr int sampleVariables = 4;

// The folder for temporary files beside `folder`.
std::string besideOf(const std::string& folder)
{
    const fs::path place = fs::path(folder).parent_path().parent_path() / "tmp";
    fs::create_directories(place);
    return place.string() + "/";
}

template <typename Value>
void put(std::string& bytes, const Value& value)
{
    bytes.append(reinterpret_cast<const char*>(&value), sizeof value);
}

void putStation(std::string& bytes, collection::STATIONDATA& station, int variables)
{
    station.header.dataOffset = 0;
    put(bytes, station.header);
    for (int v = 1; v <= variables; ++v) put(bytes, station.levelCount[static_cast<std::size_t>(v)]);
    const auto cells = static_cast<std::size_t>(station.header.valueCount);
    bytes.append(reinterpret_cast<const char*>(station.values.get()), cells * sizeof(float));
    bytes.append(reinterpret_cast<const char*>(station.flags.get()), cells);
}

// Names of files that may stand beside a closed collection.
bool belongsTo(const std::string& file, const std::string& name)
{
    if (!file.starts_with(name + ".")) return false;
    const std::string suffix = file.substr(name.size());
    return suffix == ".log" || suffix == ".cfg" ||
           std::find(collection::collectionSuffixes.begin(), collection::collectionSuffixes.end(), suffix) !=
               collection::collectionSuffixes.end();
}

std::string bytesOf(const std::vector<collection::CRUISEINFO>& cruises)
{
    std::string bytes;
    for (const collection::CRUISEINFO& entry : cruises) {
        bytes += format("%s|%s|%d %d %d %d %d\n", entry.cruise, entry.type, entry.stationCount,
                        entry.firstLabel, entry.lastLabel, entry.firstNumber, entry.lastNumber);
    }
    return bytes;
}

void checkInventory(ROpenCollection& open, std::vector<std::string>& faults)
{
    const std::string read = bytesOf(open.collection.cruises);
    open.collection.buildInventory(true, open.user); // which writes no file
    const std::string built = bytesOf(open.collection.cruises);
    if (read != built)
        faults.push_back(open.collection.name + ": stale inventory\n" + read + "instead of\n" + built);
}

void check(const std::string& basePath, std::vector<std::string>& faults)
{
    testing_support::RScriptedUser user;
    const collection::CHECKRESULT result = collection::checkCollection(basePath, user);
    for (const collection::FINDING& finding : result.findings) {
        if (finding.kind == collection::FINDING::inconsistency) faults.push_back("check: " + finding.text);
    }
    if (!result.complete) faults.emplace_back("check: not complete");
}

std::string examineOne(const std::string& folder, const std::string& name, std::vector<std::string>& faults)
{
    ROpenCollection open(folder, name);
    if (!common::fileExists(folder + name + ".var")) {
        if (!open.told().empty()) faults.push_back(open.told());
        return "none";
    }
    if (!open.isOpen()) {
        faults.push_back(name + " can't be opened: " + open.told());
        return "unreadable";
    }
    if (!open.collection.writable) faults.push_back(name + " opens read-only: " + open.told());
    if (!open.user.notes.empty()) faults.push_back(name + ": " + open.told());
    if (open.collection.name != name) faults.push_back(name + ": calls itself " + open.collection.name);
    checkInventory(open, faults);
    std::string content = contentOf(open.collection);
    open.close();
    check(folder + name, faults);
    return content;
}

} // namespace

std::string contentOf(RCollection& collection)
{
    std::string bytes = collection.type + format("|%d|%d|%d\n", collection.stationCount,
                                                 collection.variableCount, collection.foreignTimeOrder);
    for (int v = 1; v <= collection.variableCount; ++v) {
        const collection::VARINFO& variable = collection.variables[static_cast<std::size_t>(v)];
        bytes += format("%s|%d.%d\n", variable.label, variable.width, variable.decimals);
    }
    const auto station = std::make_unique<collection::STATIONDATA>();
    for (int n = 1; n <= collection.stationCount; ++n) {
        if (collection.loadStation(n, *station, false) == collection::LoadResult::ok) {
            putStation(bytes, *station, collection.variableCount);
        } else {
            bytes += format("station %d can't be read\n", n);
        }
    }
    return bytes;
}

ROpenCollection::ROpenCollection(const std::string& folderPath, const std::string& name) : folder(folderPath)
{
    collection.directory = folder;
    collection.name = name;
    collection.path = folder + name;
    collection.tempDirectory = besideOf(folder);
    collection.userName = "user";
    collection.hostName = "host";
    std::string holder;
    if (!lock.acquire(collection.path, &holder)) {
        user.about("Lock", name + " is open elsewhere: " + holder);
        return;
    }
    collection::removeLeftovers(collection.path);
    const collection::RECOVERY recovery = collection::recoverCollection(collection.path);
    if (recovery.result == collection::RecoveryResult::failed) {
        user.about("Recovery", recovery.fault);
        return;
    }
    if (!common::fileExists(collection.path + ".var")) return;
    collection.writable = collection::filesAreWritable(collection.path, folder, false);
    if (!collection.writable) user.about("Opening", collection::writeProtectedText);
    if (collection.openStationFiles(collection.path, user) != collection::OpenFilesResult::ok) return;
    collection.makeTempId();
    static_cast<void>(collection.openTemporaryFiles());
    collection.readInventory(false, user);
}

void ROpenCollection::close()
{
    collection.closeTemporaryFiles();
    collection.closeStationFiles();
    lock.release();
}

void ROpenCollection::select(std::string_view cruise)
{
    collection.criteria = collection::defaultCriteria();
    common::copyText(collection.criteria.cruisePattern, cruise);
    if (selection::buildSelectedList(collection, {}, "Selecting", user) == 0)
        user.about("Selecting", "No station is selected.");
}

std::string ROpenCollection::told() const
{
    std::string text;
    for (const std::string& message : user.messages) text += message + "\n";
    for (const std::string& note : user.notes) text += note + "\n";
    return text;
}

std::vector<std::string> filesOf(const std::string& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

void copyFolder(const std::string& from, const std::string& to)
{
    fs::remove_all(to);
    fs::create_directories(to);
    for (const std::string& name : filesOf(from)) {
        fs::copy(from + name, to + name, fs::copy_options::recursive);
        struct stat status {};
        ::stat((from + name).c_str(), &status);
        const timespec times[2] = {status.st_atim, status.st_mtim};
        ::utimensat(AT_FDCWD, (to + name).c_str(), times, 0);
    }
}

EXAMINATION examine(const std::string& folder, std::span<const std::string> names,
                    std::span<const std::string> otherFiles)
{
    EXAMINATION result;
    for (const std::string& name : names) result.contents[name] = examineOne(folder, name, result.faults);
    for (const std::string& file : filesOf(folder)) {
        const bool expected = std::any_of(names.begin(), names.end(),
                                          [&](const auto& name) { return belongsTo(file, name); }) ||
                              std::find(otherFiles.begin(), otherFiles.end(), file) != otherFiles.end();
        if (!expected) result.faults.push_back("left behind: " + file);
    }
    return result;
}

std::string describe(const Contents& contents)
{
    std::string text;
    for (const auto& [name, content] : contents) {
        text += format("%s: %s, %zu bytes, digest %zx; ", name.c_str(),
                       content.substr(0, content.find('\n')).c_str(), content.size(),
                       std::hash<std::string>{}(content));
    }
    return text;
}

void append(ROpenCollection& open, const CAST& cast)
{
    auto columns = testing_support::profile(cast.levels, cast.variables, cast.seed);
    testing_support::fillStation(open.station, columns, static_cast<std::uint8_t>(cast.levels % 2));
    testing_support::label(open.station, cast.cruise, cast.station);
    testing_support::place(open.station, 10, 20);
    ASSERT_EQ(open.collection.writeStation(0, open.station, false), collection::WriteResult::ok);
}

std::string spreadsheetOf(std::span<const CAST> casts)
{
    std::string text = "Cruise\tStation\tType\tmon/day/yr\thh:mm\tLon (°E)\tLat (°N)\tBot. Depth [m]";
    for (std::size_t v = 1; v < labels.size(); ++v) text += "\t" + std::string(labels[v]) + "\tQF";
    text += "\n";
    for (const CAST& cast : casts) {
        const auto columns = testing_support::profile(cast.levels, cast.variables, cast.seed);
        for (std::size_t k = 0; k < static_cast<std::size_t>(cast.levels); ++k) {
            text += format("%s\t%s\tB\t07/15/1995\t12:34\t10\t20\t4000", cast.cruise.c_str(),
                           cast.station.c_str());
            for (std::size_t v = 0; v + 1 < labels.size(); ++v)
                text += v < columns.size() ? format("\t%g\t0", static_cast<double>(columns[v][k])) : "\t\t1";
            text += "\n";
        }
    }
    return text;
}

std::string listingOf(std::span<const CAST> casts)
{
    const std::size_t variables = labels.size() - 1;
    std::string text = format("NVQ4.0 Listing\n File Name: sample\n      Type: HYD\n     Nstat: %zu\n"
                              " Variables: %zu\n\n",
                              casts.size(), variables);
    for (std::size_t v = 1; v < labels.size(); ++v)
        text += format("%-60s 8.2\n", std::string(labels[v]).c_str());
    text += "\n";
    for (const CAST& cast : casts) {
        const auto columns = testing_support::profile(cast.levels, cast.variables, cast.seed);
        text += format("# %-20s %20s B  7/15/1995  10.000  20.000  4000   100%5d %3zu\n", cast.cruise.c_str(),
                       cast.station.c_str(), cast.levels, columns.size());
        for (std::size_t v = 1; v <= columns.size(); ++v) text += format("%15zu", v);
        text += "\n";
        for (std::size_t k = 0; k < static_cast<std::size_t>(cast.levels); ++k) {
            for (const auto& column : columns) text += format(" %12.7g 0", static_cast<double>(column[k]));
            text += "\n";
        }
    }
    return text;
}

void makeCollection(const std::string& folder, const std::string& name, std::string_view magic,
                    std::span<const CAST> casts)
{
    RCollection made;
    made.directory = folder;
    made.name = name;
    made.path = folder + name;
    made.tempDirectory = besideOf(folder);
    made.userName = "user";
    made.hostName = "host";
    made.writable = true;
    made.variableCount = made.totalVariableCount = sampleVariables;
    for (int v = 1; v <= sampleVariables; ++v) {
        made.variables.at(static_cast<std::size_t>(v)) = collection::emptyVariable(v);
        collection::setLabel(made.variables.at(static_cast<std::size_t>(v)),
                             labels[static_cast<std::size_t>(v)]);
    }
    ASSERT_TRUE(made.createEmptyFiles());
    made.newMagic = magic;
    testing_support::RScriptedUser user;
    ASSERT_EQ(made.openStationFiles(made.path, user), collection::OpenFilesResult::ok);
    ASSERT_EQ(made.foreignTimeOrder, magic == "NVQsol");
    made.closeStationFiles();
    ROpenCollection open(folder, name);
    ASSERT_TRUE(open.isOpen()) << open.told();
    for (const CAST& cast : casts) append(open, cast);
    ASSERT_TRUE(open.collection.writeVarFile(open.collection.path));
    open.collection.readInventory(true, open.user);
}

void makeSample(const std::string& folder, const std::string& name, std::string_view magic)
{
    const auto casts = std::to_array<CAST>({{"B", "12", 9, 1},
                                            {"A", "3", 12, 2},
                                            {"C", "1", 1, 3, 1},
                                            {"A", "1", 7, 4},
                                            {"B", "2", 20, 5},
                                            {"A", "12A", 4, 6, 3},
                                            {"C", "A12", 5, 7},
                                            {"B", "7", 8, 8, 1},
                                            {"A", "2", 11, 9, 2}});
    makeCollection(folder, name, magic, casts);
    ROpenCollection open(folder, name);
    ASSERT_TRUE(open.isOpen()) << open.told();
    // A station that moves leaves dead space, and one that shrinks a gap.
    testing_support::fillStation(open.station, testing_support::profile(15, 4, 20));
    testing_support::label(open.station, "A", "3");
    testing_support::place(open.station, 10, 20);
    ASSERT_EQ(open.collection.writeStation(2, open.station, false), collection::WriteResult::ok);
    testing_support::fillStation(open.station, testing_support::profile(3, 4, 21));
    testing_support::label(open.station, "B", "2");
    testing_support::place(open.station, 10, 20);
    ASSERT_EQ(open.collection.writeStation(4, open.station, false), collection::WriteResult::ok);
    ASSERT_TRUE(open.collection.writeVarFile(open.collection.path));
    ASSERT_TRUE(open.collection.setVariableId("Depth [m]", 1));
    open.collection.readInventory(true, open.user);
    ASSERT_TRUE(common::writeFile(folder + name + ".info", "A sample\n"));
    ASSERT_TRUE(collection::writeLastFiles(open.collection.path, folder, {}));
}

} // namespace reliability
