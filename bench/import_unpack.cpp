// Unpacking 100 MB of casts, against the library's plain reading of the same archive. Bytes are unpacked
// ones.

#include <filesystem>
#include <random>

#include <archive.h>
#include <archive_entry.h>
#include <benchmark/benchmark.h>

#include "common/files.h"
#include "common/headlessuser.h"
#include "common/text.h"
#include "import/unpack.h"

namespace {

namespace fs = std::filesystem;

constexpr std::size_t textSize = 100000000;

std::string casts()
{
    std::mt19937 random(42);
    std::string text;
    text.reserve(textSize + 200);
    for (int line = 0; text.size() < textSize; ++line) {
        text += common::format("A16N\t%d\tC\t07/%02d/1993\t%02d:%02d\t%.3f\t%.3f\t%d", line / 50,
                               line / 50 % 28 + 1, line / 50 % 24, line / 50 % 60, line / 50 * 0.01,
                               line / 50 % 170 - 85.0, 3000 + line / 50 % 2000);
        for (int v = 0; v < 8; ++v)
            text += common::format("\t%.3f\t%d", random() % 400000 * 1e-3, random() % 10 == 0 ? 4 : 0);
        text += '\n';
    }
    text.resize(textSize);
    return text;
}

// Archives of all forms in a folder of their own, made once.
class RArchives {
public:
    RArchives()
    {
        std::string pattern = (fs::temp_directory_path() / "nvqbench_XXXXXX").string();
        path = ::mkdtemp(pattern.data()) ? pattern + "/" : "/nowhere/";
        fs::create_directories(path + "in");
        const std::string text = casts();
        for (const char* const name : {"cast.txt.gz", "cast.zip", "cast.tgz"}) write(name, text);
    }
    ~RArchives()
    {
        std::error_code ignored;
        fs::remove_all(path, ignored);
    }

    std::string path;

private:
    void write(const std::string& name, const std::string& text) const
    {
        archive* const a = ::archive_write_new();
        if (name.ends_with(".zip"))
            ::archive_write_set_format_zip(a);
        else if (name.ends_with(".tgz"))
            ::archive_write_set_format_ustar(a);
        else
            ::archive_write_set_format_raw(a);
        if (!name.ends_with(".zip")) ::archive_write_add_filter_gzip(a);
        ::archive_write_open_filename(a, (path + name).c_str());
        archive_entry* const entry = ::archive_entry_new();
        ::archive_entry_set_pathname(entry, "cast.txt");
        ::archive_entry_set_filetype(entry, AE_IFREG);
        ::archive_entry_set_perm(entry, 0644);
        ::archive_entry_set_size(entry, static_cast<la_int64_t>(text.size()));
        ::archive_write_header(a, entry);
        ::archive_write_data(a, text.data(), text.size());
        ::archive_entry_free(entry);
        ::archive_write_free(a);
    }
};

const RArchives& archives()
{
    static const RArchives made;
    return made;
}

constexpr const char* names[] = {"cast.txt.gz", "cast.zip", "cast.tgz"};

void report(benchmark::State& state, std::int64_t unpacked)
{
    if (unpacked != static_cast<std::int64_t>(textSize)) state.SkipWithError("wrong size");
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(textSize));
    state.SetLabel(names[state.range(0)]);
}

// The library's reading alone: nothing is written, and the sums of a gzip file aren't looked at.
void BM_library(benchmark::State& state)
{
    const std::string path = archives().path + names[state.range(0)];
    std::int64_t size = 0;
    for (auto _ : state) {
        archive* const a = ::archive_read_new();
        ::archive_read_support_filter_gzip(a);
        ::archive_read_support_format_zip(a);
        ::archive_read_support_format_tar(a);
        if (state.range(0) == 0) ::archive_read_support_format_raw(a);
        ::archive_read_open_filename(a, path.c_str(), 65536);
        archive_entry* entry = nullptr;
        ::archive_read_next_header(a, &entry);
        const void* block = nullptr;
        std::size_t length = 0;
        la_int64_t offset = 0;
        size = 0;
        while (::archive_read_data_block(a, &block, &length, &offset) == ARCHIVE_OK)
            size += static_cast<std::int64_t>(length);
        ::archive_read_free(a);
    }
    report(state, size);
}

void BM_unpack(benchmark::State& state)
{
    const std::string path = archives().path;
    common::RHeadlessUser user;
    for (auto _ : state) {
        if (!importing::unpackArchive(path + names[state.range(0)], path + "in", true, user).good)
            state.SkipWithError("can't unpack");
    }
    report(state, common::fileSize(path + "in/cast.txt"));
}

// As an argument of the command line: with the copy.
void BM_copyAndUnpack(benchmark::State& state)
{
    const std::string path = archives().path;
    common::RHeadlessUser user;
    for (auto _ : state) {
        if (!importing::copyAndUnpack(path + names[state.range(0)], path + "in", user).good)
            state.SkipWithError("can't unpack");
    }
    report(state, common::fileSize(path + "in/cast.txt"));
}

void forms(benchmark::internal::Benchmark* b)
{
    b->DenseRange(0, 2)->Unit(benchmark::kMillisecond)->UseRealTime();
}
BENCHMARK(BM_library)->Apply(forms);
BENCHMARK(BM_unpack)->Apply(forms);
BENCHMARK(BM_copyAndUnpack)->Apply(forms);

} // namespace
