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
/// Moves node to its child of that name. False, with node unchanged, if it has none.
bool FindChildNode(GtkTreeModel* model, GtkTreeIter* node, const std::string& name);

/// Reads the directory of node and adds the subdirectories that are missing below it. Each comes
/// with one of its own subdirectories, so that it can be expanded. Removes nothing.
ScanResult CreateChildtree(GtkTreeView* tree, GtkTreeIter* node);
void RemoveChildren(GtkTreeView* tree, GtkTreeIter* node);
/// Adds a single node. False if path is outside RootDir or its parent is not in the tree.
bool CreateTreeNode(GtkTreeView* tree, const std::string& path, GtkTreeIter* node);
/// The path in bytes, ending in "/".
std::string GetNodePath(GtkTreeView* tree, const GtkTreeIter& node);
/// Finds the node of an existing directory inside RootDir. Appends the final "/" if path lacks it.
bool GetPathNode(GtkTreeView* tree, std::string& path, GtkTreeIter* node);
