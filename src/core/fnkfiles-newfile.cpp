#include "core/fnkfiles-newfile.h"

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdlib>
#include <random>
#include <utility>
#include <vector>

#include "core/fnkfiles-place.h"

namespace {

struct NamedTemporary {
    int directory = -1;
    std::string name;
};
/// The temporary files that exist now, the newest last. There can be two: if a signal quits the
/// program during a copy, writing the settings file needs a second one.
std::vector<NamedTemporary> temporaries;

/// Drops the newest entry, whose file is now renamed or deleted.
void ForgetTemporary()
{
    temporaries.pop_back();
}

/// Deletes the newest file and drops its entry.
void RemoveTemporary()
{
    unlinkat(temporaries.back().directory, temporaries.back().name.c_str(), 0);
    ForgetTemporary();
}

/// The exit handler. A signal can end the process inside a main loop that the engine runs. The stack
/// is not unwound then, so no destructor removes the files.
void RemoveTemporaries()
{
    while (!temporaries.empty()) {
        RemoveTemporary();
    }
}

void RegisterTemporary(int directory, const std::string& name)
{
    [[maybe_unused]] static const int registered = std::atexit(RemoveTemporaries);
    temporaries.push_back({directory, name});
}

/// Calls make with random names until it finds a free one, which it leaves in name. make returns
/// false and sets errno on failure. 0 or an errno.
template <typename Make>
int MakeTemporary(int directory, std::string& name, Make make)
{
    constexpr int kTries = 100;
    static std::minstd_rand random{std::random_device()()};
    for (int i = 0; i < kTries; ++i) {
        name = ".fennick-" + std::to_string(random());
        if (make(name.c_str())) {
            RegisterTemporary(directory, name);
            return 0;
        }
        if (errno != EEXIST) {
            break;
        }
    }
    name.clear();
    return errno;
}

/// Renames the newest temporary file, or removes it if that fails. 0 or an errno.
int RenameTemporary(int directory, const std::string& from, const std::string& name)
{
    if (renameat(directory, from.c_str(), directory, name.c_str()) != 0) {
        const int error = errno;
        RemoveTemporary();
        return error;
    }
    ForgetTemporary();
    return 0;
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
    error_ = MakeTemporary(directory, temporary_, [this](const char* name) {
        file_ = Descriptor(openat(directory_, name, O_CREAT | O_EXCL | O_WRONLY | O_NOFOLLOW | O_CLOEXEC, kWriterOnly));
        return static_cast<bool>(file_);
    });
}

NewFile::~NewFile()
{
    if (!temporary_.empty()) {
        RemoveTemporary();
    }
}

int NewFile::Link(const std::string& name)
{
    const std::string unnamed = DescriptorPath(file_.Get());
    return linkat(AT_FDCWD, unnamed.c_str(), directory_, name.c_str(), AT_SYMLINK_FOLLOW) == 0 ? 0 : errno;
}

int NewFile::CommitAs(const std::string& name)
{
    if (temporary_.empty()) {
        return Link(name);
    }
    const int error = RenameIfFree({directory_, temporary_, temporary_}, {directory_, name, name});
    if (error == 0) {
        ForgetTemporary();
        temporary_.clear();
    }
    return error;
}

int NewFile::CommitOver(const std::string& name)
{
    if (temporary_.empty()) {
        const int error = MakeTemporary(directory_, temporary_, [this](const char* free_name) {
            const int linked = Link(free_name);
            errno = linked;
            return linked == 0;
        });
        if (error != 0) {
            return error;
        }
    }
    const std::string from = std::exchange(temporary_, {});
    return RenameTemporary(directory_, from, name);
}

int ReplaceByLink(int directory, const std::string& name, const std::string& text)
{
    std::string fresh;
    const int error = MakeTemporary(
        directory, fresh, [&](const char* free_name) { return symlinkat(text.c_str(), directory, free_name) == 0; });
    return error != 0 ? error : RenameTemporary(directory, fresh, name);
}
