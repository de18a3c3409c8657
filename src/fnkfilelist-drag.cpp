#include "fnkfilelist-drag.h"

#include <utility>

#include "fnkdirtree.h"
#include "fnkdragdrop.h"
#include "fnkfilelist.h"
#include "fnktable.h"
#include "fnkutil-view.h"

namespace {

/// A plain press on one of several selected rows. It may start a drag of all of them, so that the
/// row is selected alone only when the button comes up again without one; -1 while there is none.
int held_row = -1;

/// The rows of the last two presses, -1 for one that the toolkit was told of. It knows of no double
/// click when the first of its presses was held.
int held_before = -1;
int held_last = -1;

int RowAt(GtkTreeView* list, const GdkEventButton* event)
{
    GtkTreePath* path = nullptr;
    if (event->window != gtk_tree_view_get_bin_window(list) ||
        !gtk_tree_view_get_path_at_pos(list, static_cast<int>(event->x), static_cast<int>(event->y), &path, nullptr,
                                       nullptr, nullptr)) {
        return -1;
    }
    const TreePath owner(path);
    return gtk_tree_path_get_indices(path)[0];
}

bool IsSelected(int row)
{
    const TreePath path(gtk_tree_path_new_from_indices(row, -1));
    return gtk_tree_selection_path_is_selected(gtk_tree_view_get_selection(MainList()), path.get());
}

void SelectOnly(int row)
{
    const ListSelectionBatch batch;
    UnselectAllListRows();
    SelectListRows(static_cast<std::size_t>(row), static_cast<std::size_t>(row));
}

gboolean on_FileList_hold_press(GtkWidget* widget, GdkEventButton* event, gpointer)
{
    held_row = -1;
    const int row = pGTable != nullptr ? RowAt(GTK_TREE_VIEW(widget), event) : -1;
    if (event->type == GDK_2BUTTON_PRESS && row >= 0 && row == held_before) {
        ActivateListRow(static_cast<std::size_t>(row));
        return TRUE;
    }
    constexpr guint kModifiers = GDK_SHIFT_MASK | GDK_CONTROL_MASK;
    const bool is_plain =
        event->type == GDK_BUTTON_PRESS && event->button == GDK_BUTTON_PRIMARY && (event->state & kModifiers) == 0;
    if (is_plain && row >= 0 && IsSelected(row) && CountListSelection() > 1) {
        held_row = row;
    }
    if (event->type == GDK_BUTTON_PRESS) {
        held_before = std::exchange(held_last, held_row);
    }
    return held_row >= 0;
}

gboolean on_FileList_release_held(GtkWidget*, GdkEventButton*, gpointer)
{
    const int row = held_row;
    held_row = -1;
    if (pGTable != nullptr && row >= 0 && row < static_cast<int>(ListRows().Count())) {
        SelectOnly(row);
    }
    return FALSE;
}

std::string PathOfListRow(GtkTreeView*, GtkTreePath* path)
{
    const auto row = static_cast<std::size_t>(gtk_tree_path_get_indices(path)[0]);
    return row < ListRows().Count() && !ListRows().IsParentRow(row) ? ListRowPath(row) : std::string();
}

std::vector<std::string> TakeSelectedFiles(GtkTreeView*, GtkTreePath* pressed)
{
    held_row = -1;
    const int row = gtk_tree_path_get_indices(pressed)[0];
    if (!IsSelected(row)) {
        SelectOnly(row);  // The button that opens no selection still drags what is under it.
    }
    std::vector<std::string> paths;
    for (const std::size_t index : ListSelection()) {
        paths.push_back(ListRowPath(index));
    }
    // On its way over the tree the drag moves the selection there, which is not to be followed.
    DisconnectTreeSelectSignal();
    return paths;
}

std::string FindListDestination(GtkTreeView*, int, int)
{
    return pGTable->CurrentDir;
}

constexpr DragPane kListPane = {PathOfListRow, TakeSelectedFiles, FindListDestination, ConnectTreeSelectSignal};

}  // namespace

void ConnectListDrag(GtkTreeView* list)
{
    held_row = held_before = held_last = -1;
    ConnectDragPane(list, kListPane);
    g_signal_connect(list, "button-press-event", G_CALLBACK(on_FileList_hold_press), nullptr);
    g_signal_connect(list, "button-release-event", G_CALLBACK(on_FileList_release_held), nullptr);
}
