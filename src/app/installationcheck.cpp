#include "app/installationcheck.h"

#include <algorithm>
#include <cstdlib>
#include <filesystem>
#include <pwd.h>
#include <unistd.h>

#include "common/files.h"
#include "common/text.h"

namespace app {
namespace {

namespace fs = std::filesystem;

constexpr const char* problemTitle = "Installation problem...";

std::string variable(const char* name)
{
    const char* const value = std::getenv(name);
    return value ? value : "";
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

// A directory that somebody named must be one; silence is for those that the program thought of itself.
bool acceptRoot(const std::string& named, common::RUser& user)
{
    if (named.empty() || named == unknownHome) return false;
    const std::string root = withSlash(named);
    if (isRoot(root)) return true;
    user.about(problemTitle,
               "Bad Installation Directory!\n\nNVQ executable " + programOf(root) + " not found!");
    return false;
}

bool acceptTemp(const std::string& named, common::RUser& user)
{
    if (named.empty()) return false;
    if (common::directoryExists(named) && common::directoryIsWritable(named)) return true;
    user.about(problemTitle,
               "Bad temp Directory!\n\nNVQ temp directory " + named + " not found or read-only!");
    return false;
}

std::string findRoot(const ENVIRONMENT& environment, const SETUPSETTINGS& setup, common::RUser& user)
{
    for (const std::string& named : {environment.nvqmpHome, setup.home}) {
        if (acceptRoot(named, user)) return withSlash(common::absolutePath(named));
    }
    const std::vector<std::string> proposals = proposedRoots(environment);
    const auto good = std::find_if(proposals.begin(), proposals.end(), isRoot);
    if (good != proposals.end()) return *good;
    const std::string last = proposals.empty() ? "/" : proposals.front();
    user.about(problemTitle,
               "Bad Installation Directory!\n\nNVQ executable " + programOf(last) + " not found!");
    return {};
}

std::string findTemp(const ENVIRONMENT& environment, const SETUPSETTINGS& setup, common::RUser& user)
{
    for (const std::string& named :
         {environment.nvqmpTemp, setup.temp, environment.tmpDir, std::string("/tmp")}) {
        if (acceptTemp(named, user)) return withSlash(common::absolutePath(named));
    }
    return {};
}

const std::string& firstKnown(const std::string& a, const std::string& b, const std::string& c)
{
    return !a.empty() ? a : !b.empty() ? b : c;
}

void deriveDirectories(const std::string& root, common::INSTALLATION& installation)
{
    installation.root = dataRoot(root);
    installation.coast = installation.root + "coast/";
    installation.include = installation.root + "include/";
    installation.atmhist = installation.root + "atmhist/";
    installation.help = installation.root + "doc/";
    installation.userTree = installation.home + "nvq_local/";
    installation.palettes = installation.userTree + "palettes/";
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
    environment.tmpDir = variable("TMPDIR");
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

bool checkInstallation(const ENVIRONMENT& environment, const SETUPSETTINGS& setup,
                       common::INSTALLATION& installation, common::RUser& user)
{
    installation.home = withSlash(environment.home);
    installation.user = firstKnown(environment.nvqmpUser, setup.user, environment.userName);
    installation.host = firstKnown(environment.nvqmpHost, setup.host, environment.hostName);
    const std::string root = findRoot(environment, setup, user);
    if (!root.empty()) deriveDirectories(root, installation);
    installation.temp = findTemp(environment, setup, user);
    return !root.empty() && !installation.temp.empty();
}

void prepareUserTree(const common::INSTALLATION& installation, common::RUser& user)
{
    if (!common::directoryExists(installation.userTree)) createUserTree(installation, user);
    if (!holdsFile(installation.palettes, ".pal")) copyFolder(installation, "palettes");
    if (!holdsFile(installation.userTree + "macros/", ".mac")) copyFolder(installation, "macros");
}

} // namespace app
