#pragma once

// Where the program is installed, where it may keep temporary files, who the user is, and the user's own
// tree.

#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "app/settings.h"
#include "common/installation.h"
#include "common/user.h"

namespace app {

// What the check looks at outside the settings file. Empty texts: not known.
struct ENVIRONMENT {
    std::string home;        // the user's home directory
    std::string programPath; // the first argument of the process, as given
    std::string executable;  // the program's file as the system knows it
    std::string currentDirectory;
    std::string nvqmpHome, nvqmpTemp, nvqmpUser, nvqmpHost; // environment variables of these names
    std::string tmpDir;                                     // TMPDIR, else TEMP
    std::string userName, hostName;                         // from the system
};
[[nodiscard]] ENVIRONMENT processEnvironment(const std::string& programPath, const std::string& executable);

// Installation directories to try where neither the environment nor the settings name one: those above the
// "bin" of the program path and of the program's file. With trailing "/".
[[nodiscard]] std::vector<std::string> proposedRoots(const ENVIRONMENT& environment);

// The program's file of an installation directory.
[[nodiscard]] std::string programOf(const std::string& root);

// The system's temporary directory, with trailing "/".
[[nodiscard]] std::string systemTemp(const ENVIRONMENT& environment);

enum class InstallationResult : int {
    bad = 0,
    good = 1,
    entered = 2 // good by what the user entered
};

// Shows a proposal to the user and gives back what he made of it; nothing if he cancels.
using AskSetup = std::function<std::optional<SETUPSETTINGS>(const SETUPSETTINGS& proposal)>;

// Finds the directories. A directory that the environment or the settings name and that isn't one is told,
// and the next is tried. If none is good, `ask` gets a proposal, again and again until what it gives back
// passes the test or it gives nothing; `setup` is then what was entered. Without `ask` the program's own
// directory and the system's temporary one are taken silently. On `bad`, what was found is set.
[[nodiscard]] InstallationResult checkInstallation(const ENVIRONMENT& environment, SETUPSETTINGS& setup,
                                                   common::INSTALLATION& installation, common::RUser& user,
                                                   const AskSetup& ask);

// Makes the user's own tree, if there is none, from the installed one, and sees to its palettes and macros.
// No file is overwritten; what can't be copied is left out.
void prepareUserTree(const common::INSTALLATION& installation, common::RUser& user);

} // namespace app
