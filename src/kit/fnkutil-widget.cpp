#include "kit/fnkutil-widget.h"

#include <gdk/gdkkeysyms.h>

#include <memory>

#include "core/fnkstring.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"

namespace {

constexpr int kDialogSpacing = 5;
constexpr int kButtonSpacing = 10;
constexpr int kIconSpacing = 10;
constexpr const char* kItemsKey = "fennick-items";
constexpr const char* kBytesKey = "fennick-bytes";

/// Attaches a value to an object, which then owns it.
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
    // Focus the entry: the next key, most likely Return, is meant for the chosen text.
    if (gtk_widget_get_mapped(entry) && gtk_editable_get_editable(GTK_EDITABLE(entry))) {
        gtk_entry_grab_focus_without_selecting(GTK_ENTRY(entry));
    }
    SetEntryBytes(entry, (*items)[static_cast<std::size_t>(active)]);
}

/// Return on a toggle or check button presses the default button. The toolkit would switch the button,
/// and the user would not know which of both a dialog does. Combo boxes keep their arrow.
gboolean on_Dialog_key_press(GtkWidget* dialog, GdkEventKey* event, gpointer)
{
    GtkWidget* const focus = gtk_window_get_focus(GTK_WINDOW(dialog));
    GtkWidget* const button = gtk_window_get_default_widget(GTK_WINDOW(dialog));
    const bool is_return =
        event->keyval == GDK_KEY_Return || event->keyval == GDK_KEY_KP_Enter || event->keyval == GDK_KEY_ISO_Enter;
    if (!is_return || !GTK_IS_TOGGLE_BUTTON(focus) || gtk_widget_get_ancestor(focus, GTK_TYPE_COMBO_BOX) != nullptr ||
        button == nullptr || !gtk_widget_is_sensitive(button)) {
        return FALSE;
    }
    gtk_widget_activate(button);
    return TRUE;
}

// A notebook moves the focus into the page that it turns to, where the next key would change something.
// These two leave it on the tab.

/// A press on a tab moves the focus on only if the notebook did not have it.
gboolean on_Notebook_button_press(GtkWidget* notebook, GdkEvent* event, gpointer)
{
    if (gtk_get_event_widget(event) == notebook) {
        gtk_widget_grab_focus(notebook);
    }
    return FALSE;
}

void on_Notebook_switch_page(GtkWidget* notebook, GtkWidget*, guint, gpointer)
{
    if (gtk_widget_get_mapped(notebook)) {
        gtk_widget_grab_focus(notebook);
    }
}

void on_Notebook_map(GtkWidget* notebook, gpointer)
{
    SetAccessibleName(notebook, gtk_window_get_title(GTK_WINDOW(gtk_widget_get_toplevel(notebook))));
}

}  // namespace

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
    g_signal_connect(dialog, "key-press-event", G_CALLBACK(on_Dialog_key_press), nullptr);
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
    // For assistive programs, the toolkit asks for the tab of each page that goes, even when the tab is
    // gone already. It does not ask while tabs are hidden.
    g_signal_connect(*notebook, "destroy",
                     G_CALLBACK(+[](GtkNotebook* pages, gpointer) { gtk_notebook_set_show_tabs(pages, FALSE); }),
                     nullptr);
    g_signal_connect(*notebook, "button-press-event", G_CALLBACK(on_Notebook_button_press), nullptr);
    g_signal_connect(*notebook, "map", G_CALLBACK(on_Notebook_map), nullptr);
    g_signal_connect_after(*notebook, "switch-page", G_CALLBACK(on_Notebook_switch_page), nullptr);
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

GtkWidget* AddDialogButton(GtkWidget* row, const char* label)
{
    GtkWidget* const button = gtk_button_new_with_label(label);
    gtk_container_add(GTK_CONTAINER(row), button);
    gtk_widget_set_can_default(button, TRUE);
    gtk_widget_show(button);
    return button;
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
    // Permanent scroll bars show the position in a long list. Overlay scroll bars would cover the last
    // row, and an animation of two seconds would run each time they appear, even at start.
    gtk_scrolled_window_set_overlay_scrolling(GTK_SCROLLED_WINDOW(scroll), FALSE);
    gtk_widget_set_can_focus(scroll, FALSE);  // What is in it takes the focus, or nothing does.
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
    GList* const cells = gtk_cell_layout_get_cells(GTK_CELL_LAYOUT(combo));
    // The list is as wide as the entry, and both ends of a path matter.
    g_object_set(cells->data, "ellipsize", PANGO_ELLIPSIZE_MIDDLE, nullptr);
    g_list_free(cells);
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

/// The window that a new dialog interrupts: the dialog with the grab, else the main window.
GtkWidget* InterruptedWindow()
{
    GtkWidget* const holder = gtk_grab_get_current();
    GtkWidget* const window = holder != nullptr ? gtk_widget_get_toplevel(holder) : nullptr;
    if (GTK_IS_WINDOW(window) && gtk_window_get_window_type(GTK_WINDOW(window)) == GTK_WINDOW_TOPLEVEL) {
        return window;
    }
    return pMainW != nullptr ? pMainW->MainWindow : nullptr;
}

/// Keeps a dialog above the window that it interrupts; the two are minimised together. The user must
/// be able to find the dialog, as nothing else takes input while it runs.
void SetTransientParent(GtkWindow* dialog, GtkWidget* parent)
{
    GtkWidget* const below = GTK_IS_WINDOW(parent) ? parent : InterruptedWindow();
    if (below != nullptr && gtk_window_get_transient_for(dialog) == nullptr) {
        gtk_window_set_transient_for(dialog, GTK_WINDOW(below));
    }
}

}  // namespace

namespace {
int modal_scopes = 0;
}

ModalScope::ModalScope()
{
    ++modal_scopes;
}

ModalScope::~ModalScope()
{
    --modal_scopes;
}

bool IsModal()
{
    return modal_scopes > 0;
}

void ModalMainLoop(GtkWidget* window, GtkWidget* parent)
{
    if (window == nullptr) {
        return;
    }
    const ModalScope scope;
    g_signal_connect(window, "button-press-event", G_CALLBACK(on_Window_button_press_event), nullptr);
    SetTransientParent(GTK_WINDOW(window), parent);
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
        // The parent lost its grab when it became insensitive.
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
    // While no items are attached, on_Combo_changed leaves the entry alone.
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

void ReleaseEntryFocus(GtkWidget* window)
{
    gtk_window_set_focus(GTK_WINDOW(window), nullptr);
}

void WrapLabel(GtkWidget* label)
{
    constexpr int kLineCharacters = 70;
    gtk_label_set_line_wrap(GTK_LABEL(label), TRUE);
    gtk_label_set_line_wrap_mode(GTK_LABEL(label), PANGO_WRAP_WORD_CHAR);  // Names may have no blanks.
    gtk_label_set_max_width_chars(GTK_LABEL(label), kLineCharacters);
    // A hyphen at the break would look like part of the name.
    PangoAttrList* const attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_insert_hyphens_new(FALSE));
    gtk_label_set_attributes(GTK_LABEL(label), attributes);
    pango_attr_list_unref(attributes);
}

void ShowWholeText(GtkTooltip* tooltip, const char* text)
{
    GtkWidget* const label = gtk_label_new(text);
    WrapLabel(label);
    gtk_widget_show(label);
    gtk_tooltip_set_custom(tooltip, label);
}

namespace {

gboolean on_ShortLabel_query_tooltip(GtkWidget* label, int, int, gboolean, GtkTooltip* tooltip, gpointer)
{
    if (!pango_layout_is_ellipsized(gtk_label_get_layout(GTK_LABEL(label)))) {
        return FALSE;
    }
    ShowWholeText(tooltip, gtk_label_get_text(GTK_LABEL(label)));
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

void SetStyle(GtkWidget* widget, const char* rules)
{
    GtkCssProvider* const provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, rules, -1, nullptr);
    gtk_style_context_add_provider(gtk_widget_get_style_context(widget), GTK_STYLE_PROVIDER(provider),
                                   GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(provider);
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
    GtkLabel* const label = GTK_LABEL(StatusBarLabel(status_bar));
    gtk_label_set_text(label, shown.c_str());
    // Of a path the end says most, of a name and its size both ends do.
    gtk_label_set_ellipsize(label, shown.starts_with(" /") ? PANGO_ELLIPSIZE_START : PANGO_ELLIPSIZE_MIDDLE);
    // Screen readers skip the label because the bar itself has a name.
    atk_object_set_description(gtk_widget_get_accessible(status_bar), shown.c_str());
}

namespace {

/// Names the arrow of a combo box, which the focus stops at, too.
void NameArrow(GtkWidget* widget, gpointer name)
{
    if (GTK_IS_TOGGLE_BUTTON(widget)) {
        atk_object_set_name(gtk_widget_get_accessible(widget), static_cast<const char*>(name));
    }
    if (GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(GTK_CONTAINER(widget), NameArrow, name);
    }
}

}  // namespace

void SetAccessibleName(GtkWidget* widget, const char* name)
{
    atk_object_set_name(gtk_widget_get_accessible(widget), name);
    if (GtkWidget* const combo = gtk_widget_get_ancestor(widget, GTK_TYPE_COMBO_BOX)) {
        NameArrow(combo, const_cast<char*>(name));
    }
}
