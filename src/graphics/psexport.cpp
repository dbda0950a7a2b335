// A picture as an encapsulated PostScript file.

#include <filesystem>
#include <string>
#include <unistd.h>

#include "common/files.h"
#include "common/text.h"
#include "graphics/drawing.h"
#include "graphics/exportsetup.h"
#include "graphics/mapplot.h"
#include "graphics/pagegeometry.h"
#include "graphics/plots.h"
#include "graphics/preparewindow.h"

namespace graphics {

namespace {

constexpr const char* openingCaption = "Opening PostScript file ...";
constexpr const char* nativeFont = "Helvetica-Bold";
constexpr double margin = 0.35;      // cm around the region
constexpr double stampDistance = 4;  // points between picture and stamp
constexpr double stampClearance = 2; // points around the stamp

// A window is shown with the map beside it if the settings say so.
bool takesMap(const PLOTCONTEXT& context, int window)
{
    const GRAPHICSSETUP& setup = context.setup;
    if (window == 0) return true;
    if (setup.mode == modeMap) return true;
    return mapIsShown(setup) && setup.postScript.showMap;
}

// --- texts of the file's frame

// A comment has one line.
std::string commentText(std::string text)
{
    for (char& c : text) {
        if (static_cast<unsigned char>(c) < ' ') c = ' ';
    }
    return text;
}

std::string fileName(const std::string& path)
{
    const common::PATHPARTS parts = common::splitPath(path);
    return commentText(parts.baseName + parts.extension);
}

std::string headerText(const PLOTCONTEXT& context, const std::string& name, const std::string& date,
                       const PAGEBOX& box)
{
    return common::format("%%%%Title: %s\n%%%%Creator: %s, %s\n%%%%CreationDate: %s\n%%%%Pages: 1\n"
                          "%%%%DocumentFonts: %s %s\n%%%%BoundingBox: %d %d %d %d\n%%%%EndComments\n\n",
                          name.c_str(), commentText(context.title).c_str(),
                          commentText(context.version).c_str(), date.c_str(), fontSettings().psFamily.c_str(),
                          nativeFont, box.left, box.bottom, box.right, box.top);
}

std::string pageText(const std::string& name, const PAGEGEOMETRY& page)
{
    const FONTSETTINGS& font = fontSettings();
    return common::format(
        "\n%%%%Page: 1 1\n%%%%PageOrientation: %s\n%%%%PS-PAGE: NVQ_Plot=%s begin\nBeginPlot\n\n"
        "/usrclip? false def /usrrot? %s def\n/scalefak %g def /lenfak %g def\n"
        "/xOrigin 0 def /yOrigin 0 def /fontfak %g def\n/dfltFont (%s) def\n/nativeFont (%s) def\n\n",
        page.landscape ? "Landscape" : "Portrait", name.c_str(), page.landscape ? "true" : "false",
        page.scale, page.scale, static_cast<double>(font.factor / font.referenceSize), font.psFamily.c_str(),
        nativeFont);
}

// --- the file

// The path that is written: a link's target, so that the link stays.
std::string targetOf(const std::string& path)
{
    std::error_code failed;
    const auto target = std::filesystem::canonical(path, failed);
    return failed ? path : target.string();
}

// An output that is opened by name, and takes its place when it is complete.
class RPsOutput {
public:
    explicit RPsOutput(const std::string& path)
        : target_(targetOf(path)), temporary_(target_ + ".part" + std::to_string(::getpid()))
    {
    }
    ~RPsOutput()
    {
        if (!file_) return;
        file_.reset();
        static_cast<void>(std::remove(temporary_.c_str()));
    }
    RPsOutput(const RPsOutput&) = delete;
    RPsOutput& operator=(const RPsOutput&) = delete;

    [[nodiscard]] bool canBeMade() const
    {
        const std::string directory = common::splitPath(common::absolutePath(target_)).directory;
        if (!common::directoryIsWritable(directory)) return false;
        std::error_code error; // what stands there and is no ordinary file, such as a device, stays
        if (std::filesystem::exists(target_, error) && !common::fileExists(target_)) return false;
        return !common::fileExists(target_) || common::isWritable(target_);
    }
    [[nodiscard]] std::FILE* open(const PLOTCONTEXT& context, const std::string& header,
                                  const std::string& page)
    {
        const std::string preamble = context.installation.include + "PSGraph.ps";
        file_.reset(OpenPsFile(temporary_, preamble, header, page, true, context.user));
        return file_.get();
    }
    [[nodiscard]] bool commit()
    {
        const bool good = std::fflush(file_.get()) == 0 && !std::ferror(file_.get());
        const bool closed = std::fclose(file_.release()) == 0;
        if (good && closed && std::rename(temporary_.c_str(), target_.c_str()) == 0) return true;
        static_cast<void>(std::remove(temporary_.c_str()));
        return false;
    }

private:
    std::string target_, temporary_;
    common::FilePtr file_;
};

// --- the page

struct PAGEPLAN {
    PAGEGEOMETRY page;
    PAGEBOX box;
    QPointF stampCorner; // cm on the page
};

PAGEPLAN planPage(PLOTCONTEXT& context, const FRAMECONTEXT& frame)
{
    const PSSETTINGS& settings = context.setup.postScript;
    const DEVICE& device = drawState().device;
    const EXTENT region = clampToCanvas(grow(usedExtent(context), margin));
    PAGEPLAN plan;
    plan.page = pageGeometry(settings, region, device.widthCm, device.heightCm);
    EXTENT points = pagePoints(plan.page, region);
    if (settings.showCollectionInfo) {
        const QSizeF stamp = collectionStampSize(frame) * pointsPerCm;
        const double right = std::max(points.right, points.left + stamp.width());
        plan.stampCorner = QPointF(right, points.top + stampDistance + stamp.height()) / pointsPerCm;
        points = unite(points, {right - stamp.width() - stampClearance, points.top, right + stampClearance,
                                points.top + stampDistance + stamp.height() + stampClearance});
    }
    plan.box = boundingBox(plan.page, points);
    return plan;
}

void moveOntoPage(GRAPHICSSETUP& setup, const PAGEGEOMETRY& page)
{
    setup.map.box.x += static_cast<float>(page.xOffset);
    setup.map.box.y += static_cast<float>(page.yOffset);
    for (int n = 1; n <= setup.count(); ++n) {
        setup.window(n).boxOrgX += static_cast<float>(page.xOffset);
        setup.window(n).boxOrgY += static_cast<float>(page.yOffset);
    }
}

void writePage(std::FILE* ps, PLOTCONTEXT& context, const FRAMECONTEXT& frame, const PAGEPLAN& plan,
               const std::string& name)
{
    moveOntoPage(context.setup, plan.page);
    if (context.setup.mode == modeStation) WriteStationWindows(ps, context);
    if (context.setup.mode == modeScatter) WriteDataWindows(ps, context);
    if (context.setup.map.toDraw && !context.user.abortRequested()) WriteMapWindow(ps, context);
    if (context.setup.postScript.showCollectionInfo) {
        DrawCollectionStamp(nullptr, ps, frame, static_cast<float>(plan.page.scale), plan.stampCorner);
    }
    std::fprintf(ps, "\n%%%%PS-PAGE: NVQ_Plot=%s end\n\nshowpage\nEndPlot\n\n%%%%Trailer\n", name.c_str());
}

} // namespace

bool exportPostScript(PLOTCONTEXT& context, const std::string& path, int window)
{
    if (!canExport(context, window)) return false;
    refreshSelection(context);
    if (context.user.abortRequested()) return false;
    const RExportGuard guard(context);
    markForExport(context, window, takesMap(context, window));
    const FRAMECONTEXT frame = frameContext(context);
    const PAGEPLAN plan = planPage(context, frame);
    const std::string name = fileName(path);
    RPsOutput output(path);
    if (!output.canBeMade()) {
        context.user.about(openingCaption, "Could not open " + path);
        return false;
    }
    std::FILE* const ps =
        output.open(context, headerText(context, name, frame.date, plan.box), pageText(name, plan.page));
    if (!ps) return false;
    writePage(ps, context, frame, plan, name);
    if (context.user.abortRequested()) return false;
    if (output.commit()) return true;
    context.user.about(openingCaption, "Could not write " + path);
    return false;
}

} // namespace graphics
