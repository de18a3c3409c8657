#include "commands/fnkeditmenu-find-result.h"

#include <algorithm>
#include <array>
#include <optional>
#include <sstream>

#include "commands/fnkeditmenu-find-model.h"
#include "core/fnkfiles-place.h"
#include "core/fnkstring.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree-keys.h"
#include "panes/fnkdirtree-nodes.h"
#include "panes/fnkdirtree-view.h"
#include "panes/fnkdirtree-walk.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"

namespace {

constexpr int kWidth = 410;
constexpr int kHeight = 380;
constexpr int kSpacing = 5;
constexpr int kButtonSpacing = 10;
constexpr int kLabelCharacters = 40;
constexpr guint kPollInterval = 33;  ///< Milliseconds.

/// Lives as long as the dialog.
struct FindResultInfo {
    FindResult Result = FIND_RESULT_CLOSE;
    std::optional<BackgroundSearch> Search;  ///< Set while the search runs.
    guint Timer = 0;                         ///< Polls the search; 0 once it is done.
    GtkWidget* Label = nullptr;
    std::array<GtkWidget*, 2> Buttons = {};  ///< "Display directory" and "Serch again".
    GtkWidget* OKButton = nullptr;
    GtkTreeView* ResultTree = nullptr;
    GtkTreeStore* Growing = nullptr;  ///< What the tree shows while the search runs.
};

/// A store with the columns of fnkdirtree-nodes that holds just the top. The caller owns it.
GtkTreeStore* NewGrowingStore(const std::string& start)
{
    GtkTreeStore* const store = gtk_tree_store_new(kNodeDirectoryColumn + 1, G_TYPE_STRING, G_TYPE_BOOLEAN);
    gtk_tree_store_insert_with_values(store, nullptr, nullptr, 0, kNodeNameColumn, start.c_str(), kNodeDirectoryColumn,
                                      TRUE, -1);
    return store;
}

/// Sets *node to its child of that name, which is added if there is none.
void EnterChild(const FindResultInfo* info, GtkTreeIter* node, const std::string& name, bool is_directory)
{
    GtkTreeModel* const model = GTK_TREE_MODEL(info->Growing);
    GtkTreeIter child;
    int place = 0;
    for (gboolean more = gtk_tree_model_iter_children(model, &child, node); more;
         more = gtk_tree_model_iter_next(model, &child), ++place) {
        const std::string there = GetNodeName(model, child);
        if (there == name) {
            *node = child;
            return;
        }
        if (there > name) {
            break;
        }
    }
    const bool is_first = !gtk_tree_model_iter_has_child(model, node);
    gtk_tree_store_insert_with_values(info->Growing, &child, node, place, kNodeNameColumn, name.c_str(),
                                      kNodeDirectoryColumn, is_directory, -1);
    if (is_first) {  // Later the user may have collapsed it.
        gtk_tree_view_expand_row(info->ResultTree, TreeWalk(info->ResultTree).PathOf(*node).get(), FALSE);
    }
    *node = child;
}

/// Adds a path below the start directory.
void AddMatch(const FindResultInfo* info, const std::string& path)
{
    GtkTreeIter node;
    gtk_tree_model_get_iter_first(GTK_TREE_MODEL(info->Growing), &node);
    for (std::size_t begin = 0; begin < path.size();) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        EnterChild(info, &node, path.substr(begin, end - begin), end < path.size());
        begin = end + 1;
    }
}

void ShowMatchCount(FindResultInfo* info)
{
    FindProgress& progress = info->Search->Progress();
    for (const std::string& path : progress.TakeMatches()) {
        AddMatch(info, path);
    }
    const auto count = static_cast<int>(progress.MatchCount());
    const std::string text = progress.IsStopped() ? FormatText(_("Stopped: %d matches"), count)
                                                  : FormatText(_("%d matches, searching %s"), count,
                                                               DisplayText(progress.CurrentName()).c_str());
    gtk_label_set_text(GTK_LABEL(info->Label), text.c_str());
}

/// Selects the row of a path again in another model of the same tree.
void SelectPath(GtkTreeView* tree, const std::string& path)
{
    GtkTreeModel* const model = gtk_tree_view_get_model(tree);
    GtkTreeIter node;
    gtk_tree_model_get_iter_first(model, &node);
    std::istringstream names(path.substr(GetNodePath(tree, node).size()));
    for (std::string name; std::getline(names, name, '/');) {
        FindChildNode(model, &node, name);
    }
    SetTreeSelectNode(tree, node);
}

/// Shows the matches that were only counted so far.
void ShowFound(const FindResultInfo* info, FoundTree found)
{
    std::string selected;
    const bool has_selection = GetTreeSelect(info->ResultTree, nullptr, &selected);
    GtkTreeModel* const model = NewFoundModel(std::move(found));
    gtk_tree_view_set_model(info->ResultTree, model);
    g_object_unref(model);
    gtk_tree_view_expand_all(info->ResultTree);
    if (has_selection) {
        SelectPath(info->ResultTree, selected);
    }
}

gboolean on_Search_timeout(gpointer data)
{
    auto* const info = static_cast<FindResultInfo*>(data);
    const bool is_done = info->Search->IsDone();
    ShowMatchCount(info);
    if (!is_done) {
        return G_SOURCE_CONTINUE;
    }
    info->Timer = 0;
    if (!info->Search->IsStopped()) {
        gtk_label_set_text(GTK_LABEL(info->Label), _("Match file list"));
    }
    if (info->Search->Progress().MatchCount() > FindProgress::kReportedMatches) {
        ShowFound(info, info->Search->TakeResult());
    }
    info->Search.reset();
    return G_SOURCE_REMOVE;
}

/// Stops a running search. If the search does not react, as when a disk hangs, the second time leaves
/// the dialog without waiting for it.
void on_FindResult_OKButton_clicked(GtkWidget*, gpointer data)
{
    auto* const info = static_cast<FindResultInfo*>(data);
    if (info->Search && !info->Search->IsStopped()) {
        info->Search->Stop();
        ShowMatchCount(info);
    } else {
        info->Result = FIND_RESULT_CLOSE;
        gtk_main_quit();
    }
}

/// Shows the selected match in the main window: opens a directory, or scrolls to a file in its
/// directory.
void OpenSelected(GtkTreeView* tree)
{
    std::string path;
    if (!GetTreeSelect(tree, nullptr, &path)) {
        return;
    }
    path = WithoutSlash(path);
    const auto show_file = [directory = GetParentDirectory(path), name = GetLastPath(path)] {
        if (pGTable->CurrentDir == directory) {
            SelectListNames({name});
        }
    };
    OpenFirstDirectory(MainTree(), {path, GetParentDirectory(path)}, EXPAND_LAST_NO, {.after = show_file}, nullptr);
}

void on_FindResult_ResultButton_clicked(GtkWidget* button, gpointer data)
{
    auto* const info = static_cast<FindResultInfo*>(data);
    if (button == info->Buttons[0]) {
        info->Result = FIND_RESULT_DISPLAY;
        OpenSelected(info->ResultTree);
    } else {
        info->Result = FIND_RESULT_AGAIN;
    }
    gtk_main_quit();
}

void on_ResultTree_row_activated(GtkTreeView*, GtkTreePath*, GtkTreeViewColumn*, gpointer button)
{
    gtk_button_clicked(GTK_BUTTON(button));
}

GtkTreeView* AddResultTree(GtkWidget* box, GtkTreeStore* matches)
{
    GtkWidget* const scroll = CreateScroll();
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroll), GTK_SHADOW_IN);
    gtk_box_pack_start(GTK_BOX(box), scroll, TRUE, TRUE, 0);
    GtkTreeView* const tree = CreateNodeView(scroll, GTK_TREE_MODEL(matches), _("Match file list"));
    TakeTreeKeys(tree);
    return tree;
}

void AddResultButtons(GtkWidget* box, FindResultInfo* info)
{
    GtkWidget* const button_box = gtk_button_box_new(GTK_ORIENTATION_HORIZONTAL);
    gtk_button_box_set_layout(GTK_BUTTON_BOX(button_box), GTK_BUTTONBOX_SPREAD);
    gtk_box_set_spacing(GTK_BOX(button_box), kButtonSpacing);
    gtk_box_pack_start(GTK_BOX(box), button_box, FALSE, FALSE, 0);
    const std::array<const char*, 2> labels = {_("Display directory"), _("Serch again")};
    for (std::size_t i = 0; i < labels.size(); ++i) {
        info->Buttons[i] = gtk_button_new_with_label(labels[i]);
        gtk_container_add(GTK_CONTAINER(button_box), info->Buttons[i]);
        g_signal_connect(info->Buttons[i], "clicked", G_CALLBACK(on_FindResult_ResultButton_clicked), info);
    }
    gtk_widget_show_all(button_box);
}

}  // namespace

FindResult CreateFindResultDlg(GtkWidget* parent, const FindRequest& request)
{
    FindResultInfo info;
    GtkWidget* vbox = nullptr;
    GtkWidget* const dialog = CreateNormalDialogBox(&vbox, kWidth, kHeight, kSpacing);
    gtk_window_set_title(GTK_WINDOW(dialog), _("Result of find"));
    info.Label = CreateLabel(vbox, "");
    ShortenLabel(info.Label, kLabelCharacters);
    info.Growing = NewGrowingStore(request.StartPath);
    info.ResultTree = AddResultTree(vbox, info.Growing);
    AddResultButtons(vbox, &info);
    CreateDlgButtonBox(dialog, &info.OKButton, nullptr, CLOSING_UNWIRED);
    g_signal_connect(info.ResultTree, "row-activated", G_CALLBACK(on_ResultTree_row_activated), info.Buttons[0]);
    g_signal_connect(dialog, "delete-event", G_CALLBACK(on_delete_event), info.OKButton);
    g_signal_connect(info.OKButton, "clicked", G_CALLBACK(on_FindResult_OKButton_clicked), &info);

    info.Search.emplace(request);
    info.Timer = g_timeout_add(kPollInterval, on_Search_timeout, &info);
    ShowMatchCount(&info);
    ModalMainLoop(dialog, parent);
    if (info.Timer != 0) {
        g_source_remove(info.Timer);
    }
    g_object_unref(info.Growing);
    return info.Result;
}
