#pragma once
// The directory tree, filled one level at a time. Selecting a node of the main tree makes its
// directory the current one.

#include <gtk/gtk.h>

#include <string>

#include "panes/fnkdirtree-nodes.h"

/// Callbacks of the main tree. The main window sets them once at start.
struct DirTreeEvents {
    /// A directory other than CurrentDir was selected; path ends in "/".
    void (*Entered)(const std::string& path) = nullptr;
    /// CurrentDir was opened again.
    void (*Reopened)() = nullptr;
};
extern DirTreeEvents OnDirTree;

/// Builds the main tree in the first pane and sets CurrentDir to the initial directory. Null if the
/// root cannot be read.
GtkWidget* CreateDirTree(GtkWidget* paned);
/// Builds a tree rooted at RootDir in a new scrolled window. Null if the root cannot be read. The
/// entry of combo, if given, follows the selection.
GtkWidget* CreateRootTree(GtkWidget** scroll, GtkWidget* combo);

/// Stores the selected node and its path. Both pointers may be null. False if nothing is selected.
bool GetTreeSelect(GtkTreeView* tree, GtkTreeIter* node, std::string* path);
/// Selects the node and scrolls to it. In the main tree, while the select signal is connected, also
/// enters the directory unless it is CurrentDir, even if the node was selected already.
void SetTreeSelectNode(GtkTreeView* tree, const GtkTreeIter& node);
void SetTreeSelectPath(GtkTreeView* tree, const std::string& path);

enum ExpandLast { EXPAND_LAST_NO = 0, EXPAND_LAST_YES = 1 };
/// Expands the tree along path and selects the deepest directory on it that exists. expand_last
/// says whether the directory of path itself is expanded too. Ignores a path outside RootDir.
void OpenChildTree(GtkTreeView* tree, const std::string& path, ExpandLast expand_last);
/// Reads the children of a directory again; its subdirectories end up collapsed. Keeps the selected
/// directory selected, or the deepest of its ancestors that is still displayed. Does not enter it.
void RescanTree(GtkTreeView* tree, const std::string& path);
/// Reads the whole main tree again, after a change of the settings. Expanded nodes stay expanded.
/// Opens CurrentDir again, or its deepest ancestor that is still shown.
void RebuildTree();

/// While connected, selecting a node of the main tree enters its directory. Calls need not be paired.
void ConnectTreeSelectSignal();
void DisconnectTreeSelectSignal();

/// MainW::DirTree; null if there is none.
GtkTreeView* MainTree();
