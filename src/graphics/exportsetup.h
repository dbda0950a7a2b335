#pragma once

// What both kinds of export do around their drawing: the set-up is theirs for a while, and comes back.

#include "graphics/extents.h"
#include "graphics/plots.h"

namespace graphics {

// Saves the set-up and the drawing state, keeps the canvas out of it, and puts everything back on every way
// out.
class [[nodiscard]] RExportGuard {
public:
    explicit RExportGuard(PLOTCONTEXT& context);
    ~RExportGuard();
    RExportGuard(const RExportGuard&) = delete;
    RExportGuard& operator=(const RExportGuard&) = delete;

private:
    PLOTCONTEXT& context_;
    const GRAPHICSSETUP setup_;
    const RDrawStateGuard drawing_;
    const bool onCanvas_;
    const std::function<void()> repaint_;
};

// Whether `window` (-1 the whole canvas, 0 the map, else a data window of the mode) has something to show.
[[nodiscard]] bool canExport(PLOTCONTEXT& context, int window);
// Marks what belongs to `window` as to be drawn and everything else as not, and sets all sizes.
void markForExport(PLOTCONTEXT& context, int window, bool withMap);

} // namespace graphics
