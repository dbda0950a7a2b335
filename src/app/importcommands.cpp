// Imports into the open collection.

#include <algorithm>

#include "app/session.h"
#include "common/files.h"

namespace app {
namespace {

constexpr std::string_view importTitle = "NVQ Data Import";
constexpr std::size_t dotsAtOnce = 100; // stations that are drawn together

const importing::FORMATROW& rowOf(importing::Format format)
{
    const auto& rows = importing::importFormats;
    return *std::find_if(rows.begin(), rows.end(),
                         [format](const importing::FORMATROW& row) { return row.format == format; });
}

// Collects what an import stores, for the map.
class RImportedDots {
public:
    explicit RImportedDots(RSessionView& view) : view_(view) {}
    void add(const collection::STATIONHDR& header)
    {
        dots_.push_back({0, 0, 0, header.longitude, header.latitude});
        if (dots_.size() < dotsAtOnce) return;
        view_.showImported(dots_);
        dots_.clear();
    }

private:
    RSessionView& view_;
    std::vector<selection::SELECTEDSTATION> dots_;
};

} // namespace

// The settings of a command file, the dialogs of a window, or nobody.
std::unique_ptr<importing::RImportSettler> RSession::makeSettler()
{
    if (runMode == commandFileRun)
        return std::make_unique<importing::RSettingsSettler>(importSettings, user_);
    return user_.interactive() ? view_.importSettler() : nullptr;
}

importing::IMPORTRESULT RSession::runImport(importing::Format format, const std::string& path,
                                            importing::IMPORTOPTIONS options)
{
    RImportedDots dots(view_);
    if (runMode == commandFileRun) {
        options.run.existing = importSettings.existing;
    } else if (user_.interactive() && state == stateReady && setup.map.exists) {
        options.run.stationStored = [&dots](const collection::STATIONHDR& header) { dots.add(header); };
    }
    return importing::importFile(format, collection, scratch_, path, options, user_);
}

OpenResult RSession::importIntoOpen(importing::Format format, const std::string& path,
                                    importing::ImportMode mode)
{
    if (!collection.writable) {
        user_.about(importTitle, collection::writeProtectedText);
        return OpenResult::failed;
    }
    const std::unique_ptr<importing::RImportSettler> settler = makeSettler();
    importing::IMPORTOPTIONS options;
    options.mode = mode;
    options.settler = settler.get();
    const importing::IMPORTRESULT result = runImport(format, path, std::move(options));
    for (auto& windows : ranged_) windows.reset(); // there are new values
    if (result.stationsStored > result.stationsAdded) {
        stationsChanged(); // one that grew went to the end, and the numbers behind its place moved up
    } else {
        listChanged();
    }
    return result.end == importing::ImportEnd::done ? OpenResult::ok : OpenResult::failed;
}

bool RSession::importFile(importing::Format format, const std::string& path, importing::ImportMode mode)
{
    std::string file = path;
    if (file.empty()) {
        const importing::FORMATROW& row = rowOf(format);
        file = view_.askFile({std::string(row.caption), std::string(row.filter),
                              importDirectory_.empty() ? collection.directory : importDirectory_});
    }
    if (file.empty()) return false;
    file = common::absolutePath(file);
    importDirectory_ = common::splitPath(file).directory;
    return importIntoOpen(format, file, mode) == OpenResult::ok;
}

} // namespace app
