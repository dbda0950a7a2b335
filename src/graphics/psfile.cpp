// The frame of a PostScript file.

#include "common/files.h"
#include "common/text.h"
#include "graphics/drawing.h"

namespace graphics {
namespace {

constexpr const char* caption = "Opening PostScript file ...";

bool write(std::FILE* file, std::string_view text)
{
    return std::fwrite(text.data(), 1, text.size(), file) == text.size();
}

} // namespace

std::FILE* OpenPsFile(const std::string& output, const std::string& preamble, std::string_view headerText,
                      std::string_view pageText, bool eps, common::RUser& user)
{
    const std::optional<std::string> procedures = common::readFile(preamble);
    if (!procedures) {
        user.about(caption, "PS-Preamble " + preamble + " not found!\n\nNo PostScript file will be written.");
        return nullptr;
    }
    common::FilePtr file = common::openFile(output, "wb");
    const std::string_view start = eps ? "%!PS-Adobe-3.0 EPSF-3.0\n" : "%!PS-Adobe-3.0\n";
    if (!file) {
        user.about(caption, "Could not open " + output);
        return nullptr;
    }
    if (!write(file.get(), start) || !write(file.get(), headerText) || !write(file.get(), *procedures) ||
        !write(file.get(), pageText) || std::fflush(file.get()) != 0) {
        file.reset();
        std::remove(output.c_str());
        user.about(caption, "Could not write " + output);
        return nullptr;
    }
    return file.release();
}

} // namespace graphics
