#include <cstdlib>
#include <unistd.h>

#include <gtest/gtest.h>

namespace {

// Thousands of files are written and flushed: in memory, if there is a folder for that. What is kept and lost
// when the power fails is computed, and doesn't depend on the disk.
class RMemoryFolder : public testing::Environment {
public:
    void SetUp() override
    {
        if (!std::getenv("TMPDIR") && ::access("/dev/shm", W_OK) == 0) ::setenv("TMPDIR", "/dev/shm", 1);
    }
};

const auto* const environment = testing::AddGlobalTestEnvironment(new RMemoryFolder);

} // namespace
