#pragma once
// From the command line to a record that knows where to start.

#include <string>

struct CommandLine {
    bool version = false;
    std::string root;   ///< Where the tree is rooted, ending in "/"; never empty.
    std::string start;  ///< Where it is to be opened, as it was typed; may be empty.
};

/// Only the first argument can be an option, and only as a whole. A path that leaves no room for
/// the "/" at its end counts as none.
CommandLine ParseCommandLine(int argc, char** argv);

/// Sets RootDir, and StartDir where the start is a directory inside it.
void TakeDirectories(const CommandLine& command_line);

/// The root becomes the newest place visited; histories that offer nothing get their first entry.
void SeedHistories();
