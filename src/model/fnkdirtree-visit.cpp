#include "model/fnkdirtree-visit.h"

#include <fcntl.h>
#include <linux/openat2.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <algorithm>
#include <string_view>

#include "core/fnkraii.h"
#include "core/fnktable.h"
#include "core/fnkthread.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "model/fnkfilelist-sort.h"

namespace {

/// Scans a directory, unless that has been done.
void Scan(const std::string& directory, VisitReading& reading, const std::atomic<bool>& stopped)
{
    if (reading.levels.contains(directory)) {
        return;
    }
    std::vector<Subdirectory> found;
    if (ScanNames(directory, found, stopped) == SCAN_DONE) {
        reading.levels.emplace(directory, std::move(found));
    } else if (directory == pGTable->RootDir) {
        reading.has_failed_root = true;
    }
}

/// Whether path is a directory below RootDir to which no link leads. One call in place of one for each
/// level, where the system can tell.
bool IsPlainPath(const std::string& path)
{
    const std::size_t root = pGTable->RootDir.size();
    if (path.size() <= root) {
        return false;
    }
    struct open_how how = {};
    how.flags = O_PATH | O_DIRECTORY | O_CLOEXEC;
    how.resolve = RESOLVE_NO_SYMLINKS | RESOLVE_BENEATH;
    const Descriptor top(open(pGTable->RootDir.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
    const Descriptor found(static_cast<int>(syscall(SYS_openat2, top.Get(), path.c_str() + root, &how, sizeof how)));
    return static_cast<bool>(found);
}

/// Finds the directories on path that exist, from RootDir down.
void FollowPath(const std::string& path, VisitReading& reading, const std::atomic<bool>& stopped)
{
    reading.way = {pGTable->RootDir};
    reading.is_target = true;
    const bool is_plain = IsPlainPath(path);
    const std::string target = WithSlash(path);
    std::size_t begin = std::min(pGTable->RootDir.size(), target.size());
    for (const char* slash = CharNext(target.c_str() + begin, '/'); slash != nullptr && !stopped;
         slash = CharNext(target.c_str() + begin, '/')) {
        const std::size_t end = static_cast<std::size_t>(slash - target.c_str());
        const std::string name = target.substr(begin, end - begin);
        const std::string next = reading.way.back() + name;
        begin = end + 1;
        if (name.empty()) {
            continue;  // Two slashes.
        }
        reading.is_target =
            !IsDotOrDotDot(name.c_str()) && next.size() < kMaxPathBytes && (is_plain || IsDirectory(next));
        if (!reading.is_target) {
            return;
        }
        reading.way.push_back(next + "/");
    }
}

bool IsBelowAny(const std::string& path, const std::vector<std::string>& directories)
{
    return std::any_of(directories.begin(), directories.end(), [&path](const std::string& directory) {
        return path.size() > directory.size() && path.starts_with(directory);
    });
}

/// Lists the directories on the way whose nodes are not displayed yet.
std::vector<std::string> ListUnscanned(const VisitPlan& plan, const VisitReading& reading)
{
    const auto has = [&reading](const std::set<std::string>& nodes, const std::string& directory) {
        return nodes.contains(directory) && !IsBelowAny(directory, reading.rescanned);
    };
    std::vector<std::string> unscanned;
    for (std::size_t i = 0; i < reading.way.size(); ++i) {
        const std::string& directory = reading.way[i];
        const bool is_last = i + 1 == reading.way.size();
        const bool is_left_collapsed = is_last && plan.expand_last == EXPAND_LAST_NO && reading.is_target && i != 0;
        if ((!is_left_collapsed && !has(plan.expanded, directory)) ||
            (!is_last && !has(plan.known, reading.way[i + 1]))) {
            unscanned.push_back(directory);
        }
    }
    return unscanned;
}

void ReadList(VisitReading& reading, const std::atomic<bool>& stopped)
{
    if (!reading.list.empty()) {
        reading.is_list_there = ReadFileRows(reading.list, reading.rows, reading.details, stopped);
        SortFileRows(reading.rows);
    }
}

/// The subdirectories of a directory whose rows have been read.
std::vector<Subdirectory> ListSubdirectories(const FileRows& rows, const std::string& directory)
{
    std::vector<Subdirectory> found;
    for (std::size_t i = 0; i < rows.Count(); ++i) {
        const std::string_view name = rows.Name(i);
        if (rows.Row(i).is_directory && !rows.IsParentRow(i) && directory.size() + name.size() < kMaxPathBytes) {
            found.push_back({std::string(name), std::nullopt});
        }
    }
    std::sort(found.begin(), found.end(), [](const auto& a, const auto& b) { return a.name < b.name; });
    return found;
}

bool ChooseOpened(const VisitPlan& plan, VisitReading& reading, const std::atomic<bool>& stopped)
{
    if (plan.only_existing) {
        while (reading.opened < plan.open.size() && !stopped && !IsDirectory(plan.open[reading.opened])) {
            ++reading.opened;
        }
    }
    return reading.opened < plan.open.size();
}

std::string ResolveTyped(const std::string& typed, VisitReading& reading)
{
    const std::string path = ResolveTypedPath(typed);
    struct stat st = {};
    reading.is_outside = path.empty();
    reading.is_missing = !reading.is_outside && lstat(path.c_str(), &st) != 0;
    return reading.is_outside ? pGTable->CurrentDir : path;
}

}  // namespace

void ReadVisit(const VisitPlan& plan, VisitReading& reading, const std::atomic<bool>& stopped)
{
    for (std::string directory : plan.rescan) {
        while (directory.size() > pGTable->RootDir.size() && !IsDirectory(directory) && !stopped) {
            directory = GetParentDirectory(directory);
        }
        Scan(directory, reading, stopped);
        reading.rescanned.push_back(directory);
    }
    for (const std::string& directory : plan.expand) {
        if (IsDirectory(directory)) {
            Scan(directory, reading, stopped);
        }
    }
    reading.list = plan.list;
    std::vector<std::string> unscanned;
    if (ChooseOpened(plan, reading, stopped)) {
        FollowPath(plan.is_typed ? ResolveTyped(plan.open.front(), reading) : plan.open[reading.opened], reading,
                   stopped);
        unscanned = ListUnscanned(plan, reading);
        reading.list = plan.has_list ? reading.way.back() : std::string();
    }
    const auto scan = [&] {
        for (const std::string& directory : unscanned) {
            if (directory != reading.list) {
                Scan(directory, reading, stopped);
            }
        }
    };
    pGTable->CurrentDir = reading.list;
    DoBoth([&] { ReadList(reading, stopped); }, scan);
    const bool wants_list = std::find(unscanned.begin(), unscanned.end(), reading.list) != unscanned.end();
    if (wants_list && reading.is_list_there) {
        reading.levels.emplace(reading.list, ListSubdirectories(reading.rows, reading.list));
    } else if (wants_list && reading.list == pGTable->RootDir) {
        reading.has_failed_root = true;
    }
    reading.looked_ahead = reading.levels;
}

void ReadVisitDetails(VisitReading& reading, const std::atomic<bool>& stopped)
{
    for (auto& [directory, found] : reading.looked_ahead) {
        LookAhead(directory, found, stopped);
    }
    if (!reading.list.empty()) {
        ReadRowDetails(reading.list, reading.details, stopped);
    }
}
