#include "judge.h"

#include <algorithm>
#include <filesystem>

#include "core/fnkfiles-place.h"
#include "core/fnkutil.h"

namespace {

/// What path has behind top, if it is top or below it.
std::optional<std::string> Rest(const std::string& path, const std::string& top)
{
    return path == top || path.starts_with(top + "/") ? std::optional(path.substr(top.size())) : std::nullopt;
}

/// The path below the top, with links to directories on the way to its last component resolved.
std::optional<std::string> Resolve(const std::string& path, const std::string& top)
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

bool IsUnchanged(const Object& old, const Object* now)
{
    return now != nullptr && now->type == old.type && now->content == old.content && now->inode == old.inode &&
           now->mode == old.mode && now->owner == old.owner;
}

/// Whether now is what a command makes of the source object.
bool IsNew(const Object* source, const Object* now, CommandKind kind, bool has_failed)
{
    if (source == nullptr || now == nullptr) {
        return false;
    }
    const bool is_empty_copy = kind == COMMAND_COPY && source->type == S_IFIFO;
    return now->type == (is_empty_copy ? S_IFREG : source->type) && now->content == source->content &&
           (has_failed || source->IsLink() || now->mode == source->mode) &&
           (source->IsDirectory() || (now->inode == source->inode) == (kind == COMMAND_MOVE));
}

bool IsEmptyDirectory(const Disk& disk, const std::string& path)
{
    return std::none_of(disk.begin(), disk.end(),
                        [&](const auto& entry) { return entry.first.starts_with(path + "/"); });
}

/// Whether what was at a path of the target may be this now.
bool MayBecome(const Disk& before, const std::string& path, CommandKind kind, const Object* fresh, const Object* now)
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

}  // namespace

std::optional<Reach> Reach::Find(const Command& command, const std::string& top)
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

bool Reach::Overlaps() const
{
    return HasSource() && HasTarget() && (Rest(source, target) || Rest(target, source));
}

std::string Judge(const Disk& before, const Disk& after, const Reach& reach, bool has_failed)
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
            complain(path, "should not be there: " + Printable(Describe(now)));
        }
    }
    return wrong;
}

int CountSteps(const Disk& disk, const std::string& path)
{
    return static_cast<int>(std::count_if(disk.begin(), disk.end(), [&](const auto& entry) {
        return Rest(entry.first, path) && !entry.second.IsDirectory();
    }));
}

std::string JudgeSuccess(const Disk& before, const Disk& after, const Reach& reach, int steps)
{
    std::string wrong;
    if (reach.kind == COMMAND_MAKE) {
        const Object* const made = FindObject(after, reach.target);
        const bool is_made = reach.target.empty() || (made != nullptr && made->IsDirectory());
        return is_made ? "" : "No directory was made\n";
    }
    for (const auto& [path, old] : before) {
        const auto rest = Rest(path, reach.source);
        const Object* const now = rest ? FindObject(after, reach.target + *rest) : nullptr;
        if (rest && reach.HasTarget() && !IsNew(&old, now, reach.kind, false)) {
            wrong += Printable(path) + " has not arrived\n";
        }
    }
    if (reach.kind != COMMAND_COPY && after.contains(reach.source)) {
        wrong += "The source is still there\n";
    }
    const int expected = CountSteps(before, reach.source);
    if (reach.kind != COMMAND_MOVE && steps != expected) {
        wrong += std::to_string(steps) + " steps, should be " + std::to_string(expected) + "\n";
    }
    return wrong;
}
