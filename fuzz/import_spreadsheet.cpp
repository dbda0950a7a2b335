// Any bytes as a spreadsheet: what comes out keeps the limits of a station, its account adds up, and reading
// again gives the same. The size of the file decides what is settled about it.

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <string>
#include <vector>

#include <sys/mman.h>
#include <unistd.h>

#include "common/headlessuser.h"
#include "import/association.h"
#include "import/headercheck.h"
#include "import/importsettings.h"
#include "import/spreadsheetreader.h"

namespace {

using collection::STATIONDATA;

class RSilentUser : public common::RHeadlessUser {
public:
    void about(std::string_view, std::string_view) override {}
    void note(std::string_view) override {}
};

void require(bool holds)
{
    if (!holds) std::abort();
}

// Gives what a user might, made from the size of the file.
class RAnySettler : public importing::RSpreadsheetSettler {
public:
    explicit RAnySettler(std::size_t size) : size_(size) {}
    bool settleProperties(importing::SPREADSHEETDESC& desc, std::span<const std::string>) override
    {
        desc.sepIndex = static_cast<int>(size_ % 4);
        desc.sepChars = importing::separators[size_ % 4].character;
        desc.headerLine = static_cast<int>(size_ / 4 % 3);
        desc.firstDataLine = desc.headerLine + 1;
        return true;
    }
    bool settleHeaderVariables(importing::SPREADSHEETDESC& desc, std::span<const std::string>) override
    {
        for (std::size_t meta = 3; meta < 8; ++meta) {
            if (desc.metaColumn[meta] >= 0 && size_ % 5 == 0)
                desc.convId[meta] = static_cast<int>(size_ / 12 % 36);
        }
        return true;
    }

private:
    std::size_t size_;
};

// Settings that a command file might give.
importing::IMPORTSETTINGS anySettings(std::size_t size)
{
    importing::IMPORTSETTINGS settings;
    const auto set = [&](std::string_view key, std::string_view value) {
        require(importing::setImportSetting(settings, key, value).empty());
    };
    set("sep", std::to_string(size % 4));
    if (size / 4 % 2 == 1) set("header_line", std::to_string(1 + size / 8 % 3));
    if (size / 24 % 3 == 1) set("first_data_line", std::to_string(1 + size / 72 % 5));
    if (size % 7 == 1) set("missing", "5");
    set("default_date", "2000-01-02");
    set("default_lon", "-30");
    set("default_lat", "10.5");
    constexpr std::string_view associations[] = {
        "1=date:2", "2=lon:linear:-1:3", "3=cruise", "Station=\"hh:mm\"", "4=date", "2=type"};
    set("assoc", associations[size % 6]);
    if (size % 3 == 0) set("assoc", "5=lat");
    return settings;
}

void checkStation(const STATIONDATA& station, int variables)
{
    const int levels = station.levels();
    require(levels >= 1 && levels <= common::maxLevels);
    require(station.offset[1] == 0);
    require(station.header.valueCount >= levels && station.header.valueCount <= common::maxCells);
    for (int v = 1; v <= variables; ++v) {
        const int offset = station.offset[static_cast<std::size_t>(v)];
        require(offset >= -1 && offset + levels <= station.header.valueCount);
        require(station.levelCount[static_cast<std::size_t>(v)] <= levels);
    }
    std::string message;
    collection::STATIONHDR header = station.header;
    require(importing::checkHeader(header, message));
    require(header.longitude >= 0 && header.longitude < 360);
}

// What the stations come to that were delivered.
struct DELIVERED {
    std::int64_t bytes = 0, levels = 0, values = 0;
};

void checkAccount(const importing::READACCOUNT& account, const DELIVERED& delivered)
{
    require(account.lines ==
            account.headerLines + account.dataLines + account.blankLines + account.refusedLines);
    require(account.valuesRead == account.valuesDelivered + account.valuesRefused);
    require(account.dataLines == delivered.levels && account.valuesDelivered == delivered.values);
    require(account.valuesRefused >= 0 && account.blankLines >= 0 && account.refusedLines >= 0);
    require((account.unreadable > 0) != account.firstUnreadable.empty());
    require((account.labelsCut > 0) != account.firstCut.empty());
}

// Everything that comes out of a file, as bytes.
std::string readAll(const std::string& path, importing::RSpreadsheetSettler* settler, std::int64_t size)
{
    RSilentUser user;
    importing::SPREADSHEETHEADER header;
    if (importing::readSpreadsheetHeader(path, settler, user, header) != importing::HeaderResult::ok)
        return {};
    std::vector<collection::VARINFO> targets = header.sources;
    importing::associateByNumber(header.sources, targets);
    importing::RSpreadsheetReader reader(header, targets, {}, user);
    require(reader.open(path));
    static STATIONDATA station;
    std::string all;
    DELIVERED delivered;
    std::int64_t code = 0;
    while ((code = reader.readStation(station)) > 0) {
        checkStation(station, header.sourceCount());
        const auto cells = static_cast<std::size_t>(station.header.valueCount);
        const float* const values = station.values.get();
        delivered.bytes += code;
        delivered.levels += station.levels();
        delivered.values +=
            std::count_if(values, values + cells, [](float value) { return value != common::MISSING_VALUE; });
        all.append(reinterpret_cast<const char*>(&station.header), sizeof station.header);
        all.append(reinterpret_cast<const char*>(values), 4 * cells);
        all.append(reinterpret_cast<const char*>(station.flags.get()), cells);
    }
    require(delivered.bytes <= size && code >= importing::readCancelled);
    checkAccount(reader.account(), delivered);
    return all + reader.account().firstUnreadable + reader.account().firstCut;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const int file = ::memfd_create("spreadsheet", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    require(::ftruncate(file, 0) == 0 && ::pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
    RSilentUser user;
    RAnySettler asked(size);
    const importing::IMPORTSETTINGS settings = anySettings(size);
    importing::RSettingsSettler settled(settings, user);
    const auto bytes = static_cast<std::int64_t>(size);
    for (importing::RSpreadsheetSettler* const who :
         {static_cast<importing::RSpreadsheetSettler*>(nullptr),
          static_cast<importing::RSpreadsheetSettler*>(&asked),
          static_cast<importing::RSpreadsheetSettler*>(&settled)}) {
        const std::string first = readAll(path, who, bytes);
        require(readAll(path, who, bytes) == first);
    }
    return 0;
}
