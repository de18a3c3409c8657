#pragma once
// Walking the displayed rows of a tree: every node whose ancestors are all expanded.

#include <gtk/gtk.h>

#include <optional>

#include "kit/fnkutil-view.h"

using OptionalNode = std::optional<GtkTreeIter>;

/// Must not outlive the tree or its model.
class TreeWalk {
public:
    explicit TreeWalk(GtkTreeView* tree) : tree_(tree), model_(gtk_tree_view_get_model(tree)) {}

    TreePath PathOf(GtkTreeIter node) const;
    bool HasChildren(GtkTreeIter node) const;
    bool IsExpanded(const GtkTreeIter& node) const;

    OptionalNode Root() const;
    OptionalNode Parent(GtkTreeIter node) const;
    /// The last displayed node of the subtree, or node itself.
    GtkTreeIter LastDisplayed(GtkTreeIter node) const;
    /// The node one row up; none for the root.
    OptionalNode Above(const GtkTreeIter& node) const;
    /// The node one row down; none for the last one.
    OptionalNode Below(const GtkTreeIter& node) const;

    struct Page {
        GtkTreeIter top;     ///< First node that is at least partly visible.
        GtkTreeIter bottom;  ///< Last node that is fully visible.
        int steps;           ///< Rows from top to bottom.
    };
    /// Empty until the tree is on the screen.
    std::optional<Page> VisiblePage() const;

private:
    GtkTreeView* tree_;
    GtkTreeModel* model_;
};
