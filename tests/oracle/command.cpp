#include "command.h"

#include <unistd.h>

#include <filesystem>

#include "engine/fnkfiles-copy.h"
#include "engine/fnkfiles-delete.h"
#include "engine/fnkfiles-directory.h"
#include "core/fnktable.h"

namespace {

std::string RandomContent(Random& random, const std::string& mark)
{
    switch (random.Below(12)) {
    case 0:
        return "";
    case 1: {
        std::string holes(4096 * (1 + random.Below(6)) + random.Below(2) * 7, '\0');
        return holes.replace(random.Below(2) * (holes.size() - mark.size()), mark.size(), mark);
    }
    case 2:
        return mark + std::string(random.OneIn(4) ? 66'000 : random.Below(9000), 'x');
    default:
        return mark;
    }
}

/// A relative one does not lead out of the tree.
std::string RandomLink(Random& random, const std::string& top, const Names& names, bool is_at_top)
{
    const std::string links[] = {random.Pick(names),
                                 top + random.Pick(names) + "/" + random.Pick(names),
                                 ".",
                                 top.substr(0, top.size() - 1),
                                 "../" + random.Pick(names),
                                 ".."};
    return links[random.Below(is_at_top ? 4 : 6)];
}

}  // namespace

Names RandomNames(Random& random)
{
    const Names all = {"a", "b", "c", "D", " ", "-rf", "%s%n", "x.bak~", ".h", "\xFF\n", "\xE3\x81\x82"};
    Names names;
    for (std::size_t count = 2 + random.Below(3); names.size() < count;) {
        names.push_back(random.Pick(all));
    }
    return names;
}

Disk RandomDisk(Random& random, const std::string& top, const Names& names)
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

namespace {

/// Something that is there, sometimes by a way through a link.
std::string RandomPath(Random& random, const std::string& top, const Names& names, const Disk& disk)
{
    if (disk.empty()) {
        return top + random.Pick(names);
    }
    const auto& [name, object] = random.Pick(disk);
    std::string path = top + name;
    if (object.IsLink() && random.OneIn(2)) {
        path += "/" + random.Pick(names);
    }
    std::error_code ignored;
    return path + (std::filesystem::is_directory(std::filesystem::symlink_status(path, ignored)) ? "/" : "");
}

}  // namespace

Command::Command(Random& random, const std::string& top, const Names& names, const Disk& disk)
{
    constexpr CommandKind kKinds[] = {COMMAND_COPY, COMMAND_COPY, COMMAND_COPY,   COMMAND_COPY,   COMMAND_MOVE,
                                      COMMAND_MOVE, COMMAND_MOVE, COMMAND_DELETE, COMMAND_DELETE, COMMAND_MAKE};
    kind = random.Pick(kKinds);
    source = RandomPath(random, top, names, disk);
    destination = random.OneIn(8) ? top : RandomPath(random, top, names, disk);
    if (random.OneIn(3)) {
        destination.erase(destination.rfind('/') + 1);
        destination += random.Pick(names) + (random.OneIn(6) ? "/" + random.Pick(names) : "");
    } else if (destination.ends_with('/') && destination != top && random.OneIn(2)) {
        destination.pop_back();
    }
    confirms = !random.OneIn(3);
    agrees = random.OneIn(2);
    for (int i = 0; i < 12; ++i) {
        constexpr Result kDeletes[] = {RESULT_OK, RESULT_YES_ALL, RESULT_OK, RESULT_CANCEL, RESULT_ABORT};
        script.to_messages.push_back(agrees || !random.OneIn(4) ? RESULT_OK : RESULT_CANCEL);
        script.to_deletes.push_back(agrees ? RESULT_OK : random.Pick(kDeletes));
    }
    script.cancel_at_step = !agrees && random.OneIn(3) ? static_cast<int>(1 + random.Below(4)) : -1;
}

Result Command::Run() const
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
        return CreateDirectoryEx(destination.ends_with('/') ? destination : destination + "/", destination, LINK_ASK,
                                 &directory);
    }
}

std::string Command::Describe() const
{
    constexpr const char* kNames[] = {"copy ", "move ", "delete ", "make "};
    std::string line = kNames[kind] + (kind == COMMAND_MAKE ? "" : Printable(source)) +
                       (kind == COMMAND_DELETE ? "" : " to " + Printable(destination)) +
                       (confirms ? ", asking first; answers " : "; answers ");
    for (const auto& list : {script.to_messages, script.to_deletes}) {
        for (const Result answer : list) {
            line += std::to_string(answer & 0xF);
        }
        line += " ";
    }
    return line + ", cancelled at step " + std::to_string(script.cancel_at_step) + "\n";
}
