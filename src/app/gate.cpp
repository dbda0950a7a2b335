#include "app/gate.h"

#include <algorithm>
#include <array>

#include "common/files.h"
#include "common/limits.h"

namespace app {
namespace {

using Rule = bool (*)(const GATESTATE& s, int id, int sub);

constexpr bool ready(const GATESTATE& s)
{
    return s.state == stateReady;
}
constexpr bool readyOpen(const GATESTATE& s)
{
    return ready(s) && s.open;
}
constexpr bool readyOrLayout(const GATESTATE& s)
{
    return ready(s) || s.state == stateLayout;
}

bool never(const GATESTATE&, int, int)
{
    return false;
}
bool notModal(const GATESTATE& s, int, int)
{
    return s.state != stateLayout && s.state != stateBusy;
}
bool notBusy(const GATESTATE& s, int, int)
{
    return s.state != stateBusy;
}
bool whenOpen(const GATESTATE& s, int, int)
{
    return readyOpen(s);
}
bool whenDrawn(const GATESTATE& s, int, int)
{
    return readyOpen(s) && s.drawn();
}
bool whenDrawnOrMap(const GATESTATE& s, int, int sub)
{
    return readyOpen(s) && (s.drawn() || sub == 0);
}
bool whenNative(const GATESTATE& s, int, int)
{
    return readyOpen(s) && s.kind == 1;
}
bool whenWritable(const GATESTATE& s, int, int)
{
    return readyOpen(s) && s.writable;
}
bool whenStationsWritable(const GATESTATE& s, int, int)
{
    return ready(s) && s.selectedStationCount != 0 && s.writable;
}
bool whenHydrographic(const GATESTATE& s, int, int)
{
    return readyOpen(s) && s.writable && s.type == "HYD";
}
bool whenStationsSelected(const GATESTATE& s, int, int)
{
    return ready(s) && s.selectedStationCount != 0;
}
bool whenPlotsDrawn(const GATESTATE& s, int, int)
{
    return ready(s) && s.mode >= 0 && s.drawn();
}
bool whenStationsStored(const GATESTATE& s, int, int)
{
    return s.open && s.stationCount != 0;
}
bool whenStationsStoredWritable(const GATESTATE& s, int, int)
{
    return readyOpen(s) && s.stationCount != 0 && s.writable;
}
bool whenSideFile(const GATESTATE& s, int id, int)
{
    const char* const suffix = id == 40206        ? ".idv"
                               : id == cmdViewLog ? ".log"
                               : id == 40507      ? ".inv"
                                                  : ".info";
    return readyOpen(s) && common::fileExists(s.basePath + suffix);
}
bool otherMode(const GATESTATE& s, int id, int)
{
    return ready(s) && id != cmdFirstMode + 1 + s.mode;
}
bool whenSectionMode(const GATESTATE& s, int id, int sub)
{
    return whenStationsStored(s, id, sub) && s.mode == 2;
}
bool whenSection(const GATESTATE& s, int, int)
{
    return s.sectionDefined;
}
bool sectionModeReady(const GATESTATE& s, int, int)
{
    return ready(s) && s.mode == 2 && s.sectionDefined;
}
bool surfaceMode(const GATESTATE& s, int, int)
{
    return readyOpen(s) && s.mode == 3;
}
bool inWindow(const GATESTATE& s, int, int sub)
{
    return ready(s) && sub >= 0;
}
bool inDataWindow(const GATESTATE& s, int, int sub)
{
    return readyOrLayout(s) && sub > 0;
}
bool inColorWindow(const GATESTATE& s, int, int sub)
{
    return readyOrLayout(s) && sub > 0 && s.mode > 0;
}
bool layoutWindow(const GATESTATE& s, int, int sub)
{
    return s.state == stateLayout && sub >= 0;
}
bool layoutDelete(const GATESTATE& s, int, int sub)
{
    return s.state == stateLayout && sub > 0 && s.windowCount > 1;
}
bool layoutTwin(const GATESTATE& s, int, int sub)
{
    return s.state == stateLayout && sub > 0 && s.windowCount < common::maxDataWindows;
}
bool outsideWindows(const GATESTATE& s, int, int sub)
{
    return ready(s) && sub < 0;
}

struct GATEROW {
    int first, last; // command ids
    Rule rule;
};
// By id. Commands that look at graphics objects, single samples or the options of a window bring their rows
// with them.
constexpr auto rows = std::to_array<GATEROW>({
    {40001, 40003, notModal},
    {40004, 40004, never},
    {40005, 40005, whenOpen},
    {40006, 40006, whenDrawn},
    {40007, 40007, whenDrawnOrMap},
    {40008, 40016, notModal},
    {40101, 40101, whenNative},
    {40102, 40105, whenWritable},
    {40106, 40108, whenStationsWritable},
    {40201, 40202, whenOpen},
    {40203, 40203, surfaceMode},
    {40204, 40205, whenOpen},
    {40206, 40206, whenSideFile},
    {40208, 40209, whenOpen},
    {40220, 40226, whenOpen},
    {40228, 40233, whenOpen},
    {40250, 40250, whenOpen},
    {40305, 40311, whenHydrographic},
    {40312, 40312, never},
    {40313, 40315, whenWritable},
    {40316, 40335, whenHydrographic},
    {40401, 40404, whenStationsSelected},
    {40405, 40405, whenPlotsDrawn},
    {40501, 40501, whenStationsStoredWritable},
    {40502, 40504, whenStationsSelected},
    {40505, 40505, whenOpen},
    {40506, 40507, whenSideFile},
    {40508, 40508, sectionModeReady},
    {40509, 40509, whenPlotsDrawn},
    {40510, 40510, whenStationsSelected},
    {40511, 40511, whenSideFile},
    {40601, 40603, notBusy},
    {40700, 40704, otherMode},
    {40851, 40851, whenSectionMode},
    {40852, 40852, whenSection},
    {40853, 40853, whenSectionMode},
    {40854, 40855, whenSection},
    {40916, 40917, inWindow},
    {40918, 40918, whenDrawnOrMap},
    {40921, 40921, inDataWindow},
    {40922, 40922, layoutWindow},
    {40923, 40923, layoutDelete},
    {40924, 40924, layoutTwin},
    {40929, 40930, whenStationsStored},
    {40937, 40937, inWindow},
    {40940, 40940, outsideWindows},
    {40944, 40944, inDataWindow},
    {40945, 40945, inColorWindow},
    {40960, 40960, inWindow},
    {40999, 40999, whenOpen},
});

constexpr bool rowsAscend()
{
    for (std::size_t i = 0; i < rows.size(); ++i) {
        if (rows[i].last < rows[i].first || (i > 0 && rows[i].first <= rows[i - 1].last)) return false;
    }
    return true;
}
static_assert(rowsAscend());

} // namespace

bool isCommandEnabled(int id, const GATESTATE& state, int sub)
{
    const auto before = [](const GATEROW& row, int wanted) { return row.last < wanted; };
    const auto row = std::lower_bound(rows.begin(), rows.end(), id, before);
    return row == rows.end() || id < row->first || row->rule(state, id, sub);
}

} // namespace app
