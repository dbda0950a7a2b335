#include "process.h"

#include <cstdio>

#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include "common/text.h"

namespace reliability {
namespace {

constexpr char notPermitted[] = "mounting isn't permitted";

void writeAll(int file, const std::string& text)
{
    for (std::size_t done = 0; done < text.size();) {
        const ssize_t written = ::write(file, text.data() + done, text.size() - done);
        if (written <= 0) return;
        done += static_cast<std::size_t>(written);
    }
}

std::string readAll(int file)
{
    std::string text;
    char buffer[4096];
    for (ssize_t got = 0; (got = ::read(file, buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(got));
    return text;
}

bool ownMounts()
{
    return ::unshare(CLONE_NEWNS) == 0 && ::mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0;
}

} // namespace

std::string inProcess(const std::function<std::string()>& work)
{
    int ends[2] = {-1, -1};
    if (::pipe(ends) != 0) return "no pipe";
    std::fflush(nullptr);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        writeAll(ends[1], work() + ".");
        ::_exit(0);
    }
    ::close(ends[1]);
    std::string text = readAll(ends[0]);
    ::close(ends[0]);
    int status = 0;
    ::waitpid(child, &status, 0);
    if (!WIFEXITED(status) || text.empty())
        return common::format("crashed with status %d: %s", status, text.c_str());
    text.pop_back();
    return text;
}

std::optional<std::string> withOwnMounts(const std::function<std::string()>& work)
{
    const std::string text = inProcess([&work] { return ownMounts() ? work() : std::string(notPermitted); });
    if (text == notPermitted) return std::nullopt;
    return text;
}

bool mountMemory(const std::string& folder, long kilobytes)
{
    const std::string size = common::format("size=%ldk", kilobytes);
    return ::mount("none", folder.c_str(), "tmpfs", 0, size.c_str()) == 0;
}

bool mountReadOnly(const std::string& folder)
{
    return ::mount(folder.c_str(), folder.c_str(), nullptr, MS_BIND, nullptr) == 0 &&
           ::mount(nullptr, folder.c_str(), nullptr, MS_BIND | MS_REMOUNT | MS_RDONLY, nullptr) == 0;
}

} // namespace reliability
