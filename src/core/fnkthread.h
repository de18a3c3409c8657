#pragma once
// Threads for what may wait for a disk. A thread whose call never returns cannot be stopped: it is left
// behind, so it must own all that it uses.

#include <atomic>
#include <chrono>
#include <cstddef>
#include <functional>

/// No more threads than this are alive at a time, those left behind included.
constexpr int kMaxThreads = 32;

/// Runs body in a thread, with a copy of the settings in pGTable. 0 or an errno: EAGAIN if there are
/// kMaxThreads already. body must not throw.
int StartThread(std::function<void()> body);

/// Waits until all threads have ended, no longer than limit. False if some still run.
bool AwaitThreads(std::chrono::milliseconds limit);

/// Calls task for all indices below count, in this thread and others, and returns once all calls have.
/// The first calls tell how many threads that takes. Begins no more calls once stopped is true. Throws
/// std::bad_alloc if a call throws.
void ForEachIndex(std::size_t count, const std::atomic<bool>& stopped, const std::function<void(std::size_t)>& task);
