#pragma once

// A child process that is watched through the system's debugging interface: it stops before and behind each
// call that changes files below one folder, where it can be killed, or told that the call has failed.

#include <cstdint>
#include <functional>
#include <string>
#include <sys/types.h>

namespace reliability {

struct FILECALL {
    enum Kind {
        write,  // bytes of a file, by whatever call
        cut,    // or extension to a size
        make,   // an opening that may make or empty a file
        rename, // `path` becomes `target`
        remove,
        sync,   // of a file or a folder
        unknown // one that this harness can't replay
    } kind = unknown;
    std::string name;         // of the call, for messages
    std::string path, target; // absolute
    std::uint64_t file = 0;   // number of the file that `path` is before the call, 0 if there is none
    std::uint64_t made = 0;   // make: the file that it is behind the call
    std::int64_t offset = 0;  // of a write
    std::int64_t length = 0;  // of a write: bytes asked for; of a cut: the new size
    bool empties = false;     // make: an existing file loses its content
    std::int64_t result = 0;  // behind the call: what it gave, below 0 for an error
    std::string bytes;        // behind a write: what it wrote
};

class RTracedChild {
public:
    // Forks a child that will do `work` and end with its result. `folder` is absolute, with its separator.
    RTracedChild(std::string folder, const std::function<int()>& work);
    ~RTracedChild(); // kills it
    RTracedChild(const RTracedChild&) = delete;
    RTracedChild& operator=(const RTracedChild&) = delete;

    // False where tracing isn't permitted.
    [[nodiscard]] bool isTraced() const { return traced_; }
    // Lets the child run to its next call; false if it has ended.
    bool toNextCall();
    // Lets the call happen, and stops behind it; false if the child has died in it.
    bool finishCall();
    // Instead of finishCall(): the call isn't made and gives this error. Only where canRefuse().
    bool refuseCall(int error);
    [[nodiscard]] static bool canRefuse();
    void kill();
    // Lets it run to its end without a further stop. The exit code, -1 if a signal ended it.
    int runToEnd();
    [[nodiscard]] int exitCode() const { return exitCode_; }
    [[nodiscard]] const FILECALL& call() const { return call_; }
    [[nodiscard]] pid_t pid() const { return pid_; }

private:
    bool resume(int request);
    [[nodiscard]] bool describeCall();
    [[nodiscard]] std::string pathOf(int descriptor) const;
    [[nodiscard]] std::string pathAt(std::uint64_t descriptor, std::uint64_t address) const;
    [[nodiscard]] std::string text(std::uint64_t address) const;
    [[nodiscard]] std::int64_t lengthOf(std::uint64_t pieces, std::uint64_t count) const;
    [[nodiscard]] std::int64_t position(int descriptor) const;
    void readWritten();

    std::string folder_;
    pid_t pid_ = -1;
    bool traced_ = false, running_ = false, insideCall_ = false;
    int exitCode_ = -1, descriptor_ = -1;
    FILECALL call_;
};

} // namespace reliability
