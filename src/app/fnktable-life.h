#pragma once
// Creates and destroys the global records pGTable and pMainW.

/// Creates both records and loads the settings and associations. 0, or -65533 if the folder pictures
/// cannot be created. In that case TerminateGlobalTable writes no settings.
int InitGlobalTable();

/// Writes the settings file, including the window's geometry, or says on standard error that it cannot.
/// Frees both records and sets their pointers to null. Harmless when called again.
void TerminateGlobalTable();

/// Follows the geometry of the main window, so that it can be saved when there is no display to ask.
void WatchMainWindow();

/// Saves the settings and ends the process without a call to the X server, which is gone.
[[noreturn]] void LeaveLostDisplay();

/// Saves the settings and ends the program, also while a dialog or a command runs.
void CloseMainWindow();

/// Ends the process. Threads that a disk keeps may still run then.
[[noreturn]] void LeaveProgram();
