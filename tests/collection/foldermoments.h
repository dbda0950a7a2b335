#pragma once

// What a folder holds at each moment of an operation, as a killed program leaves it and as a power failure
// may.

#include <map>
#include <random>
#include <set>
#include <string>
#include <vector>

#include "filecalls.h"

namespace testing_support {

using Folder = std::map<std::string, std::string>; // content by name

[[nodiscard]] Folder readFolder(const std::string& path);
void writeFolder(const std::string& path, const Folder& folder); // what was there goes

// Runs an operation and keeps the folder as it is in front of, and in the middle of, each call that changes a
// file. Equal moments in a row are one.
class RMoments {
public:
    explicit RMoments(std::string path) : path_(std::move(path)) {}
    void watch(const std::function<void()>& operation);

    std::vector<Folder> killed; // what a program leaves that is killed then
    // What a power failure leaves: nothing that wasn't flushed, or some of it by chance.
    std::vector<Folder> powerless;
    int calls = 0, flushes = 0;

private:
    void startDurable();
    void note(const FILECALL& call);
    void keep(std::vector<Folder>& moments, Folder folder);
    [[nodiscard]] Folder afterPowerFailure(bool byChance);

    std::string path_;
    std::map<std::string, std::uint64_t> durableNames_; // inode by name
    std::map<std::uint64_t, std::string> durable_;      // content by inode
    std::mt19937 random_{4711};
};

} // namespace testing_support
