#pragma once
// The nodes of a tree: each knows its name, as bytes, and nothing else; paths are put together on
// the way to the root, whose name is the whole RootDir.

#include <gtk/gtk.h>

#include <string>

#include "model/fnkdirtree-scan.h"

/// The column of the store that holds the name.
constexpr int kNodeNameColumn = 0;
/// The column that says whether a node is a directory, in models that have files as well.
constexpr int kNodeDirectoryColumn = 1;

/// A store with the root node in it, its children not read. The caller owns it.
GtkTreeStore* CreateNodeStore();
std::string GetNodeName(GtkTreeModel* model, const GtkTreeIter& node);
/// Moves node to its child of that name; false when there is none.
bool FindChildNode(GtkTreeModel* model, GtkTreeIter* node, const std::string& name);

/// Adds the subdirectories that node lacks, with one early child each; nothing is removed.
ScanResult CreateChildtree(GtkTreeView* tree, GtkTreeIter* node);
void RemoveChildren(GtkTreeView* tree, GtkTreeIter* node);
/// Adds one node for a path whose parent is in the tree.
bool CreateTreeNode(GtkTreeView* tree, const std::string& path, GtkTreeIter* node);
/// Bytes, ending in "/".
std::string GetNodePath(GtkTreeView* tree, const GtkTreeIter& node);
/// Finds the node of an existing directory below RootDir; adds the "/" that path may lack.
bool GetPathNode(GtkTreeView* tree, std::string& path, GtkTreeIter* node);
