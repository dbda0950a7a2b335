#include "common/headlessuser.h"

#include <cstdio>

namespace common {
namespace {

void writeLine(const std::string& line)
{
    std::fprintf(stderr, "%s\n", line.c_str());
    std::fflush(stderr);
}

} // namespace

std::string RHeadlessUser::messageLine(std::string_view title, std::string_view text)
{
    std::string all(title);
    if (!title.empty()) all += ": ";
    all += text;
    std::string line;
    bool blank = false;
    for (const char c : all) {
        const bool white = c == ' ' || (c >= '\t' && c <= '\r');
        if (!white) {
            if (blank && !line.empty()) line += ' ';
            line += c;
        }
        blank = white;
    }
    return line;
}

void RHeadlessUser::about(std::string_view title, std::string_view text)
{
    writeLine(messageLine(title, text));
}

Answer RHeadlessUser::question(std::string_view title, std::string_view text, Answer proposed)
{
    writeLine(messageLine(title, text));
    return proposed;
}

int RHeadlessUser::choose(std::string_view title, std::string_view text, std::span<const std::string_view>,
                          int proposed, int)
{
    writeLine(messageLine(title, text));
    return proposed;
}

bool RHeadlessUser::report(std::string_view title, std::string_view text)
{
    writeLine(messageLine(title, text));
    return true;
}

void RHeadlessUser::note(std::string_view text)
{
    writeLine(messageLine({}, text));
}

bool RHeadlessUser::askAbort(std::string_view question, std::string_view title)
{
    if (!abort_) return false;
    writeLine(messageLine(title, question));
    return true;
}

} // namespace common
