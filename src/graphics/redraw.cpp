#include "graphics/extents.h"
#include "graphics/mapplot.h"
#include "graphics/plots.h"
#include "graphics/preparewindow.h"

namespace graphics {

namespace {

QRect wholeCanvas()
{
    const DEVICE& device = drawState().device;
    return {0, 0, device.widthPx, device.heightPx};
}

void computeRegions(PLOTCONTEXT& context)
{
    auto& regions = context.setup.regions;
    regions.fill(QRect());
    if (mapIsShown(context.setup)) {
        SetupWindow(context.setup, 0);
        regions[0] = toPixels(windowExtent(context, 0));
    }
    for (int n = 1; n <= context.setup.count(); ++n) {
        if (!context.setup.window(n).exists) continue;
        SetupWindow(context.setup, n);
        regions[static_cast<std::size_t>(n)] = toPixels(windowExtent(context, n));
    }
}

bool everythingIsToDraw(GRAPHICSSETUP& setup)
{
    int existing = 0;
    for (int n = 1; n <= setup.count(); ++n) existing += setup.window(n).exists ? 1 : 0;
    return setup.map.toDraw && windowsToDraw(setup).size() == static_cast<std::size_t>(existing);
}

// Where the windows that are to be drawn were, and where they will be.
void clearRegions(QPainter* p, PLOTCONTEXT& context, bool full)
{
    const auto before = context.setup.regions;
    computeRegions(context);
    if (full || everythingIsToDraw(context.setup)) {
        p->fillRect(wholeCanvas(), Qt::white);
        return;
    }
    const auto clear = [&](std::size_t i) {
        p->fillRect(before[i], Qt::white);
        p->fillRect(context.setup.regions[i], Qt::white);
    };
    if (context.setup.map.toDraw) clear(0);
    for (const int n : windowsToDraw(context.setup)) clear(static_cast<std::size_t>(n));
}

void plotMode(QPainter* p, PLOTCONTEXT& context, bool full)
{
    if (context.setup.mode == modeStation) PlotStationMode(p, context, full);
    if (context.setup.mode == modeScatter) PlotScatterMode(p, context, full);
}

} // namespace

void RedrawCanvas(QPainter* p, PLOTCONTEXT& context, bool full)
{
    const RDrawStateGuard guard(p);
    if (full) markAllToDraw(context.setup);
    SetClip(p, false);
    clearRegions(p, context, full);
    const bool newMap = mapIsShown(context.setup) && context.setup.map.toDraw;
    if (newMap) PlotMap(p, context, true);
    if (context.user.abortRequested()) return;
    plotMode(p, context, full);
    if (context.user.abortRequested()) return;
    if (newMap) {
        DrawMapMarks(p, context);
    } else {
        PlotMap(p, context, false);
    }
    if (context.repaint) context.repaint();
}

} // namespace graphics
