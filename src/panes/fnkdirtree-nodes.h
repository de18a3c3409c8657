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

/// Reads the directory of node and adds the subdirectories that the tree lacks. Each gets one child
/// if it has a subdirectory, so that the user can expand it. Removes nothing.
ScanResult CreateChildtree(GtkTreeView* tree, GtkTreeIter* node);
void RemoveChildren(GtkTreeView* tree, GtkTreeIter* node);
/// Adds a single node for path. False if path is outside RootDir or its parent is not in the tree.
bool CreateTreeNode(GtkTreeView* tree, const std::string& path, GtkTreeIter* node);
/// The path in bytes, ending in "/".
std::string GetNodePath(GtkTreeView* tree, const GtkTreeIter& node);
/// Finds the node of path. False if the tree has none, or if path is not an existing directory inside
/// RootDir. Appends the final "/" if path lacks it.
bool GetPathNode(GtkTreeView* tree, std::string& path, GtkTreeIter* node);
