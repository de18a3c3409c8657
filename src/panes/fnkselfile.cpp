#include "panes/fnkselfile.h"

#include <gdk/gdkkeysyms.h>

#include <algorithm>
#include <vector>

#include "core/fnkraii.h"
#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree-keys.h"
#include "panes/fnkdirtree.h"

namespace {

constexpr int kDialogSpacing = 5;
constexpr int kDirDialogWidth = 310;
constexpr int kDirDialogHeight = 350;
constexpr int kAppDialogWidth = 320;
constexpr int kAppDialogHeight = 330;
constexpr int kAppColumnWidth = 80;

/// Keeps the dialog above the window that holds the widget.
void StackAbove(GtkWidget* dialog, GtkWidget* widget)
{
    GtkWidget* const window = gtk_widget_get_toplevel(widget);
    if (GTK_IS_WINDOW(window)) {
        gtk_window_set_transient_for(GTK_WINDOW(dialog), GTK_WINDOW(window));
    }
}

// Files.

struct FileSelection {
    GtkWidget* dialog;
    GtkWidget* entry;  ///< The caller's entry, for the result.
};

/// Leaves the dialog open if no file is chosen.
void on_FileSel_OKButton_clicked(GtkWidget*, gpointer data)
{
    const auto* const state = static_cast<const FileSelection*>(data);
    const GlibPointer<char> name(gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(state->dialog)));
    if (name != nullptr) {
        SetEntryBytes(state->entry, name.get());
        gtk_main_quit();
    }
}

/// Handles the response, not the button's "clicked": when a directory is chosen, the toolkit may enter
/// it instead of responding.
void on_FileSel_response(GtkWidget* dialog, int response, gpointer state)
{
    if (response == GTK_RESPONSE_ACCEPT) {
        on_FileSel_OKButton_clicked(dialog, state);
    } else if (response == GTK_RESPONSE_CANCEL) {
        gtk_main_quit();
    }
}

GtkWidget* CreateFileSelection()
{
    GtkWidget* const dialog =
        gtk_file_chooser_dialog_new(_("Select File"), nullptr, GTK_FILE_CHOOSER_ACTION_OPEN, nullptr, nullptr);
    gtk_file_chooser_set_local_only(GTK_FILE_CHOOSER(dialog), TRUE);
    const std::string home = GetHomeDirectory();
    gtk_file_chooser_set_current_folder(GTK_FILE_CHOOSER(dialog),
                                        home.empty() ? pGTable->CurrentDir.c_str() : home.c_str());
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
    return dialog;
}

/// The toolkit makes the dialog as large as it was last in any program.
void KeepWithinMainWindow(GtkWidget* dialog)
{
    GdkGeometry limits = {};
    gtk_window_get_size(GTK_WINDOW(pMainW->MainWindow), &limits.max_width, &limits.max_height);
    gtk_window_set_geometry_hints(GTK_WINDOW(dialog), nullptr, &limits, GDK_HINT_MAX_SIZE);
}

void on_FileBrowseButton_clicked(GtkWidget*, gpointer entry)
{
    FileSelection state = {CreateFileSelection(), GTK_WIDGET(entry)};
    StackAbove(state.dialog, state.entry);
    KeepWithinMainWindow(state.dialog);
    gtk_dialog_add_button(GTK_DIALOG(state.dialog), _("OK"), GTK_RESPONSE_ACCEPT);
    GtkWidget* const cancel = gtk_dialog_add_button(GTK_DIALOG(state.dialog), _("Cancel"), GTK_RESPONSE_CANCEL);
    gtk_dialog_set_default_response(GTK_DIALOG(state.dialog), GTK_RESPONSE_ACCEPT);
    g_signal_connect(state.dialog, "delete-event", G_CALLBACK(on_delete_event), cancel);
    g_signal_connect(state.dialog, "response", G_CALLBACK(on_FileSel_response), &state);
    ModalMainLoop(state.dialog, nullptr);
}

// Directories.

struct DirSelection {
    bool accepted = false;
    GtkWidget* caller_entry = nullptr;
    GtkWidget* entry = nullptr;
    GtkTreeView* tree = nullptr;
};

void on_DirSel_ComboEntry_activate(GtkWidget*, gpointer state)
{
    const auto& selection = *static_cast<const DirSelection*>(state);
    OpenTypedPath(selection.tree, GetEntryBytes(selection.entry));
}

void on_DirSel_OKButton_clicked(GtkWidget*, gpointer data)
{
    auto* const state = static_cast<DirSelection*>(data);
    std::string path;
    std::string typed = GetEntryBytes(state->entry);
    // A typed path counts even if the user has not pressed Return, and if the tree does not show it.
    if (!GetTreeSelect(state->tree, nullptr, &path) || typed != path) {
        if (const PathStatus status = WaitToCheckPath(&typed); status != PATH_DIRECTORY) {
            FileExistMessageBox(status, state->entry);
            return;
        }
        path = WithSlash(typed);
    }
    SetEntryBytes(state->caller_entry, path);
    AddHistoryListS(pGTable->DirHistory, path);
    state->accepted = true;
    gtk_main_quit();
}

/// The path in the entry if it is inside RootDir, or else the main tree's selection. May be empty.
std::string GetStartingDirectory(GtkWidget* entry)
{
    std::string path = GetEntryBytes(entry);
    if (!path.empty() && path.front() != '/') {
        path.insert(0, pGTable->CurrentDir);
    }
    if (!path.empty() && path.size() <= kMaxPathBytes && CheckChildDirectory(path) == 0) {
        return path;
    }
    path.clear();
    GetTreeSelect(MainTree(), nullptr, &path);
    return path;
}

/// Return in the tree expands the node, as in the main window.
void on_DirSel_row_activated(GtkTreeView* tree, GtkTreePath* path, GtkTreeViewColumn*, gpointer)
{
    gtk_tree_view_expand_row(tree, path, FALSE);
}

void OfferDirHistory(GtkWidget* combo)
{
    if (!pGTable->DirHistory.empty()) {
        SetComboStrings(combo, pGTable->DirHistory);
    }
}

/// Adds a drop-down and a tree whose selection it follows. False if the root cannot be read.
bool AddDirectoryTree(GtkWidget* vbox, DirSelection& state)
{
    CreateLabel(vbox, _("Select directory:"));
    GtkWidget* const combo = CreateComboBox(&state.entry, true, kMaxPathBytes);
    SetAccessibleName(state.entry, _("Select directory:"));
    OfferDirHistory(combo);
    gtk_box_pack_start(GTK_BOX(vbox), combo, FALSE, FALSE, 0);
    GtkWidget* scroll = nullptr;
    GtkWidget* const tree = CreateRootTree(&scroll, combo);
    if (tree == nullptr) {
        return false;
    }
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroll), GTK_SHADOW_IN);
    gtk_box_pack_start(GTK_BOX(vbox), scroll, TRUE, TRUE, 0);
    state.tree = GTK_TREE_VIEW(tree);
    TakeTreeKeys(state.tree);
    g_signal_connect(tree, "row-activated", G_CALLBACK(on_DirSel_row_activated), nullptr);
    return true;
}

void OpenStartingDirectory(const DirSelection& state)
{
    const std::string path = GetStartingDirectory(state.caller_entry);
    OpenChildTree(state.tree, path.empty() ? pGTable->RootDir : path, EXPAND_LAST_YES,
                  {.after = [entry = state.entry, path] {
                      if (!path.empty()) {
                          SetEntryBytes(entry, path);
                      }
                  }});
}

void on_DirBrowseButton_clicked(GtkWidget*, gpointer combo)
{
    GtkWidget* dialog = nullptr;
    CreateSelectDirDlg(&dialog, GTK_WIDGET(combo));
    if (dialog != nullptr) {
        gtk_widget_destroy(dialog);
    }
}

/// Raises the button's window, but returns FALSE, unlike on_Window_button_press_event: otherwise the
/// button would not see the press.
gboolean on_BrowseButton_button_press_event(GtkWidget* button, GdkEvent* event, gpointer)
{
    on_Window_button_press_event(button, event, nullptr);
    return FALSE;
}

}  // namespace

GtkWidget* CreateBrowseButton(GtkWidget* box, GtkWidget* target, BrowseKind kind)
{
    if (box == nullptr || target == nullptr) {
        return nullptr;
    }
    GtkWidget* const button = gtk_button_new_with_label(_("Browse..."));
    gtk_box_pack_start(GTK_BOX(box), button, FALSE, FALSE, 0);
    gtk_widget_show(button);
    g_signal_connect(button, "button-press-event", G_CALLBACK(on_BrowseButton_button_press_event), nullptr);
    g_signal_connect(button, "clicked",
                     G_CALLBACK(kind == BROWSE_FILE ? on_FileBrowseButton_clicked : on_DirBrowseButton_clicked),
                     target);
    return button;
}

GtkWidget* CreatePathCombo(GtkWidget* box, const char* accessible_name)
{
    GtkWidget* entry = nullptr;
    GtkWidget* const combo = CreateComboBox(&entry, true, kMaxPathBytes);
    SetAccessibleName(entry, accessible_name);
    SetComboStrings(combo, pGTable->DirHistory);
    gtk_box_pack_start(GTK_BOX(box), combo, TRUE, TRUE, 0);
    CreateBrowseButton(box, combo, BROWSE_DIRECTORY);
    return combo;
}

int CreateSelectDirDlg(GtkWidget** dialog, GtkWidget* combo)
{
    if (dialog == nullptr || combo == nullptr) {
        return kArgumentError;
    }
    GtkWidget* vbox = nullptr;
    GtkWidget* const window = CreateNormalDialogBox(&vbox, kDirDialogWidth, kDirDialogHeight, kDialogSpacing);
    *dialog = window;
    gtk_window_set_title(GTK_WINDOW(window), _("Select directory"));
    StackAbove(window, combo);
    DirSelection state;
    state.caller_entry = ComboEntry(combo);
    GtkWidget* ok = nullptr;
    GtkWidget* cancel = nullptr;
    if (!AddDirectoryTree(vbox, state) || CreateDlgButtonBox(window, &ok, &cancel, CLOSING_WIRED) != 0) {
        return kWidgetError;
    }
    *dialog = nullptr;
    g_signal_connect(state.entry, "activate", G_CALLBACK(on_DirSel_ComboEntry_activate), &state);
    g_signal_connect(ok, "clicked", G_CALLBACK(on_DirSel_OKButton_clicked), &state);
    // Show the window first: a tree that is not on the screen cannot scroll to its selection.
    gtk_widget_show(window);
    OpenStartingDirectory(state);
    ModalMainLoop(window, nullptr);
    if (state.accepted) {
        OfferDirHistory(combo);
    }
    return 0;
}

namespace {

// Applications.

struct AppSelection {
    GtkTreeView* list = nullptr;
    std::string* result = nullptr;
};

/// Stores the selected name, in bytes. False if nothing is selected.
bool GetSelectedName(GtkTreeView* list, std::string& name)
{
    GtkTreeModel* model = nullptr;
    GtkTreeIter row;
    if (!gtk_tree_selection_get_selected(gtk_tree_view_get_selection(list), &model, &row)) {
        return false;
    }
    char* text = nullptr;
    gtk_tree_model_get(model, &row, 0, &text, -1);
    const GlibPointer<char> owner(text);
    name = text;
    return true;
}

void on_SelApp_OKButton_clicked(GtkWidget*, gpointer data)
{
    const auto* const state = static_cast<const AppSelection*>(data);
    std::string name;
    if (!GetSelectedName(state->list, name)) {
        return;
    }
    const std::vector<AppInfo>& applications = pGTable->ApplicationList;
    const auto chosen = std::find_if(applications.begin(), applications.end(),
                                     [&name](const AppInfo& application) { return application.Key == name; });
    if (chosen != applications.end()) {
        *state->result = chosen->Value;
        gtk_main_quit();
    }
}

void on_SelApp_row_activated(GtkTreeView*, GtkTreePath*, GtkTreeViewColumn*, gpointer ok)
{
    gtk_button_clicked(GTK_BUTTON(ok));
}

/// Makes OK the default once an application is selected. Until then Cancel is, as in every dialog.
void on_SelApp_selection_changed(GtkTreeSelection* selection, gpointer ok)
{
    if (gtk_tree_selection_count_selected_rows(selection) > 0) {
        gtk_widget_grab_focus(GTK_WIDGET(ok));
        gtk_widget_grab_default(GTK_WIDGET(ok));
    }
}

/// The row that a key moves the selection to; -1 for other keys. row is -1 if none is selected.
int GetKeyTarget(guint key, int row, int count)
{
    switch (key) {
    case GDK_KEY_Up:
    case GDK_KEY_KP_Up:
        return row < 0 ? count - 1 : std::max(row - 1, 0);
    case GDK_KEY_Down:
    case GDK_KEY_KP_Down:
        return std::min(row + 1, count - 1);
    case GDK_KEY_Home:
    case GDK_KEY_KP_Home:
        return 0;
    case GDK_KEY_End:
    case GDK_KEY_KP_End:
        return count - 1;
    default:
        return -1;
    }
}

/// Lets the keys move the selection wherever the focus is, as the list never has it.
gboolean on_SelApp_key_press_event(GtkWidget*, GdkEventKey* event, gpointer data)
{
    GtkTreeView* const list = GTK_TREE_VIEW(data);
    GtkTreeModel* const model = gtk_tree_view_get_model(list);
    GtkTreeIter selected;
    int row = -1;
    if (gtk_tree_selection_get_selected(gtk_tree_view_get_selection(list), nullptr, &selected)) {
        const TreePath path(gtk_tree_model_get_path(model, &selected));
        row = gtk_tree_path_get_indices(path.get())[0];
    }
    const int target = GetKeyTarget(event->keyval, row, gtk_tree_model_iter_n_children(model, nullptr));
    if (target < 0) {
        return FALSE;
    }
    const TreePath path(gtk_tree_path_new_from_indices(target, -1));
    gtk_tree_view_set_cursor(list, path.get(), nullptr, FALSE);
    return TRUE;
}

/// The names of the applications in byte order, one per row.
GtkListStore* CreateAppStore()
{
    std::vector<std::string> names;
    for (const AppInfo& application : pGTable->ApplicationList) {
        names.push_back(application.Key);
    }
    std::sort(names.begin(), names.end());
    GtkListStore* const store = gtk_list_store_new(1, G_TYPE_STRING);
    for (const std::string& name : names) {
        gtk_list_store_insert_with_values(store, nullptr, -1, 0, name.c_str(), -1);
    }
    return store;
}

void DrawAppName(GtkTreeViewColumn*, GtkCellRenderer* cell, GtkTreeModel* model, GtkTreeIter* row, gpointer)
{
    char* name = nullptr;
    gtk_tree_model_get(model, row, 0, &name, -1);
    const GlibPointer<char> owner(name);
    g_object_set(cell, "text", DisplayText(name).c_str(), nullptr);
}

GtkTreeView* AddAppList(GtkWidget* vbox)
{
    GtkWidget* const scroll = CreateScroll();
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroll), GTK_SHADOW_IN);
    gtk_box_pack_start(GTK_BOX(vbox), scroll, TRUE, TRUE, 0);
    GtkTreeView* const list = GTK_TREE_VIEW(CreateTreeView(_("Select application:")));
    GtkListStore* const store = CreateAppStore();
    gtk_tree_view_set_model(list, GTK_TREE_MODEL(store));
    g_object_unref(store);
    gtk_tree_view_set_headers_visible(list, FALSE);
    gtk_tree_view_set_enable_search(list, FALSE);
    GtkTreeViewColumn* const column = gtk_tree_view_column_new();
    gtk_tree_view_column_set_min_width(column, kAppColumnWidth);
    GtkCellRenderer* const cell = gtk_cell_renderer_text_new();
    g_object_set(cell, "single-paragraph-mode", TRUE, nullptr);
    gtk_tree_view_column_pack_start(column, cell, TRUE);
    gtk_tree_view_column_set_cell_data_func(column, cell, DrawAppName, nullptr, nullptr);
    gtk_tree_view_append_column(list, column);
    gtk_tree_selection_set_mode(gtk_tree_view_get_selection(list), GTK_SELECTION_SINGLE);
    gtk_container_add(GTK_CONTAINER(scroll), GTK_WIDGET(list));
    return list;
}

}  // namespace

int SelectAppDlg(GtkWidget** dialog, std::string* result)
{
    if (dialog == nullptr || result == nullptr) {
        return kArgumentError;
    }
    if (pGTable->ApplicationList.empty()) {
        return 0;
    }
    GtkWidget* vbox = nullptr;
    GtkWidget* const window = CreateNormalDialogBox(&vbox, kAppDialogWidth, kAppDialogHeight, kDialogSpacing);
    *dialog = window;
    gtk_window_set_title(GTK_WINDOW(window), _("Select application"));
    StackAbove(window, pMainW->MainWindow);
    CreateLabel(vbox, _("Select application:"));
    AppSelection state = {AddAppList(vbox), result};
    GtkWidget* ok = nullptr;
    GtkWidget* cancel = nullptr;
    if (CreateDlgButtonBox(window, &ok, &cancel, CLOSING_WIRED) != 0) {
        return kWidgetError;
    }
    *dialog = nullptr;
    g_signal_connect(ok, "clicked", G_CALLBACK(on_SelApp_OKButton_clicked), &state);
    g_signal_connect(state.list, "row-activated", G_CALLBACK(on_SelApp_row_activated), ok);
    g_signal_connect_object(gtk_tree_view_get_selection(state.list), "changed", G_CALLBACK(on_SelApp_selection_changed),
                            ok, GConnectFlags());
    g_signal_connect(window, "key-press-event", G_CALLBACK(on_SelApp_key_press_event), state.list);
    ModalMainLoop(window, nullptr);
    return 0;
}
