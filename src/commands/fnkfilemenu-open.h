#pragma once
// Opening an entry of the file list.

#include <string>

#include "engine/fnkmessage.h"

/// Opens what is at the absolute path, through symbolic links: shows a directory, runs a program,
/// and hands any other file to the program associated with it, or to one that the user chooses.
/// What lies outside RootDir is refused with a message; other failures are silent.
void ExecApplication(const std::string& path);

/// RESULT_OK when the program may be run: the user says so, or the settings ask no questions.
Result ConfilmExec(const std::string& name);
