#include "collection/journal.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "collection/journalfile.h"
#include "collection/journalframes.h"
#include "collection/uniquenumber.h"
#include "common/files.h"

namespace collection {
namespace {

constexpr std::size_t spillAt = 8 << 20; // bytes of notes that are kept in memory

bool writeAll(int descriptor, std::span<const std::byte> bytes, std::int64_t offset)
{
    while (!bytes.empty()) {
        const ssize_t written = ::pwrite(descriptor, bytes.data(), bytes.size(), offset);
        if (written < 0 && errno == EINTR) continue;
        if (written <= 0) return false;
        bytes = bytes.subspan(static_cast<std::size_t>(written));
        offset += written;
    }
    return true;
}

bool syncFile(int descriptor)
{
    return ::fdatasync(descriptor) == 0 || errno == EINVAL || errno == ENOTSUP;
}

std::string magicOf(const std::string& file)
{
    char magic[6];
    const common::FilePtr hob = common::openFile(file, "rb");
    return hob && std::fread(magic, 1, sizeof magic, hob.get()) == sizeof magic
               ? std::string(magic, sizeof magic)
               : std::string();
}

} // namespace

// The file is written under another name and gets its own when its head is on the disk: a journal without a
// whole head is a damaged one.
struct RJournal::State {
    std::string file, newFile, directory;
    int descriptor = -1;
    std::uint64_t mark = 0;
    std::vector<std::byte> pending; // frames behind `written`
    std::int64_t written = 0, durable = 0, beforeCommit = 0;
    bool inPlace = false, broken = false;

    explicit State(const std::string& basePath)
        : file(journalPath(basePath)), newFile(file + std::string(newJournalSuffix)),
          directory(common::splitPath(basePath).directory), mark(uniqueNumber())
    {
    }
    ~State()
    {
        if (descriptor >= 0) ::close(descriptor);
        if (descriptor >= 0 && !inPlace) ::unlink(newFile.c_str());
    }
    State(const State&) = delete;
    State& operator=(const State&) = delete;

    [[nodiscard]] std::int64_t end() const { return written + static_cast<std::int64_t>(pending.size()); }
    [[nodiscard]] bool add(FrameKind kind, std::span<const std::byte> first,
                           std::span<const std::byte> second = {})
    {
        if (broken || first.size() + second.size() > largestContent) return false;
        appendFrame(pending, kind, first, second, end(), durable, kind == FrameKind::head ? 0 : mark);
        return pending.size() < spillAt || spill();
    }
    [[nodiscard]] bool make();
    [[nodiscard]] bool spill();
    [[nodiscard]] bool sync();
};

bool RJournal::State::make()
{
    ::unlink(newFile.c_str());
    descriptor = ::open(newFile.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC | O_NOFOLLOW, 0666);
    return descriptor >= 0;
}

// Writes what is pending. After a failure it is pending still.
bool RJournal::State::spill()
{
    if (broken || (descriptor < 0 && !make())) return false;
    if (!writeAll(descriptor, pending, written)) return false;
    written = end();
    pending.clear();
    return true;
}

// A failed flush can't be tried again: the system may have forgotten what it could not write.
bool RJournal::State::sync()
{
    if (broken) return false;
    if (inPlace && durable == end()) return true;
    if (!spill()) return false;
    broken = !syncFile(descriptor);
    if (!broken && !inPlace) {
        inPlace = std::rename(newFile.c_str(), file.c_str()) == 0;
        broken = !inPlace || !common::syncDirectory(directory);
    }
    if (!broken) durable = written;
    return !broken;
}

std::string journalPath(const std::string& basePath)
{
    return basePath + ".jnl";
}

RJournal::RJournal() = default;
RJournal::~RJournal() = default;

bool RJournal::begin(const std::string& basePath, std::string_view operation, const JOURNALSTATE& before)
{
    if (state_ || common::existsAtAll(journalPath(basePath))) return false;
    JOURNALHEAD head;
    head.operation = operation;
    head.baseName = basePath.substr(basePath.rfind('/') + 1);
    head.before = before;
    if (before.hobSize >= 0) head.magic = magicOf(basePath + ".hob");
    if (common::fileExists(basePath + ".var")) {
        head.description = common::readFile(basePath + ".var", largestJournalText);
        if (!head.description) return false;
    }
    state_ = std::make_unique<State>(basePath);
    head.mark = state_->mark;
    const auto magic = std::as_bytes(std::span(journalMagic));
    state_->pending.assign(magic.begin(), magic.end());
    if (state_->add(FrameKind::head, packHead(head))) return true;
    state_.reset();
    return false;
}

bool RJournal::isInPlace() const
{
    return state_ && state_->inPlace;
}

bool RJournal::save(JournalFile file, std::int64_t offset, std::span<const std::byte> old)
{
    while (state_ && !old.empty()) {
        const auto piece = old.first(std::min(old.size(), largestSavedPiece));
        if (!state_->add(FrameKind::saved, packPlace(file, offset), piece)) return false;
        offset += static_cast<std::int64_t>(piece.size());
        old = old.subspan(piece.size());
    }
    return state_ != nullptr;
}

bool RJournal::willMake(std::string_view name)
{
    return state_ && state_->add(FrameKind::made, packName(name));
}

bool RJournal::willSetAside(std::string_view name, std::string_view aside)
{
    return state_ && state_->add(FrameKind::aside, packAside({std::string(name), std::string(aside)}));
}

bool RJournal::willExtend(std::string_view name, std::int64_t size)
{
    return state_ && state_->add(FrameKind::extended, packExtended({std::string(name), size}));
}

bool RJournal::sync()
{
    return state_ && state_->sync();
}

bool RJournal::isSynced() const
{
    return state_ && state_->inPlace && state_->durable == state_->end();
}

bool RJournal::commit(const JOURNALSTATE& after, std::span<const FILEACTION> actions,
                      std::optional<std::string_view> description)
{
    if (!sync()) return false;
    state_->beforeCommit = state_->end();
    if (state_->add(FrameKind::commit, packCommitment(after, description, actions)) && state_->sync())
        return true;
    static_cast<void>(revoke()); // it may stand there all the same
    return false;
}

bool RJournal::revoke()
{
    if (!state_ || !state_->inPlace || state_->beforeCommit == 0) return false;
    state_->pending.clear();
    state_->written = state_->durable = state_->beforeCommit;
    return ::ftruncate(state_->descriptor, state_->beforeCommit) == 0 && syncFile(state_->descriptor);
}

bool RJournal::finish()
{
    if (!state_) return false;
    const auto remove = [this] { return ::unlink(state_->file.c_str()) == 0 || errno == ENOENT; };
    if (state_->inPlace && !remove() && !remove())
        return false; // one that stays forbids every further change
    const std::unique_ptr<State> done = std::move(state_);
    if (done->inPlace) static_cast<void>(common::syncDirectory(done->directory)); // it's gone either way
    return true;
}

} // namespace collection
