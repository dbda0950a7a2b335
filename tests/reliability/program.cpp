#include "program.h"

#include <csignal>
#include <cstdlib>
#include <filesystem>

#include <fcntl.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "common/files.h"
#include "common/text.h"

namespace reliability {
namespace {

int counter = 0; // of the processes of this test

[[noreturn]] void beProgram(const std::string& home, const std::string& folder, const std::string& commands,
                            const std::string& errorFile)
{
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    const int out = ::open(errorFile.c_str(), O_WRONLY | O_CREAT | O_TRUNC, 0666);
    ::dup2(out, STDOUT_FILENO);
    ::dup2(out, STDERR_FILENO);
    for (const char* const name :
         {"DISPLAY", "WAYLAND_DISPLAY", "NVQMPHOME", "NVQMPTEMP", "NVQMPUSER", "NVQMPHOST"})
        ::unsetenv(name);
    ::setenv("QT_QPA_PLATFORM", "offscreen", 1);
    ::setenv("HOME", home.c_str(), 1);
    ::setenv("TMPDIR", (home + "tmp").c_str(), 1);
    if (::chdir(folder.c_str()) != 0) ::_exit(126);
    ::execl(NVQ_BUILD_DIR "/bin/nvqmp", "nvqmp", "-x", commands.c_str(), "-q", nullptr);
    ::_exit(127);
}

} // namespace

RProgram::RProgram(const std::string& home, const std::string& folder, const std::string& lines)
    : errorFile_(common::format("%serror%d.txt", home.c_str(), ++counter))
{
    std::filesystem::create_directories(home + "tmp");
    const std::string commands = common::format("%srun%d.cmd", home.c_str(), counter);
    static_cast<void>(common::writeFile(commands, lines));
    std::fflush(nullptr);
    pid_ = ::fork();
    if (pid_ == 0) beProgram(home, folder, commands, errorFile_);
    running_ = pid_ > 0;
}

RProgram::~RProgram()
{
    kill();
}

void RProgram::collect(int options)
{
    int status = 0;
    if (!running_ || ::waitpid(pid_, &status, options) != pid_) return;
    running_ = false;
    code_ = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

int RProgram::wait()
{
    collect(0);
    return code_;
}

bool RProgram::hasEnded()
{
    collect(WNOHANG);
    return !running_;
}

void RProgram::signal(int number)
{
    if (running_) ::kill(pid_, number);
}

void RProgram::kill()
{
    signal(SIGKILL);
    wait();
}

std::string RProgram::error() const
{
    return common::readFile(errorFile_).value_or("");
}

PROGRAMRUN runProgram(const std::string& home, const std::string& folder, const std::string& lines)
{
    RProgram program(home, folder, lines);
    const int code = program.wait();
    return {code, program.error()};
}

} // namespace reliability
