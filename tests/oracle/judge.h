#pragma once
// What a command may do to a tree, whatever goes wrong.

#include <algorithm>
#include <filesystem>
#include <optional>

#include "command.h"
#include "core/fnkfiles-place.h"
#include "core/fnkutil.h"

/// What path has behind top, if it is top or below it.
inline std::optional<std::string> Rest(const std::string& path, const std::string& top)
{
    return path == top || path.starts_with(top + "/") ? std::optional(path.substr(top.size())) : std::nullopt;
}

/// The path below the top, with links to directories on the way to its last component resolved.
inline std::optional<std::string> Resolve(const std::string& path, const std::string& top)
{
    namespace fs = std::filesystem;
    std::error_code error;
    const fs::path plain = WithoutSlash(path);
    fs::path parent;
    for (const fs::path& name : plain.parent_path()) {
        parent /= name;
        if (fs::is_directory(parent, error)) {
            parent = fs::canonical(parent, error);
        }
        if (error && error != std::errc::no_such_file_or_directory && error != std::errc::not_a_directory) {
            return {};
        }
    }
    const std::string full = parent / plain.filename();
    return full.starts_with(top) ? std::optional(full.substr(top.size())) : std::nullopt;
}

inline bool IsUnchanged(const Object& old, const Object* now)
{
    return now != nullptr && now->type == old.type && now->content == old.content && now->inode == old.inode &&
           now->mode == old.mode && now->owner == old.owner;
}

/// Whether now is what a command makes of the source object.
inline bool IsNew(const Object* source, const Object* now, CommandKind kind, bool has_failed)
{
    if (source == nullptr || now == nullptr) {
        return false;
    }
    const bool is_empty_copy = kind == COMMAND_COPY && source->type == S_IFIFO;
    const bool drops_ids = kind == COMMAND_COPY && !source->IsDirectory() && now->owner != source->owner;
    const mode_t mode = source->mode & ~(drops_ids ? 06000U : 0U);
    return now->type == (is_empty_copy ? S_IFREG : source->type) && now->content == source->content &&
           (has_failed || source->IsLink() || now->mode == mode) &&
           (source->IsDirectory() || (now->inode == source->inode) == (kind == COMMAND_MOVE));
}

inline bool IsEmptyDirectory(const Disk& disk, const std::string& path)
{
    return std::none_of(disk.begin(), disk.end(),
                        [&](const auto& entry) { return entry.first.starts_with(path + "/"); });
}

/// Whether what was at a path of the target may be this now.
inline bool MayBecome(const Disk& before, const std::string& path, CommandKind kind, const Object* fresh,
                      const Object* now)
{
    const Object& old = before.at(path);
    if (kind == COMMAND_MAKE && !old.IsDirectory()) {
        return now == nullptr || now->IsDirectory();
    }
    if (now != nullptr) {
        return old.IsDirectory() && now->IsDirectory();
    }
    // It goes before the other comes: a file for a directory, or an empty directory for a file.
    return fresh != nullptr && fresh->IsDirectory() != old.IsDirectory() &&
           (!old.IsDirectory() || IsEmptyDirectory(before, path));
}

/// The objects that a command is about, told from the disk before it. Paths below the top, without
/// "/" at the end.
struct Reach {
    /// None when that cannot be told.
    static std::optional<Reach> Find(const Command& command, const std::string& top);
    bool HasSource() const { return kind != COMMAND_MAKE; }
    bool HasTarget() const { return kind != COMMAND_DELETE; }
    /// Whether one is inside the other.
    bool Overlaps() const { return HasSource() && HasTarget() && (Rest(source, target) || Rest(target, source)); }

    CommandKind kind;
    std::string source;  ///< Goes, is copied, or is deleted.
    std::string target;  ///< Where the source, or the new directory, is to be.
};

inline std::optional<Reach> Reach::Find(const Command& command, const std::string& top)
{
    Reach reach{command.kind, "", ""};
    const std::optional<std::string> source = Resolve(command.source, top);
    std::optional<std::string> target = Resolve(command.destination, top);
    if (command.destination == top) {
        target = "";
    }
    if ((reach.HasSource() && !source) || (reach.HasTarget() && !target)) {
        return {};
    }
    if (reach.HasSource()) {
        reach.source = *source;
    }
    if (reach.HasTarget()) {
        std::error_code ignored;
        const auto status = std::filesystem::symlink_status(top + *target, ignored);
        const bool is_into = reach.HasSource() && std::filesystem::is_directory(status);
        reach.target = is_into ? (target->empty() ? "" : *target + "/") + GetLastPath(command.source) : *target;
    }
    return reach;
}

/// What is wrong with the tree after the command; nothing when nothing is. Each object is the old
/// one or the new one, whole, and nothing else has changed. Where calls of the system failed,
/// modes may be wrong, and new directories still private.
inline std::string Judge(const Disk& before, const Disk& after, const Reach& reach, bool has_failed)
{
    std::string wrong;
    const auto complain = [&](const std::string& path, const std::string& what) {
        wrong += Printable(path) + " " + what + "\n";
    };
    for (const auto& [path, old] : before) {
        const Object* const now = FindObject(after, path);
        const auto below_source = reach.HasSource() ? Rest(path, reach.source) : std::nullopt;
        const auto below_target = reach.HasTarget() ? Rest(path, reach.target) : std::nullopt;
        if (IsUnchanged(old, now) || (below_source && below_target)) {
            continue;
        }
        if (below_target) {
            const Object* const fresh = FindObject(before, reach.source + *below_target);
            if (!IsNew(fresh, now, reach.kind, has_failed) && !MayBecome(before, path, reach.kind, fresh, now)) {
                complain(path, "is neither old nor new");
            }
        } else if (below_source && reach.kind == COMMAND_MOVE) {
            if (!IsNew(&old, FindObject(after, reach.target + *below_source), COMMAND_MOVE, has_failed)) {
                complain(path, "is lost");
            }
        } else if (below_source && reach.kind == COMMAND_DELETE ? now != nullptr
                                                                : old.IsDirectory() || !Rest(reach.target, path)) {
            complain(path, "is none of the command's");
        }
    }
    for (const auto& [path, now] : after) {
        if (before.contains(path) || reach.Overlaps()) {
            continue;
        }
        const auto below_target = reach.HasTarget() ? Rest(path, reach.target) : std::nullopt;
        const Object* const fresh = below_target && reach.HasSource() && reach.kind != COMMAND_DELETE
                                        ? FindObject(before, reach.source + *below_target)
                                        : nullptr;
        const bool is_on_the_way = reach.HasTarget() && now.IsDirectory() && Rest(reach.target, path);
        if (!IsNew(fresh, &now, reach.kind, has_failed) && !is_on_the_way) {
            complain(path, "should not be there");
        }
    }
    return wrong;
}
