#include "disk.h"

#include <dirent.h>
#include <fcntl.h>
#include <limits.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>

#include "core/fnkraii.h"
#include "scratch.h"

namespace {

constexpr std::size_t kPage = 4096;

using Links = std::map<ino_t, NodePointer>;
using LinkPaths = std::map<NodePointer, std::string>;

/// Whole pages of zeros stay holes.
void WriteContent(const std::string& path, const std::string& content)
{
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
    Require(static_cast<bool>(file) && ftruncate(file.Get(), static_cast<off_t>(content.size())) == 0, path);
    for (std::size_t at = 0; at < content.size(); at += kPage) {
        const std::size_t size = std::min(kPage, content.size() - at);
        if (content.find_first_not_of('\0', at) < at + size) {
            Require(pwrite(file.Get(), content.data() + at, size, static_cast<off_t>(at)) == static_cast<ssize_t>(size),
                    path);
        }
    }
}

void MakeNode(const std::string& path, const NodePointer& node, LinkPaths& made)
{
    const auto [first, is_new] = made.try_emplace(node, path);
    if (!is_new) {
        Require(link(first->second.c_str(), path.c_str()) == 0, path);
        return;
    }
    if (node->IsLink()) {
        Require(symlink(node->content.c_str(), path.c_str()) == 0, path);
    } else if (node->IsDirectory()) {
        Require(mkdir(path.c_str(), 0700) == 0, path);
        for (const auto& [name, child] : node->entries) {
            MakeNode(path + "/" + name, child, made);
        }
    } else if (node->type == S_IFREG) {
        WriteContent(path, node->content);
    } else {
        Require(mknod(path.c_str(), node->type | 0600, 0) == 0, path);
    }
    Require(geteuid() != 0 || lchown(path.c_str(), node->owner, static_cast<gid_t>(-1)) == 0, path);
    Require(node->IsLink() || node->IsDirectory() || chmod(path.c_str(), node->mode) == 0, path);
    struct stat st = {};
    Require(lstat(path.c_str(), &st) == 0, path);
    node->inode = st.st_ino;
}

/// Last, as they may lock what is in the directories.
void SetDirectoryModes(const std::string& path, const NodePointer& directory)
{
    for (const auto& [name, node] : directory->entries) {
        if (node->IsDirectory()) {
            SetDirectoryModes(path + name + "/", node);
            Require(chmod((path + name).c_str(), node->mode) == 0, path);
        }
    }
}

/// Gives its owner all rights to an object for as long as this lives.
class Opened {
public:
    Opened(const std::string& path, const struct stat& st) : path_(path), mode_(st.st_mode & 07777)
    {
        is_changed_ = (mode_ & 0700) != 0700 && geteuid() != 0;
        Require(!is_changed_ || chmod(path.c_str(), mode_ | 0700) == 0, path);
    }
    Opened(const Opened&) = delete;
    Opened& operator=(const Opened&) = delete;
    ~Opened()
    {
        if (is_changed_) {
            chmod(path_.c_str(), mode_);
        }
    }

private:
    std::string path_;
    mode_t mode_;
    bool is_changed_;
};

std::vector<std::string> NamesIn(const std::string& path)
{
    std::vector<std::string> names;
    const DirectoryStream stream(opendir(path.c_str()));
    Require(stream != nullptr, path);
    while (const struct dirent* const entry = readdir(stream.get())) {
        const std::string name = entry->d_name;
        if (name != "." && name != "..") {
            names.push_back(name);
        }
    }
    return names;
}

std::string ReadContent(const std::string& path, const struct stat& st)
{
    std::string content(static_cast<std::size_t>(st.st_size), '\0');
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    Require(static_cast<bool>(file), path);
    Require(content.empty() || read(file.Get(), content.data(), content.size()) == st.st_size, path);
    return content;
}

NodePointer ReadNode(const std::string& path, Links& links)
{
    struct stat st = {};
    Require(lstat(path.c_str(), &st) == 0, path);
    NodePointer& node = links[st.st_ino];
    if (node != nullptr) {
        return node;
    }
    node = std::make_shared<Node>();
    node->type = st.st_mode & S_IFMT;
    node->mode = st.st_mode & 07777;
    node->owner = st.st_uid;
    node->inode = st.st_ino;
    const NodePointer result = node;
    if (result->IsLink()) {
        char text[PATH_MAX];
        const ssize_t length = readlink(path.c_str(), text, sizeof text);
        Require(length >= 0, path);
        result->content.assign(text, static_cast<std::size_t>(length));
    } else if (result->IsDirectory()) {
        const Opened opened(path, st);
        for (const std::string& name : NamesIn(path)) {
            result->entries[name] = ReadNode(path + "/" + name, links);
        }
    } else if (result->type == S_IFREG) {
        const Opened opened(path, st);
        result->content = ReadContent(path, st);
    }
    return result;
}

std::string TypeOf(const Node& node)
{
    const char* const type = node.IsDirectory()     ? "directory"
                             : node.IsLink()        ? "link"
                             : node.type == S_IFREG ? "file"
                             : node.type == S_IFIFO ? "pipe"
                                                    : "special";
    char mode[16];
    std::snprintf(mode, sizeof mode, " %o", static_cast<unsigned>(node.mode));
    return type + std::string(node.IsLink() ? "" : mode) + " of " + std::to_string(node.owner) + " " +
           Printable(node.content);
}

}  // namespace

void MakeOnDisk(const std::string& path, const NodePointer& directory)
{
    LinkPaths made;
    for (const auto& [name, node] : directory->entries) {
        MakeNode(path + name, node, made);
    }
    SetDirectoryModes(path, directory);
}

NodePointer ReadDisk(const std::string& path)
{
    Links links;
    return ReadNode(path.substr(0, path.size() - 1), links);
}

void EmptyOnDisk(const std::string& path)
{
    for (const std::string& name : NamesIn(path)) {
        const std::string inner = path + name;
        struct stat st = {};
        Require(lstat(inner.c_str(), &st) == 0, inner);
        if (S_ISDIR(st.st_mode)) {
            Require(chmod(inner.c_str(), 0700) == 0, inner);
            EmptyOnDisk(inner + "/");
        }
        Require(remove(inner.c_str()) == 0, inner);
    }
}

std::string Compare(const NodePointer& model, const NodePointer& disk, const std::string& path)
{
    if (model == nullptr || disk == nullptr) {
        return Printable(path) +
               (model == nullptr ? " should not be there: " + TypeOf(*disk) : " is missing: " + TypeOf(*model)) + "\n";
    }
    std::string differences;
    if (TypeOf(*model) != TypeOf(*disk) || model->content != disk->content) {
        differences += Printable(path) + " should be a " + TypeOf(*model) + ", is a " + TypeOf(*disk) + "\n";
    }
    if (model->inode == 0) {
        model->inode = disk->inode;
    } else if (model->inode != disk->inode && !path.empty()) {
        differences += Printable(path) + " is not the object that it was\n";
    }
    std::map<std::string, std::pair<NodePointer, NodePointer>> names;
    for (const auto& [name, node] : model->entries) {
        names[name].first = node;
    }
    for (const auto& [name, node] : disk->entries) {
        names[name].second = node;
    }
    for (const auto& [name, nodes] : names) {
        differences += Compare(nodes.first, nodes.second, path + "/" + name);
    }
    return differences;
}

std::string Describe(const NodePointer& directory, const std::string& path)
{
    std::string lines;
    for (const auto& [name, node] : directory->entries) {
        const std::string inner = path + "/" + name;
        lines += "  " + Printable(inner) + "  " + TypeOf(*node) + "  #" + std::to_string(node->inode) + "\n";
        lines += Describe(node, inner);
    }
    return lines;
}

std::string Printable(const std::string& text)
{
    constexpr std::size_t kLongest = 120;
    std::string shown;
    for (const char c : text.substr(0, kLongest)) {
        char escaped[8];
        std::snprintf(escaped, sizeof escaped, "\\%02X", static_cast<unsigned char>(c));
        shown += c > ' ' && c < 0x7F ? std::string(1, c) : escaped;
    }
    return shown + (text.size() > kLongest ? "... (" + std::to_string(text.size()) + ")" : "");
}
