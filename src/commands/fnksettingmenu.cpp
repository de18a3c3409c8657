#include "commands/fnksettingmenu.h"

#include <algorithm>
#include <vector>

#include "commands/fnksettingmenu-colors.h"
#include "commands/fnksettingmenu-columns.h"
#include "core/fnkstring.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"

namespace {

constexpr int kDialogHeight = 275;
constexpr int kPageBorder = 5;

struct OptionCheck {
    int GTable::*flag;
    const char* label;
};

/// Indexed like OptionDlgInfo::Check.
constexpr std::array<OptionCheck, kOptionCheckCount> kChecks = {{
    {&GTable::ShowBackup, N_("Show backup files")},
    {&GTable::ShowHidden, N_("Show hidden files")},
    {&GTable::SortCase, N_("Case sensitivity is disregarded when sorting")},
    {&GTable::MixFileDir, N_("Mix files and directories.")},
    {&GTable::ConfilmDel, N_("Confirm when deleting file")},
    {&GTable::ConfilmOverwrite, N_("Confirm when overwriting files")},
    {&GTable::ConfilmExec, N_("Confirm when executing files")},
    {&GTable::ShowProgress, N_("Show progress while operations are being performed")},
}};
constexpr std::size_t kFirstPageChecks = 4;

void CreateChecksPage(GtkWidget* notebook, std::size_t first, std::size_t end, OptionDlgInfo* info)
{
    GtkWidget* const page = CreateVBox(notebook, 0, kPageBorder);
    for (std::size_t i = first; i < end; ++i) {
        GtkWidget* const check = gtk_check_button_new_with_label(gettext(kChecks[i].label));
        gtk_box_pack_start(GTK_BOX(page), check, FALSE, FALSE, 0);
        gtk_widget_show(check);
        info->Check[i] = check;
    }
}

void CreatePages(GtkWidget* notebook, OptionDlgInfo* info)
{
    CreateChecksPage(notebook, 0, kFirstPageChecks, info);
    CreateChecksPage(notebook, kFirstPageChecks, kOptionCheckCount, info);
    CreateColumnsPage(notebook, info);
    CreateColorsPage(notebook, info);
    int page = 0;
    for (const char* const title :
         {N_("File display"), N_("Confirmation"), N_("File list columns"), N_("File list Color")}) {
        CreateTabLabel(notebook, page++, gettext(title));
    }
}

}  // namespace

void on_Menu_Option_activate(GtkWidget*, gpointer)
{
    CreateOptionDlg();
}

void CreateOptionDlg()
{
    OptionDlgInfo info;
    GtkWidget* notebook = nullptr;
    GtkWidget* const dialog = CreateNotebookDialogBox(&notebook, 0, 0);
    gtk_widget_set_size_request(dialog, -1, kDialogHeight);
    gtk_window_set_title(GTK_WINDOW(dialog), _("Option"));
    CreatePages(notebook, &info);
    GtkWidget* ok = nullptr;
    GtkWidget* cancel = nullptr;
    CreateDlgButtonBox(dialog, &ok, &cancel, CLOSING_WIRED);
    SetOptionValue(&info);
    g_signal_connect(ok, "clicked", G_CALLBACK(on_Option_OKButton_clicked), &info);
    ModalMainLoop(dialog, pMainW->MainWindow);
}

void SetOptionValue(OptionDlgInfo* info)
{
    for (std::size_t i = 0; i < kChecks.size(); ++i) {
        gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(info->Check[i]), pGTable->*kChecks[i].flag != 0);
    }
    SetColumnLists(info);
    info->Colors = pGTable->Colors;
}

namespace {

/// Stores the switches. True if the list and the tree must now show other entries.
bool StoreChecks(const OptionDlgInfo* info)
{
    const int old_backup = pGTable->ShowBackup;
    const int old_hidden = pGTable->ShowHidden;
    for (std::size_t i = 0; i < kChecks.size(); ++i) {
        pGTable->*kChecks[i].flag = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(info->Check[i])) ? 1 : 0;
    }
    return pGTable->ShowBackup != old_backup || pGTable->ShowHidden != old_hidden;
}

/// Stores the columns, keeping the widths of those that were displayed before, and sorts by name.
/// True if the columns or their order changed.
bool StoreColumns(const std::vector<int>& ids)
{
    const std::vector<int> old_ids(pGTable->ColumnPosition.begin(),
                                   pGTable->ColumnPosition.begin() + pGTable->ColumnCount);
    const auto old_sizes = pGTable->ColumnSize;
    pGTable->ColumnCount = static_cast<int>(ids.size());
    pGTable->ColumnPosition = {};
    pGTable->ColumnSize = {};
    for (std::size_t i = 0; i < ids.size(); ++i) {
        const auto old = std::find(old_ids.begin(), old_ids.end(), ids[i]);
        pGTable->ColumnPosition[i] = ids[i];
        pGTable->ColumnSize[i] = old != old_ids.end() ? old_sizes[static_cast<std::size_t>(old - old_ids.begin())] : 0;
    }
    pGTable->NameColumn = FindNameColumn(*pGTable);
    pGTable->SortColumn = pGTable->NameColumn;
    pGTable->SortType = SORT_ASCENDING;
    return ids != old_ids;
}

void RebuildList()
{
    // Cleared first: events during the destruction must find no list.
    pMainW->FileList = nullptr;
    gtk_widget_destroy(pMainW->ListScroll);
    CreateFileList(pMainW->Paned);
}

}  // namespace

void on_Option_OKButton_clicked(GtkWidget*, gpointer data)
{
    const auto* const info = static_cast<const OptionDlgInfo*>(data);
    const bool shows_other_entries = StoreChecks(info);
    pGTable->Colors = info->Colors;
    const bool has_other_columns = StoreColumns(GetDisplayedColumns(info));
    if (has_other_columns) {
        RebuildList();
    }
    if (shows_other_entries) {
        RebuildTree();
    } else if (!has_other_columns) {
        DisplayFileList(pGTable->CurrentDir);
    }
    gtk_main_quit();
}
