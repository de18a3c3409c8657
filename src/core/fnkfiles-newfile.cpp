#include "core/fnkfiles-newfile.h"

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/xattr.h>
#include <unistd.h>

#include <cerrno>
#include <random>
#include <utility>
#include <vector>

#include "core/fnkfiles-place.h"

namespace {

constexpr const char* kPrefix = ".fennick-";
/// Marks a temporary file as ours, where the file system has extended attributes.
constexpr const char* kMark = "user.fennick.temporary";

/// Locks and marks a file that is about to have a temporary name. Locked first: what is marked and not
/// locked has lost its maker.
void MarkTemporary(int file)
{
    if (flock(file, LOCK_EX | LOCK_NB) == 0) {
        static_cast<void>(fsetxattr(file, kMark, "", 0, 0));
    }
}

bool IsStale(int file)
{
    struct stat st = {};
    return fstat(file, &st) == 0 && S_ISREG(st.st_mode) && st.st_uid == geteuid() &&
           fgetxattr(file, kMark, nullptr, 0) >= 0 && flock(file, LOCK_EX | LOCK_NB) == 0;
}

/// Removes what killed processes of this user have left in a directory.
void RemoveStaleTemporaries(int directory)
{
    const std::string itself = ".";
    std::vector<std::string> names;
    const DirectoryStream stream = OpenDirectory({directory, itself, itself});
    if (stream == nullptr || !ListEntries(stream.get(), names)) {
        return;
    }
    for (const std::string& name : names) {
        if (!name.starts_with(kPrefix)) {
            continue;
        }
        const Descriptor file(openat(directory, name.c_str(), O_RDONLY | O_NOFOLLOW | O_NONBLOCK | O_CLOEXEC));
        if (file && IsStale(file.Get())) {
            unlinkat(directory, name.c_str(), 0);
        }
    }
}

/// The same once for each directory in turn; a command mostly makes many files in one.
void TidyDirectory(int directory)
{
    static thread_local struct stat tidied = {};
    struct stat st = {};
    if (fstat(directory, &st) == 0 && !IsSameObject(st, tidied)) {
        tidied = st;
        RemoveStaleTemporaries(directory);
    }
}

/// Calls make with random names until it finds a free one, which it leaves in name. make returns
/// false and sets errno on failure. 0 or an errno.
template <typename Make>
int MakeTemporary(std::string& name, Make make)
{
    constexpr int kTries = 100;
    std::random_device random;
    for (int i = 0; i < kTries; ++i) {
        name = kPrefix + std::to_string(random());
        if (make(name.c_str())) {
            return 0;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    name.clear();
    return errno;
}

/// Renames a temporary file, or removes it if that fails. 0 or an errno.
int RenameTemporary(int directory, const std::string& from, const std::string& name)
{
    if (renameat(directory, from.c_str(), directory, name.c_str()) == 0) {
        return 0;
    }
    const int error = errno;
    unlinkat(directory, from.c_str(), 0);
    return error;
}

/// Linking an unnamed file to a name goes through /proc.
bool CanLinkUnnamedFiles()
{
    static const bool can = access("/proc/self/fd", X_OK) == 0;
    return can;
}

constexpr mode_t kWriterOnly = 0600;

}  // namespace

NewFile::NewFile(int directory) : directory_(directory)
{
    if (CanLinkUnnamedFiles()) {
        file_ = Descriptor(openat(directory, ".", O_TMPFILE | O_WRONLY | O_CLOEXEC, kWriterOnly));
        error_ = file_ ? 0 : errno;
        // These errors mean that the kernel or the file system has no unnamed files.
        if (error_ != EOPNOTSUPP && error_ != EISDIR && error_ != EINVAL && error_ != ENOENT) {
            return;
        }
    }
    TidyDirectory(directory);
    error_ = MakeTemporary(temporary_, [this](const char* name) {
        file_ = Descriptor(openat(directory_, name, O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW | O_CLOEXEC, kWriterOnly));
        return static_cast<bool>(file_);
    });
    if (file_) {
        MarkTemporary(file_.Get());
    }
}

NewFile::~NewFile()
{
    if (!temporary_.empty()) {
        unlinkat(directory_, temporary_.c_str(), 0);
    }
}

/// Network and FUSE file systems report a full quota when a descriptor is closed, and only then. 0 or an
/// errno.
int NewFile::CheckWritten() const
{
    const int copy = fcntl(file_.Get(), F_DUPFD_CLOEXEC, 0);
    return copy >= 0 && close(copy) == 0 ? 0 : errno;
}

int NewFile::Link(const std::string& name)
{
    const std::string unnamed = DescriptorPath(file_.Get());
    return linkat(AT_FDCWD, unnamed.c_str(), directory_, name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
}

int NewFile::CommitAs(const std::string& name)
{
    int error = CheckWritten();
    if (error != 0 || temporary_.empty()) {
        return error != 0 ? error : Link(name);
    }
    static_cast<void>(fremovexattr(file_.Get(), kMark));
    error = RenameIfFree({directory_, temporary_, temporary_}, {directory_, name, name});
    if (error == 0) {
        temporary_.clear();
    }
    return error;
}

int NewFile::Prepare()
{
    const int error = CheckWritten();
    if (error != 0 || !temporary_.empty()) {
        return error;
    }
    TidyDirectory(directory_);
    MarkTemporary(file_.Get());
    return MakeTemporary(temporary_, [this](const char* free_name) {
        const int linked = Link(free_name);
        errno = linked;
        return linked == 0;
    });
}

int NewFile::CommitOver(const std::string& name)
{
    static_cast<void>(fremovexattr(file_.Get(), kMark));
    const std::string from = std::exchange(temporary_, {});
    return RenameTemporary(directory_, from, name);
}

int ReplaceByLink(int directory, const std::string& name, const std::string& text, int (*check)())
{
    std::string fresh;
    int error =
        MakeTemporary(fresh, [&](const char* free_name) { return symlinkat(text.c_str(), directory, free_name) == 0; });
    if (error != 0) {
        return error;
    }
    error = check();
    if (error != 0) {
        unlinkat(directory, fresh.c_str(), 0);
        return error;
    }
    return RenameTemporary(directory, fresh, name);
}
