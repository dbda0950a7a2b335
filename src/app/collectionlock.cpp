#include "app/collectionlock.h"

#include <cerrno>
#include <sys/file.h>

namespace app {

bool RCollectionLock::acquire(const std::string& basePath)
{
    file_ = common::openFile(basePath + ".hob", "rb");
    if (!file_) return true;
    if (::flock(::fileno(file_.get()), LOCK_EX | LOCK_NB) == 0 || errno != EWOULDBLOCK) return true;
    file_.reset();
    return false;
}

} // namespace app
