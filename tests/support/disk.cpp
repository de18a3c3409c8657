#include "disk.h"

#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <vector>

#include "scratch.h"

namespace {

namespace fs = std::filesystem;

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
        struct stat st = {};
        Require(lstat(full.c_str(), &st) == 0, full);
        const bool is_locked = geteuid() != 0 && !S_ISLNK(st.st_mode) && (st.st_mode & 0700) != 0700 &&
                               chmod(full.c_str(), (st.st_mode & 07777) | 0700) == 0;
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
        if (is_locked) {
            chmod(full.c_str(), st.st_mode & 07777);
        }
    }
}

}  // namespace

void WriteDisk(const std::string& top, const Disk& disk)
{
    std::map<ino_t, std::string> files;
    for (const auto& [name, object] : disk) {
        const std::string path = top + name;
        fs::create_directories(fs::path(path).parent_path());
        const auto [first, is_new] = files.try_emplace(object.inode, path);
        if (object.inode != 0 && !is_new) {
            fs::create_hard_link(first->second, path);
            continue;
        }
        if (object.IsLink()) {
            fs::create_symlink(object.content, path);
        } else if (object.IsDirectory()) {
            fs::create_directory(path);
        } else if (object.type == S_IFREG) {
            const std::size_t hole = std::min(object.content.find_first_not_of('\0'), object.content.size());
            std::ofstream stream(path, std::ios::binary);
            stream.seekp(static_cast<std::streamoff>(hole)) << object.content.substr(hole);
            Require(stream.flush().good(), path);
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
