#include "kit/fnkutil-view.h"

#include <gtk/gtk-a11y.h>

#include "core/fnkstring.h"
#include "kit/fnkutil-widget.h"

namespace {

constexpr const char* kNameKey = "fennick-name";

}  // namespace

// A tree view that sets the name of its accessible only when the accessible is first requested.
struct FnkTreeView {
    GtkTreeView parent_instance;
    gboolean has_accessible;
};
struct FnkTreeViewClass {
    GtkTreeViewClass parent_class;
};
G_DEFINE_TYPE(FnkTreeView, fnk_tree_view, GTK_TYPE_TREE_VIEW)

namespace {

/// A cell of icon and text has the name of the text, which comes last.
const char* GetContainerCellName(AtkObject* cell)
{
    const GList* const parts = gtk_container_cell_accessible_get_children(GTK_CONTAINER_CELL_ACCESSIBLE(cell));
    return parts != nullptr ? atk_object_get_name(ATK_OBJECT(g_list_last(const_cast<GList*>(parts))->data)) : nullptr;
}

/// A cell with a folder says that it is a directory.
void UpdateIconCellName(GtkCellAccessible* cell, gboolean)
{
    GtkWidget* const view = gtk_accessible_get_widget(GTK_ACCESSIBLE(cell));
    if (view == nullptr || G_OBJECT_TYPE(view) != fnk_tree_view_get_type()) {
        return;
    }
    GtkCellRenderer* renderer = nullptr;
    cairo_surface_t* icon = nullptr;
    gboolean is_visible = FALSE;
    g_object_get(cell, "renderer", &renderer, nullptr);
    if (renderer != nullptr) {
        g_object_get(renderer, "surface", &icon, "visible", &is_visible, nullptr);
        g_object_unref(renderer);
    }
    atk_object_set_name(ATK_OBJECT(cell), icon != nullptr && is_visible ? _("Directory") : "");
    if (icon != nullptr) {
        cairo_surface_destroy(icon);
    }
}

/// The toolkit gives these cells no names, and takes no other classes for them.
void NameCells()
{
    static const bool once = [] {
        auto* const container = static_cast<AtkObjectClass*>(g_type_class_ref(GTK_TYPE_CONTAINER_CELL_ACCESSIBLE));
        container->get_name = GetContainerCellName;
        auto* const icon = static_cast<GtkCellAccessibleClass*>(g_type_class_ref(GTK_TYPE_IMAGE_CELL_ACCESSIBLE));
        icon->update_cache = UpdateIconCellName;
        return true;
    }();
    static_cast<void>(once);
}

}  // namespace

static AtkObject* fnk_tree_view_get_accessible(GtkWidget* widget)
{
    NameCells();
    AtkObject* const accessible = GTK_WIDGET_CLASS(fnk_tree_view_parent_class)->get_accessible(widget);
    reinterpret_cast<FnkTreeView*>(widget)->has_accessible = accessible != nullptr;
    if (accessible != nullptr && atk_object_get_name(accessible) == nullptr) {
        atk_object_set_name(accessible, static_cast<const char*>(g_object_get_data(G_OBJECT(widget), kNameKey)));
    }
    return accessible;
}

static void fnk_tree_view_class_init(FnkTreeViewClass* klass)
{
    GTK_WIDGET_CLASS(klass)->get_accessible = fnk_tree_view_get_accessible;
}

static void fnk_tree_view_init(FnkTreeView*) {}

static gboolean on_TreeView_button_press(GtkWidget* view, GdkEvent*, gpointer)
{
    GtkWidget* const window = gtk_widget_get_toplevel(view);
    // A view that can take the focus takes it from the entry by itself.
    if (GTK_IS_WINDOW(window) && !gtk_widget_get_can_focus(view)) {
        ReleaseEntryFocus(window);
    }
    return FALSE;
}

GtkWidget* CreateTreeView(const char* accessible_name)
{
    auto* const view = static_cast<GtkWidget*>(g_object_new(fnk_tree_view_get_type(), nullptr));
    g_object_set_data_full(G_OBJECT(view), kNameKey, g_strdup(accessible_name), g_free);
    gtk_widget_set_can_focus(view, FALSE);
    g_signal_connect(view, "button-press-event", G_CALLBACK(on_TreeView_button_press), nullptr);
    gtk_widget_show(view);
    return view;
}

bool HasAccessible(GtkTreeView* view)
{
    return reinterpret_cast<FnkTreeView*>(view)->has_accessible;
}

namespace {

/// The row's area; y is in tree coordinates.
GdkRectangle GetRowArea(GtkTreeView* view, GtkTreePath* path)
{
    GdkRectangle row;
    gtk_tree_view_get_background_area(view, path, nullptr, &row);
    gtk_tree_view_convert_bin_window_to_tree_coords(view, 0, row.y, nullptr, &row.y);
    return row;
}

}  // namespace

RowVisibility GetRowVisibility(GtkTreeView* view, GtkTreePath* path)
{
    const GdkRectangle row = GetRowArea(view, path);
    GdkRectangle visible;
    gtk_tree_view_get_visible_rect(view, &visible);
    const int bottom = row.y + row.height;
    const int visible_bottom = visible.y + visible.height;
    if (row.height <= 0 || bottom <= visible.y || row.y >= visible_bottom) {
        return ROW_HIDDEN;
    }
    return row.y >= visible.y && bottom <= visible_bottom ? ROW_VISIBLE : ROW_PARTLY_VISIBLE;
}

void ScrollRowTo(GtkTreeView* view, GtkTreePath* path, double alignment)
{
    const GdkRectangle row = GetRowArea(view, path);
    GdkRectangle visible;
    gtk_tree_view_get_visible_rect(view, &visible);
    gtk_adjustment_set_value(gtk_scrollable_get_vadjustment(GTK_SCROLLABLE(view)),
                             row.y - alignment * (visible.height - row.height));
}

void ShowRow(GtkTreeView* view, GtkTreePath* path)
{
    GdkRectangle visible;
    gtk_tree_view_get_visible_rect(view, &visible);
    if (GetRowVisibility(view, path) != ROW_VISIBLE) {
        ScrollRowTo(view, path, GetRowArea(view, path).y < visible.y ? 0.0 : 1.0);
    }
}

void AnnounceRow(GtkTreeView* view, GtkTreePath* path, int column)
{
    const GdkRectangle row = GetRowArea(view, path);
    if (!HasAccessible(view) || row.height <= 0) {
        return;
    }
    AtkObject* const accessible = gtk_widget_get_accessible(GTK_WIDGET(view));
    AtkObject* const cell = atk_table_ref_at(ATK_TABLE(accessible), row.y / row.height, column);
    if (cell != nullptr) {
        g_signal_emit_by_name(accessible, "active-descendant-changed", cell);
        atk_object_notify_state_change(cell, ATK_STATE_FOCUSED, TRUE);
        g_object_unref(cell);
    }
}

TreePath GetFirstVisiblePath(GtkTreeView* view)
{
    GtkTreePath* start = nullptr;
    if (!gtk_tree_view_get_visible_range(view, &start, nullptr)) {
        return nullptr;
    }
    TreePath first(start);
    // When a row starts exactly at the top, the toolkit returns the row above, which is hidden.
    GtkTreePath* below = nullptr;
    if (GetRowVisibility(view, start) == ROW_HIDDEN &&
        gtk_tree_view_get_path_at_pos(view, 1, 1, &below, nullptr, nullptr, nullptr)) {
        first.reset(below);
    }
    return first;
}

int GetTextWidth(GtkWidget* widget, const char* text)
{
    PangoLayout* const layout = gtk_widget_create_pango_layout(widget, text);
    int width = 0;
    pango_layout_get_pixel_size(layout, &width, nullptr);
    g_object_unref(layout);
    return width;
}

namespace {

void on_View_style_updated(GtkWidget* view, gpointer cell)
{
    // The sample has characters that often come from a fallback font, which may be taller.
    PangoLayout* const layout = gtk_widget_create_pango_layout(view, "\u00c1g\u65e5\u21b5\ufffd");
    int text_height = 0;
    int padding = 0;
    pango_layout_get_pixel_size(layout, nullptr, &text_height);
    g_object_unref(layout);
    gtk_cell_renderer_get_padding(GTK_CELL_RENDERER(cell), nullptr, &padding);
    gtk_cell_renderer_set_fixed_size(GTK_CELL_RENDERER(cell), -1, text_height + 2 * padding);
}

}  // namespace

void FixRowHeight(GtkWidget* view, GtkCellRenderer* cell)
{
    on_View_style_updated(view, cell);
    g_signal_connect_object(view, "style-updated", G_CALLBACK(on_View_style_updated), cell, GConnectFlags());
}
