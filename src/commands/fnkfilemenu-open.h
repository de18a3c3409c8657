#pragma once
// Opening an entry of the file list.

#include <string>

#include "engine/fnkmessage.h"

/// Opens the entry at an absolute path, following symbolic links. Shows a directory, runs a program,
/// and opens any other file with its associated program or one that the user picks. Refuses what
/// lies outside RootDir with a message. Other failures are silent.
void ExecApplication(const std::string& path);

/// Asks whether to run the program, if ConfilmExec says so. Returns RESULT_OK if it may run.
Result ConfilmExec(const std::string& name);
