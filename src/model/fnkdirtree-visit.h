#pragma once
// What a tree and a list must know of the disk to show a directory. Read in a thread, so that whoever
// shows it needs no disk.

#include <map>
#include <set>
#include <string>
#include <vector>

#include "model/fnkdirtree-scan.h"
#include "model/fnkfilelist-rows.h"

enum ExpandLast { EXPAND_LAST_NO = 0, EXPAND_LAST_YES = 1 };

/// What to read. All directories are inside RootDir and end in "/".
struct VisitPlan {
    /// Directories whose nodes get new children; in place of one that is gone, its nearest parent.
    std::vector<std::string> rescan;
    std::vector<std::string> expand;  ///< Directories to expand.
    /// Paths to open, as far as they exist: the first one; with only_existing, the first directory.
    std::vector<std::string> open;
    bool only_existing = false;
    bool is_typed = false;  ///< The path may have to be resolved; see ResolveTypedPath.
    ExpandLast expand_last = EXPAND_LAST_NO;
    /// What the tree has on the ways to these paths: displayed nodes, and those of them that are expanded.
    std::set<std::string> known;
    std::set<std::string> expanded;
    bool has_list = false;  ///< Whether to read the rows of the directory that is opened.
    std::string list;       ///< The directory whose rows to read if none is opened.
};

using Levels = std::map<std::string, std::vector<Subdirectory>>;

/// What was read.
struct VisitReading {
    Levels levels;                       ///< The subdirectories of each directory that was scanned.
    std::vector<std::string> rescanned;  ///< What VisitPlan::rescan came to.
    bool has_failed_root = false;        ///< RootDir was to be scanned, and cannot be read.
    std::size_t opened = 0;              ///< Index into VisitPlan::open.
    std::vector<std::string> way;        ///< From RootDir down to the directory to show; empty if none is opened.
    bool is_outside = false;             ///< A typed path leads out of RootDir; CurrentDir is opened instead.
    bool is_missing = false;             ///< Nothing is there at a typed path.
    bool is_target = false;              ///< Whether that is the path to open, not the deepest directory on it.
    std::string list;                    ///< The directory of the rows; empty for none.
    bool is_list_there = false;          ///< Whether it is a directory.
    FileRows rows;                       ///< Sorted.

    // These take a second step, and may be shown later.
    Levels looked_ahead;  ///< The same as levels, with each any_child.
    RowDetails details;
};

/// Both steps end early once stopped is true.
void ReadVisit(const VisitPlan& plan, VisitReading& reading, const std::atomic<bool>& stopped);
void ReadVisitDetails(VisitReading& reading, const std::atomic<bool>& stopped);
