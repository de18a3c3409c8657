#pragma once
// Random trees, and random commands on them.

#include <unistd.h>

#include <cstdint>
#include <filesystem>
#include <random>

#include "answers.h"
#include "core/fnktable.h"
#include "disk.h"
#include "engine/fnkfiles-copy.h"
#include "engine/fnkfiles-delete.h"
#include "engine/fnkfiles-directory.h"

class Random {
public:
    explicit Random(std::uint64_t seed) : engine_(seed) {}
    std::size_t Below(std::size_t limit) { return engine_() % limit; }
    bool OneIn(std::size_t n) { return Below(n) == 0; }
    template <typename List>
    const auto& Pick(const List& list)
    {
        return *std::next(std::begin(list), static_cast<std::ptrdiff_t>(Below(std::size(list))));
    }

private:
    std::mt19937_64 engine_;
};

/// Few names, so that they clash often.
using Names = std::vector<std::string>;

inline Names RandomNames(Random& random)
{
    const Names all = {"a", "b", "c", "D", " ", "-rf", "%s%n", "x.bak~", ".h", "\xFF\n", "\xE3\x81\x82"};
    Names names;
    for (std::size_t count = 2 + random.Below(3); names.size() < count;) {
        names.push_back(random.Pick(all));
    }
    return names;
}

inline std::string RandomContent(Random& random, const std::string& mark)
{
    switch (random.Below(12)) {
    case 0:
        return "";
    case 1:
        return std::string(4096 * (1 + random.Below(6)), '\0') + mark;
    case 2:
        return mark + std::string(random.OneIn(4) ? 66'000 : random.Below(9000), 'x');
    default:
        return mark;
    }
}

/// Relative links stay inside the tree.
inline std::string RandomLink(Random& random, const std::string& top, const Names& names, bool is_at_top)
{
    const std::string links[] = {random.Pick(names),
                                 top + random.Pick(names) + "/" + random.Pick(names),
                                 ".",
                                 top.substr(0, top.size() - 1),
                                 "../" + random.Pick(names),
                                 ".."};
    return links[random.Below(is_at_top ? 4 : 6)];
}

inline Disk RandomDisk(Random& random, const std::string& top, const Names& names)
{
    constexpr mode_t kFileModes[] = {0644, 0600, 0755, 04755, 0444, 0666, 0};
    constexpr mode_t kDirectoryModes[] = {0755, 0700, 02775, 01777, 0555, 0311, 0644, 0};
    Disk disk;
    Names directories = {""};
    std::vector<Object> files;
    for (std::size_t left = 2 + random.Below(11); left > 0; --left) {
        const std::string directory = random.Pick(directories);
        const auto [entry, is_new] = disk.try_emplace(directory + random.Pick(names));
        Object& object = entry->second;
        if (!is_new) {
            continue;
        }
        object.owner = geteuid() == 0 && random.OneIn(4) ? 1000 : geteuid();
        const std::size_t kind = random.Below(20);
        if (kind >= 18 && !files.empty()) {
            object = random.Pick(files);
        } else if (kind < 8) {
            object.type = S_IFDIR;
            object.mode = random.OneIn(3) ? random.Pick(kDirectoryModes) : 0755;
            directories.push_back(entry->first + "/");
        } else if (kind < 15) {
            object.mode = random.Pick(kFileModes);
            object.inode = files.size() + 1;
            object.content = RandomContent(random, "content " + std::to_string(object.inode));
            files.push_back(object);
        } else if (kind < 17) {
            object.type = S_IFLNK;
            object.content = RandomLink(random, top, names, directory.empty());
        } else {
            object.type = S_IFIFO;
        }
    }
    return disk;
}

/// An existing path, sometimes reached through a link.
inline std::string RandomPath(Random& random, const std::string& top, const Names& names, const Disk& disk)
{
    if (disk.empty()) {
        return top + random.Pick(names);
    }
    const auto& [name, object] = random.Pick(disk);
    const std::string path = top + name + (object.IsLink() && random.OneIn(2) ? "/" + random.Pick(names) : "");
    std::error_code ignored;
    return path + (std::filesystem::is_directory(std::filesystem::symlink_status(path, ignored)) ? "/" : "");
}

enum CommandKind { COMMAND_COPY, COMMAND_MOVE, COMMAND_DELETE, COMMAND_MAKE };

/// A command on one item. The user agrees to everything.
struct Command {
    Command(Random& random, const std::string& top, const Names& names, const Disk& disk)
        : source(RandomPath(random, top, names, disk)),
          destination(random.OneIn(8) ? top : RandomPath(random, top, names, disk)),
          confirms(!random.OneIn(3))
    {
        const std::size_t choice = random.Below(10);
        kind = choice < 4 ? COMMAND_COPY : choice < 7 ? COMMAND_MOVE : choice < 9 ? COMMAND_DELETE : COMMAND_MAKE;
        if (random.OneIn(3)) {
            destination.erase(destination.rfind('/') + 1);
            destination += random.Pick(names) + (random.OneIn(6) ? "/" + random.Pick(names) : "");
        } else if (destination.ends_with('/') && destination != top && random.OneIn(2)) {
            destination.pop_back();
        }
        script.to_messages = {RESULT_OK};
        script.to_deletes = {RESULT_YES_ALL};
    }

    Result Run() const
    {
        answers = script;
        pGTable->ConfilmOverwrite = confirms ? 1 : 0;
        int flag = 0;
        Result answer = RESULT_CANCEL;
        Descriptor directory;
        switch (kind) {
        case COMMAND_COPY:
            return CopyFile(destination, source, &flag);
        case COMMAND_MOVE:
            return MoveFile(destination, source, &flag);
        case COMMAND_DELETE:
            return RemoveFile(source, &answer);
        default:
            return CreateDirectoryEx(destination.ends_with('/') ? destination : destination + "/", destination,
                                     LINK_ASK, &directory);
        }
    }

    std::string Describe() const
    {
        constexpr const char* kNames[] = {"copy ", "move ", "delete ", "make "};
        return kNames[kind] + Printable(source) + " to " + Printable(destination) +
               (confirms ? ", asking first\n" : "\n");
    }

    CommandKind kind;
    std::string source;
    std::string destination;
    bool confirms;
    Answers script;
};
