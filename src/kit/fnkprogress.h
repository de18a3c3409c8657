#pragma once
// The progress dialog of a command.
//
// A command calls SetupProgress or SetupQuietRun first and EndProgress last. When an item returns
// RESULT_CANCEL, it also calls DestroyProgressDlg. During the run only the dialog and the message
// boxes above it take input. The other windows take none even when the settings hide the dialog.

#include <string>
#include <vector>

#include "engine/fnkmessage.h"

/// Starts a run over the paths in items and counts its steps. Paths of directories end in "/". Does
/// nothing if items is empty.
void SetupProgress(const std::vector<std::string>& items, OperationKind kind);

/// Starts a run without a dialog or steps, for a quick change.
void SetupQuietRun();

/// Implement the callbacks of the same names in EngineEvents.
int UpdateProgress();
bool KeepPainting();

/// Ends the run: fills the bar, closes the dialog and flushes the changes to the disk.
void EndProgress();
void DestroyProgressDlg();
void RaiseProgressDlg();
