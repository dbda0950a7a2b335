#include "app/session.h"

#include "app/configuration.h"
#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

constexpr std::string_view saveTitle = "Save Screen to File ...";

bool isBitmap(const std::string& extension)
{
    return extension == ".png" || extension == ".jpg" || extension == ".jpeg" || extension == ".gif";
}

} // namespace

RSession::RSession(common::RUser& user, RSessionView& view)
    : title("NVQ"), version("NVQ " NVQ_VERSION), user_(user), view_(view)
{
    collection.stages = &stages_;
}

RSession::~RSession()
{
    collection.closeTemporaryFiles();
}

graphics::PLOTCONTEXT RSession::plotContext()
{
    graphics::PLOTCONTEXT context{collection, scratch_, setup, user_, installation, {}, title, version, {}};
    context.mapCache = &mapCache;
    return context;
}

void RSession::draw(QPainter* painter, bool full, std::function<void()> repaint)
{
    if (!collection.isOpen) return;
    findRanges();
    graphics::PLOTCONTEXT context = plotContext();
    context.repaint = std::move(repaint);
    graphics::RedrawCanvas(painter, context, full);
    stale = user_.abortRequested();
}

void RSession::invalidate()
{
    stale = true;
    view_.showPicture();
}

bool RSession::exportGraphics(const std::string& path, int window, int dpi)
{
    const std::string extension = common::toLower(common::splitPath(path).extension);
    if (extension != ".eps" && !isBitmap(extension)) {
        user_.note("\"" + path + "\" is no picture file: its name must end in .png, .jpg, .gif or .eps");
        return false;
    }
    if (window < -1 || window > setup.count()) {
        user_.note(
            common::format("there is no data window %d in %s mode", window, graphics::modeName(setup.mode)));
        return false;
    }
    if (isBitmap(extension) && dpi < 1) dpi = view_.askResolution();
    if (isBitmap(extension) && dpi < 1) {
        user_.note("the resolution of \"" + path + "\" isn't known: it must be 1 dot per inch or more");
        return false;
    }
    const std::string file = common::absolutePath(path);
    if (!writeGraphics(file, window, dpi)) {
        user_.about(saveTitle, "File " + file + " could not be written.");
        return false;
    }
    lastFiles.graphics = file;
    user_.status("Plot written to: " + file);
    return true;
}

bool RSession::writeGraphics(const std::string& path, int window, int dpi)
{
    findRanges();
    graphics::PLOTCONTEXT context = plotContext();
    const bool eps = common::toLower(common::splitPath(path).extension) == ".eps";
    return eps ? graphics::exportPostScript(context, path, window)
               : graphics::exportBitmap(context, path, window, dpi);
}

bool RSession::loadConfiguration(const std::string& path)
{
    const std::string file = common::absolutePath(configurationFile(path));
    const ConfigurationResult result = checkConfiguration(file, collection.name);
    user_.about("Loading Configuration ...",
                "Configuration file  " + file + "  " + std::string(configurationReason(result)));
    return false;
}

GATESTATE RSession::gateState() const
{
    GATESTATE s;
    s.state = state;
    s.mode = setup.mode;
    s.stale = stale;
    s.open = collection.isOpen;
    s.writable = collection.writable;
    s.sectionDefined = collection.sectionDefined;
    s.kind = collection.kind;
    s.type = collection.type;
    s.stationCount = collection.stationCount;
    s.selectedStationCount = collection.selectedStationCount;
    s.windowCount = setup.count();
    s.basePath = collection.path;
    return s;
}

bool RSession::isAllowed(int commandId, int window) const
{
    return isCommandEnabled(commandId, gateState(), window);
}

std::string RSession::refusal(int commandId) const
{
    const GATESTATE now = gateState();
    if (isCommandEnabled(commandId, now, 0)) return {};
    if (!now.open) return openFault();
    GATESTATE other = now; // what would have to be different
    other.selectedStationCount = 1;
    if (isCommandEnabled(commandId, other, 0)) return "no stations are selected";
    other.writable = true;
    if (isCommandEnabled(commandId, other, 0)) return "the collection is read-only";
    return "it isn't possible now";
}

std::string RSession::statusText() const
{
    if (state == stateLayout) return "Change Layout:  R-MSE-CLICK menu ...";
    if (!collection.isOpen) return "Choose File>Open to open or File>New to create a collection.";
    if (collection.selectedStationCount == 0) return "Select a collection";
    if (setup.mode == graphics::modeStation) {
        return collection.plottedStationCount > 0 ? "Press 'p' to add current station to the plot."
                                                  : "Press 'p' to plot current station.";
    }
    if (setup.mode >= graphics::modeScatter) return "Press 'p' or double-click on the map to plot.";
    return "Ready";
}

} // namespace app
