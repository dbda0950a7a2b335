// Any bytes as a spreadsheet: what comes out keeps the limits of a station, and reading again gives the same.

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
#include "import/spreadsheetreader.h"

namespace {

using collection::STATIONDATA;

class RSilentUser : public common::RHeadlessUser {
public:
    void about(std::string_view, std::string_view) override {}
    void note(std::string_view) override {}
};

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

void require(bool holds)
{
    if (!holds) std::abort();
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
    std::int64_t bytes = 0, code = 0;
    while ((code = reader.readStation(station)) > 0) {
        bytes += code;
        checkStation(station, header.sourceCount());
        const auto cells = static_cast<std::size_t>(station.header.valueCount);
        all.append(reinterpret_cast<const char*>(&station.header), sizeof station.header);
        all.append(reinterpret_cast<const char*>(station.values.get()), 4 * cells);
        all.append(reinterpret_cast<const char*>(station.flags.get()), cells);
    }
    require(bytes <= size && code >= importing::readCancelled);
    return all;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const int file = ::memfd_create("spreadsheet", 0);
    static const std::string path = "/proc/self/fd/" + std::to_string(file);
    require(::ftruncate(file, 0) == 0 && ::pwrite(file, data, size, 0) == static_cast<ssize_t>(size));
    RAnySettler settler(size);
    for (importing::RSpreadsheetSettler* const who :
         {static_cast<importing::RSpreadsheetSettler*>(nullptr),
          static_cast<importing::RSpreadsheetSettler*>(&settler)}) {
        const std::string first = readAll(path, who, static_cast<std::int64_t>(size));
        require(readAll(path, who, static_cast<std::int64_t>(size)) == first);
    }
    return 0;
}
