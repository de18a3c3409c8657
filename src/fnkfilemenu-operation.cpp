#include "fnkfilemenu-operation.h"

#include <sys/stat.h>
#include <unistd.h>

#include <array>

#include "fnkdirtree.h"
#include "fnkfilemenu-new.h"
#include "fnkfilemenu-targets.h"
#include "fnkfiles-copy.h"
#include "fnkmainwindow-record.h"
#include "fnkmessage-box.h"
#include "fnkselfile.h"
#include "fnkstring.h"
#include "fnktable.h"
#include "fnkutil-widget.h"
#include "fnkutil.h"

#include "IconCopy.xpm"
#include "IconMove.xpm"
#include "IconNew.xpm"

namespace {

constexpr int kSpacing = 5;
constexpr int kEntrySpacing = 10;
constexpr int kEntryWidth = 310;
/// A longer prompt is that of a long name, which loses its middle.
constexpr int kPromptCharacters = 60;

struct OperationText {
    const char* title;
    const char* prompt;
    Picture icon;
};

/// Places are those of OperationMode.
constexpr std::array<OperationText, 4> kTexts = {{
    {N_("Create a new directory"), N_("New directory name:"), PICTURE(IconNew)},
    {N_("Create a new file"), N_("New file name:"), PICTURE(IconNew)},
    {N_("Copy"), N_("Copy %s to:"), PICTURE(IconCopy)},
    {N_("Move"), N_("Move %s to:"), PICTURE(IconMove)},
}};

/// What the dialog's buttons work on while it runs.
struct OperationState {
    GtkWidget* entry = nullptr;
    std::string* path = nullptr;
    Result result = RESULT_CANCEL;
};

std::string PromptText(OperationMode mode, const std::string& description)
{
    const char* const prompt = gettext(kTexts[mode].prompt);
    if (mode != MODE_COPY && mode != MODE_MOVE) {
        return prompt;
    }
    return description.empty() ? std::string() : FormatText(prompt, description.c_str());
}

void AddPrompt(GtkWidget* box, const std::string& prompt)
{
    ShortenLabel(CreateLabel(box, prompt.c_str()), kPromptCharacters);
}

GtkWidget* AddPathEntry(GtkWidget* box, const std::string& accessible_name)
{
    GtkWidget* const hbox = CreateHBox(box, false, kEntrySpacing, 0);
    GtkWidget* entry = nullptr;
    GtkWidget* const combo = CreateComboBox(&entry, true, kMaxPathBytes);
    gtk_widget_set_size_request(entry, kEntryWidth, -1);
    SetAccessibleName(entry, accessible_name.c_str());
    SetComboStrings(combo, pGTable->DirHistory);
    gtk_box_pack_start(GTK_BOX(hbox), combo, TRUE, TRUE, 0);
    CreateBrowseButton(hbox, combo, BROWSE_DIRECTORY);
    return entry;
}

/// Where the user is, ready to be typed over.
void OfferSelectedDirectory(GtkWidget* entry)
{
    std::string path;
    if (GetTreeSelect(MainTree(), nullptr, &path)) {
        SetEntryBytes(entry, path);
    }
    gtk_widget_grab_focus(entry);
    gtk_editable_select_region(GTK_EDITABLE(entry), 0, -1);
}

}  // namespace

Result CreateFileOperationDlg(OperationMode mode, const std::string& description, std::string* path)
{
    GtkWidget* vbox = nullptr;
    GtkWidget* const dialog = CreateIconDialogBox(&vbox, kTexts[mode].icon, 0, 0, kSpacing);
    gtk_window_set_title(GTK_WINDOW(dialog), gettext(kTexts[mode].title));
    const std::string prompt = PromptText(mode, description);
    AddPrompt(vbox, prompt);
    OperationState state = {.entry = AddPathEntry(vbox, prompt), .path = path};

    GtkWidget* ok = nullptr;
    GtkWidget* cancel = nullptr;
    CreateDlgButtonBox(dialog, &ok, &cancel, CLOSING_WIRED);
    g_signal_connect(state.entry, "activate", G_CALLBACK(on_ComboEntry_activate), ok);
    g_signal_connect(ok, "clicked", G_CALLBACK(on_FileOperation_OKButton_clicked), &state);
    OfferSelectedDirectory(state.entry);
    ModalMainLoop(dialog, pMainW->MainWindow);
    return state.result;
}

void on_FileOperation_OKButton_clicked(GtkWidget*, gpointer data)
{
    auto* const state = static_cast<OperationState*>(data);
    std::string path = GetEntryBytes(state->entry);
    const PathStatus status = CheckFileExist(&path);
    if (status != PATH_NEW && status != PATH_DIRECTORY && status != PATH_FILE) {
        FileExistMessageBox(status, state->entry);
        return;
    }
    *state->path = std::move(path);
    state->result = RESULT_OK;
    gtk_main_quit();
}

Result RunOperation(OperationKind kind, const std::vector<std::string>& paths, const OperationStep& step)
{
    Result result = RESULT_DONE;
    SetupProgress(paths, kind);
    for (const std::string& path : paths) {
        // Cancel may have been pressed while the files were counted: then nothing is touched.
        result = KeepPainting() ? RESULT_CANCEL : step(path);
        if (result == RESULT_CANCEL) {
            DestroyProgressDlg();
            break;
        }
    }
    EndProgress();
    return result;
}

namespace {

/// Several sources need a directory to go into: given one by one to a name that is still free,
/// each would replace the one before. That directory is made, anything else in its place refused.
bool HasRoomFor(const std::vector<std::string>& sources, const std::string& destination, bool* made)
{
    struct stat st = {};
    if (sources.size() == 1) {
        return true;
    }
    if (lstat(destination.c_str(), &st) != 0) {
        return *made = CreateNewDirectory(destination);
    }
    if (!S_ISDIR(st.st_mode)) {
        FileExistMessageBox(PATH_FILE, nullptr);
        return false;
    }
    return true;
}

}  // namespace

void FileOperation(OperationKind kind)
{
    std::vector<std::string> sources;
    std::string description;
    std::string destination;
    bool made = false;
    const auto mode = static_cast<OperationMode>(kind);
    if (GetFileOperationString(sources, &description) == SELECTION_NONE || !CheckFileOperationPaths(sources) ||
        CreateFileOperationDlg(mode, description, &destination) != RESULT_OK ||
        !HasRoomFor(sources, destination, &made)) {
        return;
    }
    const auto transfer = kind == OPERATION_MOVE ? MoveFile : CopyFile;
    if (sources.size() > 1) {
        destination = WithSlash(destination);
    }
    int flag = 0;
    const Result result =
        RunOperation(kind, sources, [&](const std::string& source) { return transfer(destination, source, &flag); });
    if (made && result == RESULT_CANCEL) {
        rmdir(destination.c_str());  // Refused unless the command ended before anything came into it.
    }
    const std::string parent = ParentInTree(destination);
    if (kind == OPERATION_MOVE) {
        RescanTree(MainTree(), ParentInTree(sources.front()));
    }
    RescanTree(MainTree(), parent);
    const bool is_inside = result == RESULT_DONE && IsDirectory(destination);
    OpenChildTree(MainTree(), is_inside ? destination : parent, EXPAND_LAST_YES);
}

namespace {

constexpr int kPopupBorder = 2;

/// What was chosen, until a handler says otherwise.
PopupChoice popup_choice = POPUP_NOTHING;

void on_PopupCopy_activate(GtkWidget*, gpointer)
{
    popup_choice = POPUP_COPY;
}

void on_PopupMove_activate(GtkWidget*, gpointer)
{
    popup_choice = POPUP_MOVE;
}

void AddPopupItem(GtkWidget* menu, const char* label, GCallback handler)
{
    GtkWidget* const item = gtk_menu_item_new_with_mnemonic(label);
    g_signal_connect(item, "activate", handler, nullptr);
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    gtk_widget_show(item);
}

}  // namespace

PopupChoice CreateFileOperationPopup(const GdkEvent* event)
{
    GtkWidget* const menu = gtk_menu_new();
    g_object_ref_sink(menu);
    gtk_container_set_border_width(GTK_CONTAINER(menu), kPopupBorder);
    AddPopupItem(menu, _("Copy(_C)"), G_CALLBACK(on_PopupCopy_activate));
    AddPopupItem(menu, _("Move(_M)"), G_CALLBACK(on_PopupMove_activate));
    gtk_widget_add_events(gtk_widget_get_toplevel(menu), GDK_VISIBILITY_NOTIFY_MASK);
    g_signal_connect(gtk_widget_get_toplevel(menu), "visibility-notify-event", G_CALLBACK(on_Window_visibility_notify),
                     nullptr);
    // The item's own signal comes after this one, but before the loop is back at its head.
    g_signal_connect(menu, "deactivate", G_CALLBACK(on_CancelButton_clicked), nullptr);
    popup_choice = POPUP_NOTHING;
    gtk_menu_popup_at_pointer(GTK_MENU(menu), event);
    if (gtk_widget_get_mapped(menu)) {
        gtk_main();
    }
    gtk_widget_destroy(menu);
    g_object_unref(menu);
    return popup_choice;
}
