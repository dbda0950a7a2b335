// Opening a packed file: what it holds is unpacked in a folder of its own in the temporary directory.

#include <filesystem>

#include "app/packedfiles.h"
#include "app/session.h"
#include "common/files.h"
#include "import/unpack.h"

namespace app {
namespace {

namespace fs = std::filesystem;

constexpr std::string_view openingTitle = "Opening ...";

std::string severalText(const std::string& archive, std::span<const std::string> files, std::size_t inFront)
{
    constexpr std::size_t most = 10;
    std::string text = archive + "\n\nholds several files that could be opened:\n\n";
    for (std::size_t i = 0; i < files.size() && i < most; ++i) text += files[i].substr(inFront) + "\n";
    if (files.size() > most) text += "and " + std::to_string(files.size() - most) + " more\n";
    return text + "\nUnpack it and open one of them.";
}

} // namespace

OpenResult RSession::unpackArgument(const std::string& archive)
{
    auto folder = std::make_unique<RScratchFolder>(installation.temp);
    if (folder->path().empty()) {
        user_.about(openingTitle, "Temporary files could not be made in " + installation.temp + "!");
        return OpenResult::noTemporaryFile;
    }
    const importing::UNPACKED unpacked = importing::copyAndUnpack(archive, folder->path(), user_);
    view_.statusChanged();
    if (!unpacked.good) return OpenResult::failed;
    const common::PATHPARTS parts = common::splitPath(archive);
    const PACKEDCHOICE choice =
        choosePacked(parts.baseName + parts.extension, folder->path(), unpacked.files);
    if (!choice.several.empty()) {
        user_.about(openingTitle, severalText(archive, choice.several, folder->path().size()));
        return OpenResult::failed;
    }
    std::error_code ignored; // what isn't there then is told by the opening
    if (!choice.rename.empty()) fs::rename(choice.rename, choice.path, ignored);
    if (choice.kind == FileKind::collection || choice.kind == FileKind::netCdf)
        return openUnpacked(choice.kind, choice.path, archive, std::move(folder));
    return openBeside(choice.kind, choice.path, parts.directory);
}

// Opens for reading only, and keeps the folder for as long.
OpenResult RSession::openTemporary(FileKind kind, const std::string& path,
                                   std::unique_ptr<RScratchFolder> folder)
{
    openingTemporary_ = true;
    const OpenResult result = openKind(kind, path);
    openingTemporary_ = false;
    if (result != OpenResult::ok) return result;
    unpacked_ = std::move(folder);
    collection.writable = false;
    return result;
}

OpenResult RSession::openUnpacked(FileKind kind, const std::string& path, const std::string& archive,
                                  std::unique_ptr<RScratchFolder> folder)
{
    const OpenResult result = openTemporary(kind, path, std::move(folder));
    if (result != OpenResult::ok) return result;
    std::error_code ignored; // nobody should lose what is written beside the collection
    fs::current_path(common::splitPath(archive).directory, ignored);
    view_.captionChanged(title + " - " + archive);
    addRecentFile(settings.recentFiles, archive);
    view_.recentFilesChanged();
    view_.statusChanged();
    user_.about("Opening Collection ...", "Collection " + archive +
                                              " was unpacked for this session only!\n\nData may not be "
                                              "modified! Copy the collection to keep it.");
    return result;
}

// What is imported may make a collection, which belongs beside the archive.
OpenResult RSession::openBeside(FileKind kind, const std::string& path, const std::string& directory)
{
    newDirectory_ = directory;
    const OpenResult result = openKind(kind, path);
    newDirectory_.clear();
    return result;
}

} // namespace app
