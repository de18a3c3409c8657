#include "commands/fnkeditmenu-find.h"

#include "commands/fnkeditmenu-find-result.h"
#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkselfile.h"

#include "IconFind.xpm"

namespace {

constexpr int kSpacing = 5;
constexpr int kEntrySpacing = 10;
constexpr int kEntryWidth = 310;

void AddCaption(GtkWidget* table, int row, const char* text)
{
    GtkWidget* const label = gtk_label_new(text);
    gtk_label_set_xalign(GTK_LABEL(label), 0.0F);
    gtk_grid_attach(GTK_GRID(table), label, 0, row, 1, 1);
    gtk_widget_show(label);
}

GtkWidget* AddStartRow(GtkWidget* table)
{
    const char* const caption = _("Start dir:");
    AddCaption(table, 0, caption);
    GtkWidget* const hbox = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, kEntrySpacing);
    GtkWidget* const combo = CreatePathCombo(hbox, caption);
    gtk_widget_set_size_request(ComboEntry(combo), kEntryWidth, -1);
    SetEntryBytes(ComboEntry(combo), pGTable->CurrentDir);
    gtk_grid_attach(GTK_GRID(table), hbox, 1, 0, 1, 1);
    gtk_widget_show(hbox);
    return combo;
}

/// The entry starts with the newest pattern.
GtkWidget* AddNameRow(GtkWidget* table)
{
    const char* const caption = _("Find name:");
    const History& patterns = pGTable->FilterHistory;
    AddCaption(table, 1, caption);
    GtkWidget* entry = nullptr;
    GtkWidget* const combo = CreateComboBox(&entry, true, static_cast<int>(kMaxFilterBytes));
    gtk_widget_set_size_request(entry, kEntryWidth, -1);
    SetAccessibleName(entry, caption);
    SetComboStrings(combo, patterns);
    if (!patterns.empty()) {
        SetEntryBytes(ComboEntry(combo), patterns.front());
    }
    gtk_widget_set_hexpand(combo, TRUE);
    gtk_grid_attach(GTK_GRID(table), combo, 1, 1, 1, 1);
    return combo;
}

/// False, after a message, if one of the inputs is invalid.
bool ReadRequest(const FindDlgInfo* info, FindRequest* request)
{
    GtkWidget* const start_entry = ComboEntry(info->StartCombo);
    GtkWidget* const name_entry = ComboEntry(info->NameCombo);
    std::string start = GetEntryBytes(start_entry);
    const PathStatus status = WaitToCheckPath(&start);
    if (status == PATH_FILE) {
        EntryMessageBox(FormatText(_("%s is not a directory."), DisplayText(start).c_str()).c_str(), start_entry);
        return false;
    }
    if (status != PATH_DIRECTORY) {
        FileExistMessageBox(status, start_entry);
        return false;
    }
    start = WithSlash(start);
    SetEntryBytes(start_entry, start);
    const std::string pattern = GetEntryBytes(name_entry);
    if (!IsUsablePattern(pattern)) {
        EntryMessageBox(_("Invalid find string."), name_entry);
        return false;
    }
    *request = {start, pattern, gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(info->SubDirCheck)) != FALSE};
    return true;
}

}  // namespace

void on_Menu_FindFile_activate(GtkWidget*, gpointer)
{
    CreateFindFilesDlg();
}

void CreateFindFilesDlg()
{
    FindDlgInfo info;
    GtkWidget* vbox = nullptr;
    info.Dialog = CreateIconDialogBox(&vbox, PICTURE(IconFind), 0, 0, kSpacing);
    gtk_window_set_title(GTK_WINDOW(info.Dialog), _("Find File"));
    GtkWidget* const table = CreateTable(kSpacing, kSpacing, 0);
    gtk_box_pack_start(GTK_BOX(vbox), table, TRUE, TRUE, 0);
    info.StartCombo = AddStartRow(table);
    info.NameCombo = AddNameRow(table);
    info.SubDirCheck = gtk_check_button_new_with_label(_("Search sub directory"));
    gtk_box_pack_start(GTK_BOX(vbox), info.SubDirCheck, FALSE, FALSE, 0);
    gtk_widget_show(info.SubDirCheck);

    GtkWidget* ok = nullptr;
    GtkWidget* cancel = nullptr;
    CreateDlgButtonBox(info.Dialog, &ok, &cancel, CLOSING_WIRED);
    g_signal_connect(ok, "clicked", G_CALLBACK(on_Find_OKButton_clicked), &info);
    gtk_widget_grab_focus(ComboEntry(info.NameCombo));
    ModalMainLoop(info.Dialog, pMainW->MainWindow);
}

void on_Find_OKButton_clicked(GtkWidget*, gpointer data)
{
    const auto* const info = static_cast<const FindDlgInfo*>(data);
    FindRequest request;
    if (!ReadRequest(info, &request) || CreateFindResultDlg(info->Dialog, request) == FIND_RESULT_AGAIN) {
        return;
    }
    gtk_main_quit();
    AddHistoryListC(info->StartCombo, pGTable->DirHistory);
    AddHistoryListC(info->NameCombo, pGTable->FilterHistory);
}
