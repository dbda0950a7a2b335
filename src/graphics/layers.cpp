// The layer lists of a map: defaults, paths, colours, and drawing a kind.

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iterator>

#include "common/text.h"
#include "graphics/basemap.h"
#include "graphics/palette.h"

namespace graphics {

namespace {

constexpr const char* subdirectories[layerKinds] = {"overlays", "bathymetry", "overlays", "",
                                                    "overlays", "topography", "overlays"};
constexpr int noColor = -1, automatic = -2;
constexpr int lastGrey = 30;

struct RAMP {
    int first, last;
};
constexpr RAMP bathymetryRamp{bathymetryFirst, bathymetryLast},
    topographyRamp{topographyLast, topographyFirst};

int rampColor(RAMP ramp, int i, int n)
{
    const int steps = std::max(n - 1, 1);
    const int color = ramp.first + (n - i - 1) * (ramp.last - ramp.first) / steps;
    return std::clamp(color, std::min(ramp.first, ramp.last), std::max(ramp.first, ramp.last));
}

int greyStep(int i, int n)
{
    const double s = 0.55 / (std::max(n, 3) - 1);
    return std::clamp(int((1.85 - s * i) * 16), 0, lastGrey);
}

// Of the kinds that are a stack of depths or heights; -1 for any other.
int stackColor(int kind, int i, int n, bool ramp)
{
    if (kind != layerBathymetry && kind != layerTopography) return noColor;
    if (!ramp) return greyStep(i, n);
    return rampColor(kind == layerBathymetry ? bathymetryRamp : topographyRamp, i, n);
}

const std::vector<LAYERENTRY>& entriesOf(const MAPWINDOW& map, int kind)
{
    return map.layers[std::size_t(kind)];
}

bool hasTopography(const MAPWINDOW& map)
{
    return !entriesOf(map, layerTopography).empty();
}

int lineColorOf(const MAPWINDOW& map, int kind, int i, bool ramp)
{
    const auto& list = entriesOf(map, kind);
    const LAYERENTRY& entry = list[std::size_t(i)];
    return entry.lineColor == automatic ? automaticLine(kind, i, int(list.size()), ramp) : entry.lineColor;
}

// A colour for what follows, in both sinks.
void useColor(QPainter* p, std::FILE* ps, int color)
{
    SetColor(p, color);
    if (ps) WritePsColor(ps, color);
}

void useLine(QPainter* p, std::FILE* ps, const LAYERENTRY& entry)
{
    const int type = std::clamp(entry.lineType, 0, int(lineTypes().size()) - 1);
    SetLineStyle(p, type);
    SetPenWidth(p, LineWidth(entry.lineThickness));
    if (!ps) return;
    std::fprintf(ps, "%s\n%s\n", lineTypes()[std::size_t(type)].procedure,
                 thicknessProcedure(entry.lineThickness));
}

void tellDamage(const BASEMAPCONTEXT& context, const std::string& path, const CDTSCAN& scan)
{
    if (scan.damage == CdtDamage::none) return;
    if (std::find(context.told.begin(), context.told.end(), path) != context.told.end()) return;
    context.told.push_back(path);
    context.user.note(common::format("%s: damaged at byte %lld: %s", path.c_str(),
                                     static_cast<long long>(scan.offset), cdtDamageText(scan.damage)));
}

void drawFile(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const std::string& path,
              const MAPGEOMETRY& map, bool fill)
{
    tellDamage(context, path, DrawCdtFile(p, ps, path, map, fill, !fill));
}

void drawEntryFill(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map, int kind,
                   int i, bool ramp)
{
    const int color = layerFillColor(map, kind, i, ramp);
    if (color < 0) return;
    SetPenWidth(p, 0);
    useColor(p, ps, color);
    drawFile(p, ps, context, layerPath(context, map, kind, entriesOf(map, kind)[std::size_t(i)]),
             map.geometry, true);
}

void drawEntryLine(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map, int kind,
                   int i, bool ramp)
{
    const int color = lineColorOf(map, kind, i, ramp);
    if (color < 0) return;
    const LAYERENTRY& entry = entriesOf(map, kind)[std::size_t(i)];
    useColor(p, ps, color);
    useLine(p, ps, entry);
    drawFile(p, ps, context, layerPath(context, map, kind, entry), map.geometry, false);
}

LAYERENTRY makeEntry(std::string_view name, int lineColor)
{
    LAYERENTRY entry;
    common::copyText(entry.name, std::string(name) + ".cdt");
    entry.lineColor = lineColor;
    return entry;
}

std::string directoryOf(const BASEMAPCONTEXT& context, const MAPWINDOW& map, int kind)
{
    const std::string sub = subdirectories[kind];
    return context.installation.coast + map.layerSet + (sub.empty() ? "" : sub + "/");
}

// Whole numbers at the front of the names of "*.cdt" files.
bool depthOfName(const std::string& name, float& depth)
{
    std::string_view rest = name;
    return name.find(".cdt") != std::string::npos && common::takeFloat(rest, depth);
}

// Path of the deepest layer that isn't below the depth; empty if there is none.
std::string layerAbove(const std::string& directory, double depth)
{
    std::string best;
    float bestDepth = 0;
    std::error_code failed;
    for (std::filesystem::directory_iterator it(directory, failed), end; !failed && it != end;
         it.increment(failed)) {
        const std::string name = it->path().filename().string();
        float found = 0;
        if (!depthOfName(name, found) || found > depth || (!best.empty() && found <= bestDepth)) continue;
        best = directory + name;
        bestDepth = found;
    }
    return best;
}

} // namespace

int automaticFill(int kind, int i, int n, bool topography, bool ramp)
{
    if (kind == layerCoastlines) return topography ? colorLandLow : colorLand;
    return stackColor(kind, i, n, ramp);
}

int automaticLine(int kind, int i, int n, bool ramp)
{
    return kind == layerCoastlines ? colorBlack : stackColor(kind, i, n, ramp);
}

int layerFillColor(const MAPWINDOW& map, int kind, int i, bool ramp)
{
    const auto& list = entriesOf(map, kind);
    const LAYERENTRY& entry = list[std::size_t(i)];
    if (entry.fillColor != automatic) return entry.fillColor;
    return automaticFill(kind, i, int(list.size()), hasTopography(map), ramp);
}

std::string layerPath(const BASEMAPCONTEXT& context, const MAPWINDOW& map, int kind, const LAYERENTRY& entry)
{
    return directoryOf(context, map, kind) + std::string(common::fieldText(entry.name));
}

void setDefaultLayers(MAPWINDOW& map, const common::INSTALLATION& installation)
{
    const bool fine = common::fileExists(installation.coast + "GlobHR/World.cdt");
    map.layerSet = fine ? "GlobHR/" : "GlobLR/";
    for (auto& list : map.layers) list.clear();
    for (const char* name : {"Backgrd", "6000m", "5000m", "4000m", "3000m", "2000m", "1000m", "500m"})
        map.layers[layerBathymetry].push_back(makeEntry(name, noColor));
    map.layers[layerCoastlines].push_back(makeEntry("World", colorBlack));
}

void DrawCoastLine(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map)
{
    if (entriesOf(map, layerCoastlines).empty()) return;
    const RDrawStateGuard guard(p);
    drawEntryLine(p, ps, context, map, layerCoastlines, 0, context.colors);
}

void DrawLayerKind(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map, int kind,
                   bool ramp)
{
    const RDrawStateGuard guard(p);
    const bool coastLater = kind == layerCoastlines && hasTopography(map);
    const int n = int(std::min<std::size_t>(entriesOf(map, kind).size(), maxLayerEntries));
    for (int i = 0; i < n && !context.user.abortRequested(); ++i) {
        drawEntryFill(p, ps, context, map, kind, i, ramp);
        if (!coastLater) drawEntryLine(p, ps, context, map, kind, i, ramp);
    }
    if (kind == layerTopography && hasTopography(map)) DrawCoastLine(p, ps, context, map);
}

void DrawBathymetryOverlay(QPainter* p, std::FILE* ps, const BASEMAPCONTEXT& context, const MAPWINDOW& map,
                           double depth)
{
    if (depth == 0 || depth == -9999 || depth == 9999) return;
    const std::string path = layerAbove(directoryOf(context, map, layerBathymetry), depth);
    if (path.empty()) return;
    const RDrawStateGuard guard(p);
    if (ps) std::fputs("\n%%PS-OBJECT: BathyOverlay begin\n", ps);
    useColor(p, ps, colorMask);
    drawFile(p, ps, context, path, map.geometry, true);
    if (ps) std::fputs("%%PS-OBJECT: BathyOverlay end\n\n", ps);
}

} // namespace graphics
