#include "engine/fnkfiles-sync.h"

#include <glib.h>
#include <unistd.h>

#include <chrono>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "engine/fnkmessage.h"

namespace {

/// Changes within this time share a sync(). Leaves 50 ms for waking up.
constexpr std::chrono::milliseconds kGather{200};
constexpr std::chrono::milliseconds kLookEvery{5};

class Syncer {
public:
    Syncer()
    {
        std::thread([this] { Work(); }).detach();
    }

    void Note()
    {
        const std::lock_guard lock(mutex_);
        ++noted_;
        wake_.notify_all();
    }

    void Flush()
    {
        std::unique_lock lock(mutex_);
        const unsigned long last = noted_;
        hurry_ = true;
        wake_.notify_all();
        while (written_ < last) {
            done_.wait_for(lock, kLookEvery);
            lock.unlock();
            OnEngine.KeepPainting();
            lock.lock();
        }
        hurry_ = false;
    }

private:
    void Work()
    {
        std::unique_lock lock(mutex_);
        for (;;) {
            wake_.wait(lock, [this] { return noted_ != written_; });
            wake_.wait_for(lock, kGather, [this] { return hurry_; });
            const unsigned long covered = noted_;
            lock.unlock();
            sync();
            lock.lock();
            written_ = covered;
            done_.notify_all();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::condition_variable done_;
    unsigned long noted_ = 0;    ///< Number of changes so far.
    unsigned long written_ = 0;  ///< How many of these are on the disk.
    bool hurry_ = false;         ///< Flush is waiting: call sync() at once.
};

Syncer& TheSyncer()
{
    // Never deleted; its thread runs until the process ends.
    static Syncer* const syncer = new Syncer;
    return *syncer;
}

}  // namespace

void NoteChange()
{
    TheSyncer().Note();
}

void FlushChanges()
{
    TheSyncer().Flush();
}
