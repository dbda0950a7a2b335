#pragma once

// The rollback journal of a collection, `<path>.jnl`: what a change in place needs to be undone, and what is
// left to do once it is decided. It stands beside the files from before the first old byte is overwritten
// until the change is whole on the disk. A journal that an opening finds belongs to a change that was cut
// off.
//
// The file is a sequence of frames, each with its length and a checksum; a frame that isn't whole ends it.
// Numbers are little-endian, names are names of files in the collection's own directory.

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace collection {

enum class JournalFile : std::uint8_t { hob = 0, dob = 1 };

// The files as far as stations refer to them, and the count of stations.
struct JOURNALSTATE {
    std::int64_t hobSize = 0, dobSize = 0; // bytes; -1 where the change began with closed files
    std::int32_t stationCount = 0;
};

inline constexpr std::size_t largestFileName = 255, largestFilePath = 4096; // bytes that a journal takes

// What is done to whole files when a change is complete. Names without directory.
struct FILEACTION {
    enum Kind : std::uint8_t {
        rename = 0, // over what stands there
        remove = 1,
        // A file of the collection becomes the one of the same suffix of another collection, of which nothing
        // may be there yet: `to` is its path, absolute or against the collection's directory. If the first of
        // them can't be moved, the whole change is undone. Side files that can't be moved stay.
        moveAway = 2
    } kind = rename;
    std::string from, to; // no `to` for a removal
};

class RJournal {
public:
    RJournal();
    ~RJournal(); // leaves the file in its place, for the next opening, unless finish() was reached
    RJournal(const RJournal&) = delete;
    RJournal& operator=(const RJournal&) = delete;

    // Begins a journal; the file is made by the first sync(). False if there is one already, or if the
    // present description can't be read.
    [[nodiscard]] bool begin(const std::string& basePath, std::string_view operation,
                             const JOURNALSTATE& before);
    [[nodiscard]] bool isOpen() const { return state_ != nullptr; }
    // True from the first sync() on that made the file: something may have been changed.
    [[nodiscard]] bool isInPlace() const;

    // Notes, collected until sync(); false if they can't be taken. The bytes that stand at a place of a
    // station file, which will be overwritten;
    [[nodiscard]] bool save(JournalFile file, std::int64_t offset, std::span<const std::byte> old);
    // a file that the change will make: it goes if the change is undone;
    [[nodiscard]] bool willMake(std::string_view name);
    // a file that the change will put aside under another name: it comes back if the change is undone;
    [[nodiscard]] bool willSetAside(std::string_view name, std::string_view aside);
    // a file that the change will append to: it is cut to `size` if the change is undone.
    [[nodiscard]] bool willExtend(std::string_view name, std::int64_t size);

    // True when all notes are on the disk: only then may the change go on to what they protect.
    [[nodiscard]] bool sync();
    [[nodiscard]] bool isSynced() const;
    // The change is decided: from here on a cut-off is completed, not undone. `description` is what `.var` is
    // to be; without one it stays. True when that is on the disk.
    [[nodiscard]] bool commit(const JOURNALSTATE& after, std::span<const FILEACTION> actions,
                              std::optional<std::string_view> description = {});
    // Takes the decision back. True when that is on the disk.
    [[nodiscard]] bool revoke();
    // The change is whole, or undone, on the disk: the file goes.
    [[nodiscard]] bool finish();

private:
    struct State;
    std::unique_ptr<State> state_;
};

// Behind the name of a file that will take its place.
inline constexpr std::string_view newDescriptionSuffix = "_new";

[[nodiscard]] std::string journalPath(const std::string& basePath);

enum class RecoveryResult {
    none,      // there is no journal
    undone,    // the files are as before the change
    completed, // the change is whole
    failed     // the journal stays; `fault` says what is wrong
};
struct RECOVERY {
    RecoveryResult result = RecoveryResult::none;
    std::string operation; // that was cut off, as given to begin()
    std::string fault;
};

// Undoes or completes what a change that was cut off has left. The caller holds the lock of the collection.
// May itself be cut off at any point and run again. Nothing that stands in a journal is believed: one that
// is damaged or doesn't belong to these files changes nothing and fails.
[[nodiscard]] RECOVERY recoverCollection(const std::string& basePath);

} // namespace collection
