#pragma once

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace app {

// Puts the files of a closed collection aside while another is made in their place, and back again unless the
// new one was kept: an attempt that fails leaves everything as it was, also where there was nothing.
class [[nodiscard]] RCollectionBackup {
public:
    explicit RCollectionBackup(std::string basePath);
    ~RCollectionBackup(); // restores, unless keep() was called; the new files must be closed
    RCollectionBackup(const RCollectionBackup&) = delete;
    RCollectionBackup& operator=(const RCollectionBackup&) = delete;

    // False if a file could not be put aside; then all are back in their places.
    [[nodiscard]] bool moved() const { return moved_; }
    void keep(); // the new collection stands: the old files go
    // Takes the new files away and brings the old ones back.
    void restore();

private:
    [[nodiscard]] std::string aside(const std::string& suffix) const;

    std::string basePath_, mark_;
    std::vector<std::string> suffixes_; // of the files that were put aside
    std::optional<std::string> log_;    // the log goes on in its place
    bool moved_ = true, done_ = false;
};

} // namespace app
