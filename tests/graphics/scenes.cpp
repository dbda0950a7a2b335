#include "graphics/scenes.h"

#include <cmath>
#include <cstdlib>
#include <fstream>
#include <sstream>

#include "graphics/drawing.h"
#include "temporarydirectory.h"

namespace testing_support {
namespace {

std::string contentOf(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream(path, std::ios::binary) << text;
}

int run(const std::string& command)
{
    return std::system(command.c_str()); // NOLINT(cert-env33-c): a tool of the tests, with our own arguments
}

} // namespace

void useDevice(float widthCm, float heightCm, double dpi)
{
    graphics::DEVICE& device = graphics::drawState().device;
    device.pixelsPerCm = static_cast<float>(dpi / 2.54);
    device.widthCm = widthCm;
    device.heightCm = heightCm;
    device.widthPx = static_cast<int>(std::lround(widthCm * device.pixelsPerCm));
    device.heightPx = static_cast<int>(std::lround(heightCm * device.pixelsPerCm));
}

QImage painted(const Scene& scene)
{
    const graphics::DEVICE& device = graphics::drawState().device;
    QImage image(device.widthPx, device.heightPx, QImage::Format_RGB32);
    image.fill(Qt::white);
    QPainter p(&image);
    scene(&p, nullptr);
    return image;
}

std::string pageText(const Scene& scene)
{
    std::FILE* file = std::tmpfile();
    if (!file) return {};
    scene(nullptr, file);
    std::string text(static_cast<std::size_t>(std::ftell(file)), '\0');
    std::rewind(file);
    text.resize(std::fread(text.data(), 1, text.size(), file));
    std::fclose(file);
    return text;
}

std::string preamblePath()
{
    return std::string(NVQ_SOURCE_DIR) + "/data/include/PSGraph.ps";
}

bool haveGhostscript()
{
    static const bool have = run("gs --version >/dev/null 2>&1") == 0;
    return have;
}

std::string pageFile(const std::string& content, const PAGE& page)
{
    std::ostringstream text;
    text << "%!PS-Adobe-3.0\n%%Pages: 1\n%%EndComments\n\n" << contentOf(preamblePath());
    text << "\n%%Page: 1 1\nBeginPlot\n\n/usrclip? false def /usrrot? " << (page.landscape ? "true" : "false")
         << " def\n/scalefak " << page.scale << " def /lenfak " << page.scale
         << " def\n/xOrigin 0 def /yOrigin 0 def /fontfak " << 1.0 / 12 << " def\n/dfltFont (" << page.family
         << ") def\n/nativeFont (Helvetica-Bold) def\n\n";
    text << content << "\nshowpage\nEndPlot\n\n%%Trailer\n";
    return text.str();
}

std::string complaints(const std::string& file)
{
    const RTemporaryDirectory directory;
    const std::string path = directory.file("page.ps"), log = directory.file("log");
    writeFile(path, "countdictstack userdict length\n" + file +
                        "\nuserdict length ne {(user dictionary changed\\n) print} if\n"
                        "countdictstack ne {(dictionary stack changed\\n) print} if\n"
                        "count 0 ne {(stack not empty\\n) print pstack} if\n");
    const int result =
        run("gs -q -dBATCH -dNOPAUSE -dSAFER -sDEVICE=nullpage " + path + " >" + log + " 2>&1");
    return contentOf(log) + (result == 0 ? "" : "exit code " + std::to_string(result));
}

QImage rendered(const std::string& file, bool smooth)
{
    const RTemporaryDirectory directory;
    const std::string path = directory.file("page.ps"), picture = directory.file("page.png");
    writeFile(path, file);
    const graphics::DEVICE& device = graphics::drawState().device;
    std::ostringstream command;
    command << "gs -q -dBATCH -dNOPAUSE -dSAFER -sDEVICE=png16m -dTextAlphaBits=4 -dGraphicsAlphaBits="
            << (smooth ? 4 : 1) << " -r" << device.pixelsPerCm * 72 / graphics::pointsPerCm << " -g"
            << device.widthPx << "x" << device.heightPx << " -sOutputFile=" << picture << " " << path
            << " >/dev/null 2>&1";
    if (run(command.str()) != 0) return {};
    return QImage(QString::fromStdString(picture)).convertToFormat(QImage::Format_RGB32);
}

} // namespace testing_support
