#include "commands/fnkfilemenu.h"

#include <algorithm>
#include <atomic>
#include <memory>
#include <set>
#include <string_view>

#include "commands/fnkfilemenu-operation.h"
#include "commands/fnkfilemenu-property.h"
#include "commands/fnkfilemenu-targets.h"
#include "core/fnkstring.h"
#include "core/fnkutil-launch.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "engine/fnkfiles-delete.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkmessage-box.h"
#include "panes/fnkdirtree-walk.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"

namespace {

/// Open takes a single row or, without a selection in the list, a tree node that can be expanded.
bool HasOpenableTarget()
{
    GtkTreeIter node;
    const std::size_t rows = CountListSelection();
    if (rows > 0 || !GetTreeSelect(MainTree(), &node, nullptr)) {
        return rows <= 1;
    }
    const TreeWalk walk(MainTree());
    return walk.HasChildren(node) && !walk.IsExpanded(node);
}

/// RootDir itself must not be copied, moved or deleted. Checks both the selected directory and
/// CurrentDir, because they differ after a rescan in which a directory has vanished.
bool HasChangeableTarget()
{
    if (CountListSelection() > 0) {
        return true;
    }
    std::string path;
    return GetTreeSelect(MainTree(), nullptr, &path) && path != pGTable->RootDir &&
           pGTable->CurrentDir != pGTable->RootDir;
}

/// The names of the rows that may be selected once the selected ones are deleted, the best first: those
/// below the last of them, then those above. Empty if no row is selected.
std::vector<std::string> ListNeighbours()
{
    const std::vector<std::size_t> selected = ListSelection();
    std::vector<std::string> names;
    for (std::size_t row = selected.empty() ? ListRows().Count() : selected.back() + 1; row < ListRows().Count();
         ++row) {
        names.emplace_back(ListRows().Name(row));
    }
    for (std::size_t row = selected.empty() ? 0 : selected.back(); row > 0; --row) {
        names.emplace_back(ListRows().Name(row));
    }
    return names;
}

/// Selects the first of these names that is listed.
void SelectFirstOf(const std::vector<std::string>& names)
{
    std::set<std::string_view> listed;
    for (std::size_t row = 0; row < ListRows().Count(); ++row) {
        listed.insert(ListRows().Name(row));
    }
    const auto first =
        std::find_if(names.begin(), names.end(), [&listed](const std::string& name) { return listed.contains(name); });
    if (first != names.end()) {
        SelectListNames({*first});
    }
}

bool ConfirmDelete(const std::string& description)
{
    return !pGTable->ConfilmDel || MessageBox(_("Delete"), FormatText(_("Delete %s ?"), description.c_str()),
                                              STYLE_DELETE_QUESTION) == RESULT_OK;
}

}  // namespace

void on_Menu_File_activate(GtkWidget*, gpointer)
{
    gtk_widget_set_sensitive(pMainW->MenuItem[MENU_OPEN], HasOpenableTarget());
    for (const MenuEntry entry : {MENU_COPY, MENU_MOVE, MENU_DELETE}) {
        gtk_widget_set_sensitive(pMainW->MenuItem[entry], HasChangeableTarget());
    }
    SensitivePropertyButton();
}

void on_Menu_CreateNewWindow_activate(GtkWidget*, gpointer)
{
    ExecFennick();
}

void on_Menu_Open_activate(GtkWidget*, gpointer)
{
    if (!HasOpenableTarget()) {
        return;
    }
    std::string path;
    if (const std::vector<std::size_t> rows = ListSelection(); !rows.empty()) {
        ActivateListRow(rows.front());
    } else if (GetTreeSelect(MainTree(), nullptr, &path)) {
        OpenChildTree(MainTree(), path, EXPAND_LAST_YES);
    }
}

void on_Menu_Copy_activate(GtkWidget*, gpointer)
{
    if (HasChangeableTarget()) {
        FileOperation(OPERATION_COPY);
    }
}

void on_Menu_Move_activate(GtkWidget*, gpointer)
{
    if (HasChangeableTarget()) {
        FileOperation(OPERATION_MOVE);
    }
}

void on_Menu_Delete_activate(GtkWidget*, gpointer)
{
    std::vector<std::string> paths;
    std::string description;
    if (!HasChangeableTarget() || GetFileOperationString(paths, &description) == SELECTION_NONE ||
        !CheckFileOperationPaths(paths) || !ConfirmDelete(description)) {
        return;
    }
    const std::string parent = GetParentDirectory(paths.front());
    const std::vector<std::string> beside = ListNeighbours();
    const auto is_gone = std::make_shared<std::atomic<bool>>(false);
    RunOperation(OPERATION_DELETE, paths, [is_gone, answer = RESULT_CANCEL](const std::string& path) mutable {
        const Result result = RemoveFile(path, &answer);
        if (answer == RESULT_OK) {
            answer = RESULT_CANCEL;  // "Yes" was for this item only.
        }
        if (path == pGTable->CurrentDir && !IsDirectory(path)) {
            *is_gone = true;
        }
        return result;
    });
    OpenChildTree(MainTree(), *is_gone ? parent : pGTable->CurrentDir, EXPAND_LAST_NO,
                  {.rescan = {parent}, .after = [beside] { SelectFirstOf(beside); }});
}

void on_Menu_Property_activate(GtkWidget*, gpointer)
{
    CreatePropertyDlg();
}
