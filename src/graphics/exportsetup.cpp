#include "graphics/exportsetup.h"

#include "graphics/mapplot.h"
#include "graphics/preparewindow.h"

namespace graphics {

RExportGuard::RExportGuard(PLOTCONTEXT& context)
    : context_(context), setup_(context.setup), drawing_(nullptr), onCanvas_(context.onCanvas),
      repaint_(context.repaint)
{
    context_.onCanvas = false;
    context_.repaint = nullptr;
    drawState().usePixmap = false;
}

RExportGuard::~RExportGuard()
{
    context_.onCanvas = onCanvas_;
    context_.repaint = repaint_;
    context_.setup = setup_;
}

bool canExport(PLOTCONTEXT& context, int window)
{
    if (window == -1) return true;
    if (window == 0) return context.setup.map.exists != 0;
    return window >= 1 && window <= context.setup.count() && context.setup.window(window).exists;
}

void markForExport(PLOTCONTEXT& context, int window, bool withMap)
{
    GRAPHICSSETUP& setup = context.setup;
    setup.map.exists = withMap ? 1 : 0;
    setup.map.toDraw = setup.map.exists;
    if (withMap) SetupWindow(setup, 0);
    for (int n = 1; n <= setup.count(); ++n) {
        DATAWINDOW& w = setup.window(n);
        w.exists = w.exists && (window == -1 || window == n) ? 1 : 0;
        w.toDraw = w.exists;
        if (w.exists) SetupWindow(setup, n);
    }
}

} // namespace graphics
