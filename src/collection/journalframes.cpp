#include "collection/journalframes.h"

#include <bit>
#include <cstring>

#include "common/byteorder.h"

namespace collection {
namespace {

constexpr std::size_t largestName = largestFileName, largestOperation = 1000, mostActions = 100;

// Numbers are little-endian; a text has its length in front.
class RPacker {
public:
    template <typename Number>
    RPacker& number(Number value)
    {
        std::byte raw[sizeof value];
        std::memcpy(raw, &value, sizeof value);
        if (!common::hostIsLittleEndian) common::reverseBytes(raw, 1, sizeof raw, raw);
        bytes.insert(bytes.end(), std::begin(raw), std::end(raw));
        return *this;
    }
    RPacker& text(std::string_view value)
    {
        number(static_cast<std::uint32_t>(value.size()));
        const auto raw = std::as_bytes(std::span(value));
        bytes.insert(bytes.end(), raw.begin(), raw.end());
        return *this;
    }
    RPacker& optionalText(std::optional<std::string_view> value)
    {
        number(static_cast<std::uint8_t>(value.has_value()));
        return value ? text(*value) : *this;
    }
    RPacker& state(const JOURNALSTATE& value)
    {
        return number(value.hobSize).number(value.dobSize).number(value.stationCount);
    }
    std::vector<std::byte> bytes;
};

// Takes what a packer put, from the front; false for ever after something was missing.
class RUnpacker {
public:
    explicit RUnpacker(std::span<const std::byte> content) : rest_(content) {}

    template <typename Number>
    RUnpacker& number(Number& value)
    {
        std::byte raw[sizeof value];
        good_ = good_ && rest_.size() >= sizeof raw;
        if (!good_) return *this;
        std::memcpy(raw, rest_.data(), sizeof raw);
        if (!common::hostIsLittleEndian) common::reverseBytes(raw, 1, sizeof raw, raw);
        std::memcpy(&value, raw, sizeof raw);
        rest_ = rest_.subspan(sizeof raw);
        return *this;
    }
    RUnpacker& text(std::string& value, std::size_t limit)
    {
        std::uint32_t length = 0;
        number(length);
        good_ = good_ && length <= limit && length <= rest_.size();
        if (!good_) return *this;
        value.assign(reinterpret_cast<const char*>(rest_.data()), length);
        rest_ = rest_.subspan(length);
        return *this;
    }
    RUnpacker& optionalText(std::optional<std::string>& value, std::size_t limit)
    {
        std::uint8_t present = 0;
        number(present);
        good_ = good_ && present <= 1;
        if (good_ && present == 1) text(value.emplace(), limit);
        return *this;
    }
    RUnpacker& state(JOURNALSTATE& value)
    {
        return number(value.hobSize).number(value.dobSize).number(value.stationCount);
    }
    [[nodiscard]] bool isGood() const { return good_; }
    [[nodiscard]] bool isAtEnd() const { return good_ && rest_.empty(); }
    [[nodiscard]] std::span<const std::byte> rest() const { return rest_; }

private:
    std::span<const std::byte> rest_;
    bool good_ = true;
};

std::uint64_t wordAt(const std::byte* bytes, std::size_t length)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, length);
    if (!common::hostIsLittleEndian) common::reverseBytes(&word, 1, sizeof word, &word);
    return word;
}

// One step is a bijection of the word and of the sum, so that no single changed word goes unnoticed; the
// rotation carries the high bits down to where the product spreads them again.
std::uint64_t mixed(std::uint64_t sum, std::uint64_t word)
{
    return std::rotl((sum ^ word) * 0x9E3779B97F4A7C15U, 29);
}

std::uint64_t mixedBytes(std::uint64_t sum, std::span<const std::byte> bytes)
{
    const std::size_t whole = bytes.size() / 8 * 8;
    for (std::size_t i = 0; i < whole; i += 8) sum = mixed(sum, wordAt(bytes.data() + i, 8));
    if (bytes.size() > whole) sum = mixed(sum, wordAt(bytes.data() + whole, bytes.size() - whole));
    return mixed(sum, bytes.size());
}

// Of a frame's head and content.
std::uint64_t checksumOf(std::span<const std::byte> bytes, std::int64_t place, std::uint64_t mark)
{
    const std::uint64_t seed = mixed(mixed(0xCBF29CE484222325U, mark), static_cast<std::uint64_t>(place));
    const std::uint64_t sum = mixedBytes(seed, bytes);
    return sum ^ (sum >> 32U);
}

bool isKnown(std::uint8_t file)
{
    return file <= static_cast<std::uint8_t>(JournalFile::dob);
}

} // namespace

std::vector<std::byte> packHead(const JOURNALHEAD& head)
{
    RPacker packer;
    packer.number(head.mark).text(std::string_view(head.operation).substr(0, largestOperation));
    packer.text(head.baseName).state(head.before).text(head.magic).optionalText(head.description);
    return std::move(packer.bytes);
}

bool unpackHead(std::span<const std::byte> content, JOURNALHEAD& head)
{
    RUnpacker unpacker(content);
    unpacker.number(head.mark).text(head.operation, largestOperation).text(head.baseName, largestName);
    unpacker.state(head.before).text(head.magic, journalMagic.size());
    return unpacker.optionalText(head.description, largestJournalText).isAtEnd();
}

std::vector<std::byte> packPlace(JournalFile file, std::int64_t offset)
{
    RPacker packer;
    return std::move(packer.number(static_cast<std::uint8_t>(file)).number(offset).bytes);
}

bool unpackSaved(std::span<const std::byte> content, SAVEDPIECE& piece)
{
    std::uint8_t file = 0;
    RUnpacker unpacker(content);
    if (!unpacker.number(file).number(piece.offset).isGood() || !isKnown(file)) return false;
    piece.file = static_cast<JournalFile>(file);
    piece.bytes = unpacker.rest();
    return !piece.bytes.empty() && piece.bytes.size() <= largestSavedPiece;
}

std::vector<std::byte> packName(std::string_view name)
{
    RPacker packer;
    return std::move(packer.text(name).bytes);
}

bool unpackName(std::span<const std::byte> content, std::string& name)
{
    return RUnpacker(content).text(name, largestName).isAtEnd();
}

std::vector<std::byte> packAside(const ASIDEFILE& aside)
{
    RPacker packer;
    return std::move(packer.text(aside.name).text(aside.aside).bytes);
}

bool unpackAside(std::span<const std::byte> content, ASIDEFILE& aside)
{
    return RUnpacker(content).text(aside.name, largestName).text(aside.aside, largestName).isAtEnd();
}

std::vector<std::byte> packExtended(const EXTENDEDFILE& extended)
{
    RPacker packer;
    return std::move(packer.text(extended.name).number(extended.size).bytes);
}

bool unpackExtended(std::span<const std::byte> content, EXTENDEDFILE& extended)
{
    return RUnpacker(content).text(extended.name, largestName).number(extended.size).isAtEnd();
}

std::vector<std::byte> packCommitment(const JOURNALSTATE& after, std::optional<std::string_view> description,
                                      std::span<const FILEACTION> actions)
{
    RPacker packer;
    packer.state(after).optionalText(description).number(static_cast<std::uint32_t>(actions.size()));
    for (const FILEACTION& action : actions)
        packer.number(static_cast<std::uint8_t>(action.kind)).text(action.from).text(action.to);
    return std::move(packer.bytes);
}

bool unpackCommitment(std::span<const std::byte> content, COMMITMENT& commitment)
{
    std::uint32_t count = 0;
    RUnpacker unpacker(content);
    unpacker.state(commitment.after).optionalText(commitment.description, largestJournalText).number(count);
    if (!unpacker.isGood() || count > mostActions) return false;
    for (std::uint32_t i = 0; i < count; ++i) {
        std::uint8_t kind = 0;
        FILEACTION& action = commitment.actions.emplace_back();
        unpacker.number(kind).text(action.from, largestName).text(action.to, largestFilePath);
        if (!unpacker.isGood() || kind > FILEACTION::moveAway) return false;
        action.kind = static_cast<FILEACTION::Kind>(kind);
    }
    return unpacker.isAtEnd();
}

void appendFrame(std::vector<std::byte>& out, FrameKind kind, std::span<const std::byte> first,
                 std::span<const std::byte> second, std::int64_t place, std::int64_t durable,
                 std::uint64_t mark)
{
    RPacker head;
    head.number(static_cast<std::uint32_t>(first.size() + second.size()));
    head.number(static_cast<std::uint32_t>(kind)).number(durable);
    const std::size_t start = out.size();
    out.insert(out.end(), head.bytes.begin(), head.bytes.end());
    out.insert(out.end(), first.begin(), first.end());
    out.insert(out.end(), second.begin(), second.end());
    RPacker tail;
    tail.number(checksumOf(std::span(out).subspan(start), place, mark));
    out.insert(out.end(), tail.bytes.begin(), tail.bytes.end());
}

FRAMEHEAD unpackFrameHead(const std::byte* bytes)
{
    FRAMEHEAD head;
    std::uint32_t kind = 0;
    RUnpacker({bytes, frameHeadSize}).number(head.length).number(kind).number(head.durable);
    head.kind = static_cast<FrameKind>(kind);
    return head;
}

bool frameIsWhole(std::span<const std::byte> frame, std::int64_t place, std::uint64_t mark)
{
    if (frame.size() < frameHeadSize + frameTailSize) return false;
    std::uint64_t sum = 0;
    RUnpacker(frame.last(frameTailSize)).number(sum);
    return sum == checksumOf(frame.first(frame.size() - frameTailSize), place, mark);
}

} // namespace collection
