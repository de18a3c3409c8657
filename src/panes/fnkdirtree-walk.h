#pragma once
// Walking a tree as it is displayed: what is collapsed is not there.

#include <gtk/gtk.h>

#include <optional>

#include "kit/fnkutil-view.h"

using OptionalNode = std::optional<GtkTreeIter>;

/// Valid as long as the tree and its model are.
class TreeWalk {
public:
    explicit TreeWalk(GtkTreeView* tree) : tree_(tree), model_(gtk_tree_view_get_model(tree)) {}

    TreePath PathOf(GtkTreeIter node) const;
    bool HasChildren(GtkTreeIter node) const;
    bool IsExpanded(const GtkTreeIter& node) const;

    OptionalNode Root() const;
    OptionalNode Parent(GtkTreeIter node) const;
    /// The last node displayed in the subtree of node.
    GtkTreeIter LastDisplayed(GtkTreeIter node) const;
    /// The node displayed above; none above the root.
    OptionalNode Above(const GtkTreeIter& node) const;
    /// The node displayed below; none below the last.
    OptionalNode Below(const GtkTreeIter& node) const;

    struct Page {
        GtkTreeIter top;     ///< First node that is at least partly visible.
        GtkTreeIter bottom;  ///< Last one that is fully visible.
        int steps;           ///< From one to the other.
    };
    /// Nothing before the tree is on the screen.
    std::optional<Page> VisiblePage() const;

private:
    GtkTreeView* tree_;
    GtkTreeModel* model_;
};
