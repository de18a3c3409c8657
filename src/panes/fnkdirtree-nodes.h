#pragma once
// The nodes of a tree. Each stores only its name, in bytes; the name of the root is the whole of
// RootDir. A path is the names from the root down.

#include <gtk/gtk.h>

#include <string>

#include "model/fnkdirtree-scan.h"

/// Model column of the name.
constexpr int kNodeNameColumn = 0;
/// Model column that tells directories from files, in models that hold both.
constexpr int kNodeDirectoryColumn = 1;

/// A store that holds just the root node. The caller owns it.
GtkTreeStore* CreateNodeStore();
std::string GetNodeName(GtkTreeModel* model, const GtkTreeIter& node);
/// Sets *node to its child of that name. If there is none, returns false and leaves *node alone.
bool FindChildNode(GtkTreeModel* model, GtkTreeIter* node, const std::string& name);

/// Adds the subdirectories in found, which is sorted, that node lacks. One that can be expanded, or of
/// which that is not known, gets a child so that the user can. Removes nothing else than such a child
/// without a name.
void CreateChildtree(GtkTreeView* tree, GtkTreeIter* node, const std::vector<Subdirectory>& found);
/// Lets the children of directory be expanded or not, as found says. Adds no children to directory. Of
/// more than a thousand, each gets its turn when ShowLateLookAhead is called for it.
void ShowLookAhead(GtkTreeView* tree, const std::string& directory, const std::vector<Subdirectory>& found);
/// To be called for nodes that are seen. Does nothing for nodes of other stores.
void ShowLateLookAhead(GtkTreeModel* model, const GtkTreeIter& node);
void RemoveChildren(GtkTreeView* tree, GtkTreeIter* node);
/// Adds a single node for path. False if path is outside RootDir or its parent is not in the tree.
bool CreateTreeNode(GtkTreeView* tree, const std::string& path, GtkTreeIter* node);
/// The path in bytes, ending in "/".
std::string GetNodePath(GtkTreeView* tree, const GtkTreeIter& node);
/// Finds the node of path. False if the tree has none. Appends the final "/" if path lacks it.
bool GetPathNode(GtkTreeView* tree, std::string& path, GtkTreeIter* node);
