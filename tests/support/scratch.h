#pragma once
// A directory of a test's own below TMPDIR, removed with everything in it when the test ends.

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

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
        MakeParents(name);
        std::ofstream stream(At(name), std::ios::binary);
        stream << contents;
        stream.close();
        Require(stream.good() && chmod(At(name).c_str(), mode) == 0, name);
        return At(name);
    }
    std::string Link(const std::string& name, const std::string& target) const
    {
        MakeParents(name);
        Require(symlink(target.c_str(), At(name).c_str()) == 0, name);
        return At(name);
    }
    /// kind is S_IFIFO or S_IFSOCK.
    std::string Node(const std::string& name, mode_t kind) const
    {
        MakeParents(name);
        Require(mknod(At(name).c_str(), kind | 0644, 0) == 0, name);
        return At(name);
    }
    void SetTimes(const std::string& name, std::time_t access, std::time_t modification) const
    {
        const struct timespec times[] = {{access, 0}, {modification, 0}};
        Require(utimensat(AT_FDCWD, At(name).c_str(), times, AT_SYMLINK_NOFOLLOW) == 0, name);
    }

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
    /// The entries of the directory in reading order, without "." and "..".
    std::vector<std::string> ReadingOrder(const std::string& name = "") const
    {
        DIR* const stream = opendir(At(name).c_str());
        Require(stream != nullptr, name);
        std::vector<std::string> names;
        while (const struct dirent* const entry = readdir(stream)) {
            if (const std::string found = entry->d_name; found != "." && found != "..") {
                names.push_back(found);
            }
        }
        closedir(stream);
        return names;
    }
    std::vector<std::string> Names(const std::string& name = "") const
    {
        std::vector<std::string> names = ReadingOrder(name);
        std::sort(names.begin(), names.end());
        return names;
    }

private:
    void MakeParents(const std::string& name) const
    {
        std::filesystem::create_directories(std::filesystem::path(At(name)).parent_path());
    }

    std::string path_;
};
