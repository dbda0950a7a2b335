// Operations on a collection as a whole, and an import that puts another one in its place.

#include <array>

#include "app/session.h"
#include "collection/collectionfiles.h"
#include "export/exportcollection.h"
#include "operations.h"

namespace reliability {
namespace {

using collection::FilesResult;

// The collection "target" beside the sample.
void makeBoth(const std::string& folder, std::string_view magic)
{
    makeSample(folder, "sample", magic);
    const auto casts = std::to_array<CAST>({{"Z", "1", 6, 90}, {"Z", "2", 30, 91}});
    makeCollection(folder, "target", magic, casts);
}

// Does it as the program does: the source closed, both locked.
OPERATION family(const std::string& name,
                 std::function<FilesResult(const std::string& source, const std::string& target)> run,
                 bool targetExists)
{
    OPERATION operation;
    operation.name = name;
    if (targetExists) operation.prepare = makeBoth;
    operation.collections = {"sample", "target"};
    operation.speaks = false;
    operation.closesFirst = true;
    operation.run = [run = std::move(run)](ROpenCollection& open) {
        open.collection.closeTemporaryFiles();
        open.collection.closeStationFiles();
        collection::RCollectionLock lock;
        if (!lock.acquire(open.folder + "target")) return false;
        const FilesResult result = run(open.folder + "sample", open.folder + "target");
        return result == FilesResult::ok || result == FilesResult::otherFiles;
    };
    return operation;
}

FilesResult removeSource(const std::string& source, const std::string&)
{
    return collection::deleteCollection(source, true, false);
}

// The copy is whole before the source goes.
OPERATION moveOntoACollection()
{
    OPERATION operation = family("MoveOntoACollection", collection::moveCollection, true);
    operation.halfway = [](const Contents& before, const Contents& after) {
        return Contents{{"sample", before.at("sample")}, {"target", after.at("target")}};
    };
    return operation;
}

// An import into a new collection of a name that is taken.
bool importAsNew(ROpenCollection& open)
{
    open.close();
    app::RSessionView view;
    app::RSession session(open.user, view);
    session.installation.temp = open.collection.tempDirectory;
    session.installation.user = "user";
    session.installation.host = "host";
    session.runMode = app::commandFileRun;
    session.importSettings.overwrite = true;
    const bool good = session.open(open.folder + "sample.txt") == app::OpenResult::ok;
    session.close(true);
    return good;
}

OPERATION importOverExisting()
{
    OPERATION operation;
    operation.name = "ImportInTheCollectionsPlace";
    const auto casts = std::to_array<CAST>({{"N", "1", 6, 95}, {"N", "2", 9, 96}, {"M", "3", 12, 97}});
    operation.inputs["sample.txt"] = spreadsheetOf(casts);
    operation.closesFirst = true;
    operation.run = importAsNew;
    return operation;
}

// Some stations and variables of the open collection become another one.
OPERATION exportTo(const std::string& name, bool targetExists)
{
    OPERATION operation;
    operation.name = name;
    if (targetExists) operation.prepare = makeBoth;
    operation.collections = {"sample", "target"};
    operation.onlyReads = true;
    operation.run = [](ROpenCollection& open) {
        open.select("[AB]*");
        return exporting::exportCollection(open.collection, open.station, open.folder + "target", {1, 3, 4},
                                           open.user);
    };
    return operation;
}

} // namespace

std::vector<OPERATION> familyOperations()
{
    return {
        family("CopyToANewPlace", collection::copyCollection, false),
        family("CopyOntoACollection", collection::copyCollection, true),
        family("MoveToANewPlace", collection::moveCollection, false),
        moveOntoACollection(),
        family("DeletionOfTheCollection", removeSource, false),
        importOverExisting(),
        exportTo("ExportToANewCollection", false),
        exportTo("ExportOntoACollection", true),
    };
}

} // namespace reliability
