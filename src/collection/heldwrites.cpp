#include "collection/heldwrites.h"

#include <algorithm>
#include <cstring>

namespace collection {
namespace {

std::int64_t endOf(std::int64_t offset, std::size_t length)
{
    return offset + static_cast<std::int64_t>(length);
}

} // namespace

void RHeldWrites::put(std::int64_t offset, std::span<const std::byte> bytes)
{
    if (bytes.empty()) return;
    const bool extends = extendsLast(offset, bytes.size());
    if (!extends && replaces(offset, bytes)) return;
    const std::size_t at = pool_.size();
    pool_.insert(pool_.end(), bytes.begin(), bytes.end()); // first: a piece never reaches beyond the pool
    if (extends) {
        last_->second.length += bytes.size();
        return;
    }
    carve(offset, endOf(offset, bytes.size()));
    last_ = pieces_.emplace(offset, PIECE{bytes.size(), at}).first;
}

// True for bytes that go on where the last ones ended, in the file and in the pool.
bool RHeldWrites::extendsLast(std::int64_t offset, std::size_t length) const
{
    if (last_ == pieces_.end()) return false;
    const PIECE& piece = last_->second;
    if (piece.at + piece.length != pool_.size() || endOf(last_->first, piece.length) != offset) return false;
    const auto next = std::next(Pieces::const_iterator(last_));
    return next == pieces_.end() || next->first >= endOf(offset, length);
}

// Bytes whose whole place is in one piece take the place of what it has there.
bool RHeldWrites::replaces(std::int64_t offset, std::span<const std::byte> bytes)
{
    const auto piece = firstBehind(offset);
    if (piece == pieces_.end() || piece->first > offset) return false;
    const auto within = static_cast<std::size_t>(offset - piece->first);
    if (within + bytes.size() > piece->second.length) return false;
    std::memcpy(pool_.data() + piece->second.at + within, bytes.data(), bytes.size());
    return true;
}

// The first piece that ends behind `offset`.
RHeldWrites::Pieces::const_iterator RHeldWrites::firstBehind(std::int64_t offset) const
{
    auto piece = pieces_.upper_bound(offset);
    if (piece != pieces_.begin()) {
        const auto before = std::prev(piece);
        if (endOf(before->first, before->second.length) > offset) piece = before;
    }
    return piece;
}

// Leaves no piece between `offset` and `end`.
void RHeldWrites::carve(std::int64_t offset, std::int64_t end)
{
    for (auto piece = firstBehind(offset); piece != pieces_.end() && piece->first < end;) {
        const std::int64_t start = piece->first, stop = endOf(start, piece->second.length);
        const PIECE old = piece->second;
        piece = pieces_.erase(piece);
        if (start < offset) pieces_.emplace(start, PIECE{static_cast<std::size_t>(offset - start), old.at});
        if (stop > end) {
            pieces_.emplace(end, PIECE{static_cast<std::size_t>(stop - end),
                                       old.at + static_cast<std::size_t>(end - start)});
            break;
        }
    }
    last_ = pieces_.end();
}

std::size_t RHeldWrites::overlay(std::int64_t offset, std::span<std::byte> out, std::size_t got) const
{
    const std::int64_t end = endOf(offset, out.size());
    std::int64_t known = endOf(offset, got);
    for (auto piece = firstBehind(offset); piece != pieces_.end() && piece->first < end; ++piece) {
        const std::int64_t from = std::max(piece->first, offset);
        const std::int64_t to = std::min(endOf(piece->first, piece->second.length), end);
        std::memcpy(out.data() + (from - offset), pool_.data() + piece->second.at + (from - piece->first),
                    static_cast<std::size_t>(to - from));
        if (from <= known) known = std::max(known, to);
    }
    return static_cast<std::size_t>(known - offset);
}

bool RHeldWrites::forEach(
    const std::function<bool(std::int64_t offset, std::span<const std::byte>)>& visit) const
{
    return std::all_of(pieces_.begin(), pieces_.end(), [&](const auto& piece) {
        return visit(piece.first, std::span(pool_).subspan(piece.second.at, piece.second.length));
    });
}

void RHeldWrites::clear()
{
    pieces_.clear();
    last_ = pieces_.end();
    pool_.clear();
}

} // namespace collection
