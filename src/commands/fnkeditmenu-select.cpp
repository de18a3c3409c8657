#include "commands/fnkeditmenu-select.h"

#include <algorithm>

#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkutil-text.h"
#include "kit/fnkutil-pattern.h"
#include "kit/fnkutil-view.h"
#include "panes/fnkfilelist.h"

#include "IconSelect.xpm"

void SelectMatchingRows(const std::string& pattern)
{
    const FileRows& rows = ListRows();
    std::vector<bool> chosen(rows.Count());
    for (std::size_t i = 0; i < chosen.size(); ++i) {
        chosen[i] = MatchPattern(pattern, rows.Name(i));
    }
    const auto first = std::find(chosen.begin(), chosen.end(), true) - chosen.begin();
    SetListSelection(chosen);
    if (first < static_cast<std::ptrdiff_t>(chosen.size())) {
        const TreePath path(gtk_tree_path_new_from_indices(static_cast<int>(first), -1));
        ShowRow(MainList(), path.get());
    }
}

void InvertListSelection()
{
    std::vector<bool> chosen(ListRows().Count(), true);
    for (const std::size_t row : ListSelection()) {
        chosen[row] = false;
    }
    SetListSelection(std::move(chosen));
}

void CreateSelectFilesDlg()
{
    const PatternDlgTexts texts = {
        _("Select file"), _("Enter a filter here to select files in the file list view with."), PICTURE(IconSelect)};
    const History& history = pGTable->FilterHistory;
    CreatePatternDlg(texts, history.empty() ? "" : history.front(), G_CALLBACK(on_Select_OKButton_clicked));
}

void on_Select_OKButton_clicked(GtkWidget*, gpointer combo)
{
    std::string pattern;
    if (AcceptPattern(GTK_WIDGET(combo), _("Invalid select string."), &pattern)) {
        SelectMatchingRows(pattern);
        gtk_main_quit();
    }
}

void on_Menu_SelectAll_activate(GtkWidget*, gpointer)
{
    SelectAllListRows();
}

void on_Menu_SelectFiles_activate(GtkWidget*, gpointer)
{
    CreateSelectFilesDlg();
}

void on_Menu_Invert_Selection_activate(GtkWidget*, gpointer)
{
    InvertListSelection();
}
