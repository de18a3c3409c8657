#include "engine/fnkfiles-sync.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>
#include <vector>

#include "core/fnkfiles-place.h"
#include "core/fnkraii.h"
#include "core/fnkutil.h"
#include "engine/fnkfiles-inside.h"

namespace {

/// Changes within this time share a flush. Leaves 50 ms for waking up.
constexpr std::chrono::milliseconds kGather{200};

/// A file system with changes.
struct Disk {
    dev_t device;
    Descriptor place;  ///< An open file or directory on it; none if nothing could be opened.
};

/// Flushes the file systems that a thread changes, in a thread of its own.
class Flusher {
public:
    Flusher() = default;
    Flusher(const Flusher&) = delete;
    Flusher& operator=(const Flusher&) = delete;
    ~Flusher() { Finish(); }

    void Expect(int directory, int file)
    {
        struct stat st = {};
        const bool is_known = fstat(directory, &st) == 0;
        const std::lock_guard lock(mutex_);
        if (is_known &&
            std::any_of(disks_.begin(), disks_.end(), [&](const Disk& disk) { return disk.device == st.st_dev; })) {
            return;
        }
        Descriptor place(openat(directory, ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC | O_NONBLOCK));
        if (!place && file >= 0) {
            place = Descriptor(fcntl(file, F_DUPFD_CLOEXEC, 0));
        }
        disks_.push_back({st.st_dev, std::move(place)});
    }

    void Note()
    {
        const std::lock_guard lock(mutex_);
        is_changed_ = true;
        wake_.notify_all();
        if (!thread_.joinable()) {
            try {
                thread_ = std::thread([this] { Work(); });
            } catch (const std::system_error&) {
                return;  // Finish flushes in its own thread.
            }
        }
    }

    std::optional<FlushFailure> Finish()
    {
        {
            const std::lock_guard lock(mutex_);
            is_finishing_ = true;
            wake_.notify_all();
        }
        if (thread_.joinable()) {
            thread_.join();
        }
        if (std::exchange(is_changed_, false)) {
            Flush(OpenPlaces());
        }
        return failure_;
    }

private:
    std::vector<int> OpenPlaces() const
    {
        std::vector<int> places;
        for (const Disk& disk : disks_) {
            places.push_back(disk.place ? disk.place.Get() : -1);
        }
        return places;
    }

    /// Keeps the first failure.
    void Flush(const std::vector<int>& places)
    {
        for (const int place : places) {
            if (place < 0) {
                sync();
            } else if (syncfs(place) != 0 && !failure_) {
                const int error = errno;
                failure_ = {FindMountPoint(place), error};
            }
        }
    }

    void Work()
    {
        std::unique_lock lock(mutex_);
        for (;;) {
            wake_.wait(lock, [this] { return is_changed_ || is_finishing_; });
            if (!is_changed_) {
                return;
            }
            wake_.wait_for(lock, kGather, [this] { return is_finishing_; });
            is_changed_ = false;
            const std::vector<int> places = OpenPlaces();
            lock.unlock();
            Flush(places);
            lock.lock();
        }
    }

    std::mutex mutex_;
    std::condition_variable wake_;
    std::thread thread_;
    std::vector<Disk> disks_;
    bool is_changed_ = false;
    bool is_finishing_ = false;
    std::optional<FlushFailure> failure_;  ///< The flushing thread's, until it is joined.
};

thread_local std::unique_ptr<Flusher> flusher;

Flusher& OwnFlusher()
{
    if (flusher == nullptr) {
        flusher = std::make_unique<Flusher>();
    }
    return *flusher;
}

}  // namespace

void ExpectChange(int directory, int file)
{
    OwnFlusher().Expect(directory, file);
}

void ExpectChangeOf(const std::string& path)
{
    const PathPlace place(path);
    if (place) {
        ExpectChange(place.Get().directory);
    }
}

void NoteChange()
{
    OwnFlusher().Note();
}

std::optional<FlushFailure> FlushChanges()
{
    if (flusher == nullptr) {
        return std::nullopt;
    }
    const std::optional<FlushFailure> failure = flusher->Finish();
    flusher.reset();
    return failure;
}
