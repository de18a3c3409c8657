#pragma once
// Runs commands, and all else that may wait for a disk, in threads of their own. Until such a run has
// ended or the user has left it, nothing but its dialog takes input, and no second run starts.
//
// The work gets a copy of the settings in pGTable and must own all that it uses: once it is left, it
// goes on alone until the call that hangs returns. Its questions are answered in the window's thread.

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "core/fnkutil.h"
#include "engine/fnkmessage.h"

enum RunEnd {
    RUN_DONE,  ///< The work has ended, and its changes are on the disk.
    RUN_LEFT,  ///< The user has left it, or it could not start. Its results must not be looked at.
};

/// Runs a command over the paths in items, of which directories end in "/". Counts its steps first,
/// and shows them in a dialog unless the settings say otherwise.
RunEnd RunCommand(const std::vector<std::string>& items, OperationKind kind, std::function<void()> work);

/// Runs work without steps. After half a second a small dialog says that it waits for what.
RunEnd RunQuietly(const std::string& what, const std::function<void()>& work);

/// What work returns, or nothing if the user has left it.
template <typename Work>
auto WaitFor(const std::string& what, Work work) -> std::optional<decltype(work())>
{
    const auto result = std::make_shared<std::optional<decltype(work())>>();
    const RunEnd end = RunQuietly(what, [result, work = std::move(work)]() mutable { *result = work(); });
    return end == RUN_DONE ? *result : std::nullopt;
}

/// CheckFileExist, which may wait for a disk. PATH_LEFT if the user does not.
PathStatus WaitToCheckPath(std::string* path);

/// The callbacks that engine calls in such threads need.
EngineEvents CommandEvents();

/// Tells all runs to stop, and gives them 300 ms to remove what is not complete. False if some still
/// hang; the process must then leave by _exit.
bool StopRuns();

void DestroyProgressDlg();
void RaiseProgressDlg();
