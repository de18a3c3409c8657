#pragma once
// The progress dialog of a command.
//
// A command calls SetupProgress or SetupQuietRun first, DestroyProgressDlg when an item returns
// RESULT_CANCEL, and always EndProgress. In between, only the dialog and the message boxes above it
// take input, even when the settings hide the dialog.

#include <string>
#include <vector>

#include "engine/fnkmessage.h"

/// Starts a run over the paths in items and counts its steps. Paths of directories end in "/".
void SetupProgress(const std::vector<std::string>& items, OperationKind kind);

/// Starts a run without a dialog or steps, for a quick change.
void SetupQuietRun();

/// Callbacks for EngineEvents.
int UpdateProgress();
bool KeepPainting();

/// Ends the run: fills the bar, closes the dialog and flushes the changes to the disk.
void EndProgress();
void DestroyProgressDlg();
void RaiseProgressDlg();
