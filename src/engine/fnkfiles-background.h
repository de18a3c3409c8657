#pragma once
// Runs slow work in a thread of its own, so that the windows stay responsive.

#include <atomic>
#include <functional>

/// Runs work in a thread and calls KeepPainting until work is done. work must not touch the global
/// records or any widget. Once the user cancels, stop becomes true and work should return early.
void RunInBackground(const std::function<void(const std::atomic<bool>& stop)>& work);
