#pragma once
// Creating tree views and finding their rows, for lists and trees alike.

#include <gtk/gtk.h>

#include <memory>

/// Creates a tree view with an accessible name. The view takes the focus only if the caller allows it,
/// but a click on it takes the focus out of an entry, so that keys act on the rows. The view has no
/// accessible until assistive technology asks for one: the toolkit tells an accessible of every change
/// to a row, which doubles the time to show a large directory.
GtkWidget* CreateTreeView(const char* accessible_name);
/// Whether assistive technology, or else a mistake, has asked for the accessible of such a view.
bool HasAccessible(GtkTreeView* view);

struct FreeTreePath {
    void operator()(GtkTreePath* path) const { gtk_tree_path_free(path); }
};
using TreePath = std::unique_ptr<GtkTreePath, FreeTreePath>;

enum RowVisibility { ROW_HIDDEN, ROW_PARTLY_VISIBLE, ROW_VISIBLE };
/// How much of a row's height is visible.
RowVisibility GetRowVisibility(GtkTreeView* view, GtkTreePath* path);

/// Scrolls so that the row is at the top (alignment 0.0) or bottom (1.0). Unlike
/// gtk_tree_view_scroll_to_cell, takes effect at once, so that fast key presses see the new position.
void ScrollRowTo(GtkTreeView* view, GtkTreePath* path, double alignment);
/// Scrolls just far enough to show the row, and at once.
void ShowRow(GtkTreeView* view, GtkTreePath* path);
/// Tells screen readers that the keys are on this row now; they read the cell in the column. The toolkit
/// does so only for a view that has the focus. The rows must have the same height.
void AnnounceRow(GtkTreeView* view, GtkTreePath* path, int column);
/// The first row that is at least partly visible, or null.
TreePath GetFirstVisiblePath(GtkTreeView* view);
/// Width in pixels of text in the widget's font.
int GetTextWidth(GtkWidget* widget, const char* text);

/// Keeps the cell's height the same in every row, whatever script its text is in. Fixed-height mode
/// needs this: it assumes equal heights, but still measures each row that comes into view.
void FixRowHeight(GtkWidget* view, GtkCellRenderer* cell);
