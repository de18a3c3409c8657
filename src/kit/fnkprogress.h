#pragma once
// The progress dialog of a command.
//
// A command calls SetupProgress or SetupQuietRun first, DestroyProgressDlg when an item returned
// RESULT_CANCEL, and EndProgress in every case. In between nothing but the dialog and boxes over it
// takes input, whether the settings show a dialog or not.

#include <string>
#include <vector>

#include "engine/fnkmessage.h"

/// Starts a run over the items, paths of which directories end in "/", and counts their steps.
void SetupProgress(const std::vector<std::string>& items, OperationKind kind);

/// Starts a run without a dialog and without steps, for a change that is done in a moment.
void SetupQuietRun();

/// What OnEngine says of them.
int UpdateProgress();
bool KeepPainting();

/// Ends the run: the bar fills, the dialog closes, and the changes go to the disk.
void EndProgress();
void DestroyProgressDlg();
void RaiseProgressDlg();
