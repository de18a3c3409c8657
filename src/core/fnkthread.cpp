#include "core/fnkthread.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

#include "core/fnktable.h"

namespace {

using Clock = std::chrono::steady_clock;

/// With fewer indices, a second thread takes longer to start than it saves.
constexpr std::size_t kFewIndices = 64;
/// Indices that a thread takes at a time when calls are fast.
constexpr std::size_t kPiece = 64;
constexpr std::chrono::milliseconds kSlowCall{1};
/// Threads that share slow calls, the one that asks included.
constexpr int kManyThreads = 16;
/// Helpers leave so many threads for others.
constexpr int kReserve = 8;

/// Outlives the threads that are left behind when the process exits.
struct Census {
    std::mutex mutex;
    std::condition_variable changed;
    int alive = 0;
};

Census& TheCensus()
{
    static Census& census = *new Census;
    return census;
}

bool Enrol(int limit)
{
    Census& census = TheCensus();
    const std::lock_guard lock(census.mutex);
    if (census.alive >= limit) {
        return false;
    }
    ++census.alive;
    return true;
}

void Strike()
{
    Census& census = TheCensus();
    const std::lock_guard lock(census.mutex);
    --census.alive;
    census.changed.notify_all();
}

struct Struck {
    ~Struck() { Strike(); }
};

/// Runs work in this thread and in as many helpers, or fewer if there are too many threads.
void Share(std::size_t helper_count, const std::function<void()>& work)
{
    std::atomic<bool> has_failed = false;
    const auto run = [&work, &has_failed] {
        try {
            work();
        } catch (...) {
            has_failed = true;
        }
    };
    std::vector<std::thread> helpers;
    helpers.reserve(helper_count);
    while (helpers.size() < helper_count && Enrol(kMaxThreads - kReserve)) {
        try {
            helpers.emplace_back([&run, table = pGTable] {
                const Struck struck;
                pGTable = table;
                run();
            });
        } catch (const std::system_error&) {
            Strike();
            break;
        }
    }
    run();
    for (std::thread& helper : helpers) {
        helper.join();
    }
    if (has_failed) {
        throw std::bad_alloc();  // Nothing else is thrown by what reads a disk.
    }
}

}  // namespace

int StartThread(std::function<void()> body)
{
    if (!Enrol(kMaxThreads)) {
        return EAGAIN;
    }
    try {
        std::thread([table = pGTable != nullptr ? std::make_unique<GTable>(*pGTable) : nullptr,
                     run = std::move(body)]() mutable {
            const Struck struck;
            pGTable = table.get();
            run();
            run = nullptr;  // What it owns goes before the thread counts as ended.
        }).detach();
        return 0;
    } catch (const std::system_error& failure) {
        Strike();
        return failure.code().value();
    } catch (const std::bad_alloc&) {
        Strike();
        return ENOMEM;
    }
}

bool AwaitThreads(std::chrono::milliseconds limit)
{
    Census& census = TheCensus();
    std::unique_lock lock(census.mutex);
    return census.changed.wait_for(lock, limit, [&census] { return census.alive == 0; });
}

void ForEachIndex(std::size_t count, const std::atomic<bool>& stopped, const std::function<void(std::size_t)>& task)
{
    std::atomic<std::size_t> next = 0;
    const auto take = [&](std::size_t piece) {
        while (!stopped) {
            const std::size_t begin = next.fetch_add(piece);
            if (begin >= count) {
                return;
            }
            for (std::size_t i = begin; i < std::min(begin + piece, count) && !stopped; ++i) {
                task(i);
            }
        }
    };
    const auto is_slow = [&] {
        const Clock::time_point start = Clock::now();
        if (const std::size_t first = next++; first < count && !stopped) {
            task(first);
        }
        return Clock::now() - start > kSlowCall;
    };
    const bool slow = is_slow();
    if (!slow && count < kFewIndices) {
        take(count);
        return;
    }
    const std::size_t piece = slow ? 1 : kPiece;
    const std::size_t wanted = std::min<std::size_t>(slow ? kManyThreads : 2, count) - 1;
    Share(wanted, [&take, piece] { take(piece); });
}

void DoBoth(const std::function<void()>& one, const std::function<void()>& other)
{
    std::atomic<int> next = 0;
    const auto take = [&] {
        for (int i = next++; i < 2; i = next++) {
            (i == 0 ? one : other)();
        }
    };
    Share(1, take);
}
