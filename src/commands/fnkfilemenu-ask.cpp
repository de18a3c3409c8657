#include "commands/fnkfilemenu-ask.h"

#include <array>

#include "core/fnkstring.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkselfile.h"

#include "IconCopy.xpm"
#include "IconMove.xpm"
#include "IconNew.xpm"

namespace {

constexpr int kSpacing = 5;
constexpr int kEntrySpacing = 10;
constexpr int kEntryWidth = 310;
/// A prompt with a long name in it is shortened to this width; its middle is cut out.
constexpr int kPromptCharacters = 60;

struct OperationText {
    const char* title;
    const char* prompt;
    Picture icon;
};

/// Indexed by OperationMode.
constexpr std::array<OperationText, 4> kTexts = {{
    {N_("Create a new directory"), N_("New directory name:"), PICTURE(IconNew)},
    {N_("Create a new file"), N_("New file name:"), PICTURE(IconNew)},
    {N_("Copy"), N_("Copy %s to:"), PICTURE(IconCopy)},
    {N_("Move"), N_("Move %s to:"), PICTURE(IconMove)},
}};

/// Lives as long as the dialog.
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
    GtkWidget* const entry = ComboEntry(CreatePathCombo(hbox, accessible_name.c_str()));
    gtk_widget_set_size_request(entry, kEntryWidth, -1);
    return entry;
}

/// Fills in the selected directory and selects the text, so that typing replaces it.
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
    const PathStatus status = WaitToCheckPath(&path);
    if (status != PATH_NEW && status != PATH_DIRECTORY && status != PATH_FILE) {
        FileExistMessageBox(status, state->entry);
        return;
    }
    *state->path = std::move(path);
    state->result = RESULT_OK;
    gtk_main_quit();
}
