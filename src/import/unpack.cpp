#include "import/unpack.h"

#include <array>
#include <cerrno>
#include <fcntl.h>
#include <locale.h>
#include <new>

#include <archive.h>
#include <archive_entry.h>

#include "common/files.h"
#include "common/text.h"
#include "import/filehandle.h"
#include "import/gzipstream.h"
#include "import/membername.h"
#include "import/stagedfiles.h"

namespace importing {
namespace {

constexpr const char* abortQuestion = "Really Want to Abort?";
constexpr std::size_t blockSize = 65536;

// What an archive is called while it is worked on.
struct SOURCE {
    int file;         // open for reading
    std::string name; // without folders
    struct stat status {};
};

bool isTar(ArchiveForm form)
{
    return form == ArchiveForm::tar || form == ArchiveForm::tarGzip;
}

const char* titleOf(ArchiveForm form)
{
    return isTar(form) ? "Unpacking" : "Unzipping";
}

std::string fileNameOf(const std::string& path)
{
    return path.substr(path.rfind('/') + 1);
}

// Opens an ordinary file; a pipe or a device under the name of one counts as not there.
RFileHandle openOrdinary(const std::string& path, struct stat& status)
{
    RFileHandle file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_CLOEXEC));
    if (file && (::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))) file = RFileHandle();
    return file;
}

// Shows how far the reading of a file is, and lets the user break it off.
class RReadingProgress {
public:
    RReadingProgress(common::RUser& user, const SOURCE& source, const char* title, std::string_view text)
        : user_(user), file_(source.file), size_(source.status.st_size), title_(title),
          busy_(user,
                std::string(text) + " " + shownName(source.name) + "..." + std::string(common::escAborts))
    {
    }

    // After so many bytes of work. False if the user has had enough.
    [[nodiscard]] bool advance(std::size_t bytes)
    {
        constexpr std::size_t step = std::size_t{1} << 20;
        done_ += bytes;
        if (done_ < step) return true;
        done_ = 0;
        const auto at = static_cast<double>(::lseek(file_, 0, SEEK_CUR));
        user_.setProgress(size_ > 0 ? 100 * at / static_cast<double>(size_) : 0);
        aborted_ = user_.askAbort(abortQuestion, title_);
        return !aborted_;
    }
    [[nodiscard]] bool aborted() const { return aborted_; }

private:
    common::RUser& user_;
    int file_;
    std::int64_t size_;
    const char* title_;
    common::RBusyGuard busy_;
    std::size_t done_ = 0;
    bool aborted_ = false;
};

// Each step below returns what is wrong, an empty text if nothing is; this one also stands for a user's
// abort.
constexpr const char* brokenOff = "broken off";

// --- a single compressed file

std::string unpackFile(const SOURCE& source, RStagedFiles& staged, RReadingProgress& progress)
{
    std::string fault;
    const std::string name(common::cutExtension(source.name));
    const std::string path = memberPath(name, true, fault);
    if (path.empty()) return shownName(source.name) + ": " + fault;
    if (fault = staged.begin(path); !fault.empty()) return shownName(path) + ": " + fault;
    RGzipStream stream(source.file);
    std::vector<unsigned char> buffer(blockSize);
    std::ptrdiff_t got = 0;
    while (fault.empty() && (got = stream.read(buffer)) > 0) {
        const auto size = static_cast<std::size_t>(got);
        fault = staged.write(staged.end(), buffer.data(), size);
        if (fault.empty() && !progress.advance(size)) return brokenOff;
    }
    if (got < 0) fault = stream.fault();
    if (fault.empty()) fault = staged.finish(0, &source.status.st_mtim);
    return fault.empty() ? fault : shownName(path) + ": " + fault;
}

// --- archives of several files

struct ArchiveFree {
    void operator()(archive* a) const { ::archive_read_free(a); }
};
using ArchivePtr = std::unique_ptr<archive, ArchiveFree>;

// Names in archives are bytes or UTF-8; the library would convert them into the coding of the user's
// language. For its own calls, and on this thread only, that is UTF-8.
class RUtf8Names {
public:
    RUtf8Names() : names_(::newlocale(LC_CTYPE_MASK, "C.UTF-8", nullptr)) {}
    ~RUtf8Names()
    {
        if (names_) ::freelocale(names_);
    }
    RUtf8Names(const RUtf8Names&) = delete;
    RUtf8Names& operator=(const RUtf8Names&) = delete;

    template <typename Call>
    int during(Call&& call) const
    {
        const locale_t old = names_ ? ::uselocale(names_) : nullptr;
        const int result = call();
        if (names_) ::uselocale(old);
        return result;
    }

private:
    locale_t names_;
};

// The bytes of a compressed tar file for the library.
struct GZIPSOURCE {
    explicit GZIPSOURCE(int file) : stream(file), buffer(blockSize) {}
    RGzipStream stream;
    std::vector<unsigned char> buffer;
};

la_ssize_t readCompressed(archive* a, void* data, const void** block)
{
    auto* const source = static_cast<GZIPSOURCE*>(data);
    const std::ptrdiff_t got = source->stream.read(source->buffer);
    if (got < 0) ::archive_set_error(a, EIO, "%s", source->stream.fault().c_str());
    *block = source->buffer.data();
    return got;
}

class RMembers {
public:
    RMembers(const SOURCE& source, ArchiveForm form, bool junkPaths, const UNPACKLIMITS& limits,
             RStagedFiles& staged, RReadingProgress& progress)
        : source_(source), form_(form), junkPaths_(junkPaths), limits_(limits), staged_(staged),
          progress_(progress), compressed_(source.file), archive_(::archive_read_new())
    {
    }

    [[nodiscard]] std::string unpack();
    [[nodiscard]] int leftOut() const { return leftOut_; }
    [[nodiscard]] const std::string& firstLeftOut() const { return firstLeftOut_; }

private:
    [[nodiscard]] bool open();
    [[nodiscard]] std::string libraryFault() const;
    [[nodiscard]] std::string next(archive_entry*& entry);
    [[nodiscard]] std::string take(archive_entry* entry);
    [[nodiscard]] std::string takeFile(archive_entry* entry, const std::string& path);
    [[nodiscard]] std::string readToEnd();
    void leaveOut(const char* name);

    const SOURCE& source_;
    ArchiveForm form_;
    bool junkPaths_;
    const UNPACKLIMITS& limits_;
    RStagedFiles& staged_;
    RReadingProgress& progress_;
    RUtf8Names names_;
    GZIPSOURCE compressed_;
    ArchivePtr archive_;
    int members_ = 0, files_ = 0, leftOut_ = 0;
    std::string firstLeftOut_;
};

// Only the form that the name tells: a zip by its directory at the end, a tar by its headers.
bool RMembers::open()
{
    archive* const a = archive_.get();
    if (!a) return false;
    const int known = form_ == ArchiveForm::zip ? ::archive_read_support_format_zip_seekable(a)
                                                : ::archive_read_support_format_tar(a);
    if (known != ARCHIVE_OK) return false;
    return names_.during([&] {
        return form_ == ArchiveForm::tarGzip
                   ? ::archive_read_open(a, &compressed_, nullptr, readCompressed, nullptr)
                   : ::archive_read_open_fd(a, source_.file, blockSize);
    }) == ARCHIVE_OK;
}

std::string RMembers::libraryFault() const
{
    if (!compressed_.stream.fault().empty()) return compressed_.stream.fault();
    const char* const text = archive_ ? ::archive_error_string(archive_.get()) : nullptr;
    return text ? "damaged (" + shownName(text) + ")" : "damaged";
}

// The next member, null behind the last.
std::string RMembers::next(archive_entry*& entry)
{
    entry = nullptr;
    const int code = names_.during([&] { return ::archive_read_next_header(archive_.get(), &entry); });
    if (code == ARCHIVE_EOF) {
        entry = nullptr;
        return {};
    }
    // A zip tells things twice and warns if they differ; a tar warns of attributes that nobody needs.
    if (code == ARCHIVE_OK || (code == ARCHIVE_WARN && isTar(form_))) return {};
    const char* const name = code == ARCHIVE_WARN ? ::archive_entry_pathname(entry) : nullptr;
    return shownName(name ? name : source_.name) + ": " + libraryFault();
}

void RMembers::leaveOut(const char* name)
{
    if (++leftOut_ == 1) firstLeftOut_ = shownName(name);
}

std::string RMembers::take(archive_entry* entry)
{
    const char* const name = ::archive_entry_pathname(entry);
    if (!name) return "member " + std::to_string(members_) + ": its name can't be read";
    const auto type = ::archive_entry_filetype(entry);
    if (type == AE_IFDIR) return {}; // folders are made where there is something to put into them
    if (type != AE_IFREG || ::archive_entry_hardlink(entry)) {
        leaveOut(name);
        return {};
    }
    std::string fault;
    const std::string path = memberPath(name, junkPaths_, fault);
    if (::archive_entry_is_encrypted(entry)) fault = "it is encrypted";
    if (fault.empty()) fault = takeFile(entry, path);
    if (fault.empty() || fault == brokenOff) return fault;
    return shownName(name) + ": " + fault;
}

std::string RMembers::takeFile(archive_entry* entry, const std::string& path)
{
    const bool hasSize = ::archive_entry_size_is_set(entry) != 0;
    const std::int64_t size = hasSize ? ::archive_entry_size(entry) : 0;
    if (size > limits_.memberBytes) {
        return common::format("it has %lld bytes, and more than %lld aren't unpacked",
                              static_cast<long long>(size), static_cast<long long>(limits_.memberBytes));
    }
    std::string fault = staged_.begin(path);
    int code = ARCHIVE_OK;
    while (fault.empty()) {
        const void* block = nullptr;
        std::size_t length = 0;
        la_int64_t offset = 0;
        code = names_.during(
            [&] { return ::archive_read_data_block(archive_.get(), &block, &length, &offset); });
        if (code != ARCHIVE_OK) break;
        fault = staged_.write(offset, block, length);
        if (fault.empty() && !progress_.advance(length)) return brokenOff;
    }
    if (!fault.empty()) return fault;
    if (code != ARCHIVE_EOF) return libraryFault();
    if (size > staged_.end() && ::archive_entry_sparse_count(entry) == 0) return "damaged: it ends early";
    ++files_;
    const std::timespec modified = {::archive_entry_mtime(entry), ::archive_entry_mtime_nsec(entry)};
    return staged_.finish(size, ::archive_entry_mtime_is_set(entry) ? &modified : nullptr);
}

// What follows behind the last member of a compressed tar file is of no use, but its sums tell whether all of
// it was right.
std::string RMembers::readToEnd()
{
    std::int64_t rest = limits_.totalBytes;
    std::ptrdiff_t got = 0;
    while ((got = compressed_.stream.read(compressed_.buffer)) > 0 && (rest -= got) >= 0) {
        if (!progress_.advance(static_cast<std::size_t>(got))) return brokenOff;
    }
    return got == 0
               ? std::string()
               : shownName(source_.name) + ": " + (got < 0 ? compressed_.stream.fault() : "it has no end");
}

std::string RMembers::unpack()
{
    if (!open()) return shownName(source_.name) + ": " + libraryFault();
    constexpr std::size_t workOfAMember = 4096;
    for (;;) {
        archive_entry* entry = nullptr;
        if (std::string fault = next(entry); !fault.empty()) return fault;
        if (!entry) break;
        if (++members_ > limits_.members) {
            return shownName(source_.name) + common::format(": it has more than %d members", limits_.members);
        }
        if (std::string fault = take(entry); !fault.empty()) return fault;
        if (!progress_.advance(workOfAMember)) return brokenOff;
    }
    if (files_ == 0) return shownName(source_.name) + ": it holds no files";
    return form_ == ArchiveForm::tarGzip ? readToEnd() : std::string();
}

// --- all forms

std::string unpackInto(RStagedFiles& staged, const SOURCE& source, ArchiveForm form, bool junkPaths,
                       common::RUser& user, const UNPACKLIMITS& limits)
{
    RReadingProgress progress(user, source, titleOf(form), titleOf(form));
    if (form == ArchiveForm::gzip) return unpackFile(source, staged, progress);
    RMembers members(source, form, junkPaths, limits, staged, progress);
    std::string fault = members.unpack();
    if (fault.empty() && members.leftOut() > 0) {
        user.note(common::format("%s: %d links or special files were left out (the first: %s)",
                                 shownName(source.name).c_str(), members.leftOut(),
                                 members.firstLeftOut().c_str()));
    }
    return fault;
}

UNPACKED failure(std::string fault)
{
    UNPACKED result;
    result.aborted = fault == brokenOff;
    result.fault = std::move(fault);
    return result;
}

// `original`: the archive as the user knows it, which nothing may replace.
UNPACKED unpackSource(const SOURCE& source, const struct stat& original, const std::string& directory,
                      ArchiveForm form, bool junkPaths, common::RUser& user, const UNPACKLIMITS& limits)
try {
    RStagedFiles staged(directory, limits);
    staged.protect(original);
    std::string fault = staged.open();
    if (fault.empty()) fault = unpackInto(staged, source, form, junkPaths, user, limits);
    std::vector<std::string> placed;
    if (fault.empty()) fault = staged.commit(placed);
    if (!fault.empty()) return failure(std::move(fault));
    UNPACKED result;
    result.good = true;
    for (const std::string& path : placed)
        result.files.push_back(common::absolutePath(directory + "/" + path));
    return result;
} catch (const std::bad_alloc&) {
    return failure("there is not enough memory");
}

// Copies the archive, so that a slow or changing place doesn't matter.
std::string copyInto(RStagedFiles& staged, const SOURCE& source, common::RUser& user)
{
    RReadingProgress progress(user, source, "Copying", "Copying");
    std::string fault = staged.open();
    if (fault.empty()) fault = staged.begin("copy");
    std::vector<unsigned char> buffer(blockSize);
    while (fault.empty()) {
        const ssize_t got = ::read(source.file, buffer.data(), buffer.size());
        if (got < 0 && errno == EINTR) continue;
        if (got < 0) fault = "it can't be read";
        if (got <= 0) break;
        fault = staged.write(staged.end(), buffer.data(), static_cast<std::size_t>(got));
        if (fault.empty() && !progress.advance(static_cast<std::size_t>(got))) return brokenOff;
    }
    return fault.empty() ? staged.finish(0, &source.status.st_mtim) : fault;
}

UNPACKED tellFailure(common::RUser& user, const char* title, const std::string& text, std::string fault)
{
    UNPACKED result = failure(std::move(fault));
    if (!result.aborted) user.about(title, text + (result.fault.empty() ? "" : "\n\n" + result.fault));
    return result;
}

} // namespace

ArchiveForm archiveForm(const std::string& path)
{
    const common::PATHPARTS parts = common::splitPath(path);
    const auto is = [](const std::string& extension, const char* known) {
        return extension == known || extension == common::toUpper(known);
    };
    const bool insideTar = is(common::splitPath(parts.baseName).extension, ".tar");
    if (is(parts.extension, ".gz")) return insideTar ? ArchiveForm::tarGzip : ArchiveForm::gzip;
    if (is(parts.extension, ".zip")) return ArchiveForm::zip;
    if (is(parts.extension, ".tgz")) return ArchiveForm::tarGzip;
    return is(parts.extension, ".tar") ? ArchiveForm::tar : ArchiveForm::none;
}

UNPACKED unpackArchive(const std::string& archive, const std::string& directory, bool junkPaths,
                       common::RUser& user, const UNPACKLIMITS& limits)
{
    SOURCE source{-1, fileNameOf(archive)};
    const ArchiveForm form = archiveForm(archive);
    if (form == ArchiveForm::none) return failure(shownName(source.name) + ": no name of an archive");
    const RFileHandle file = openOrdinary(archive, source.status);
    if (!file) return failure(shownName(source.name) + ": can't be opened");
    source.file = file.get();
    return unpackSource(source, source.status, directory, form, junkPaths, user, limits);
}

UNPACKED copyAndUnpack(const std::string& archive, const std::string& directory, common::RUser& user)
try {
    const ArchiveForm form = archiveForm(archive);
    const char* const title = titleOf(form);
    const std::string unpackText =
        std::string(isTar(form) ? "Could not unpack " : "Could not unzip ") + archive + "!";
    SOURCE source{-1, fileNameOf(archive)};
    const RFileHandle original = openOrdinary(archive, source.status);
    if (!original) return tellFailure(user, "Copying", "File " + archive + " not found!", {});
    if (form == ArchiveForm::none)
        return tellFailure(user, title, unpackText, "Its name must end in .gz, .zip, .tgz or .tar.");
    source.file = original.get();
    const UNPACKLIMITS limits;
    RStagedFiles staged(directory, limits);
    if (std::string fault = copyInto(staged, source, user); !fault.empty())
        return tellFailure(user, "Copying", "File " + archive + " could not be copied!", std::move(fault));
    const RFileHandle copy = staged.reopen(0);
    if (!copy) return tellFailure(user, title, unpackText, "The copy can't be opened.");
    const SOURCE copied{copy.get(), source.name, source.status};
    UNPACKED result =
        unpackSource(copied, source.status, directory, form, form == ArchiveForm::zip, user, limits);
    return result.good ? result : tellFailure(user, title, unpackText, std::move(result.fault));
} catch (const std::bad_alloc&) {
    return tellFailure(user, "Copying", "File " + archive + " could not be copied!",
                       "There is not enough memory.");
}

} // namespace importing
