#include "engine/fnkfiles-content.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <memory>

#include "engine/fnkmessage.h"

namespace {

constexpr off_t kBufferBytes = 64 << 10;
/// Limit of one copy_file_range call, so that Cancel is heard soon.
constexpr std::size_t kChunkBytes = 4 << 20;

class Copier {
public:
    Copier(int source, int target) : source_(source), target_(target) {}

    /// Copies st.st_size bytes, even if the file grows meanwhile. If that is 0, copies up to the end of
    /// the file. A file with fewer blocks than its size needs may have holes.
    ContentResult CopyAll(const struct stat& st)
    {
        constexpr off_t kBlockBytes = 512;
        if (st.st_size > 0 && st.st_blocks < st.st_size / kBlockBytes) {
            return CopyData(st.st_size);
        }
        return CopyRange(0, st.st_size);
    }
    int Error() const { return error_; }

private:
    ContentResult Fail(ContentResult result)
    {
        error_ = errno;
        return result;
    }

    /// Copies the data between the holes and extends the target to size, or to what is left of the
    /// source if it has shrunk.
    ContentResult CopyData(off_t size)
    {
        for (off_t position = 0; position < size;) {
            const off_t data = lseek(source_, position, SEEK_DATA);
            if (data < 0 && errno == ENXIO) {
                break;  // The rest is a hole.
            }
            const off_t hole = data < 0 ? -1 : lseek(source_, data, SEEK_HOLE);
            const bool has_data_range = hole > data && data >= position;
            const off_t end = has_data_range ? std::min(hole, size) : size;
            if (const ContentResult result = CopyRange(has_data_range ? data : position, end);
                result != CONTENT_COPIED) {
                return result;
            }
            position = end;
        }
        struct stat now = {};
        if (fstat(source_, &now) != 0) {
            return Fail(CONTENT_READ_FAILED);
        }
        return ftruncate(target_, std::min(size, now.st_size)) == 0 ? CONTENT_COPIED : Fail(CONTENT_WRITE_FAILED);
    }

    /// Copies from position to end, or to the end of the file if that comes first or end is 0.
    ContentResult CopyRange(off_t position, off_t end)
    {
        bool system_copies = end > kBufferBytes;
        while (end == 0 || position < end) {
            if (OnEngine.IsCancelled()) {
                return CONTENT_CANCELLED;
            }
            ssize_t count = 0;
            if (system_copies) {
                count = CopyChunk(position, end);
                if (count < 0) {
                    return Fail(CONTENT_WRITE_FAILED);
                }
                system_copies = count > 0;
            }
            if (count == 0) {
                if (const ContentResult result = ReadAndWrite(position, end, &count); result != CONTENT_COPIED) {
                    return result;
                }
                if (count == 0) {
                    break;
                }
            }
            position += count;
            OnEngine.ShowBytes(position, end);
        }
        return CONTENT_COPIED;
    }

    /// The number of bytes copied. Negative, with errno, if the target has no room. 0 at the end of the
    /// source and after any other failure.
    ssize_t CopyChunk(off_t position, off_t end)
    {
        off_t from = position;
        off_t to = position;
        const std::size_t wanted = std::min(kChunkBytes, static_cast<std::size_t>(end - position));
        const ssize_t count = copy_file_range(source_, &from, target_, &to, wanted, 0);
        // After another failure, ReadAndWrite finds out which of the two files is at fault.
        return count >= 0 || errno == ENOSPC || errno == EDQUOT || errno == EFBIG ? count : 0;
    }

    ContentResult ReadAndWrite(off_t position, off_t end, ssize_t* count)
    {
        if (buffer_ == nullptr) {
            buffer_ = std::make_unique_for_overwrite<char[]>(kBufferBytes);
        }
        const off_t wanted = end == 0 ? kBufferBytes : std::min(kBufferBytes, end - position);
        do {
            *count = pread(source_, buffer_.get(), static_cast<std::size_t>(wanted), position);
        } while (*count < 0 && errno == EINTR);
        if (*count < 0) {
            return Fail(CONTENT_READ_FAILED);
        }
        for (ssize_t written = 0; written < *count;) {
            const ssize_t more = pwrite(target_, buffer_.get() + written, static_cast<std::size_t>(*count - written),
                                        position + written);
            if (more < 0 && errno != EINTR) {
                return Fail(CONTENT_WRITE_FAILED);
            }
            written += std::max<ssize_t>(more, 0);
        }
        return CONTENT_COPIED;
    }

    int source_;
    int target_;
    std::unique_ptr<char[]> buffer_;
    int error_ = 0;
};

}  // namespace

ContentResult CopyContent(int source, const struct stat& st, int target, int* error)
{
    Copier copier(source, target);
    const ContentResult result = copier.CopyAll(st);
    *error = copier.Error();
    return result;
}
