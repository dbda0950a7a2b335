#pragma once

// The frames of a rollback journal as bytes. Behind the magic stands one frame after the other:
//
//   4  bytes of the content
//   4  kind
//   8  bytes of the file that were known to be on the disk when the frame was made
//      content
//   8  checksum over all of the above, the frame's place in the file, and a number that no two journals share
//
// These functions see bytes; what reads and writes them stands elsewhere.

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "collection/journal.h"

namespace collection {

inline constexpr std::string_view journalMagic("NVQJNL1\0", 8);
inline constexpr std::size_t frameHeadSize = 16, frameTailSize = 8;
inline constexpr std::size_t largestContent = 3 << 20;      // bytes of a frame's content
inline constexpr std::size_t largestSavedPiece = 1 << 20;   // bytes that one frame saves
inline constexpr std::int64_t largestJournalText = 1 << 20; // bytes of a description

enum class FrameKind : std::uint32_t {
    head = 1,     // first, and only there
    saved = 2,    // old bytes of a station file
    made = 3,     // a file that the change makes
    aside = 4,    // a file that the change puts aside
    extended = 5, // a file that the change appends to
    commit = 6    // last
};

struct JOURNALHEAD {
    std::uint64_t mark = 0; // of this journal; takes part in the checksums of all later frames
    std::string operation, baseName;
    JOURNALSTATE before;
    std::string magic;                      // of the header table
    std::optional<std::string> description; // the `.var` file, if there was one
};
struct SAVEDPIECE {
    JournalFile file = JournalFile::hob;
    std::int64_t offset = 0;
    std::span<const std::byte> bytes;
};
struct ASIDEFILE {
    std::string name, aside;
};
struct EXTENDEDFILE {
    std::string name;
    std::int64_t size = 0;
};
struct COMMITMENT {
    JOURNALSTATE after;
    std::optional<std::string> description; // what `.var` is to be
    std::vector<FILEACTION> actions;
};

// Content of frames. Unpacking gives false for content of another form; it looks at the form alone.
[[nodiscard]] std::vector<std::byte> packHead(const JOURNALHEAD& head);
[[nodiscard]] std::vector<std::byte> packPlace(JournalFile file,
                                               std::int64_t offset); // the bytes come behind
[[nodiscard]] std::vector<std::byte> packName(std::string_view name);
[[nodiscard]] std::vector<std::byte> packAside(const ASIDEFILE& aside);
[[nodiscard]] std::vector<std::byte> packExtended(const EXTENDEDFILE& extended);
[[nodiscard]] std::vector<std::byte> packCommitment(const JOURNALSTATE& after,
                                                    std::optional<std::string_view> description,
                                                    std::span<const FILEACTION> actions);
[[nodiscard]] bool unpackHead(std::span<const std::byte> content, JOURNALHEAD& head);
[[nodiscard]] bool unpackSaved(std::span<const std::byte> content, SAVEDPIECE& piece);
[[nodiscard]] bool unpackName(std::span<const std::byte> content, std::string& name);
[[nodiscard]] bool unpackAside(std::span<const std::byte> content, ASIDEFILE& aside);
[[nodiscard]] bool unpackExtended(std::span<const std::byte> content, EXTENDEDFILE& extended);
[[nodiscard]] bool unpackCommitment(std::span<const std::byte> content, COMMITMENT& commitment);

struct FRAMEHEAD {
    std::uint32_t length = 0; // of the content
    FrameKind kind{};
    std::int64_t durable = 0;
};
// Appends a frame whose content is two pieces one behind the other and that stands at `place` of the file.
void appendFrame(std::vector<std::byte>& out, FrameKind kind, std::span<const std::byte> first,
                 std::span<const std::byte> second, std::int64_t place, std::int64_t durable,
                 std::uint64_t mark);
[[nodiscard]] FRAMEHEAD unpackFrameHead(const std::byte* bytes); // frameHeadSize of them
// True if the bytes are a whole frame of head, content and checksum. The head frame has the mark 0.
[[nodiscard]] bool frameIsWhole(std::span<const std::byte> frame, std::int64_t place, std::uint64_t mark);

} // namespace collection
