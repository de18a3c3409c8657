#pragma once
// Threads for what may wait for a disk. A thread whose call never returns cannot be stopped: it is left
// behind, so it must own all that it uses.

#include <atomic>
#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <new>
#include <optional>
#include <utility>

/// No more threads than this are alive at a time, those left behind included.
constexpr int kMaxThreads = 32;

/// Runs body in a thread, with a copy of the settings, if there are any, in pGTable. 0 or an errno: EAGAIN if there are
/// kMaxThreads already. body must not throw.
int StartThread(std::function<void()> body);

/// Runs work in a thread. Nothing if it has not ended within limit, and then goes on alone, or if it
/// could not run.
template <typename Work>
auto TryFor(std::chrono::milliseconds limit, Work work) -> std::optional<decltype(work())>
{
    struct Attempt {
        std::mutex mutex;
        std::condition_variable changed;
        std::optional<decltype(work())> result;
        bool is_over = false;
    };
    const auto attempt = std::make_shared<Attempt>();
    const int error = StartThread([attempt, work = std::move(work)]() mutable {
        std::optional<decltype(work())> result;
        try {
            result = work();
        } catch (const std::bad_alloc&) {
            result.reset();
        }
        const std::lock_guard lock(attempt->mutex);
        attempt->result = std::move(result);
        attempt->is_over = true;
        attempt->changed.notify_all();
    });
    std::unique_lock lock(attempt->mutex);
    if (error == 0) {
        attempt->changed.wait_for(lock, limit, [&attempt] { return attempt->is_over; });
    }
    return std::move(attempt->result);
}

/// Waits until all threads have ended, no longer than limit. False if some still run.
bool AwaitThreads(std::chrono::milliseconds limit);

/// Runs both, at the same time if there are threads to be had, and returns once both have ended. Throws
/// std::bad_alloc if one of them throws.
void DoBoth(const std::function<void()>& one, const std::function<void()>& other);

/// Calls task for all indices below count, in this thread and others, and returns once all calls have.
/// The first call tells how many threads that takes. Begins no more calls once stopped is true. Throws
/// std::bad_alloc if a call throws.
void ForEachIndex(std::size_t count, const std::atomic<bool>& stopped, const std::function<void(std::size_t)>& task);
