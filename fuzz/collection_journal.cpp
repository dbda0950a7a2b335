// A journal beside a small collection. The first byte says whether the rest is the file itself, or frames
// that are given their places and checksums here: one byte kind (0: a head that fits the collection), two
// bytes length, content. A recovery that is refused changes nothing, one that isn't leaves no journal, and
// files that are not the collection's own are never touched.

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <string>

#include <unistd.h>

#include "collection/journalframes.h"
#include "collection/rcollection.h"
#include "collection/stationrecord.h"
#include "collection/varfile.h"
#include "fuzzsupport.h"

namespace {

using namespace collection;
using namespace fuzzing;
using Folder = std::map<std::string, std::string>;

Folder readFolder()
{
    Folder folder;
    for (const auto& entry : std::filesystem::directory_iterator(directory()))
        folder[entry.path().filename().string()] = common::readFile(entry.path().string()).value_or("");
    return folder;
}

// Three stations of two variables and two levels each, and files of others.
const Folder& goodFolder()
{
    static const Folder folder = [] {
        const RECORDFORM form{.variableCount = 2, .dataSize = 60};
        std::string hob(littleEndianMagic), dob(60, '\1');
        for (int n = 0; n < 3; ++n) {
            STATIONHDR header{};
            header.cruise[0] = 'A';
            header.station[0] = static_cast<char>('1' + n);
            header.type[0] = 'B';
            header.dataOffset = 20 * n;
            header.valueCount = 4;
            LEVELCOUNTS counts{};
            counts[1] = counts[2] = 2;
            std::byte record[84];
            packRecord(header, &counts, form, record);
            hob.append(reinterpret_cast<const char*>(record), sizeof record);
        }
        const std::string text =
            formatVarFile("sample", "HYD", 3, 2, std::array<VARINFO, common::variableSlots>{});
        return Folder{{"sample.hob", hob},        {"sample.dob", dob},       {"sample.var", text},
                      {"sample.log", "a line\n"}, {"TRG.hob", hob},          {"sample.old.inv", "old"},
                      {"other.hob", "other"},     {"samples.var", "others"}, {"sample", "other"}};
    }();
    return folder;
}

constexpr std::string_view others[] = {"other.hob", "samples.var", "sample"};

void makeFolder(std::string_view journal)
{
    for (const auto& entry : std::filesystem::directory_iterator(directory()))
        std::filesystem::remove_all(entry.path());
    for (const auto& [name, content] : goodFolder()) put(directory() + name, content);
    put(directory() + "sample.jnl", journal);
}

std::string framed(std::string_view rest)
{
    const JOURNALHEAD head{1, "FUZZ", "sample", {258, 60, 3}, "NVQ4.0", goodFolder().at("sample.var")};
    const auto magic = std::as_bytes(std::span(journalMagic));
    std::vector<std::byte> out(magic.begin(), magic.end());
    while (rest.size() >= 3) {
        const auto kind = static_cast<unsigned char>(rest[0]);
        const std::size_t length =
            std::min<std::size_t>(rest.size() - 3, static_cast<unsigned char>(rest[1]) +
                                                       256U * static_cast<unsigned char>(rest[2]));
        const auto content = std::as_bytes(std::span(rest.substr(3, length)));
        const auto place = static_cast<std::int64_t>(out.size());
        if (kind == 0) {
            appendFrame(out, FrameKind::head, packHead(head), {}, place, 0, 0);
        } else {
            appendFrame(out, static_cast<FrameKind>(kind), content, {}, place, 0, head.mark);
        }
        rest.remove_prefix(3 + length);
    }
    return {reinterpret_cast<const char*>(out.data()), out.size()};
}

void openAndRead()
{
    static STATIONDATA station;
    RSilentUser user;
    RCollection collection;
    if (collection.openStationFiles(directory() + "sample", user) != OpenFilesResult::ok) return;
    for (int n = 1; n <= collection.stationCount; ++n)
        static_cast<void>(collection.loadStation(n, station, false));
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size < 1) return 0;
    const std::string_view rest(reinterpret_cast<const char*>(data) + 1, size - 1);
    makeFolder(data[0] % 2 == 0 ? std::string(rest) : framed(rest));
    const Folder before = readFolder();
    const RECOVERY recovery = recoverCollection(directory() + "sample");
    Folder after = readFolder();
    require(recovery.result != RecoveryResult::none);
    if (recovery.result == RecoveryResult::failed) {
        require(after.count("sample.jnl") == 1 && !recovery.fault.empty());
    } else {
        require(after.count("sample.jnl") == 0);
        require(recoverCollection(directory() + "sample").result == RecoveryResult::none);
    }
    for (const std::string_view name : others)
        require(after[std::string(name)] == before.at(std::string(name)));
    openAndRead();
    return 0;
}
