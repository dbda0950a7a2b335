#include "app/collectionbackup.h"

#include <cstdio>
#include <unistd.h>

#include "collection/sidefiles.h"
#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

// What a new collection does not write itself stays where it is.
bool staysInPlace(std::string_view suffix)
{
    return suffix == ".cfl" || suffix == ".info";
}

bool exists(const std::string& path)
{
    return common::fileSize(path) >= 0;
}

} // namespace

RCollectionBackup::RCollectionBackup(std::string basePath)
    : basePath_(std::move(basePath)), mark_(common::format(".old%ld", static_cast<long>(::getpid())))
{
    log_ = common::readFile(basePath_ + ".log");
    for (const std::string_view suffix : collection::collectionSuffixes) {
        const std::string name(suffix);
        if (staysInPlace(suffix) || !exists(basePath_ + name)) continue;
        if (std::rename((basePath_ + name).c_str(), aside(name).c_str()) != 0) {
            moved_ = false;
            break;
        }
        suffixes_.push_back(name);
    }
    if (!moved_) restore();
}

RCollectionBackup::~RCollectionBackup()
{
    if (!done_) restore();
}

std::string RCollectionBackup::aside(const std::string& suffix) const
{
    return basePath_ + mark_ + suffix;
}

void RCollectionBackup::keep()
{
    done_ = true;
    for (const std::string& suffix : suffixes_) ::unlink(aside(suffix).c_str());
}

void RCollectionBackup::restore()
{
    done_ = true;
    if (moved_) {
        for (const std::string_view suffix : collection::collectionSuffixes) {
            if (!staysInPlace(suffix)) ::unlink((basePath_ + std::string(suffix)).c_str());
        }
    }
    for (const std::string& suffix : suffixes_)
        std::rename(aside(suffix).c_str(), (basePath_ + suffix).c_str());
    if (!log_) {
        ::unlink((basePath_ + ".log").c_str());
        return;
    }
    static_cast<void>(common::writeFile(basePath_ + ".log", *log_));
}

} // namespace app
