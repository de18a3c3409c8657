#pragma once
// Opening an entry of the file list.

#include <functional>
#include <string>

#include "engine/fnkmessage.h"

/// Opens the entry at an absolute path, following symbolic links. Shows a directory, runs a program,
/// and opens any other file with its associated program or one that the user picks. Shows a message if
/// the entry lies outside RootDir; the status line tells other failures. Calls entered, unless it is null, once a
/// directory is shown.
void ExecApplication(const std::string& path, const std::function<void()>& entered);

/// Starts program, as ExecProcess does. The status line says so if it cannot be started.
void StartProgram(const std::string& program, const std::string& argument);

/// Asks whether to run the program, if the setting ConfilmExec says so. Returns RESULT_OK if the
/// program may run.
Result ConfilmExec(const std::string& name);
