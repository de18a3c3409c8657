#include "panes/fnkdirtree-walk.h"

TreePath TreeWalk::PathOf(GtkTreeIter node) const
{
    return TreePath(gtk_tree_model_get_path(model_, &node));
}

bool TreeWalk::HasChildren(GtkTreeIter node) const
{
    return gtk_tree_model_iter_has_child(model_, &node);
}

bool TreeWalk::IsExpanded(const GtkTreeIter& node) const
{
    return gtk_tree_view_row_expanded(tree_, PathOf(node).get());
}

OptionalNode TreeWalk::Root() const
{
    GtkTreeIter root;
    return gtk_tree_model_get_iter_first(model_, &root) ? OptionalNode(root) : std::nullopt;
}

OptionalNode TreeWalk::Parent(GtkTreeIter node) const
{
    GtkTreeIter parent;
    return gtk_tree_model_iter_parent(model_, &parent, &node) ? OptionalNode(parent) : std::nullopt;
}

GtkTreeIter TreeWalk::LastDisplayed(GtkTreeIter node) const
{
    while (IsExpanded(node)) {
        GtkTreeIter child;
        const int count = gtk_tree_model_iter_n_children(model_, &node);
        if (!gtk_tree_model_iter_nth_child(model_, &child, &node, count - 1)) {
            break;
        }
        node = child;
    }
    return node;
}

OptionalNode TreeWalk::Above(const GtkTreeIter& node) const
{
    GtkTreeIter sibling = node;
    return gtk_tree_model_iter_previous(model_, &sibling) ? LastDisplayed(sibling) : Parent(node);
}

OptionalNode TreeWalk::Below(const GtkTreeIter& node) const
{
    GtkTreeIter below = node;
    GtkTreeIter child;
    if (IsExpanded(node) && gtk_tree_model_iter_children(model_, &child, &below)) {
        return child;
    }
    for (OptionalNode ancestor = node; ancestor; ancestor = Parent(*ancestor)) {
        GtkTreeIter sibling = *ancestor;
        if (gtk_tree_model_iter_next(model_, &sibling)) {
            return sibling;
        }
    }
    return std::nullopt;
}

std::optional<TreeWalk::Page> TreeWalk::VisiblePage() const
{
    const TreePath first = GetFirstVisiblePath(tree_);
    if (first == nullptr) {
        return std::nullopt;
    }
    Page page = {};
    gtk_tree_model_get_iter(model_, &page.top, first.get());
    page.bottom = page.top;
    for (OptionalNode node = Below(page.top); node; node = Below(*node)) {
        if (GetRowVisibility(tree_, PathOf(*node).get()) != ROW_VISIBLE) {
            break;
        }
        page.bottom = *node;
        ++page.steps;
    }
    return page;
}
