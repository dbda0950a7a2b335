#include "app/installationcheck.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <optional>
#include <pwd.h>
#include <unistd.h>

#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

namespace fs = std::filesystem;

constexpr const char* problemTitle = "Installation problem...";
constexpr const char* lastTemp = "/tmp"; // where the environment names no other

std::string variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
}

bool isSet(const char* name)
{
    return !variable(name).empty();
}

std::string systemUser()
{
    const passwd* const entry = ::getpwuid(::geteuid());
    return entry && entry->pw_name ? entry->pw_name : variable("USER");
}

std::string systemHost()
{
    char name[256] = "";
    if (::gethostname(name, sizeof name - 1) != 0) return "";
    return name;
}

std::string withSlash(std::string path)
{
    if (!path.empty() && path.back() != '/') path += '/';
    return path;
}

// The directory above the last "bin" of a program's path, empty if there is none.
std::string aboveBin(const std::string& program)
{
    std::string directory = common::splitPath(program).directory;
    const std::size_t at = directory.rfind("/bin/");
    return at == std::string::npos ? std::string() : directory.substr(0, at + 1);
}

// In a build tree the data stand in "installed" beside "bin".
std::string dataRoot(const std::string& root)
{
    const std::string installed = root + "installed/";
    const bool buildTree = !common::directoryExists(root + "coast") && common::directoryExists(installed);
    return buildTree ? installed : root;
}

bool isRoot(const std::string& root)
{
    return !root.empty() && common::fileExists(programOf(root));
}

void tellBadRoot(const std::string& root, common::RUser& user)
{
    user.about(problemTitle,
               "Bad Installation Directory!\n\nNVQ executable " + programOf(root) + " not found!");
}

// A directory that somebody named must be one; silence is for those that the program thought of itself.
bool acceptRoot(const std::string& named, common::RUser& user)
{
    if (named.empty() || named == unknownHome) return false;
    const std::string root = withSlash(named);
    if (!isRoot(root)) tellBadRoot(root, user);
    return isRoot(root);
}

bool acceptTemp(const std::string& named, common::RUser& user)
{
    if (named.empty()) return false;
    if (common::directoryExists(named) && common::directoryIsWritable(named)) return true;
    user.about(problemTitle,
               "Bad temp Directory!\n\nNVQ temp directory " + named + " not found or read-only!");
    return false;
}

const std::string& firstKnown(const std::string& a, const std::string& b, const std::string& c)
{
    return !a.empty() ? a : !b.empty() ? b : c;
}

struct FOUND {
    std::string root, temp; // with trailing "/", empty if there is none
    [[nodiscard]] bool complete() const { return !root.empty() && !temp.empty(); }
};

// The first good one of those that somebody named.
FOUND findNamed(const ENVIRONMENT& environment, const SETUPSETTINGS& setup, common::RUser& user)
{
    FOUND found;
    for (const std::string& named : {environment.nvqmpHome, setup.home}) {
        if (found.root.empty() && acceptRoot(named, user))
            found.root = withSlash(common::absolutePath(named));
    }
    for (const std::string& named : {environment.nvqmpTemp, setup.temp}) {
        if (found.temp.empty() && acceptTemp(named, user))
            found.temp = withSlash(common::absolutePath(named));
    }
    return found;
}

std::string findProposedRoot(const ENVIRONMENT& environment, common::RUser& user)
{
    const std::vector<std::string> proposals = proposedRoots(environment);
    const auto good = std::find_if(proposals.begin(), proposals.end(), isRoot);
    if (good != proposals.end()) return *good;
    tellBadRoot(proposals.empty() ? "/" : proposals.front(), user);
    return {};
}

std::string findSystemTemp(const ENVIRONMENT& environment, common::RUser& user)
{
    for (const std::string& directory : {environment.tmpDir, std::string(lastTemp)}) {
        if (acceptTemp(directory, user)) return withSlash(common::absolutePath(directory));
    }
    return {};
}

// What the dialog begins with: what is good, or at least likely.
SETUPSETTINGS proposalFor(const ENVIRONMENT& environment, const SETUPSETTINGS& setup, const FOUND& found)
{
    SETUPSETTINGS proposal;
    const std::vector<std::string> roots = proposedRoots(environment);
    const auto good = std::find_if(roots.begin(), roots.end(), isRoot);
    proposal.home = !found.root.empty()   ? found.root
                    : good != roots.end() ? *good
                    : roots.empty()       ? std::string()
                                          : roots.front();
    proposal.temp = found.temp;
    proposal.user = firstKnown(environment.nvqmpUser, setup.user, environment.userName);
    proposal.host = firstKnown(environment.nvqmpHost, setup.host, environment.hostName);
    return proposal;
}

// The directories of what was entered; what is wrong with them is told.
FOUND testEntered(const ENVIRONMENT& environment, const SETUPSETTINGS& entered, common::RUser& user)
{
    FOUND found;
    const std::string root = entered.home.empty() ? "" : withSlash(common::absolutePath(entered.home));
    if (isRoot(root))
        found.root = root;
    else
        tellBadRoot(root, user);
    const std::string temp = entered.temp.empty() ? systemTemp(environment) : entered.temp;
    if (acceptTemp(temp, user)) found.temp = withSlash(common::absolutePath(temp));
    return found;
}

// Asks until the answer is good or there is none; `setup` is the answer as it is to be kept. An empty
// temporary directory stays empty: the system's may be another one at the next start.
FOUND askForBoth(const ENVIRONMENT& environment, SETUPSETTINGS proposal, SETUPSETTINGS& setup,
                 common::RUser& user, const AskSetup& ask)
{
    while (const std::optional<SETUPSETTINGS> entered = ask(proposal)) {
        const FOUND found = testEntered(environment, *entered, user);
        if (found.complete()) {
            setup = *entered;
            setup.home = found.root;
            if (!setup.temp.empty()) setup.temp = found.temp;
            return found;
        }
        proposal = *entered;
    }
    return {};
}

// What was just entered counts, even where the environment says something else.
void nameUser(const ENVIRONMENT& environment, const SETUPSETTINGS& setup, bool entered,
              common::INSTALLATION& installation)
{
    const std::string noName;
    installation.user =
        firstKnown(entered ? noName : environment.nvqmpUser, setup.user, environment.userName);
    installation.host =
        firstKnown(entered ? noName : environment.nvqmpHost, setup.host, environment.hostName);
}

void deriveDirectories(const std::string& root, common::INSTALLATION& installation)
{
    installation.root = dataRoot(root);
    installation.coast = installation.root + "coast/";
    installation.include = installation.root + "include/";
    installation.atmhist = installation.root + "atmhist/";
    installation.support = installation.root + "support/";
    installation.help = installation.root + "doc/";
    installation.guide = installation.help + "nvqGuide.htm";
    installation.userTree = installation.home + "nvq_local/";
    installation.palettes = installation.userTree + "palettes/";
    installation.macros = installation.userTree + "macros/";
}

// Copies the files of a folder of the installation to the same place in the user's tree.
void copyFolder(const common::INSTALLATION& installation, const std::string& folder)
{
    std::error_code ignored;
    const fs::path source = installation.root + folder, target = installation.userTree + folder;
    if (!fs::is_directory(source, ignored)) return;
    fs::create_directories(target, ignored);
    for (fs::directory_iterator it(source, ignored), end; it != end; it.increment(ignored)) {
        if (it->is_regular_file(ignored))
            fs::copy_file(it->path(), target / it->path().filename(), fs::copy_options::skip_existing,
                          ignored);
        if (ignored) ignored.clear();
    }
}

bool holdsFile(const std::string& folder, std::string_view extension)
{
    std::error_code error;
    for (fs::directory_iterator it(folder, error), end; !error && it != end; it.increment(error)) {
        if (it->path().extension() == extension) return true;
    }
    return false;
}

void createUserTree(const common::INSTALLATION& installation, common::RUser& user)
{
    user.status("Copying files ...");
    std::error_code ignored;
    for (const char* const folder : {"data", "cmd_files"})
        fs::create_directories(installation.userTree + folder, ignored);
    for (const char* const folder : {"data/gazetteer", "data/gazetteer/CFGs", "data/SAVE", "data/SAVE/CFGs"})
        copyFolder(installation, folder);
}

} // namespace

ENVIRONMENT processEnvironment(const std::string& programPath, const std::string& executable)
{
    ENVIRONMENT environment;
    std::error_code ignored;
    environment.home = variable("HOME");
    environment.programPath = programPath;
    environment.executable = executable;
    environment.currentDirectory = fs::current_path(ignored).string();
    environment.nvqmpHome = variable("NVQMPHOME");
    environment.nvqmpTemp = variable("NVQMPTEMP");
    environment.nvqmpUser = variable("NVQMPUSER");
    environment.nvqmpHost = variable("NVQMPHOST");
    environment.tmpDir = isSet("TMPDIR") ? variable("TMPDIR") : variable("TEMP");
    environment.userName = systemUser();
    environment.hostName = systemHost();
    return environment;
}

std::vector<std::string> proposedRoots(const ENVIRONMENT& environment)
{
    std::vector<std::string> roots;
    for (const std::string& program : {environment.programPath, environment.executable}) {
        if (program.empty()) continue;
        const std::string whole = common::makeAbsolute(program, environment.currentDirectory);
        const std::string root = aboveBin(whole);
        if (!root.empty() && std::find(roots.begin(), roots.end(), root) == roots.end())
            roots.push_back(root);
    }
    return roots;
}

std::string programOf(const std::string& root)
{
    return root + "bin/nvqmp";
}

std::string systemTemp(const ENVIRONMENT& environment)
{
    return withSlash(environment.tmpDir.empty() ? lastTemp : environment.tmpDir);
}

InstallationResult checkInstallation(const ENVIRONMENT& environment, SETUPSETTINGS& setup,
                                     common::INSTALLATION& installation, common::RUser& user,
                                     const AskSetup& ask)
{
    installation.home = withSlash(environment.home);
    FOUND found = findNamed(environment, setup, user);
    const SETUPSETTINGS proposal = proposalFor(environment, setup, found);
    const bool noneNamed = environment.nvqmpTemp.empty() && setup.temp.empty();
    if (found.temp.empty() && (noneNamed || !ask)) found.temp = findSystemTemp(environment, user);
    if (found.root.empty() && !ask) found.root = findProposedRoot(environment, user);
    bool entered = false;
    if (ask && !found.complete()) {
        const FOUND answer = askForBoth(environment, proposal, setup, user, ask);
        entered = answer.complete();
        if (entered) found = answer;
    }
    nameUser(environment, setup, entered, installation);
    if (!found.root.empty()) deriveDirectories(found.root, installation);
    installation.temp = found.temp.empty() ? systemTemp(environment) : found.temp;
    if (!found.complete()) return InstallationResult::bad;
    return entered ? InstallationResult::entered : InstallationResult::good;
}

void prepareUserTree(const common::INSTALLATION& installation, common::RUser& user)
{
    if (!common::directoryExists(installation.userTree)) createUserTree(installation, user);
    if (!holdsFile(installation.palettes, ".pal")) copyFolder(installation, "palettes");
    if (!holdsFile(installation.userTree + "macros/", ".mac")) copyFolder(installation, "macros");
}

} // namespace app
