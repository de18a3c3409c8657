#pragma once
// The command line, and the start values that follow from it.

#include <string>

struct CommandLine {
    bool is_version_requested = false;
    std::string root;   ///< Top of the tree, ending in "/"; never empty.
    std::string start;  ///< To open first: as typed, but absolute or beginning with "~"; or empty.
};

/// Only the first argument can be an option, spelled in full. The root is the home directory unless the
/// arguments name another; one that is not a directory, or too long for a final "/", is ignored.
CommandLine ParseCommandLine(int argc, char** argv);

/// Sets RootDir, and StartDir if the start is a directory inside RootDir.
void SetStartDirectories(const CommandLine& command_line);

/// Adds RootDir to LocationDirHistory, and a first entry to each of the other histories that is empty.
void SeedHistories();
