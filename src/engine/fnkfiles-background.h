#pragma once
// Work that may take long, in a thread of its own, so that no window waits for a disk.

#include <atomic>
#include <functional>

/// Runs work, which must not touch the record or any window, and calls KeepPainting until it is
/// done. Once that is true, stop is set and work should end early; whether it did is its own
/// affair.
void RunInBackground(const std::function<void(const std::atomic<bool>& stop)>& work);
