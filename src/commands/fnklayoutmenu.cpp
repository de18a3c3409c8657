#include "commands/fnklayoutmenu.h"

#include <algorithm>

#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-pattern.h"
#include "kit/fnkutil-widget.h"
#include "model/fnkfilelist-sort.h"
#include "panes/fnkfilelist-status.h"
#include "panes/fnkfilelist.h"

#include "IconFilter.xpm"
#include "IconSort.xpm"

namespace {

constexpr int kSortSpacing = 10;
constexpr int kSortComboWidth = 230;
/// The pattern that turns the filter off.
constexpr const char* kShowAll = "*";

/// Lives as long as the sort dialog.
struct SortDlgInfo {
    GtkWidget* ColumnCombo = nullptr;
    GtkWidget* ReverseCheck = nullptr;
};

/// Titles of the displayed detail columns from left to right.
std::vector<std::string> ColumnTitles()
{
    std::vector<std::string> titles;
    for (std::size_t i = 0; i < static_cast<std::size_t>(pGTable->ColumnCount); ++i) {
        titles.push_back(GetListColumnString(pGTable->ColumnPosition[i]));
    }
    return titles;
}

/// Index of the sort column in ColumnTitles. The icon column has no title; it also sorts by name, so it
/// counts as the name column.
int SortedTitleIndex()
{
    const int column = EffectiveSortColumn();
    return (column > 0 ? column : pGTable->NameColumn) - 1;
}

GtkWidget* AddColumnCombo(GtkWidget* vbox)
{
    GtkWidget* const hbox = CreateHBox(vbox, false, kSortSpacing, 0);
    CreateLabel(hbox, _("Sort column"));
    GtkWidget* entry = nullptr;
    GtkWidget* const combo = CreateComboBox(&entry, false, 0);
    gtk_widget_set_size_request(combo, kSortComboWidth, -1);
    SetAccessibleName(entry, _("Sort column"));
    SetComboStrings(combo, ColumnTitles());
    gtk_box_pack_start(GTK_BOX(hbox), combo, TRUE, TRUE, 0);
    gtk_combo_box_set_active(GTK_COMBO_BOX(combo), SortedTitleIndex());
    return combo;
}

GtkWidget* AddReverseCheck(GtkWidget* vbox)
{
    GtkWidget* const check = gtk_check_button_new_with_mnemonic(_("Reverse the order"));
    gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(check), pGTable->SortType == SORT_DESCENDING);
    gtk_box_pack_start(GTK_BOX(vbox), check, FALSE, FALSE, 0);
    gtk_widget_show(check);
    return check;
}

}  // namespace

void CreateSortDlg()
{
    GtkWidget* vbox = nullptr;
    GtkWidget* const dialog = CreateIconDialogBox(&vbox, PICTURE(IconSort), 0, 0, 0);
    gtk_window_set_title(GTK_WINDOW(dialog), _("Sort"));
    SortDlgInfo info;
    info.ColumnCombo = AddColumnCombo(vbox);
    info.ReverseCheck = AddReverseCheck(vbox);
    GtkWidget* ok = nullptr;
    GtkWidget* cancel = nullptr;
    CreateDlgButtonBox(dialog, &ok, &cancel, CLOSING_WIRED);
    g_signal_connect(ok, "clicked", G_CALLBACK(on_Sort_OKButton_clicked), &info);
    ModalMainLoop(dialog, pMainW->MainWindow);
}

void on_Sort_OKButton_clicked(GtkWidget*, gpointer data)
{
    const auto* const info = static_cast<const SortDlgInfo*>(data);
    const int id = GetListStringColumn(gtk_entry_get_text(GTK_ENTRY(ComboEntry(info->ColumnCombo))));
    const auto begin = pGTable->ColumnPosition.begin();
    const auto end = begin + pGTable->ColumnCount;
    if (const auto position = std::find(begin, end, id); position != end) {
        pGTable->SortColumn = static_cast<int>(position - begin) + 1;
    }
    const bool is_reversed = gtk_toggle_button_get_active(GTK_TOGGLE_BUTTON(info->ReverseCheck)) != FALSE;
    pGTable->SortType = is_reversed ? SORT_DESCENDING : SORT_ASCENDING;
    SortFileList();
    gtk_main_quit();
}

void CreateFilterDlg()
{
    const PatternDlgTexts texts = {_("Filter"), _("Enter a filter here for files in the file list view."),
                                   PICTURE(IconFilter)};
    CreatePatternDlg(texts, pGTable->Filter ? pGTable->FilterName : kShowAll, G_CALLBACK(on_Filter_OKButton_clicked));
}

void on_Filter_OKButton_clicked(GtkWidget*, gpointer combo)
{
    std::string pattern;
    if (!AcceptPattern(GTK_WIDGET(combo), _("Invalid filter string."), &pattern)) {
        return;
    }
    pGTable->Filter = pattern != kShowAll ? 1 : 0;
    pGTable->FilterName = pattern;
    DisplayFileList(pGTable->CurrentDir);
    DisplayFilterStatus();
    gtk_main_quit();
}

void on_Menu_Sort_activate(GtkWidget*, gpointer)
{
    CreateSortDlg();
}

void on_Menu_FilterView_activate(GtkWidget*, gpointer)
{
    CreateFilterDlg();
}
