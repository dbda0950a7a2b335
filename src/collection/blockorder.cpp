#include "collection/blockorder.h"

#include <algorithm>

namespace collection {

void RBlockOrder::add(int number, std::int64_t offset, std::int64_t bytes)
{
    if (!blocks_.empty() && offset < blocks_.back().offset) inOrder_ = false;
    lastNumber_ = number;
    blocks_.push_back({offset, static_cast<std::int32_t>(bytes), number});
}

RBlockOrder::LAYOUT RBlockOrder::layout()
{
    if (!inOrder_) {
        std::sort(blocks_.begin(), blocks_.end(), [](const BLOCK& a, const BLOCK& b) {
            return a.offset != b.offset ? a.offset < b.offset : a.number < b.number;
        });
    }
    inOrder_ = true;
    LAYOUT layout;
    std::vector<std::int32_t> shared;
    for (const BLOCK& block : blocks_) {
        const std::int64_t end = block.offset + block.bytes;
        if (block.offset < layout.dataBytes) {
            shared.push_back(layout.lastNumber);
            shared.push_back(block.number);
        }
        layout.usedBytes += std::max<std::int64_t>(0, end - std::max(block.offset, layout.dataBytes));
        if (end > layout.dataBytes) {
            layout.dataBytes = end;
            layout.lastNumber = block.number;
        }
    }
    std::sort(shared.begin(), shared.end());
    shared.erase(std::unique(shared.begin(), shared.end()), shared.end());
    for (const std::int32_t number : shared) layout.overlapping.add(number);
    return layout;
}

} // namespace collection
