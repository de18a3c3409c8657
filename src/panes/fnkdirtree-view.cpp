#include "panes/fnkdirtree-view.h"

#include <algorithm>

#include "core/fnkutil-text.h"
#include "kit/fnkutil-picture.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree-nodes.h"
#include "panes/fnkdirtree-walk.h"

namespace {

constexpr int kIconSpacing = 5;
/// Pixels for the insets of both cells and some space after the name.
constexpr int kCellInsets = 10;
/// A level is indented by 10 pixels: its expander and 2 more. The arrow of so small an expander would
/// hardly be seen, so it is drawn larger; the icons of themes blur then, or ignore the size.
constexpr const char* kExpanderStyle =
    "treeview { -GtkTreeView-expander-size: 8; -GtkTreeView-horizontal-separator: 4; }"
    "treeview.view.expander { min-width: 8px; min-height: 8px; -gtk-icon-source: builtin;"
    "  -gtk-icon-transform: scale(2.5); }"
    "treeview.view.without-keys:selected { color: @theme_text_color;"
    " background-color: mix(@theme_base_color, @theme_selected_bg_color, 0.35); }";
constexpr const char* kWithoutKeys = "without-keys";
constexpr const char* kUpdateKey = "fennick-update";
constexpr const char* kUnseenNameKey = "fennick-unseen-name";

int NodeWidth(GtkTreeView* tree, const TreeWalk& walk, const GtkTreeIter& node)
{
    GdkRectangle cell;
    gtk_tree_view_get_cell_area(tree, walk.PathOf(node).get(), gtk_tree_view_get_column(tree, 0), &cell);
    const std::string shown = DisplayText(GetNodeName(gtk_tree_view_get_model(tree), node));
    const int icon_width =
        std::max(gdk_pixbuf_get_width(pGTable->OpenDirPixmap), gdk_pixbuf_get_width(pGTable->CloseDirPixmap));
    return cell.x + icon_width + kIconSpacing + GetTextWidth(GTK_WIDGET(tree), shown.c_str()) + kCellInsets;
}

/// Scrolls sideways to the name of a node that has been selected, once the column has the room for it.
void ShowSelectedName(GtkTreeView* tree)
{
    GtkTreeIter node;
    GdkRectangle cell;
    if (g_object_get_data(G_OBJECT(tree), kUnseenNameKey) == nullptr ||
        !gtk_tree_selection_get_selected(gtk_tree_view_get_selection(tree), nullptr, &node)) {
        return;
    }
    const TreeWalk walk(tree);
    gtk_tree_view_get_cell_area(tree, walk.PathOf(node).get(), gtk_tree_view_get_column(tree, 0), &cell);
    GtkAdjustment* const sideways = gtk_scrollable_get_hadjustment(GTK_SCROLLABLE(tree));
    const int end = NodeWidth(tree, walk, node);
    gtk_adjustment_clamp_page(sideways, cell.x, end);
    if (end <= gtk_adjustment_get_upper(sideways)) {
        g_object_set_data(G_OBJECT(tree), kUnseenNameKey, nullptr);
    }
}

/// Fits the column to the widest visible row, and lets each row show whether it can be expanded. The toolkit sizes
/// neither the column nor the rows: it would measure every new row, visible or not, which takes a second for ten
/// thousand rows.
gboolean on_SeenNodes_idle(gpointer data)
{
    GtkTreeView* const tree = GTK_TREE_VIEW(data);
    g_object_set_data(G_OBJECT(tree), kUpdateKey, nullptr);
    if (pGTable == nullptr) {
        return G_SOURCE_REMOVE;
    }
    const TreeWalk walk(tree);
    const std::optional<TreeWalk::Page> page = walk.VisiblePage();
    if (!page) {
        return G_SOURCE_REMOVE;
    }
    int width = 1;
    OptionalNode node = page->top;
    // One row more than the page, as the row below it may be partly visible.
    for (int step = -1; step <= page->steps && node; ++step, node = walk.Below(*node)) {
        width = std::max(width, NodeWidth(tree, walk, *node));
        ShowLateLookAhead(gtk_tree_view_get_model(tree), *node);
    }
    gtk_tree_view_column_set_fixed_width(gtk_tree_view_get_column(tree, 0), width);
    ShowSelectedName(tree);
    return G_SOURCE_REMOVE;
}

void StopUpdate(GtkWidget* tree, gpointer)
{
    if (const guint source = GPOINTER_TO_UINT(g_object_get_data(G_OBJECT(tree), kUpdateKey)); source != 0) {
        g_source_remove(source);
        g_object_set_data(G_OBJECT(tree), kUpdateKey, nullptr);
    }
}

void on_Tree_selection_changed(GtkTreeSelection*, gpointer tree)
{
    if (!gtk_widget_in_destruction(GTK_WIDGET(tree))) {
        g_object_set_data(G_OBJECT(tree), kUnseenNameKey, tree);
        UpdateSeenNodes(GTK_WIDGET(tree));
    }
}

void FitToContent(GtkWidget* scroll, GtkTreeView* tree)
{
    g_signal_connect(gtk_tree_view_get_selection(tree), "changed", G_CALLBACK(on_Tree_selection_changed), tree);
    g_signal_connect_object(gtk_scrolled_window_get_hadjustment(GTK_SCROLLED_WINDOW(scroll)), "changed",
                            G_CALLBACK(ShowSelectedName), tree, G_CONNECT_SWAPPED);
    GtkAdjustment* const vertical = gtk_scrolled_window_get_vadjustment(GTK_SCROLLED_WINDOW(scroll));
    // The bounds change when rows come and go, the value when the tree scrolls.
    g_signal_connect_object(vertical, "changed", G_CALLBACK(UpdateSeenNodes), tree, G_CONNECT_SWAPPED);
    g_signal_connect_object(vertical, "value-changed", G_CALLBACK(UpdateSeenNodes), tree, G_CONNECT_SWAPPED);
    g_signal_connect(tree, "row-expanded", G_CALLBACK(UpdateSeenNodes), nullptr);
    g_signal_connect(tree, "row-collapsed", G_CALLBACK(UpdateSeenNodes), nullptr);
    g_signal_connect(tree, "destroy", G_CALLBACK(StopUpdate), nullptr);
}

void DrawName(GtkTreeViewColumn*, GtkCellRenderer* cell, GtkTreeModel* model, GtkTreeIter* node, gpointer)
{
    g_object_set(cell, "text", DisplayText(GetNodeName(model, *node)).c_str(), nullptr);
}

void DrawFolder(GtkTreeViewColumn* column, GtkCellRenderer* cell, GtkTreeModel*, GtkTreeIter*, gpointer)
{
    GtkWidget* const tree = gtk_tree_view_column_get_tree_view(column);
    gboolean is_expanded = FALSE;
    g_object_get(cell, "is-expanded", &is_expanded, nullptr);
    g_object_set(cell, "surface", is_expanded ? OpenFolderPicture(tree) : ClosedFolderPicture(tree), nullptr);
}

void AddTreeColumn(GtkTreeView* tree)
{
    GtkTreeViewColumn* const column = gtk_tree_view_column_new();
    GtkCellRenderer* const icon = gtk_cell_renderer_pixbuf_new();
    gtk_tree_view_column_pack_start(column, icon, FALSE);
    gtk_tree_view_column_set_cell_data_func(column, icon, DrawFolder, nullptr, nullptr);
    if (gtk_tree_model_get_n_columns(gtk_tree_view_get_model(tree)) > kNodeDirectoryColumn) {
        gtk_tree_view_column_add_attribute(column, icon, "visible", kNodeDirectoryColumn);
    }
    GtkCellRenderer* const text = gtk_cell_renderer_text_new();
    g_object_set(text, "single-paragraph-mode", TRUE, nullptr);
    FixRowHeight(GTK_WIDGET(tree), text);
    gtk_tree_view_column_pack_start(column, text, TRUE);
    gtk_tree_view_column_set_cell_data_func(column, text, DrawName, nullptr, nullptr);
    gtk_tree_view_column_set_spacing(column, kIconSpacing);
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_append_column(tree, column);
}

}  // namespace

/// Called whenever other rows are visible. Several calls share one update.
void UpdateSeenNodes(GtkWidget* tree)
{
    StopUpdate(tree, nullptr);
    const guint source = g_idle_add_full(GTK_PRIORITY_RESIZE + 1, on_SeenNodes_idle, tree, nullptr);
    g_object_set_data(G_OBJECT(tree), kUpdateKey, GUINT_TO_POINTER(source));
}

void ShowTreeKeys(GtkTreeView* tree, bool has_keys)
{
    GtkStyleContext* const style = gtk_widget_get_style_context(GTK_WIDGET(tree));
    has_keys ? gtk_style_context_remove_class(style, kWithoutKeys) : gtk_style_context_add_class(style, kWithoutKeys);
    gtk_widget_queue_draw(GTK_WIDGET(tree));  // The toolkit sees no difference, as rows are no widgets.
}

GtkTreeView* CreateNodeView(GtkWidget* scroll, GtkTreeModel* nodes, const char* accessible_name)
{
    GtkWidget* const widget = CreateTreeView(accessible_name);
    GtkTreeView* const tree = GTK_TREE_VIEW(widget);
    gtk_tree_view_set_model(tree, nodes);
    gtk_tree_view_set_headers_visible(tree, FALSE);
    gtk_tree_view_set_enable_tree_lines(tree, TRUE);
    SetStyle(widget, kExpanderStyle);
    gtk_tree_view_set_enable_search(tree, FALSE);
    gtk_tree_selection_set_mode(gtk_tree_view_get_selection(tree), GTK_SELECTION_BROWSE);
    AddTreeColumn(tree);
    gtk_tree_view_set_fixed_height_mode(tree, TRUE);
    gtk_container_add(GTK_CONTAINER(scroll), widget);
    FitToContent(scroll, tree);
    return tree;
}
