#include "commands/fnksettingmenu-columns.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>

#include "core/fnkraii.h"
#include "core/fnkstring.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"

namespace {

constexpr int kSpacing = 5;
constexpr int kListWidth = 80;
constexpr int kButtonWidth = 70;
constexpr int kButtonHeight = 25;

/// Columns of the list stores.
enum ListField { FIELD_ID, FIELD_TITLE };

GtkTreeModel* ModelOf(GtkWidget* list)
{
    return gtk_tree_view_get_model(GTK_TREE_VIEW(list));
}

GtkTreeSelection* SelectionOf(GtkWidget* list)
{
    return gtk_tree_view_get_selection(GTK_TREE_VIEW(list));
}

int ColumnIdOf(GtkTreeModel* model, GtkTreeIter* row)
{
    int id = 0;
    gtk_tree_model_get(model, row, FIELD_ID, &id, -1);
    return id;
}

void AppendColumn(GtkWidget* list, int id)
{
    gtk_list_store_insert_with_values(GTK_LIST_STORE(ModelOf(list)), nullptr, -1, FIELD_ID, id, FIELD_TITLE,
                                      GetListColumnString(id).c_str(), -1);
}

/// Moves the selected rows from source to the end of target, in their order. Removing a row makes the
/// toolkit select another one, so the rows are collected first and the selection is cleared last.
void MoveSelectedRows(GtkWidget* source, GtkWidget* target)
{
    GtkTreeModel* const model = ModelOf(source);
    GList* const selected = gtk_tree_selection_get_selected_rows(SelectionOf(source), nullptr);
    for (const GList* link = selected; link != nullptr; link = link->next) {
        GtkTreeIter row;
        gtk_tree_model_get_iter(model, &row, static_cast<GtkTreePath*>(link->data));
        AppendColumn(target, ColumnIdOf(model, &row));
    }
    // From the bottom, so that the remaining paths stay valid.
    for (const GList* link = g_list_last(selected); link != nullptr; link = link->prev) {
        GtkTreeIter row;
        gtk_tree_model_get_iter(model, &row, static_cast<GtkTreePath*>(link->data));
        gtk_list_store_remove(GTK_LIST_STORE(model), &row);
    }
    g_list_free_full(selected, [](gpointer path) { gtk_tree_path_free(static_cast<GtkTreePath*>(path)); });
    gtk_tree_selection_unselect_all(SelectionOf(source));
}

void on_DetaildButton_clicked(GtkWidget* button, gpointer data)
{
    const auto* const info = static_cast<const OptionDlgInfo*>(data);
    if (button == info->AddButton) {
        MoveSelectedRows(info->PossibleList, info->DisplayedList);
    } else {
        MoveSelectedRows(info->DisplayedList, info->PossibleList);
    }
}

/// Enables the Remove button. Not for the name column: without it, files could not be told apart.
void GetListSensitive(GtkWidget* list, GtkWidget* button)
{
    bool can_remove = gtk_tree_selection_count_selected_rows(SelectionOf(list)) > 0;
    gtk_tree_selection_selected_foreach(
        SelectionOf(list),
        [](GtkTreeModel* model, GtkTreePath*, GtkTreeIter* row, gpointer flag) {
            *static_cast<bool*>(flag) &= ColumnIdOf(model, row) != COLUMN_NAME;
        },
        &can_remove);
    gtk_widget_set_sensitive(button, can_remove);
}

void on_ColumnList_selection_changed(GtkTreeSelection* selection, gpointer data)
{
    const auto* const info = static_cast<const OptionDlgInfo*>(data);
    GtkWidget* const list = GTK_WIDGET(gtk_tree_selection_get_tree_view(selection));
    if (list == info->DisplayedList) {
        GetListSensitive(list, info->RemoveButton);
    } else {
        gtk_widget_set_sensitive(info->AddButton, gtk_tree_selection_count_selected_rows(selection) > 0);
    }
}

/// A double click moves the row to the other list.
void on_ColumnList_row_activated(GtkTreeView* list, GtkTreePath* row, GtkTreeViewColumn*, gpointer data)
{
    const auto* const info = static_cast<const OptionDlgInfo*>(data);
    gtk_tree_selection_unselect_all(gtk_tree_view_get_selection(list));
    gtk_tree_selection_select_path(gtk_tree_view_get_selection(list), row);
    GtkWidget* const button = GTK_WIDGET(list) == info->DisplayedList ? info->RemoveButton : info->AddButton;
    if (gtk_widget_get_sensitive(button)) {
        gtk_button_clicked(GTK_BUTTON(button));
    }
}

/// Alt+Up and Alt+Down move the row, as dragging does.
gboolean on_DisplayedList_key_press_event(GtkWidget* list, GdkEventKey* event, gpointer)
{
    const bool up = event->keyval == GDK_KEY_Up || event->keyval == GDK_KEY_KP_Up;
    const bool down = event->keyval == GDK_KEY_Down || event->keyval == GDK_KEY_KP_Down;
    if ((event->state & GDK_MOD1_MASK) == 0 || (!up && !down)) {
        return FALSE;
    }
    GtkTreePath* cursor = nullptr;
    gtk_tree_view_get_cursor(GTK_TREE_VIEW(list), &cursor, nullptr);
    const TreePath path(cursor);
    GtkTreeModel* const model = ModelOf(list);
    GtkTreeIter row;
    if (path == nullptr || !gtk_tree_model_get_iter(model, &row, path.get())) {
        return TRUE;
    }
    GtkTreeIter other = row;
    if (up ? gtk_tree_model_iter_previous(model, &other) : gtk_tree_model_iter_next(model, &other)) {
        gtk_list_store_swap(GTK_LIST_STORE(model), &row, &other);
    }
    return TRUE;
}

void AddTitleColumn(GtkTreeView* list, const char* title)
{
    GtkCellRenderer* const cell = gtk_cell_renderer_text_new();
    GtkTreeViewColumn* const column =
        gtk_tree_view_column_new_with_attributes(title, cell, "text", FIELD_TITLE, nullptr);
    gtk_tree_view_append_column(list, column);
}

GtkWidget* CreateSingleList(GtkWidget* box, const char* title, OptionDlgInfo* info)
{
    GtkWidget* const scroll = CreateScroll();
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scroll), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroll), GTK_SHADOW_IN);
    gtk_box_pack_start(GTK_BOX(box), scroll, TRUE, TRUE, 0);
    GtkWidget* const list = CreateTreeView(title);
    // The toolkit handles keys, and clicks with Control and Shift, only in a list that can have the
    // focus.
    gtk_widget_set_can_focus(list, TRUE);
    gtk_widget_set_size_request(list, kListWidth, -1);
    GtkListStore* const store = gtk_list_store_new(2, G_TYPE_INT, G_TYPE_STRING);
    gtk_tree_view_set_model(GTK_TREE_VIEW(list), GTK_TREE_MODEL(store));
    g_object_unref(store);
    gtk_tree_view_set_enable_search(GTK_TREE_VIEW(list), FALSE);
    AddTitleColumn(GTK_TREE_VIEW(list), title);
    gtk_tree_selection_set_mode(SelectionOf(list), GTK_SELECTION_MULTIPLE);
    g_signal_connect(SelectionOf(list), "changed", G_CALLBACK(on_ColumnList_selection_changed), info);
    g_signal_connect(list, "row-activated", G_CALLBACK(on_ColumnList_row_activated), info);
    gtk_container_add(GTK_CONTAINER(scroll), list);
    return list;
}

int CompareTitles(GtkTreeModel* model, GtkTreeIter* one, GtkTreeIter* other, gpointer)
{
    char* first = nullptr;
    char* second = nullptr;
    gtk_tree_model_get(model, one, FIELD_TITLE, &first, -1);
    gtk_tree_model_get(model, other, FIELD_TITLE, &second, -1);
    const GlibPointer<char> first_owner(first);
    const GlibPointer<char> second_owner(second);
    return g_strcmp0(first, second);
}

void KeepSorted(GtkWidget* list)
{
    GtkTreeSortable* const store = GTK_TREE_SORTABLE(ModelOf(list));
    gtk_tree_sortable_set_sort_func(store, FIELD_TITLE, CompareTitles, nullptr, nullptr);
    gtk_tree_sortable_set_sort_column_id(store, FIELD_TITLE, GTK_SORT_ASCENDING);
}

GtkWidget* AddMoveButton(GtkWidget* box, const char* label, OptionDlgInfo* info)
{
    GtkWidget* const button = gtk_button_new_with_label(label);
    gtk_widget_set_size_request(button, kButtonWidth, kButtonHeight);
    gtk_widget_set_sensitive(button, FALSE);
    gtk_container_add(GTK_CONTAINER(box), button);
    g_signal_connect(button, "clicked", G_CALLBACK(on_DetaildButton_clicked), info);
    gtk_widget_show(button);
    return button;
}

void AddMoveButtons(GtkWidget* page, OptionDlgInfo* info)
{
    GtkWidget* const box = gtk_button_box_new(GTK_ORIENTATION_VERTICAL);
    gtk_button_box_set_layout(GTK_BUTTON_BOX(box), GTK_BUTTONBOX_SPREAD);
    gtk_box_pack_start(GTK_BOX(page), box, FALSE, FALSE, 0);
    info->AddButton = AddMoveButton(box, _("Add"), info);
    info->RemoveButton = AddMoveButton(box, _("Remove"), info);
    gtk_widget_show(box);
}

}  // namespace

void CreateColumnsPage(GtkWidget* notebook, OptionDlgInfo* info)
{
    GtkWidget* const page = CreateHBox(notebook, false, kSpacing, kSpacing);
    info->PossibleList = CreateSingleList(page, _("Possible columns"), info);
    KeepSorted(info->PossibleList);
    AddMoveButtons(page, info);
    info->DisplayedList = CreateSingleList(page, _("Displayed columns"), info);
    gtk_tree_view_set_reorderable(GTK_TREE_VIEW(info->DisplayedList), TRUE);
    gtk_widget_set_tooltip_text(info->DisplayedList, _("Drag a column to where it is to stand, or press Alt+Up or "
                                                       "Alt+Down."));
    // After a drag the toolkit selects the row below the dragged one.
    g_signal_connect_swapped(info->DisplayedList, "drag-end", G_CALLBACK(gtk_tree_selection_unselect_all),
                             SelectionOf(info->DisplayedList));
    g_signal_connect(info->DisplayedList, "key-press-event", G_CALLBACK(on_DisplayedList_key_press_event), nullptr);
}

void SetColumnLists(const OptionDlgInfo* info)
{
    const int* const first = pGTable->ColumnPosition.data();
    const int* const last = first + pGTable->ColumnCount;
    for (const int* id = first; id != last; ++id) {
        AppendColumn(info->DisplayedList, *id);
    }
    for (int id = 0; id < kColumnKinds; ++id) {
        if (std::find(first, last, id) == last) {
            AppendColumn(info->PossibleList, id);
        }
    }
}

std::vector<int> GetDisplayedColumns(const OptionDlgInfo* info)
{
    std::vector<int> ids;
    GtkTreeModel* const model = ModelOf(info->DisplayedList);
    GtkTreeIter row;
    for (gboolean more = gtk_tree_model_get_iter_first(model, &row); more;
         more = gtk_tree_model_iter_next(model, &row)) {
        ids.push_back(ColumnIdOf(model, &row));
    }
    return ids;
}
