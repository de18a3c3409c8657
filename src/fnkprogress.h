#pragma once
// The course of a file operation. The engine reports through these declarations, which know no
// toolkit; the windows show a dialog, the engine's tests count along.
//
// A command calls SetupProgress or SetupQuietRun, the engine for each item, DestroyProgressDlg when an item returned
// RESULT_CANCEL, and EndProgress in every case. Between the first and the last nothing but the
// dialog, or boxes over it, takes input, whether the settings show a dialog or not.

#include <string>
#include <vector>

enum OperationKind { OPERATION_COPY = 2, OPERATION_MOVE = 3, OPERATION_DELETE = 4 };

/// Starts a run over the items, paths of which directories end in "/", and counts their steps.
void SetupProgress(const std::vector<std::string>& items, OperationKind kind);

/// Starts a run without a dialog and without steps, for a change that is done in a moment.
void SetupQuietRun();

/// Reports one step done. RESULT_CANCEL, once, when Cancel was pressed, else 0.
int UpdateProgress();

/// Lets the windows paint and take a press of Cancel; called at least every 50 ms during a long
/// step, it is cheap when called more often. True when Cancel was pressed.
bool KeepPainting();

/// Ends the run: a full bar, the dialog closes, and what was done is put on the disk.
void EndProgress();
void DestroyProgressDlg();
void RaiseProgressDlg();

/// How many steps an item is: the non-directories at or below path. Links are not followed, and a
/// directory that cannot be read has none. Calls KeepPainting as it goes; stops when that is true.
int CountOperationFile(const std::string& path);
