#pragma once
// The command line, and the initial state that it sets.

#include <string>

struct CommandLine {
    bool is_version_requested = false;
    std::string root;   ///< Top of the tree, ending in "/"; never empty.
    std::string start;  ///< Directory to open first; not checked, may be empty.
};

/// Only the first argument can be an option, and abbreviations do not count. A root that is too long
/// to take a "/" is ignored.
CommandLine ParseCommandLine(int argc, char** argv);

/// Sets RootDir, and StartDir if the start is a directory inside RootDir.
void SetStartDirectories(const CommandLine& command_line);

/// Adds RootDir to LocationDirHistory and gives each of the other histories an entry if it is empty.
void SeedHistories();
