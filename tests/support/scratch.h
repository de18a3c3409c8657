#pragma once
// A directory of a test's own below TMPDIR, removed with everything in it when the test ends.

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <system_error>
#include <vector>

/// Throws, which fails the test: what a test stands on must hold.
inline void Require(bool done, const std::string& what)
{
    if (!done) {
        throw std::system_error(errno, std::generic_category(), what);
    }
}

/// Names are relative to the directory; missing parents of what is made are made too. Each maker
/// returns the absolute path.
class ScratchDirectory {
public:
    ScratchDirectory()
    {
        umask(022);  // Whatever the caller's is.
        std::string pattern = std::filesystem::temp_directory_path() / "fennick-test.XXXXXX";
        Require(mkdtemp(pattern.data()) != nullptr, pattern);
        path_ = std::filesystem::canonical(pattern).string() + "/";
    }
    ScratchDirectory(const ScratchDirectory&) = delete;
    ScratchDirectory& operator=(const ScratchDirectory&) = delete;
    ~ScratchDirectory()
    {
        std::error_code ignored;
        std::filesystem::remove_all(path_, ignored);
    }

    /// Canonical, ending in "/".
    const std::string& Path() const { return path_; }
    std::string At(const std::string& name) const { return path_ + name; }

    std::string Directory(const std::string& name) const
    {
        std::filesystem::create_directories(At(name));
        return At(name);
    }
    std::string File(const std::string& name, const std::string& contents = "", mode_t mode = 0644) const
    {
        std::ofstream stream(Place(name), std::ios::binary);
        stream << contents;
        stream.close();
        Require(stream.good() && chmod(At(name).c_str(), mode) == 0, name);
        return At(name);
    }
    std::string Link(const std::string& name, const std::string& target) const
    {
        Require(symlink(target.c_str(), Place(name).c_str()) == 0, name);
        return At(name);
    }
    /// kind is S_IFIFO or S_IFSOCK.
    std::string Node(const std::string& name, mode_t kind) const
    {
        Require(mknod(Place(name).c_str(), kind | 0644, 0) == 0, name);
        return At(name);
    }
    void SetMode(const std::string& name, mode_t mode) const { Require(chmod(At(name).c_str(), mode) == 0, name); }
    void SetTimes(const std::string& name, std::time_t access, std::time_t modification) const
    {
        const struct timespec times[] = {{access, 0}, {modification, 0}};
        Require(utimensat(AT_FDCWD, At(name).c_str(), times, AT_SYMLINK_NOFOLLOW) == 0, name);
    }
    void Remove(const std::string& name) const { Require(std::filesystem::remove(At(name)), name); }

    std::string Contents(const std::string& name) const
    {
        std::ifstream stream(At(name), std::ios::binary);
        Require(stream.good(), name);
        return {std::istreambuf_iterator<char>(stream), {}};
    }
    struct stat Status(const std::string& name) const
    {
        struct stat st = {};
        Require(lstat(At(name).c_str(), &st) == 0, name);
        return st;
    }
    /// Entries of the directory as readdir gives them.
    std::vector<std::string> ReadingOrder(const std::string& name = "") const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(At(name))) {
            names.push_back(entry.path().filename());
        }
        return names;
    }
    std::vector<std::string> Names(const std::string& name = "") const
    {
        std::vector<std::string> names = ReadingOrder(name);
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    std::string Place(const std::string& name) const
    {
        std::filesystem::create_directories(std::filesystem::path(At(name)).parent_path());
        return At(name);
    }

    std::string path_;
};
