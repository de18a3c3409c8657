#include "app/fnkmainwindow-keys.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <optional>
#include <string>

#include "core/fnktable.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "kit/fnkvisit.h"
#include "panes/fnkdirtree-keys.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"
#include "panes/fnklocationbar.h"

namespace {

/// Which way a key moves the selection. If the list has to scroll, the new row ends up at the top after
/// a move up, at the bottom after a move down.
enum Direction { DIRECTION_UP, DIRECTION_DOWN };

bool IsNavigationKey(guint key)
{
    return IsTreeKey(key) || key == GDK_KEY_Return || key == GDK_KEY_Tab;
}

// The list. Rows are ints because targets are computed past both ends and then clamped.

int ListRowCount()
{
    return static_cast<int>(ListRows().Count());
}

RowVisibility ListRowVisibility(int row)
{
    const TreePath path(gtk_tree_path_new_from_indices(row, -1));
    return GetRowVisibility(MainList(), path.get());
}

/// First and last selected row, -1 for none, and the number of selected rows.
struct SelectedRange {
    int first = -1;
    int last = -1;
    int count = 0;
};

SelectedRange GetSelectedRange()
{
    const std::vector<std::size_t> rows = ListSelection();
    if (rows.empty()) {
        return {};
    }
    return {static_cast<int>(rows.front()), static_cast<int>(rows.back()), static_cast<int>(rows.size())};
}

void ListRowVisible(int row, Direction direction)
{
    // The first entry brings the ".." row into view, too.
    const TreePath path(gtk_tree_path_new_from_indices(row == 1 ? 0 : row, -1));
    if (GetRowVisibility(MainList(), path.get()) != ROW_VISIBLE) {
        ScrollRowTo(MainList(), path.get(), direction == DIRECTION_UP ? 0.0 : 1.0);
    }
    const TreePath announced(gtk_tree_path_new_from_indices(row, -1));
    AnnounceRow(MainList(), announced.get(), pGTable->NameColumn);
}

struct ListPage {
    int top;     ///< First row that is at least partly visible.
    int bottom;  ///< First row below top that is not fully visible, or the last row.
    int count;
};

ListPage GetListRange()
{
    const int last = ListRowCount() - 1;
    const TreePath first = GetFirstVisiblePath(MainList());
    const int top = first != nullptr ? gtk_tree_path_get_indices(first.get())[0] : last;
    int bottom = top + 1;
    while (bottom < last && ListRowVisibility(bottom) == ROW_VISIBLE) {
        ++bottom;
    }
    bottom = std::min(bottom, last);
    return {top, bottom, bottom - top + 1};
}

void SelectOnly(int row)
{
    UnselectAllListRows();
    SelectListRows(static_cast<std::size_t>(row), static_cast<std::size_t>(row));
}

/// Selects the first entry, so that keys act on the list. A list that has just been filled may still
/// wait to scroll to its old position; scrolling to the top replaces that request.
void SelectFirstEntry()
{
    SelectListRows(1, 1);
    const TreePath top(gtk_tree_path_new_first());
    gtk_tree_view_scroll_to_cell(MainList(), top.get(), nullptr, TRUE, 0.0F, 0.0F);
    const TreePath first(gtk_tree_path_new_from_indices(1, -1));
    AnnounceRow(MainList(), first.get(), pGTable->NameColumn);
}

/// Gives the keys to the tree.
void LeaveList()
{
    GtkTreeIter node;
    UnselectAllListRows();
    if (GetTreeSelect(MainTree(), &node, nullptr)) {
        AnnounceRow(MainTree(), TreePath(gtk_tree_model_get_path(gtk_tree_view_get_model(MainTree()), &node)).get(), 0);
    }
}

void ListUpSelect(const GdkEventKey& event, int row, const SelectedRange& selected)
{
    if (selected.first == 1 && selected.count == 1) {
        return;
    }
    const int target = std::clamp(row, 1, std::max(1, ListRowCount() - 1));
    {
        const ListSelectionBatch batch;
        if ((event.state & GDK_SHIFT_MASK) == 0) {
            SelectOnly(target);
        } else if (target < selected.first) {
            SelectListRows(static_cast<std::size_t>(target), static_cast<std::size_t>(selected.first - 1));
        }
    }
    ListRowVisible(target, DIRECTION_UP);
}

void ListDownSelect(const GdkEventKey& event, int row, const SelectedRange& selected)
{
    const int last = ListRowCount() - 1;
    if (selected.last == last && selected.count == 1) {
        return;
    }
    const int target = std::clamp(row, 0, last);
    {
        const ListSelectionBatch batch;
        if ((event.state & GDK_SHIFT_MASK) == 0) {
            SelectOnly(target);
        } else if (target > selected.last) {
            SelectListRows(static_cast<std::size_t>(selected.last + 1), static_cast<std::size_t>(target));
        }
    }
    ListRowVisible(target, DIRECTION_DOWN);
}

void OpenSelectedRow(const SelectedRange& selected)
{
    if (selected.count != 1) {
        return;
    }
    ActivateListRow(static_cast<std::size_t>(selected.first), [before = pGTable->CurrentDir] {
        if (pGTable->CurrentDir != before && ListRowCount() > 1) {
            SelectFirstEntry();
        }
    });
}

void ListKeyPress(const GdkEventKey& event, guint key)
{
    const SelectedRange selected = GetSelectedRange();
    if (selected.count == 0) {
        return;
    }
    switch (key) {
    case GDK_KEY_Up:
        ListUpSelect(event, selected.first - 1, selected);
        break;
    case GDK_KEY_Down:
        ListDownSelect(event, selected.last + 1, selected);
        break;
    case GDK_KEY_Page_Up: {
        const ListPage page = GetListRange();
        ListUpSelect(event, selected.first > page.top ? page.top : page.top - page.count, selected);
        break;
    }
    case GDK_KEY_Page_Down: {
        const ListPage page = GetListRange();
        ListDownSelect(event, selected.last < page.bottom - 1 ? page.bottom : page.bottom + page.count, selected);
        break;
    }
    case GDK_KEY_Home:
        ListUpSelect(event, 0, selected);
        break;
    case GDK_KEY_End:
        ListDownSelect(event, ListRowCount() - 1, selected);
        break;
    case GDK_KEY_Return:
        OpenSelectedRow(selected);
        break;
    default:
        break;
    }
}

/// Tab moves from one pane to the other.
void SwitchPane()
{
    if (IsLocationFocused()) {
        ReleaseEntryFocus(pMainW->MainWindow);
        LeaveList();
    } else if (CountListSelection() > 0) {
        LeaveList();
    } else if (ListRowCount() > 1) {
        SelectFirstEntry();
    }
}

/// While a button is held, a drag may own the pointer and keyboard grabs. A menu opened by a key would
/// get neither, and the toolkit would keep a grab on a window that no longer exists.
bool IsButtonHeld(guint state)
{
    return (state & (GDK_BUTTON1_MASK | GDK_BUTTON2_MASK | GDK_BUTTON3_MASK)) != 0;
}

}  // namespace

gboolean on_MainWindow_key_press_event(GtkWidget* window, GdkEventKey* event, gpointer)
{
    if (pGTable == nullptr) {
        return FALSE;
    }
    if (event->keyval == GDK_KEY_Escape && IsVisiting()) {
        GiveUpVisit();
        return TRUE;
    }
    if (IsButtonHeld(event->state)) {
        return TRUE;
    }
    const guint key = PlainKey(event->keyval);
    if (key == GDK_KEY_Tab) {
        SwitchPane();
        return TRUE;
    }
    if (IsTreeKey(key) && (event->state & GDK_MOD1_MASK) != 0) {
        return FALSE;  // Shortcuts of the toolbar, even while the entry has the focus.
    }
    if (IsLocationFocused() && event->keyval == GDK_KEY_Escape) {
        LeaveLocation();
        return TRUE;
    }
    if (IsLocationFocused()) {
        // The entry gets the key before the accelerators do: keys that edit text must not act on files.
        return gtk_window_propagate_key_event(GTK_WINDOW(window), event);
    }
    if (!IsNavigationKey(key)) {
        return FALSE;
    }
    if (CountListSelection() > 0) {
        ListKeyPress(*event, key);
    } else {
        TreeKeyPress(MainTree(), key);
    }
    return TRUE;
}
