#pragma once
// What the lists and trees have in common: how they are made, and where their rows are.

#include <gtk/gtk.h>

#include <memory>

/// A tree view of that name for screen readers. Unless whoever makes it allows it the focus it never
/// has that, but a click on it takes the focus out of an entry: whoever clicks a row wants the keys
/// to act there. The name is given only when one asks for it: as soon as its accessible exists, the
/// toolkit tells it of every row that comes, goes or is selected, which doubles the time a large
/// directory takes.
GtkWidget* CreateTreeView(const char* accessible_name);

struct FreeTreePath {
    void operator()(GtkTreePath* path) const { gtk_tree_path_free(path); }
};
using TreePath = std::unique_ptr<GtkTreePath, FreeTreePath>;

enum RowVisibility { ROW_HIDDEN, ROW_PARTLY_VISIBLE, ROW_VISIBLE };
/// How much of the row's height the scrolled view shows.
RowVisibility GetRowVisibility(GtkTreeView* view, GtkTreePath* path);

/// Scrolls at once, so that the row sits at the top (0.0) or the bottom (1.0) of the view. The
/// toolkit's own way waits for its next turn; keys that come faster would still see the old page.
void ScrollRowTo(GtkTreeView* view, GtkTreePath* path, double alignment);
/// The first row that is at least partly visible; null when there is none.
TreePath GetFirstVisiblePath(GtkTreeView* view);
/// Width of the text as the widget would draw it; pixels.
int GetTextWidth(GtkWidget* widget, const char* text);

/// Gives the cell the same height in every row, whatever script its text is in: views with rows
/// of one height count on it, but measure rows singly as they come into view.
void KeepRowHeight(GtkWidget* view, GtkCellRenderer* cell);
