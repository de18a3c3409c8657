#pragma once
// The directory tree, filled one level at a time. Selecting a node of the main tree makes its
// directory the current one.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

#include "model/fnkdirtree-visit.h"
#include "panes/fnkdirtree-nodes.h"

/// Callbacks of the main tree. The main window sets them once at start.
struct DirTreeEvents {
    /// A directory other than CurrentDir was selected; path ends in "/".
    void (*Entered)(const std::string& path) = nullptr;
    /// CurrentDir was opened again.
    void (*Reopened)() = nullptr;
    /// RootDir cannot be read.
    void (*RootFailed)() = nullptr;
};
extern DirTreeEvents OnDirTree;

/// Builds the main tree in the first pane. It has only its root until a directory is opened.
GtkWidget* CreateDirTree(GtkWidget* paned);
/// Builds a tree of just RootDir in a new scrolled window. The entry of combo, if given, follows the
/// selection.
GtkWidget* CreateRootTree(GtkWidget** scroll, GtkWidget* combo);

/// Stores the selected node and its path. Both pointers may be null. False if nothing is selected.
bool GetTreeSelect(GtkTreeView* tree, GtkTreeIter* node, std::string* path);
/// Selects the node and scrolls to it. In the main tree, while the select signal is connected, also
/// enters the directory unless it is CurrentDir, even if the node was selected already.
void SetTreeSelectNode(GtkTreeView* tree, const GtkTreeIter& node);
void SetTreeSelectPath(GtkTreeView* tree, const std::string& path);

// These read directories, so they may return before anything has changed; see StartVisit.

/// What else opening a directory does.
struct Opening {
    std::vector<std::string> rescan = {};          ///< Directories to rescan before; see RescanTree.
    std::function<void(std::size_t)> before = {};  ///< Called before entering; says which path was opened.
    std::function<void()> after = {};              ///< Called once the directory is shown.
};

/// Expands the tree along path and selects the deepest directory on it that exists. expand_last
/// says whether the directory of path itself is expanded too. Ignores a path outside RootDir.
void OpenChildTree(GtkTreeView* tree, const std::string& path, ExpandLast expand_last, const Opening& opening = {});
/// Opens what the user typed, as far as it exists; see ResolveTypedPath. What leads out of RootDir opens
/// CurrentDir again. VisitReading says which of it was so.
void OpenTypedPath(GtkTreeView* tree, const std::string& typed, const Opening& opening = {});
/// Opens the first of these paths that is a directory. If none is, calls none, which may be null.
void OpenFirstDirectory(GtkTreeView* tree, const std::vector<std::string>& paths, ExpandLast expand_last,
                        const Opening& opening, const std::function<void()>& none);
/// Reads the children of a directory again; its subdirectories end up collapsed. Keeps the selected
/// directory selected, or the deepest of its ancestors that is still displayed. Does not enter it.
void RescanTree(GtkTreeView* tree, const std::string& path);
/// Reads the whole main tree again, after a change of the settings. Expanded nodes stay expanded.
/// Opens CurrentDir again, or its deepest ancestor that is still there.
void RebuildTree();

/// While connected, selecting a node of the main tree enters its directory. Calls need not be paired.
void ConnectTreeSelectSignal();
void DisconnectTreeSelectSignal();

/// MainW::DirTree; null if there is none.
GtkTreeView* MainTree();
