#include "disk.h"

#include <fcntl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "core/fnkraii.h"
#include "scratch.h"

namespace {

namespace fs = std::filesystem;

void WriteContent(const std::string& path, const std::string& content)
{
    constexpr std::size_t kPage = 4096;
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    Require(static_cast<bool>(file) && ftruncate(file.Get(), static_cast<off_t>(content.size())) == 0, path);
    for (std::size_t at = 0; at < content.size(); at += kPage) {
        const std::size_t size = std::min(kPage, content.size() - at);
        Require(content.find_first_not_of('\0', at) >= at + size ||
                    pwrite(file.Get(), content.data() + at, size, static_cast<off_t>(at)) == static_cast<ssize_t>(size),
                path);
    }
}

/// Gives the owner all rights to an object for a while, if they are missing.
class Unlocked {
public:
    explicit Unlocked(const std::string& path) : path_(path)
    {
        Require(lstat(path.c_str(), &status) == 0, path);
        is_changed_ = geteuid() != 0 && !S_ISLNK(status.st_mode) && (status.st_mode & 0700) != 0700 &&
                      chmod(path.c_str(), (status.st_mode & 07777) | 0700) == 0;
    }
    Unlocked(const Unlocked&) = delete;
    Unlocked& operator=(const Unlocked&) = delete;
    ~Unlocked()
    {
        if (is_changed_) {
            chmod(path_.c_str(), status.st_mode & 07777);
        }
    }

    struct stat status = {};

private:
    const std::string& path_;
    bool is_changed_ = false;
};

std::vector<std::string> NamesIn(const std::string& path)
{
    std::vector<std::string> names;
    for (const auto& entry : fs::directory_iterator(path, fs::directory_options::skip_permission_denied)) {
        names.push_back(entry.path().filename());
    }
    return names;
}

void ReadBelow(const std::string& top, const std::string& path, Disk& disk)
{
    for (const std::string& name : NamesIn(top + path)) {
        const std::string inner = path.empty() ? name : path + "/" + name;
        const std::string full = top + inner;
        const Unlocked unlocked(full);
        const struct stat& st = unlocked.status;
        Object& object = disk[inner];
        object = {st.st_mode & S_IFMT, st.st_mode & 07777, "", st.st_uid, st.st_ino};
        if (object.IsLink()) {
            object.content = fs::read_symlink(full);
        } else if (object.IsDirectory()) {
            ReadBelow(top, inner, disk);
        } else if (object.type == S_IFREG) {
            std::ifstream stream(full, std::ios::binary);
            object.content.assign(std::istreambuf_iterator<char>(stream), {});
        }
    }
}

}  // namespace

void WriteDisk(const std::string& top, const Disk& disk)
{
    std::map<ino_t, std::string> files;
    for (const auto& [name, object] : disk) {
        const std::string path = top + name;
        const auto [first, is_new] = files.try_emplace(object.inode, path);
        if (object.inode != 0 && !is_new) {
            fs::create_hard_link(first->second, path);
            continue;
        }
        if (object.IsLink()) {
            fs::create_symlink(object.content, path);
        } else if (object.IsDirectory()) {
            Require(mkdir(path.c_str(), 0700) == 0, path);
        } else if (object.type == S_IFREG) {
            WriteContent(path, object.content);
        } else {
            Require(mknod(path.c_str(), object.type | 0600, 0) == 0, path);
        }
        Require(geteuid() != 0 || lchown(path.c_str(), object.owner, static_cast<gid_t>(-1)) == 0, path);
    }
    // From the leaves up: a mode may lock what is in a directory.
    for (auto entry = disk.rbegin(); entry != disk.rend(); ++entry) {
        const std::string path = top + entry->first;
        Require(entry->second.IsLink() || chmod(path.c_str(), entry->second.mode) == 0, path);
    }
}

Disk ReadDisk(const std::string& top)
{
    Disk disk;
    ReadBelow(top, "", disk);
    return disk;
}

void EmptyDisk(const std::string& top)
{
    for (const std::string& name : NamesIn(top)) {
        const std::string path = top + name;
        if (fs::is_directory(fs::symlink_status(path))) {
            Require(chmod(path.c_str(), 0700) == 0, path);
            EmptyDisk(path + "/");
        }
        fs::remove(path);
    }
}

const Object* FindObject(const Disk& disk, const std::string& path)
{
    const auto found = disk.find(path);
    return found != disk.end() ? &found->second : nullptr;
}

std::string Describe(const Disk& disk)
{
    std::string lines;
    for (const auto& [path, object] : disk) {
        char facts[64];
        std::snprintf(facts, sizeof facts, "  %o of %u #%lu  ", object.type | object.mode, object.owner, object.inode);
        lines += "  " + Printable(path) + facts + Printable(object.content) + "\n";
    }
    return lines;
}

std::string Printable(const std::string& text)
{
    std::string shown;
    for (const char c : text.substr(0, 120)) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\%02X", static_cast<unsigned char>(c));
        shown += c >= ' ' && c < 0x7F ? std::string(1, c) : escaped;
    }
    return shown;
}
