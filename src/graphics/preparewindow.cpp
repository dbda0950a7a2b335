#include "graphics/preparewindow.h"

#include <cmath>
#include <cstdlib>

#include <QDateTime>
#include <QLocale>

#include "common/text.h"
#include "graphics/palette.h"

namespace graphics {

namespace {

constexpr int obsoleteStyle = 3;

void moveApart(float& low, float& high)
{
    if (std::isfinite(low) && std::isfinite(high) && low != high) return;
    const float middle = std::isfinite(low) ? low : 0;
    low = middle - 1;
    high = low == middle ? std::nextafter(middle, 2 * middle) : middle + 1; // 1 is nothing to 1e9
}

void setUserSystem(DATAWINDOW& w)
{
    SetUsrSys(w.xMin, w.xMax, w.xLen, w.xOrg, w.yMin, w.yMax, w.yLen, w.yOrg);
    const USRSYS& usr = usrSys();
    w.plotRect = {static_cast<std::int32_t>(usr.x.lowPx), static_cast<std::int32_t>(usr.y.highPx),
                  static_cast<std::int32_t>(usr.x.highPx), static_cast<std::int32_t>(usr.y.lowPx)};
    w.xPix = usr.x.pixelsPerUnit;
    w.yPix = usr.y.pixelsPerUnit;
}

void openPsWindow(std::FILE* ps, const DATAWINDOW& w)
{
    const auto g = [](float value) { return value; };
    std::fputs("/frame? true def 0 setgray\n", ps);
    std::fprintf(ps, "%g %g %g %g %g %g %g %g UsrSys\n\n", g(w.xMin), g(w.xMax), g(w.xLen), g(w.xOrg),
                 g(w.yMin), g(w.yMax), g(w.yLen), g(w.yOrg));
    WritePsColorTable(ps);
}

void paintBackground(QPainter& p, const DATAWINDOW& w)
{
    SetClip(&p, true);
    p.fillRect(QRect(QPoint(w.plotRect[0], w.plotRect[1]), QPoint(w.plotRect[2], w.plotRect[3])),
               paletteColor(w.background));
}

void writePsBackground(std::FILE* ps, const DATAWINDOW& w)
{
    std::fputs("\n%%PS-OBJECT: NVQ_WindowBackground begin\n", ps);
    WritePsColor(ps, w.background);
    std::fputs("np xmin ymin M xmax ymin L\nxmax ymax L xmin ymax L xmin ymin L fill 0 setgray\n"
               "%%PS-OBJECT: NVQ_WindowBackground end\n\n",
               ps);
}

} // namespace

bool SetupWindow(GRAPHICSSETUP& setup, int number)
{
    if (number == 0) return SetupMapWindow(setup.map.geometry, setup.map.box);
    DATAWINDOW& w = setup.window(number);
    w.xLen = w.boxLen;
    w.xOrg = w.boxOrgX;
    w.yLen = w.boxHeight;
    w.yOrg = w.boxOrgY;
    moveApart(w.xMin, w.xMax);
    moveApart(w.yMin, w.yMax);
    if (w.zVar != 0) moveApart(w.zMin, w.zMax);
    return false;
}

void PrepareWindow(QPainter* p, std::FILE* ps, PLOTCONTEXT& context, int number)
{
    DATAWINDOW& w = context.setup.window(number);
    if (w.style == obsoleteStyle) w.style = styleDots;
    SetupWindow(context.setup, number);
    LoadPalette(PalettePath(context.installation, common::fieldText(w.palette)));
    if (w.zVar != 0) {
        SetColorMapping(w.zMin, w.zMax, w.mapLo, w.mapHi);
    }
    setUserSystem(w);
    if (ps) {
        std::fprintf(ps, "\n%%%%PS-WINDOW: NVQ4.0_Window_%d begin\n", number);
        openPsWindow(ps, w);
    }
    if (w.background >= 0) {
        if (p) paintBackground(*p, w);
        if (ps) writePsBackground(ps, w);
    }
    if (p) w.complete = 1;
}

FRAMECONTEXT frameContext(const PLOTCONTEXT& context)
{
    const QString date =
        QLocale::c().toString(QDateTime::currentDateTime(), QStringLiteral("MMM/dd/yyyy hh:mm:ss"));
    return {context.collection, context.title, context.installation.user, date.toStdString(),
            context.sectionName};
}

BASEMAPCONTEXT baseMapContext(const PLOTCONTEXT& context)
{
    return {context.installation, context.user, context.onCanvas, true, context.title, {}};
}

std::vector<int> windowsToDraw(GRAPHICSSETUP& setup)
{
    std::vector<int> numbers;
    for (int n = 1; n <= setup.count(); ++n) {
        if (setup.window(n).exists && setup.window(n).toDraw) numbers.push_back(n);
    }
    return numbers;
}

std::vector<int> variablesOf(GRAPHICSSETUP& setup, std::span<const int> numbers)
{
    std::vector<int> variables;
    for (const int n : numbers) {
        const DATAWINDOW& w = setup.window(n);
        for (const int v : {w.xVar, w.yVar, w.zVar}) {
            if (v != 0) variables.push_back(std::abs(v));
        }
    }
    return variables;
}

std::string abortable(std::string_view text)
{
    return std::string(text) + std::string(common::escAborts);
}

} // namespace graphics
