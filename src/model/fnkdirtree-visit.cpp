#include "model/fnkdirtree-visit.h"

#include <algorithm>

#include "core/fnktable.h"
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

/// Finds the directories on path that exist, from RootDir down.
void FollowPath(const std::string& path, VisitReading& reading, const std::atomic<bool>& stopped)
{
    reading.way = {pGTable->RootDir};
    reading.is_target = true;
    const std::string target = WithSlash(path);
    std::size_t begin = std::min(pGTable->RootDir.size(), target.size());
    for (const char* slash = CharNext(target.c_str() + begin, '/'); slash != nullptr && !stopped;
         slash = CharNext(target.c_str() + begin, '/')) {
        const std::size_t end = static_cast<std::size_t>(slash - target.c_str());
        const std::string next = reading.way.back() + target.substr(begin, end - begin);
        begin = end + 1;
        if (next == reading.way.back()) {
            continue;  // Two slashes.
        }
        reading.is_target = IsDirectory(next);
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

/// Scans the directories on the way whose nodes are not displayed yet.
void ScanWay(const VisitPlan& plan, VisitReading& reading, const std::atomic<bool>& stopped)
{
    const auto has = [&reading](const std::set<std::string>& nodes, const std::string& directory) {
        return nodes.contains(directory) && !IsBelowAny(directory, reading.rescanned);
    };
    for (std::size_t i = 0; i < reading.way.size(); ++i) {
        const std::string& directory = reading.way[i];
        const bool is_last = i + 1 == reading.way.size();
        const bool is_left_collapsed = is_last && plan.expand_last == EXPAND_LAST_NO && reading.is_target && i != 0;
        if ((!is_left_collapsed && !has(plan.expanded, directory)) ||
            (!is_last && !has(plan.known, reading.way[i + 1]))) {
            Scan(directory, reading, stopped);
        }
    }
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
    if (ChooseOpened(plan, reading, stopped)) {
        FollowPath(plan.open[reading.opened], reading, stopped);
        ScanWay(plan, reading, stopped);
        reading.list = plan.has_list ? reading.way.back() : std::string();
    }
    if (!reading.list.empty()) {
        pGTable->CurrentDir = reading.list;
        reading.is_list_there = ReadFileRows(reading.list, reading.rows, reading.details, stopped);
        SortFileRows(reading.rows);
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
