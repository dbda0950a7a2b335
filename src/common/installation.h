#pragma once

#include <string>

namespace common {

// Where the program finds its data and may write. All directories end in "/".
struct INSTALLATION {
    std::string root;     // holds bin/ and the data folders beside it; empty until it was found
    std::string coast;    // layer sets "GlobHR/" and "GlobLR/", the gridded relief "Etopo.cdt"
    std::string palettes; // palettes in force: the user's own folder
    std::string include;  // the PostScript preamble "PSGraph.ps"
    std::string atmhist;  // atmospheric histories
    std::string macros;   // macro files: the user's own folder
    std::string support;  // optional packages, "gamma_n/" among them
    std::string help;     // user guide
    std::string guide;    // start page of the help, a file
    std::string home;     // the user's home directory
    std::string userTree; // the user's own tree, "nvq_local/" in the home directory
    std::string temp;     // temporary files
    std::string user;     // names for the log of a collection
    std::string host;
};

} // namespace common
