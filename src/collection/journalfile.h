#pragma once

// Reading a rollback journal, and undoing or completing what it tells of.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "collection/blockfile.h"
#include "collection/journalframes.h"

namespace collection {

inline constexpr std::string_view newJournalSuffix = ".new"; // of one that has no head on the disk yet

// All of a journal but the saved bytes.
struct JOURNALPLAN {
    JOURNALHEAD head;
    std::vector<std::string> made;
    std::vector<ASIDEFILE> aside;
    std::vector<EXTENDEDFILE> extended;
    std::optional<COMMITMENT> commitment;
    bool savesBytes = false;
};

// The frames of a journal from its beginning, one at a time.
class RJournalReader {
public:
    // False if the file can't be opened or doesn't begin as a journal does.
    [[nodiscard]] bool open(const std::string& path);
    void rewind();
    // The next whole frame; false at the end. The content is valid until the next call.
    [[nodiscard]] bool next(FrameKind& kind, std::span<const std::byte>& content);
    // After the last frame: true if what stands there was once on the disk as a whole frame. It is damaged
    // then, not cut off.
    [[nodiscard]] bool endsInDamage();

private:
    [[nodiscard]] const std::byte* frameAt(std::int64_t place, FRAMEHEAD& head);

    RBlockFile file_;
    std::int64_t place_ = 0;
    std::uint64_t mark_ = 0;
};

// Reads all frames and checks that they may be believed for a collection of this base path. `fault` says why
// not.
[[nodiscard]] bool readPlan(RJournalReader& reader, const std::string& basePath, JOURNALPLAN& plan,
                            std::string& fault);

// Brings back what was before. The station files are null where the change began with closed ones.
[[nodiscard]] bool undoChange(RJournalReader& reader, const JOURNALPLAN& plan, const std::string& basePath,
                              RBlockFile* hob, RBlockFile* dob, std::string& fault);
// Does what is done to whole files; what was done already is passed over. `begun` becomes true when the first
// one was done.
[[nodiscard]] bool runActions(const std::string& directory, std::span<const FILEACTION> actions,
                              std::string& fault, bool* begun = nullptr);
[[nodiscard]] bool completeChange(const JOURNALPLAN& plan, const std::string& basePath, std::string& fault);

} // namespace collection
