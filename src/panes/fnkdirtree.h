#pragma once
// The directory tree: filled a level at a time, each node knowing only its name. Selecting a node
// of the main tree is how a directory becomes the current one.

#include <gtk/gtk.h>

#include <string>

#include "panes/fnkdirtree-nodes.h"

/// What the window above does when the main tree has something to tell; set once at start.
struct DirTreeEvents {
    /// Another directory was chosen; path ends in "/".
    void (*Entered)(const std::string& path) = nullptr;
    /// CurrentDir was opened again.
    void (*Reopened)() = nullptr;
};
extern DirTreeEvents OnDirTree;

/// Builds the main tree into the first pane and sets CurrentDir to where the program starts. Null
/// when the root cannot be read.
GtkWidget* CreateDirTree(GtkWidget* paned);
/// A tree rooted at RootDir, and the scrolled window around it. With a combo, which is not the
/// main window's, its entry follows the selection.
GtkWidget* CreateRootTree(GtkWidget** scroll, GtkWidget* combo);

/// The selected node, and its path where one is asked for.
bool GetTreeSelect(GtkTreeView* tree, GtkTreeIter* node, std::string* path);
/// Selects and shows the node, and acts on that even when it was selected before.
void SetTreeSelectNode(GtkTreeView* tree, const GtkTreeIter& node);
void SetTreeSelectPath(GtkTreeView* tree, const std::string& path);

enum ExpandLast { EXPAND_LAST_NO = 0, EXPAND_LAST_YES = 1 };
/// Expands the tree along path and selects the deepest directory on it that exists.
void OpenChildTree(GtkTreeView* tree, const std::string& path, ExpandLast expand_last);
/// Rebuilds the children of the node of path from the disk; those below it are collapsed. The
/// selection goes to the same directory, or the deepest one left on the way to it.
void RescanTree(GtkTreeView* tree, const std::string& path);
/// Reads all that the main tree shows anew, as the settings say now. What is expanded stays so;
/// CurrentDir is opened again, or the deepest directory on the way to it that is still shown.
void RebuildTree();

/// Whether selecting in the main tree changes the directory. Calls need not be paired.
void ConnectTreeSelectSignal();
void DisconnectTreeSelectSignal();

/// MainW::DirTree; null while there is none.
GtkTreeView* MainTree();
