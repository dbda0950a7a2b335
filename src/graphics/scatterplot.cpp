#include "graphics/plots.h"
#include "graphics/plotvalues.h"
#include "graphics/points.h"
#include "graphics/preparewindow.h"
#include "selection/selectedlist.h"

namespace graphics {

namespace {

constexpr double loadingShare = 50; // percent of the progress bar

void appendStation(PLOTDATA& data, std::span<const float> x, std::span<const float> y,
                   std::span<const float> z, bool color)
{
    data.x.insert(data.x.end(), x.begin(), x.end());
    data.y.insert(data.y.end(), y.begin(), y.end());
    if (!color) return;
    if (z.empty()) {
        data.z.insert(data.z.end(), x.size(), common::MISSING_VALUE);
    } else {
        data.z.insert(data.z.end(), z.begin(), z.end());
    }
}

PLOTDATA plotData(const DATAWINDOW& window, const PLOTVALUES& values)
{
    PLOTDATA data;
    for (std::size_t i = 0; i < values.stations.size(); ++i) {
        const std::span<const float> x = values.column(i, window.xVar), y = values.column(i, window.yVar);
        if (x.empty() || y.empty()) continue;
        const std::span<const float> z =
            window.zVar != 0 ? values.column(i, window.zVar) : std::span<const float>();
        appendStation(data, x, y, z, window.zVar != 0);
    }
    return data;
}

// Fields aren't made here, so that a gridded window shows its samples as dots.
void PlotWindowData(QPainter* p, std::FILE* ps, PLOTCONTEXT& context, int number, const PLOTVALUES& values)
{
    const DATAWINDOW& window = context.setup.window(number);
    PlotMarks(p, ps, context, plotData(window, values), window, context.setup.optionsOf(number));
}

void plotDataWindows(QPainter* p, std::FILE* ps, PLOTCONTEXT& context)
{
    const std::vector<int> numbers = windowsToDraw(context.setup);
    if (numbers.empty() || context.collection.selectedStationCount == 0) return;
    const common::RBusyGuard busy(context.user, abortable("Plotting Scatter Plots ..."));
    PLOTVALUES values;
    if (!loadPlotValues(context.collection, context.station, selection::readSelectedList(context.collection),
                        variablesOf(context.setup, numbers), loadingShare, context.user, values)) {
        return;
    }
    const FRAMECONTEXT frame = frameContext(context);
    for (const int number : numbers) {
        DATAWINDOW& window = context.setup.window(number);
        PrepareWindow(p, ps, context, number);
        PlotWindowData(p, ps, context, number, values);
        DrawWindowFrame(p, ps, frame, number, window, true);
        if (p && context.repaint) context.repaint();
        if (context.user.abortRequested()) return;
    }
}

} // namespace

void PlotScatterMode(QPainter* p, PLOTCONTEXT& context, bool)
{
    plotDataWindows(p, nullptr, context);
}

void WriteDataWindows(std::FILE* ps, PLOTCONTEXT& context)
{
    plotDataWindows(nullptr, ps, context);
}

} // namespace graphics
