#pragma once
// Creating tree views and finding their rows, for lists and trees alike.

#include <gtk/gtk.h>

#include <memory>

/// Creates a tree view with an accessible name. It does not take the focus unless the caller allows
/// it, but a click takes the focus out of an entry, so that the keys act on the rows. The accessible
/// is not created before somebody asks for it: once it exists, the toolkit tells it of every change
/// to a row, which doubles the time to show a large directory.
GtkWidget* CreateTreeView(const char* accessible_name);

struct FreeTreePath {
    void operator()(GtkTreePath* path) const { gtk_tree_path_free(path); }
};
using TreePath = std::unique_ptr<GtkTreePath, FreeTreePath>;

enum RowVisibility { ROW_HIDDEN, ROW_PARTLY_VISIBLE, ROW_VISIBLE };
/// How much of a row's height is visible.
RowVisibility GetRowVisibility(GtkTreeView* view, GtkTreePath* path);

/// Scrolls so that the row is at the top (alignment 0.0) or bottom (1.0). Unlike the toolkit's own
/// function it does not wait for the main loop, so that fast key presses see the new position.
void ScrollRowTo(GtkTreeView* view, GtkTreePath* path, double alignment);
/// The first row that is at least partly visible, or null.
TreePath GetFirstVisiblePath(GtkTreeView* view);
/// Width in pixels of text in the widget's font.
int GetTextWidth(GtkWidget* widget, const char* text);

/// Keeps the cell's height the same in every row, whatever script its text is in. Views in
/// fixed-height mode rely on it, but still measure each row when it comes into view.
void FixRowHeight(GtkWidget* view, GtkCellRenderer* cell);
