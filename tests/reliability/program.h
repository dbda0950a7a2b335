#pragma once

// The program itself, in a process of its own without a display, with a home of its own.

#include <string>
#include <sys/types.h>

#include "temporarydirectory.h"

namespace reliability {

class RProgram {
public:
    // Starts it with a command file of these lines, which it reads in `folder`. `home` keeps its settings,
    // the command file and what it says.
    RProgram(const std::string& home, const std::string& folder, const std::string& lines);
    ~RProgram(); // kills it
    RProgram(const RProgram&) = delete;
    RProgram& operator=(const RProgram&) = delete;

    int wait(); // the exit code, -1 if a signal ended it
    [[nodiscard]] bool hasEnded();
    void signal(int number);
    void kill(); // and waits for its death
    [[nodiscard]] pid_t pid() const { return pid_; }
    [[nodiscard]] std::string error() const; // what it wrote to standard error

private:
    void collect(int options);

    std::string errorFile_;
    pid_t pid_ = -1;
    bool running_ = false;
    int code_ = -1;
};

struct PROGRAMRUN {
    int code = -1;
    std::string error;
};
PROGRAMRUN runProgram(const std::string& home, const std::string& folder, const std::string& lines);

} // namespace reliability
