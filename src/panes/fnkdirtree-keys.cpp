#include "panes/fnkdirtree-keys.h"

#include <gdk/gdkkeysyms.h>

#include "core/fnktable.h"
#include "kit/fnkutil-view.h"
#include "panes/fnkdirtree-walk.h"
#include "panes/fnkdirtree.h"

namespace {

/// Which way a key moves the selection. If the tree has to scroll, the new row ends up at the top after
/// a move up, at the bottom after a move down.
enum Direction { DIRECTION_UP, DIRECTION_DOWN };

void ScrollTo(GtkTreeView* view, GtkTreePath* path, Direction direction)
{
    if (GetRowVisibility(view, path) != ROW_VISIBLE) {
        ScrollRowTo(view, path, direction == DIRECTION_UP ? 0.0 : 1.0);
    }
}

void SelectNode(GtkTreeView* tree, const TreeWalk& walk, const GtkTreeIter& node, Direction direction)
{
    const TreePath path = walk.PathOf(node);
    ScrollTo(tree, path.get(), direction);
    SetTreeSelectNode(tree, node);
}

/// Left collapses an expanded node, else the parent of the node. The root never collapses while it is
/// the current node.
void CollapseNode(GtkTreeView* tree, const TreeWalk& walk, const GtkTreeIter& current)
{
    const OptionalNode parent = walk.Parent(current);
    if (parent) {
        gtk_tree_view_collapse_row(tree, walk.PathOf(walk.IsExpanded(current) ? current : *parent).get());
    }
}

/// The target of Page Up or Page Down: the edge of the page, or one page further if already there.
OptionalNode PageTarget(const TreeWalk& walk, const GtkTreeIter& current, Direction direction)
{
    const OptionalNode root = walk.Root();
    const std::optional<TreeWalk::Page> page = walk.VisiblePage();
    if (!page || !root || !walk.IsExpanded(*root)) {
        return std::nullopt;
    }
    const bool is_up = direction == DIRECTION_UP;
    GtkTreeIter target = is_up ? page->top : page->bottom;
    if (current.user_data != target.user_data) {
        return target;
    }
    for (int step = 0; step < page->steps; ++step) {
        const OptionalNode next = is_up ? walk.Above(target) : walk.Below(target);
        if (!next) {
            break;
        }
        target = *next;
    }
    return target;
}

/// The node that the key moves to; none if it does not move.
OptionalNode KeyTarget(const TreeWalk& walk, const GtkTreeIter& current, guint key)
{
    switch (key) {
    case GDK_KEY_Up:
        return walk.Above(current);
    case GDK_KEY_Down:
        return walk.Below(current);
    case GDK_KEY_Page_Up:
        return PageTarget(walk, current, DIRECTION_UP);
    case GDK_KEY_Page_Down:
        return PageTarget(walk, current, DIRECTION_DOWN);
    case GDK_KEY_Home:
        return walk.Root();
    case GDK_KEY_End:
        return walk.LastDisplayed(*walk.Root());
    default:
        return std::nullopt;
    }
}

}  // namespace

void TreeKeyPress(GtkTreeView* tree, guint key)
{
    GtkTreeIter current;
    if (!GetTreeSelect(tree, &current, nullptr)) {
        return;
    }
    const TreeWalk walk(tree);
    if (key == GDK_KEY_Return || key == GDK_KEY_Right) {
        gtk_tree_view_expand_row(tree, walk.PathOf(current).get(), FALSE);
        return;
    }
    if (key == GDK_KEY_Left) {
        CollapseNode(tree, walk, current);
        return;
    }
    const bool is_up = key == GDK_KEY_Up || key == GDK_KEY_Page_Up || key == GDK_KEY_Home;
    if (const OptionalNode target = KeyTarget(walk, current, key)) {
        SelectNode(tree, walk, *target, is_up ? DIRECTION_UP : DIRECTION_DOWN);
    }
}

/// Maps keys of the numeric keypad, and Shift+Tab, to the plain keys.
guint PlainKey(guint key)
{
    switch (key) {
    case GDK_KEY_KP_Up:
        return GDK_KEY_Up;
    case GDK_KEY_KP_Down:
        return GDK_KEY_Down;
    case GDK_KEY_KP_Left:
        return GDK_KEY_Left;
    case GDK_KEY_KP_Right:
        return GDK_KEY_Right;
    case GDK_KEY_KP_Page_Up:
        return GDK_KEY_Page_Up;
    case GDK_KEY_KP_Page_Down:
        return GDK_KEY_Page_Down;
    case GDK_KEY_KP_Home:
        return GDK_KEY_Home;
    case GDK_KEY_KP_End:
        return GDK_KEY_End;
    case GDK_KEY_KP_Enter:
        return GDK_KEY_Return;
    case GDK_KEY_KP_Tab:
    case GDK_KEY_ISO_Left_Tab:
        return GDK_KEY_Tab;
    default:
        return key;
    }
}

bool IsTreeKey(guint key)
{
    switch (key) {
    case GDK_KEY_Up:
    case GDK_KEY_Down:
    case GDK_KEY_Left:
    case GDK_KEY_Right:
    case GDK_KEY_Page_Up:
    case GDK_KEY_Page_Down:
    case GDK_KEY_Home:
    case GDK_KEY_End:
        return true;
    default:
        return false;
    }
}

namespace {

gboolean on_NodeView_key_press(GtkWidget* tree, GdkEventKey* event, gpointer)
{
    const guint key = PlainKey(event->keyval);
    if (pGTable == nullptr || !IsTreeKey(key) || (event->state & gtk_accelerator_get_default_mod_mask()) != 0) {
        return FALSE;
    }
    TreeKeyPress(GTK_TREE_VIEW(tree), key);
    return TRUE;
}

/// A horizontal scroll bar that comes up must not cover the row that a key has just chosen.
void on_NodeView_size_allocate(GtkWidget* widget, GdkRectangle*, gpointer)
{
    GtkTreeView* const tree = GTK_TREE_VIEW(widget);
    GtkTreeIter node;
    if (!gtk_widget_has_focus(widget) || !GetTreeSelect(tree, &node, nullptr)) {
        return;
    }
    const TreePath path = TreeWalk(tree).PathOf(node);
    if (GetRowVisibility(tree, path.get()) == ROW_PARTLY_VISIBLE) {
        ShowRow(tree, path.get());
    }
}

}  // namespace

void TakeTreeKeys(GtkTreeView* tree)
{
    gtk_widget_set_can_focus(GTK_WIDGET(tree), TRUE);
    g_signal_connect(tree, "key-press-event", G_CALLBACK(on_NodeView_key_press), nullptr);
    g_signal_connect(tree, "size-allocate", G_CALLBACK(on_NodeView_size_allocate), nullptr);
}
