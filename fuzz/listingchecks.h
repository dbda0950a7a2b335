#pragma once

// What the fuzz targets of both listings demand of what comes out.

#include <cstring>
#include <string>
#include <vector>

#include "fuzzsupport.h"
#include "import/association.h"
#include "import/headercheck.h"
#include "import/listingreader.h"

namespace fuzzing {

inline void checkVariables(const importing::LISTINGHEADER& header)
{
    require(!header.variables.empty() && header.variables.size() <= common::maxVariables + 1);
    require(header.stationCount >= 0 && !header.type.empty());
    for (std::size_t v = 1; v < header.variables.size(); ++v) {
        const collection::VARINFO& variable = header.variables[v];
        require(variable.position == static_cast<int>(v) && variable.column >= 1);
        require(variable.decimals >= 0 && variable.decimals <= 4);
        require(variable.width >= variable.decimals + 3 && variable.width <= variable.decimals + 15);
        require(std::memchr(variable.label, 0, sizeof variable.label) != nullptr);
    }
}

inline void checkStation(const collection::STATIONDATA& station, int variables)
{
    const int levels = station.levels();
    require(levels >= 1 && levels <= importing::RListingReader::mostLevels && station.offset[1] == 0);
    require(station.header.valueCount >= levels && station.header.valueCount <= common::maxCells);
    for (int v = 1; v <= variables; ++v) {
        const int offset = station.offset[static_cast<std::size_t>(v)];
        require(offset >= -1 && offset + levels <= station.header.valueCount);
        require(station.levelCount[static_cast<std::size_t>(v)] <= levels);
        require(v == 1 || (offset >= 0) == (station.levelCount[static_cast<std::size_t>(v)] > 0));
    }
    std::string message;
    collection::STATIONHDR header = station.header;
    require(importing::checkHeader(header, message));
    require(header.longitude >= 0 && header.longitude < 360 && header.year >= 1900 && header.year <= 2200);
}

inline void checkAccount(const importing::READACCOUNT& account)
{
    require(account.lines ==
            account.headerLines + account.dataLines + account.blankLines + account.refusedLines);
    require(account.valuesRead == account.valuesDelivered + account.valuesRefused);
    require(account.valuesRefused >= 0 && account.refusedLines >= 0);
}

// All stations of a listing as bytes. `shift` moves the links of the targets: with one the first target has
// no source.
inline std::string readListing(importing::ListingForm form, importing::LISTINGHEADER header,
                               const std::string& path, int shift)
{
    RSilentUser user;
    std::vector<collection::VARINFO> targets = header.variables;
    importing::associateByNumber(header.variables, targets);
    for (collection::VARINFO& target : targets) target.assocSource -= shift;
    importing::RListingReader reader(form, header, targets, {}, user);
    require(reader.open(path));
    static collection::STATIONDATA station;
    std::string all;
    std::int64_t bytes = 0, code = 0;
    while ((code = reader.readStation(station)) > 0) {
        bytes += code;
        checkStation(station, static_cast<int>(targets.size()) - 1);
        const auto cells = static_cast<std::size_t>(station.header.valueCount);
        all.append(reinterpret_cast<const char*>(&station.header), sizeof station.header);
        all.append(reinterpret_cast<const char*>(station.values.get()), 4 * cells);
        all.append(reinterpret_cast<const char*>(station.flags.get()), cells);
    }
    require(code >= importing::readCancelled && bytes <= common::fileSize(path));
    checkAccount(reader.account());
    return all;
}

inline void readListingTwice(importing::ListingForm form, const importing::LISTINGHEADER& header,
                             const std::string& path)
{
    for (const int shift : {0, 1}) {
        const std::string first = readListing(form, header, path, shift);
        require(readListing(form, header, path, shift) == first);
    }
}

} // namespace fuzzing
