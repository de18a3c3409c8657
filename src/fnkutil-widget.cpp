#include "fnkutil-widget.h"

#include <algorithm>

#include "fnkmainwindow-record.h"
#include "fnkraii.h"
#include "fnkstring.h"
#include "fnkutil.h"

namespace {

constexpr int kDialogSpacing = 5;
constexpr int kButtonSpacing = 10;
constexpr int kIconSpacing = 10;
constexpr const char* kItemsKey = "fennick-items";
constexpr const char* kBytesKey = "fennick-bytes";
constexpr const char* kNameKey = "fennick-name";

/// Attaches a value to an object, which owns it from then on.
template <typename T>
void AttachData(gpointer object, const char* key, T value)
{
    g_object_set_data_full(G_OBJECT(object), key, new T(std::move(value)),
                           [](gpointer data) { delete static_cast<T*>(data); });
}

template <typename T>
const T* AttachedData(gpointer object, const char* key)
{
    return static_cast<const T*>(g_object_get_data(G_OBJECT(object), key));
}

GtkWidget* AddDialogButton(GtkWidget* box, const char* label)
{
    GtkWidget* const button = gtk_button_new_with_label(label);
    gtk_container_add(GTK_CONTAINER(box), button);
    gtk_widget_set_can_default(button, TRUE);
    gtk_widget_show(button);
    return button;
}

GtkWidget* DialogActionArea(GtkWidget* dialog)
{
    G_GNUC_BEGIN_IGNORE_DEPRECATIONS
    return gtk_dialog_get_action_area(GTK_DIALOG(dialog));
    G_GNUC_END_IGNORE_DEPRECATIONS
}

void on_Combo_changed(GtkWidget* combo, gpointer)
{
    const int active = gtk_combo_box_get_active(GTK_COMBO_BOX(combo));
    const auto* const items = AttachedData<History>(combo, kItemsKey);
    if (active < 0 || items == nullptr || static_cast<std::size_t>(active) >= items->size()) {
        return;
    }
    GtkWidget* const entry = ComboEntry(combo);
    // What was picked is there to be used: the next key is for it, Return above all.
    if (gtk_widget_get_mapped(entry) && gtk_editable_get_editable(GTK_EDITABLE(entry))) {
        gtk_entry_grab_focus_without_selecting(GTK_ENTRY(entry));
    }
    SetEntryBytes(entry, (*items)[static_cast<std::size_t>(active)]);
}

}  // namespace

// A tree view whose only difference is that it names its accessible.
struct FnkTreeView {
    GtkTreeView parent_instance;
};
struct FnkTreeViewClass {
    GtkTreeViewClass parent_class;
};
G_DEFINE_TYPE(FnkTreeView, fnk_tree_view, GTK_TYPE_TREE_VIEW)

static AtkObject* fnk_tree_view_get_accessible(GtkWidget* widget)
{
    AtkObject* const accessible = GTK_WIDGET_CLASS(fnk_tree_view_parent_class)->get_accessible(widget);
    if (accessible != nullptr && atk_object_get_name(accessible) == nullptr) {
        atk_object_set_name(accessible, AttachedData<std::string>(widget, kNameKey)->c_str());
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
    // A view that has been allowed the focus takes it by itself, and needs it for this very click.
    if (GTK_IS_WINDOW(window) && !gtk_widget_get_can_focus(view)) {
        ReleaseEntryFocus(window);
    }
    return FALSE;
}

GtkWidget* CreateTreeView(const char* accessible_name)
{
    auto* const view = static_cast<GtkWidget*>(g_object_new(fnk_tree_view_get_type(), nullptr));
    AttachData(view, kNameKey, std::string(accessible_name));
    gtk_widget_set_can_focus(view, FALSE);
    g_signal_connect(view, "button-press-event", G_CALLBACK(on_TreeView_button_press), nullptr);
    gtk_widget_show(view);
    return view;
}

GtkWidget* CreateDialogBox(GtkWidget** content, int width, int height)
{
    if (content == nullptr) {
        return nullptr;
    }
    GtkWidget* const dialog = gtk_dialog_new();
    if (width >= 1 && height >= 1) {
        gtk_widget_set_size_request(dialog, width, height);
    }
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
    gtk_window_set_resizable(GTK_WINDOW(dialog), FALSE);
    *content = gtk_dialog_get_content_area(GTK_DIALOG(dialog));
    gtk_box_set_spacing(GTK_BOX(*content), kDialogSpacing);
    gtk_container_set_border_width(GTK_CONTAINER(*content), kDialogSpacing);
    gtk_widget_show(*content);
    return dialog;
}

GtkWidget* CreateNormalDialogBox(GtkWidget** vbox, int width, int height, int spacing)
{
    GtkWidget* content = nullptr;
    if (vbox == nullptr) {
        return nullptr;
    }
    GtkWidget* const dialog = CreateDialogBox(&content, width, height);
    *vbox = gtk_box_new(GTK_ORIENTATION_VERTICAL, spacing);
    gtk_box_pack_start(GTK_BOX(content), *vbox, TRUE, TRUE, 0);
    gtk_widget_show(*vbox);
    return dialog;
}

GtkWidget* CreateIconDialogBox(GtkWidget** vbox, const Picture& picture, int width, int height, int spacing)
{
    GtkWidget* content = nullptr;
    if (vbox == nullptr || picture.xpm == nullptr) {
        return nullptr;
    }
    GtkWidget* const dialog = CreateDialogBox(&content, width, height);
    GtkWidget* const hbox = CreateHBox(content, false, kIconSpacing, 0);
    GtkWidget* const icon = CreatePixmap(picture);
    gtk_box_pack_start(GTK_BOX(hbox), icon, FALSE, FALSE, 0);
    gtk_widget_show(icon);
    *vbox = gtk_box_new(GTK_ORIENTATION_VERTICAL, spacing);
    gtk_box_pack_start(GTK_BOX(hbox), *vbox, FALSE, FALSE, 0);
    gtk_widget_show(*vbox);
    return dialog;
}

GtkWidget* CreateNotebookDialogBox(GtkWidget** notebook, int width, int height)
{
    GtkWidget* content = nullptr;
    if (notebook == nullptr) {
        return nullptr;
    }
    GtkWidget* const dialog = CreateDialogBox(&content, width, height);
    *notebook = gtk_notebook_new();
    gtk_box_pack_start(GTK_BOX(content), *notebook, TRUE, TRUE, 0);
    gtk_widget_show(*notebook);
    return dialog;
}

GtkWidget* CreateButtonRow(GtkWidget* dialog)
{
    GtkWidget* const area = DialogActionArea(dialog);
    gtk_container_set_border_width(GTK_CONTAINER(area), 0);
    gtk_widget_show(area);
    GtkWidget* const box = gtk_button_box_new(GTK_ORIENTATION_HORIZONTAL);
    gtk_button_box_set_layout(GTK_BUTTON_BOX(box), GTK_BUTTONBOX_END);
    gtk_box_set_spacing(GTK_BOX(box), kButtonSpacing);
    gtk_box_pack_start(GTK_BOX(area), box, TRUE, TRUE, 0);
    gtk_widget_show(box);
    return box;
}

int CreateDlgButtonBox(GtkWidget* dialog, GtkWidget** ok, GtkWidget** cancel, DialogClosing closing)
{
    if (dialog == nullptr) {
        return kWidgetError;
    }
    GtkWidget* const box = CreateButtonRow(dialog);
    GtkWidget* last = nullptr;
    if (ok != nullptr) {
        last = *ok = AddDialogButton(box, _("OK"));
    }
    if (cancel != nullptr) {
        last = *cancel = AddDialogButton(box, _("Cancel"));
    }
    if (last == nullptr) {
        return 0;
    }
    gtk_widget_grab_focus(last);
    gtk_widget_grab_default(last);
    if (closing == CLOSING_WIRED) {
        g_signal_connect(dialog, "delete-event", G_CALLBACK(on_delete_event), last);
        g_signal_connect(last, "clicked", G_CALLBACK(on_CancelButton_clicked), nullptr);
    }
    return 0;
}

GtkWidget* CreateHandleBox(GtkWidget* box)
{
    if (box == nullptr) {
        return nullptr;
    }
    GtkWidget* const handle_box = gtk_frame_new(nullptr);
    gtk_frame_set_shadow_type(GTK_FRAME(handle_box), GTK_SHADOW_NONE);
    gtk_box_pack_start(GTK_BOX(box), handle_box, FALSE, FALSE, 0);
    gtk_widget_show(handle_box);
    return handle_box;
}

GtkWidget* CreateVBox(GtkWidget* container, int spacing, int border)
{
    if (container == nullptr) {
        return nullptr;
    }
    GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_VERTICAL, spacing);
    gtk_container_add(GTK_CONTAINER(container), box);
    if (border != 0) {
        gtk_container_set_border_width(GTK_CONTAINER(box), static_cast<guint>(border));
    }
    gtk_widget_show(box);
    return box;
}

GtkWidget* CreateHBox(GtkWidget* container, bool homogeneous, int spacing, int border)
{
    if (container == nullptr) {
        return nullptr;
    }
    GtkWidget* const box = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, spacing);
    gtk_box_set_homogeneous(GTK_BOX(box), homogeneous);
    if (GTK_IS_BOX(container)) {
        gtk_box_pack_start(GTK_BOX(container), box, FALSE, FALSE, 0);
    } else {
        gtk_container_add(GTK_CONTAINER(container), box);
    }
    if (border != 0) {
        gtk_container_set_border_width(GTK_CONTAINER(box), static_cast<guint>(border));
    }
    gtk_widget_show(box);
    return box;
}

GtkWidget* CreateTable(int row_spacing, int column_spacing, int border)
{
    GtkWidget* const grid = gtk_grid_new();
    gtk_grid_set_row_spacing(GTK_GRID(grid), static_cast<guint>(row_spacing));
    gtk_grid_set_column_spacing(GTK_GRID(grid), static_cast<guint>(column_spacing));
    gtk_container_set_border_width(GTK_CONTAINER(grid), static_cast<guint>(border));
    gtk_widget_show(grid);
    return grid;
}

GtkWidget* CreateScroll()
{
    GtkWidget* const scroll = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroll), GTK_POLICY_AUTOMATIC, GTK_POLICY_AUTOMATIC);
    // Bars that stay say where in a long list one is. Those that fade in and out are animated for two
    // seconds each time, also when the window comes up, and lie over the last row.
    gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(scroll), FALSE);
    gtk_widget_show(scroll);
    return scroll;
}

GtkWidget* CreateComboBox(GtkWidget** entry, bool editable, int max_length)
{
    GtkWidget* const combo = gtk_combo_box_text_new_with_entry();
    gtk_widget_set_can_default(combo, TRUE);
    gtk_widget_set_focus_on_click(combo, FALSE);
    GtkWidget* const text = ComboEntry(combo);
    gtk_editable_set_editable(GTK_EDITABLE(text), editable);
    gtk_entry_set_max_length(GTK_ENTRY(text), max_length);
    g_signal_connect(combo, "changed", G_CALLBACK(on_Combo_changed), nullptr);
    if (entry != nullptr) {
        *entry = text;
    }
    gtk_widget_show(combo);
    return combo;
}

GtkWidget* CreatePixmap(const Picture& picture)
{
    if (picture.xpm == nullptr) {
        return nullptr;
    }
    GtkWidget* const image = gtk_image_new();
    ShowPicture(image, picture);
    return image;
}

GtkWidget* CreateLabel(GtkWidget* box, const char* text)
{
    if (box == nullptr || text == nullptr) {
        return nullptr;
    }
    GtkWidget* const label = gtk_label_new(text);
    gtk_label_set_xalign(GTK_LABEL(label), 0.0F);
    gtk_label_set_yalign(GTK_LABEL(label), 0.5F);
    gtk_label_set_justify(GTK_LABEL(label), GTK_JUSTIFY_LEFT);
    gtk_box_pack_start(GTK_BOX(box), label, FALSE, FALSE, 0);
    gtk_widget_show(label);
    return label;
}

GtkWidget* CreateTabLabel(GtkWidget* notebook, int page, const char* text)
{
    GtkWidget* const child = notebook == nullptr ? nullptr : gtk_notebook_get_nth_page(GTK_NOTEBOOK(notebook), page);
    if (child == nullptr || text == nullptr) {
        return nullptr;
    }
    GtkWidget* const label = gtk_label_new(text);
    gtk_notebook_set_tab_label(GTK_NOTEBOOK(notebook), child, label);
    gtk_widget_show(label);
    return label;
}

GtkWidget* CreateSeparator(GtkWidget* box)
{
    if (box == nullptr) {
        return nullptr;
    }
    GtkWidget* const separator = gtk_separator_new(GTK_ORIENTATION_HORIZONTAL);
    gtk_box_pack_start(GTK_BOX(box), separator, FALSE, FALSE, 0);
    gtk_widget_show(separator);
    return separator;
}

namespace {

/// The window that a dialog interrupts: a dialog or the progress of a command, or else the main
/// window.
GtkWidget* InterruptedWindow()
{
    GtkWidget* const holder = gtk_grab_get_current();
    GtkWidget* const window = holder != nullptr ? gtk_widget_get_toplevel(holder) : nullptr;
    if (GTK_IS_WINDOW(window) && gtk_window_get_window_type(GTK_WINDOW(window)) == GTK_WINDOW_TOPLEVEL) {
        return window;
    }
    return pMainW != nullptr ? pMainW->MainWindow : nullptr;
}

/// Nothing else takes input while the dialog runs, so it must not get lost behind the window that
/// it interrupts, nor be put away on its own.
void KeepAbove(GtkWindow* dialog, GtkWidget* parent)
{
    GtkWidget* const below = GTK_IS_WINDOW(parent) ? parent : InterruptedWindow();
    if (below != nullptr && gtk_window_get_transient_for(dialog) == nullptr) {
        gtk_window_set_transient_for(dialog, GTK_WINDOW(below));
    }
}

}  // namespace

void ModalMainLoop(GtkWidget* window, GtkWidget* parent)
{
    if (window == nullptr) {
        return;
    }
    g_signal_connect(window, "button-press-event", G_CALLBACK(on_Window_button_press_event), nullptr);
    KeepAbove(GTK_WINDOW(window), parent);
    if (parent != nullptr) {
        gtk_widget_set_sensitive(parent, FALSE);
    }
    gtk_widget_show(window);
    gtk_grab_add(window);
    gtk_main();
    gtk_grab_remove(window);
    gtk_widget_hide(window);
    gtk_widget_destroy(window);
    if (parent != nullptr) {
        gtk_widget_set_sensitive(parent, TRUE);
        // The toolkit took its grab away when it became insensitive.
        if (GTK_IS_WINDOW(parent) && gtk_window_get_modal(GTK_WINDOW(parent))) {
            gtk_grab_add(parent);
        }
    }
}

gboolean on_delete_event(GtkWidget*, GdkEvent*, gpointer button)
{
    gtk_button_clicked(GTK_BUTTON(button));
    return TRUE;
}

void on_CancelButton_clicked(GtkWidget*, gpointer)
{
    gtk_main_quit();
}

gboolean on_Window_button_press_event(GtkWidget* widget, GdkEvent*, gpointer)
{
    gdk_window_raise(gtk_widget_get_window(widget));
    return TRUE;
}

gboolean on_Window_visibility_notify(GtkWidget* widget, GdkEvent*, gpointer)
{
    gdk_window_raise(gtk_widget_get_window(widget));
    return FALSE;
}

void on_ComboEntry_activate(GtkWidget*, gpointer button)
{
    gtk_button_clicked(GTK_BUTTON(button));
}

GtkWidget* ComboEntry(GtkWidget* combo)
{
    return gtk_bin_get_child(GTK_BIN(combo));
}

void SetComboStrings(GtkWidget* combo, const History& list)
{
    // Before the items change, so that their "changed" does not write into the entry.
    AttachData(combo, kItemsKey, History());
    gtk_combo_box_text_remove_all(GTK_COMBO_BOX_TEXT(combo));
    for (const std::string& item : list) {
        gtk_combo_box_text_append_text(GTK_COMBO_BOX_TEXT(combo), DisplayText(item).c_str());
    }
    AttachData(combo, kItemsKey, list);
}

bool IsComboString(GtkWidget* combo)
{
    const std::string text = gtk_entry_get_text(GTK_ENTRY(ComboEntry(combo)));
    const auto* const items = AttachedData<History>(combo, kItemsKey);
    if (items == nullptr) {
        return false;
    }
    for (const std::string& item : *items) {
        if (DisplayText(item) == text) {
            return true;
        }
    }
    return false;
}

void SetEntryBytes(GtkWidget* entry, const std::string& bytes)
{
    gtk_entry_set_text(GTK_ENTRY(entry), DisplayText(bytes).c_str());
    gtk_editable_set_position(GTK_EDITABLE(entry), -1);
    AttachData(entry, kBytesKey, bytes);
}

std::string GetEntryBytes(GtkWidget* entry)
{
    const std::string text = gtk_entry_get_text(GTK_ENTRY(entry));
    const auto* const bytes = AttachedData<std::string>(entry, kBytesKey);
    return bytes != nullptr && DisplayText(*bytes) == text ? *bytes : text;
}

void AddHistoryListC(GtkWidget* combo, History& list)
{
    if (combo != nullptr) {
        AddHistoryListS(list, GetEntryBytes(ComboEntry(combo)));
    }
}

namespace {

/// Where the row is, in coordinates of the whole tree.
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

TreePath GetFirstVisiblePath(GtkTreeView* view)
{
    GtkTreePath* start = nullptr;
    if (!gtk_tree_view_get_visible_range(view, &start, nullptr)) {
        return nullptr;
    }
    TreePath first(start);
    // Scrolled to the very edge of a row, the toolkit names the one above, which is out of view.
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
    // Fonts that stand in for missing letters are often taller than the one that is asked for.
    PangoLayout* const layout = gtk_widget_create_pango_layout(view, "\u00c1g\u65e5\u21b5\ufffd");
    int text_height = 0;
    int padding = 0;
    pango_layout_get_pixel_size(layout, nullptr, &text_height);
    g_object_unref(layout);
    gtk_cell_renderer_get_padding(GTK_CELL_RENDERER(cell), nullptr, &padding);
    gtk_cell_renderer_set_fixed_size(GTK_CELL_RENDERER(cell), -1, text_height + 2 * padding);
}

}  // namespace

void KeepRowHeight(GtkWidget* view, GtkCellRenderer* cell)
{
    on_View_style_updated(view, cell);
    g_signal_connect_object(view, "style-updated", G_CALLBACK(on_View_style_updated), cell, GConnectFlags());
}

void ReleaseEntryFocus(GtkWidget* window)
{
    gtk_window_set_focus(GTK_WINDOW(window), nullptr);
}

namespace {

gboolean on_ShortLabel_query_tooltip(GtkWidget* label, int, int, gboolean, GtkTooltip* tooltip, gpointer)
{
    if (!pango_layout_is_ellipsized(gtk_label_get_layout(GTK_LABEL(label)))) {
        return FALSE;
    }
    constexpr int kLineCharacters = 70;
    GtkWidget* const whole = gtk_label_new(gtk_label_get_text(GTK_LABEL(label)));
    gtk_label_set_line_wrap(GTK_LABEL(whole), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(whole), PANGO_WRAP_WORD_CHAR);  // Names need have no blanks.
    gtk_label_set_max_width_chars(GTK_LABEL(whole), kLineCharacters);
    gtk_widget_show(whole);
    gtk_tooltip_set_custom(tooltip, whole);
    return TRUE;
}

}  // namespace

void ShortenLabel(GtkWidget* label, int max_characters)
{
    gtk_label_set_single_line_mode(GTK_LABEL(label), TRUE);
    gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_MIDDLE);
    gtk_label_set_max_width_chars(GTK_LABEL(label), max_characters);
    gtk_widget_set_has_tooltip(label, TRUE);
    g_signal_connect(label, "query-tooltip", G_CALLBACK(on_ShortLabel_query_tooltip), nullptr);
}

GtkWidget* StatusBarLabel(GtkWidget* status_bar)
{
    GtkWidget* const area = gtk_statusbar_get_message_area(GTK_STATUSBAR(status_bar));
    const std::unique_ptr<GList, decltype(&g_list_free)> children(gtk_container_get_children(GTK_CONTAINER(area)),
                                                                  &g_list_free);
    return GTK_WIDGET(children->data);
}

void SetStatusBarText(GtkWidget* status_bar, const std::string& text)
{
    const std::string shown = DisplayText(text);
    gtk_label_set_text(GTK_LABEL(StatusBarLabel(status_bar)), shown.c_str());
    // The bar's name says which bar it is, and hides the label from screen readers.
    atk_object_set_description(gtk_widget_get_accessible(status_bar), shown.c_str());
}

void SetAccessibleName(GtkWidget* widget, const char* name)
{
    atk_object_set_name(gtk_widget_get_accessible(widget), name);
}
