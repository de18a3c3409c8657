#include "panes/fnkdirtree-drag.h"

#include <string>
#include <utility>

#include "core/fnktable.h"
#include "core/fnkutil.h"
#include "panes/fnkdirtree-walk.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkdragdrop-watch.h"
#include "panes/fnkdragdrop.h"

namespace {

constexpr int kEdge = 20;               ///< Height in pixels of the strips where the tree scrolls.
constexpr guint kScrollInterval = 200;  ///< Milliseconds per row.
constexpr guint kExpandDelay = 1000;    ///< Milliseconds of rest on a node.

void StopTimer(unsigned& timer)
{
    if (const unsigned id = std::exchange(timer, 0); id != 0) {
        g_source_remove(id);
    }
}

void StopTimers()
{
    StopTimer(pGTable->ScrollTimer);
    StopTimer(pGTable->ExpandTimer);
}

/// The node at a point in widget coordinates.
OptionalNode NodeAt(GtkTreeView* tree, int x, int y)
{
    int bin_x = 0;
    int bin_y = 0;
    gtk_tree_view_convert_widget_to_bin_window_coords(tree, x, y, &bin_x, &bin_y);
    GtkTreePath* found = nullptr;
    if (!gtk_tree_view_get_path_at_pos(tree, bin_x, bin_y, &found, nullptr, nullptr, nullptr)) {
        return std::nullopt;
    }
    const TreePath path(found);
    GtkTreeIter node;
    return gtk_tree_model_get_iter(gtk_tree_view_get_model(tree), &node, found) ? OptionalNode(node) : std::nullopt;
}

bool IsSelected(GtkTreeView* tree, const GtkTreeIter& node)
{
    GtkTreeIter copy = node;
    return gtk_tree_selection_iter_is_selected(gtk_tree_view_get_selection(tree), &copy);
}

/// Frames the node as the drop target. Stops the expand timer of the previous target.
void FrameTarget(GtkTreeView* tree, const GtkTreeIter& node)
{
    const TreePath path = TreeWalk(tree).PathOf(node);
    GtkTreePath* framed = nullptr;
    gtk_tree_view_get_drag_dest_row(tree, &framed, nullptr);
    const TreePath before(framed);
    if (before == nullptr || gtk_tree_path_compare(path.get(), framed) != 0) {
        gtk_tree_view_set_drag_dest_row(tree, path.get(), GTK_TREE_VIEW_DROP_INTO_OR_AFTER);
        StopTimer(pGTable->ExpandTimer);
    }
}

// Timers hold no iterators, as nodes may be removed before the timer fires.

/// Scrolls to the row next to the one at y. Stops the timer at the end of the tree.
gboolean ScrollOneRow(OptionalNode (TreeWalk::*next)(const GtkTreeIter&) const, gpointer y, double alignment)
{
    if (pGTable == nullptr) {
        return G_SOURCE_REMOVE;
    }
    if (GtkTreeView* const tree = MainTree()) {
        const TreeWalk walk(tree);
        const OptionalNode node = NodeAt(tree, 0, GPOINTER_TO_INT(y));
        if (const OptionalNode beside = node ? (walk.*next)(*node) : std::nullopt) {
            ScrollRowTo(tree, walk.PathOf(*beside).get(), alignment);
            FrameTarget(tree, NodeAt(tree, 0, GPOINTER_TO_INT(y)).value_or(*beside));
            return G_SOURCE_CONTINUE;
        }
    }
    pGTable->ScrollTimer = 0;
    return G_SOURCE_REMOVE;
}

gboolean TreeUpScroll(gpointer y)
{
    return ScrollOneRow(&TreeWalk::Above, y, 0.0);
}

gboolean TreeDownScroll(gpointer y)
{
    return ScrollOneRow(&TreeWalk::Below, y, 1.0);
}

gboolean TreeExpand(gpointer data)
{
    if (pGTable == nullptr) {
        return G_SOURCE_REMOVE;
    }
    pGTable->ExpandTimer = 0;
    std::string path = static_cast<const char*>(data);
    GtkTreeIter node;
    if (MainTree() != nullptr && GetPathNode(MainTree(), path, &node)) {
        gtk_tree_view_expand_row(MainTree(), TreeWalk(MainTree()).PathOf(node).get(), FALSE);
    }
    return G_SOURCE_REMOVE;
}

/// Starts scrolling if the pointer is near an edge, else stops it.
void UpdateScrolling(GtkWidget* tree, int y)
{
    StopTimer(pGTable->ScrollTimer);
    if (y <= kEdge) {
        pGTable->ScrollTimer = g_timeout_add(kScrollInterval, TreeUpScroll, GINT_TO_POINTER(y));
    } else if (y > gtk_widget_get_allocated_height(tree) - kEdge) {
        pGTable->ScrollTimer = g_timeout_add(kScrollInterval, TreeDownScroll, GINT_TO_POINTER(y));
    }
}

void HoverOver(GtkTreeView* tree, const GtkTreeIter& node)
{
    FrameTarget(tree, node);
    const TreeWalk walk(tree);
    if (walk.HasChildren(node) && !walk.IsExpanded(node) && pGTable->ExpandTimer == 0) {
        pGTable->ExpandTimer = g_timeout_add_full(G_PRIORITY_DEFAULT, kExpandDelay, TreeExpand,
                                                  g_strdup(GetNodePath(tree, node).c_str()), g_free);
    }
}

gboolean on_DirTree_drag_motion(GtkWidget* widget, GdkDragContext* context, int x, int y, guint time, gpointer)
{
    if (pGTable == nullptr) {
        return FALSE;
    }
    gdk_drag_status(context, gdk_drag_context_get_suggested_action(context), time);
    GtkTreeView* const tree = GTK_TREE_VIEW(widget);
    const OptionalNode node = NodeAt(tree, x, y);
    if (!node) {
        return TRUE;
    }
    UpdateScrolling(widget, y);
    if (pGTable->ScrollTimer != 0 && pGTable->ExpandTimer != 0) {
        StopTimer(pGTable->ExpandTimer);
        return TRUE;
    }
    HoverOver(tree, *node);
    return TRUE;
}

void on_DirTree_drag_leave(GtkWidget* tree, GdkDragContext*, guint, gpointer)
{
    if (pGTable != nullptr) {
        StopTimers();
        gtk_tree_view_set_drag_dest_row(GTK_TREE_VIEW(tree), nullptr, GTK_TREE_VIEW_DROP_BEFORE);
    }
}

void on_DirTree_drag_end(GtkWidget*, GdkDragContext*, gpointer)
{
    if (pGTable != nullptr && pGTable->CurrentDir != pGTable->RootDir) {
        WatchDirectory(GetParentDirectory(pGTable->CurrentDir));
    }
}

void on_DirTree_destroy(GtkWidget*, gpointer)
{
    if (pGTable != nullptr) {
        StopTimers();
    }
}

std::string PathOfTreeRow(GtkTreeView* tree, GtkTreePath* path)
{
    GtkTreeIter node;
    return gtk_tree_model_get_iter(gtk_tree_view_get_model(tree), &node, path) ? GetNodePath(tree, node)
                                                                               : std::string();
}

/// Enters the pressed directory first, so that what is dragged is what is shown. A press of the
/// primary button has done so already.
std::vector<std::string> PrepareTreeDrag(GtkTreeView* tree, GtkTreePath* pressed)
{
    GtkTreeIter node;
    if (gtk_tree_model_get_iter(gtk_tree_view_get_model(tree), &node, pressed) && !IsSelected(tree, node)) {
        SetTreeSelectNode(tree, node);
    }
    std::string path;
    return GetTreeSelect(tree, nullptr, &path) ? std::vector{path} : std::vector<std::string>();
}

std::string FindTreeDestination(GtkTreeView* tree, int x, int y)
{
    const OptionalNode node = NodeAt(tree, x, y);
    return node ? GetNodePath(tree, *node) : std::string();
}

constexpr DragPane kTreePane = {PathOfTreeRow, PrepareTreeDrag, FindTreeDestination};

}  // namespace

void ConnectTreeDrag(GtkTreeView* tree)
{
    // Connected first: the handler of ConnectDragPane ends the emission.
    g_signal_connect(tree, "drag-motion", G_CALLBACK(on_DirTree_drag_motion), nullptr);
    ConnectDragPane(tree, kTreePane);
    g_signal_connect(tree, "drag-end", G_CALLBACK(on_DirTree_drag_end), nullptr);
    g_signal_connect(tree, "drag-leave", G_CALLBACK(on_DirTree_drag_leave), nullptr);
    g_signal_connect(tree, "destroy", G_CALLBACK(on_DirTree_destroy), nullptr);
}
