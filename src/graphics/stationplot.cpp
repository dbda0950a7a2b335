#include <cstdlib>

#include "graphics/palette.h"
#include "graphics/plots.h"
#include "graphics/plotvalues.h"
#include "graphics/preparewindow.h"
#include "selection/selectedlist.h"

namespace graphics {

namespace {

constexpr double loadingShare = 30; // percent of the progress bar

void drawProfile(QPainter* p, std::FILE* ps, const DATAWINDOW& window, const RStationCycle& cycle,
                 std::span<const float> x, std::span<const float> y, bool symbols)
{
    SetColor(p, cycle.color);
    SetFill(p, cycle.fill);
    if (ps) {
        WritePsColor(ps, cycle.color);
        std::fputs(cycle.fill ? "/fill? true def\n" : "/fill? false def\n", ps);
    }
    DrawCurve(p, ps, x, y, common::MISSING_VALUE, symbols ? cycle.symbol : 0, window.symbolSize,
              std::abs(window.lineThickness));
}

// A station without the window's variables draws nothing, and still uses up its colour.
void drawProfiles(QPainter* p, std::FILE* ps, const DATAWINDOW& window, const PLOTVALUES& values)
{
    constexpr char bottleData = 'B';
    RStationCycle cycle;
    for (std::size_t i = 0; i < values.stations.size(); ++i) {
        cycle.next();
        const std::span<const float> x = values.column(i, window.xVar), y = values.column(i, window.yVar);
        if (x.empty() || y.empty()) continue;
        const bool symbols = values.stations[i].type == bottleData || window.lineThickness < 0;
        drawProfile(p, ps, window, cycle, x, y, symbols);
    }
    SetFill(p, false);
}

void plotProfiles(QPainter* p, std::FILE* ps, const DATAWINDOW& window, const PLOTVALUES& values)
{
    if (p) SetClip(p, true);
    if (p) SetLineStyle(p, 0);
    if (ps) std::fputs("\n%%PS-OBJECT: Profiles begin\ngsave dousrclip\n", ps);
    drawProfiles(p, ps, window, values);
    if (ps) std::fputs("\ngrestore\n%%PS-OBJECT: Profiles end\n\n", ps);
}

void plotStationWindows(QPainter* p, std::FILE* ps, PLOTCONTEXT& context)
{
    const std::vector<int> numbers = windowsToDraw(context.setup);
    const std::vector<selection::SELECTEDSTATION> stations = selection::readPlottedList(context.collection);
    if (numbers.empty() || stations.empty()) return;
    const common::RBusyGuard busy(context.user, abortable("Plotting Station(s) ..."));
    PLOTVALUES values;
    if (!loadPlotValues(context.collection, context.station, stations, variablesOf(context.setup, numbers),
                        loadingShare, context.user, values)) {
        return;
    }
    const FRAMECONTEXT frame = frameContext(context);
    const double share = (100 - loadingShare) / static_cast<double>(numbers.size());
    double done = loadingShare;
    for (const int number : numbers) {
        DATAWINDOW& window = context.setup.window(number);
        PrepareWindow(p, ps, context, number);
        plotProfiles(p, ps, window, values);
        DrawWindowFrame(p, ps, frame, number, window, true);
        if (p && context.repaint) context.repaint();
        context.user.setProgress(done += share);
        if (context.user.abortRequested()) return;
    }
}

} // namespace

void PlotStationMode(QPainter* p, PLOTCONTEXT& context, bool)
{
    plotStationWindows(p, nullptr, context);
}

void WriteStationWindows(std::FILE* ps, PLOTCONTEXT& context)
{
    plotStationWindows(nullptr, ps, context);
}

} // namespace graphics
