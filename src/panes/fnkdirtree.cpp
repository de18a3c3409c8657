#include "panes/fnkdirtree.h"

#include <memory>
#include <optional>
#include <utility>

#include "core/fnkfiles-place.h"
#include "core/fnkstring.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "kit/fnkcommand.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "kit/fnkvisit.h"
#include "panes/fnkdirtree-view.h"
#include "panes/fnkdirtree-visit.h"
#include "panes/fnkdirtree-walk.h"

DirTreeEvents OnDirTree;

namespace {

void ExpandNode(GtkTreeView* tree, const GtkTreeIter& node)
{
    gtk_tree_view_expand_row(tree, TreeWalk(tree).PathOf(node).get(), FALSE);
}

/// During its lifetime, selecting in the main tree enters no directory. Does nothing for other trees.
class SelectionPause {
public:
    explicit SelectionPause(GtkTreeView* tree) : paused_(tree == MainTree() && pGTable->TreeSelectSignal != 0)
    {
        if (paused_) {
            DisconnectTreeSelectSignal();
        }
    }
    SelectionPause(const SelectionPause&) = delete;
    SelectionPause& operator=(const SelectionPause&) = delete;
    ~SelectionPause()
    {
        if (paused_) {
            ConnectTreeSelectSignal();
        }
    }

private:
    bool paused_;
};

/// Selects what the window shows, after a visit that did not arrive.
void RestoreShown()
{
    GtkTreeView* const tree = MainTree();
    std::string shown = pGTable->CurrentDir;
    GtkTreeIter node;
    if (tree != nullptr && GetPathNode(tree, shown, &node)) {
        const SelectionPause pause(tree);
        gtk_tree_view_set_cursor(tree, TreeWalk(tree).PathOf(node).get(), nullptr, FALSE);
    }
    SetEntryBytes(ComboEntry(pMainW->LocationCombo), shown);
}

void EnterSelected(GtkTreeView* tree)
{
    std::string path;
    if (pGTable == nullptr || OnDirTree.Entered == nullptr || !GetTreeSelect(tree, nullptr, &path)) {
        return;
    }
    if (path == pGTable->CurrentDir) {
        GiveUpVisit();  // To another directory that was selected before.
    } else if (const VisitReading* const reading = ArrivedReading(); reading != nullptr && reading->list == path) {
        OnDirTree.Entered(path);
    } else {
        VisitPlan plan;
        plan.list = path;
        StartTreeVisit(
            tree, plan, [path] { OnDirTree.Entered(path); }, RestoreShown);
    }
}

void on_DirTree_select_row(GtkTreeSelection* selection, gpointer)
{
    if (IsModal()) {
        RestoreShown();
        return;
    }
    EnterSelected(gtk_tree_selection_get_tree_view(selection));
}

/// Unlike the main tree, a picker's tree does not change CurrentDir.
void on_PickerTree_select_row(GtkTreeSelection* selection, gpointer combo)
{
    std::string path;
    if (GetTreeSelect(gtk_tree_selection_get_tree_view(selection), nullptr, &path)) {
        SetEntryBytes(ComboEntry(GTK_WIDGET(combo)), path);
    }
}

/// Merges what was read of a directory into its node, if both are there.
bool MergeArrived(GtkTreeView* tree, const std::string& directory)
{
    std::string path = directory;
    GtkTreeIter node;
    const auto level = ArrivedReading()->levels.find(directory);
    if (level == ArrivedReading()->levels.end() || !GetPathNode(tree, path, &node)) {
        return false;
    }
    CreateChildtree(tree, &node, level->second);
    return true;
}

void ExpandArrived(GtkTreeView* tree, const std::string& directory)
{
    std::string path = directory;
    GtkTreeIter node;
    if (GetPathNode(tree, path, &node)) {
        ExpandNode(tree, node);
    }
}

/// Reads the node's children before the toolkit expands the node. FALSE lets the toolkit go on. If the
/// disk is slow, the node is expanded later.
gboolean on_DirTree_expand(GtkTreeView* tree, GtkTreeIter* node, GtkTreePath*, gpointer)
{
    if (pGTable == nullptr) {
        return TRUE;
    }
    if (ArrivedReading() != nullptr) {
        return FALSE;
    }
    if (tree == MainTree() && IsModal()) {
        return TRUE;
    }
    const std::string directory = GetNodePath(tree, *node);
    VisitPlan plan;
    plan.expand = {directory};
    std::string selected;
    if (tree == MainTree() && IsVisiting() && GetTreeSelect(tree, nullptr, &selected)) {
        if (selected != pGTable->CurrentDir) {
            plan.list = selected;  // Which was about to be entered.
        } else {
            GiveUpVisit();
        }
    }
    const auto is_late = std::make_shared<bool>(false);
    const auto has_arrived = std::make_shared<bool>(false);
    const bool enters = !plan.list.empty();
    StartTreeVisit(
        tree, plan,
        [=] {
            *has_arrived = true;
            MergeArrived(tree, directory);
            if (*is_late) {
                ExpandArrived(tree, directory);
            }
            if (enters) {
                EnterSelected(tree);
            }
        },
        enters ? RestoreShown : nullptr);
    *is_late = true;
    return !*has_arrived;
}

/// Before the toolkit collapses the node: if a node below it is selected, selects the node instead.
gboolean on_DirTree_collapse(GtkTreeView* tree, GtkTreeIter* node, GtkTreePath*, gpointer)
{
    if (pGTable == nullptr) {
        return FALSE;
    }
    if (tree == MainTree() && IsBusy() && ArrivedReading() == nullptr) {
        return TRUE;  // A visit counts on the nodes that are displayed.
    }
    const std::string path = GetNodePath(tree, *node);
    std::string selected;
    if (GetTreeSelect(tree, nullptr, &selected) && selected.size() > path.size() && selected.starts_with(path)) {
        const GtkTreeIter collapsing = *node;
        SetTreeSelectNode(tree, collapsing);
    }
    return FALSE;
}

}  // namespace

GtkTreeView* MainTree()
{
    return pMainW != nullptr && pMainW->DirTree != nullptr ? GTK_TREE_VIEW(pMainW->DirTree) : nullptr;
}

GtkWidget* CreateRootTree(GtkWidget** scroll, GtkWidget* combo)
{
    if (scroll == nullptr) {
        return nullptr;
    }
    *scroll = CreateScroll();
    GtkTreeStore* const nodes = CreateNodeStore();
    GtkTreeView* const tree = CreateNodeView(*scroll, GTK_TREE_MODEL(nodes), _("Directory tree"));
    g_object_unref(nodes);
    if (combo != nullptr) {
        SetEntryBytes(ComboEntry(combo), pGTable->RootDir);
        g_signal_connect(gtk_tree_view_get_selection(tree), "changed", G_CALLBACK(on_PickerTree_select_row), combo);
    }
    g_signal_connect(tree, "test-expand-row", G_CALLBACK(on_DirTree_expand), nullptr);
    g_signal_connect(tree, "test-collapse-row", G_CALLBACK(on_DirTree_collapse), nullptr);
    return GTK_WIDGET(tree);
}

GtkWidget* CreateDirTree(GtkWidget* paned)
{
    pMainW->DirTree = CreateRootTree(&pMainW->TreeScroll, nullptr);
    gtk_paned_pack1(GTK_PANED(paned), pMainW->TreeScroll, FALSE, TRUE);
    SetEntryBytes(ComboEntry(pMainW->LocationCombo), pGTable->RootDir);
    ConnectTreeSelectSignal();
    return pMainW->DirTree;
}

bool GetTreeSelect(GtkTreeView* tree, GtkTreeIter* node, std::string* path)
{
    GtkTreeIter selected;
    if (tree == nullptr || !gtk_tree_selection_get_selected(gtk_tree_view_get_selection(tree), nullptr, &selected)) {
        return false;
    }
    if (node != nullptr) {
        *node = selected;
    }
    if (path != nullptr) {
        *path = GetNodePath(tree, selected);
    }
    return true;
}

void SetTreeSelectNode(GtkTreeView* tree, const GtkTreeIter& node)
{
    const TreePath path = TreeWalk(tree).PathOf(node);
    const bool acts = tree == MainTree() && pGTable->TreeSelectSignal != 0;
    const bool was_visible = GetRowVisibility(tree, path.get()) == ROW_VISIBLE;
    {
        const SelectionPause pause(tree);
        gtk_tree_view_set_cursor(tree, path.get(), nullptr, FALSE);
    }
    if (!was_visible) {
        gtk_tree_view_scroll_to_cell(tree, path.get(), nullptr, TRUE, 0.5F, 0.0F);
    }
    if (acts) {
        EnterSelected(tree);
    }
}

void SetTreeSelectPath(GtkTreeView* tree, const std::string& path)
{
    std::string directory = path;
    GtkTreeIter node;
    if (GetPathNode(tree, directory, &node)) {
        SetTreeSelectNode(tree, node);
    }
}

namespace {

/// Tells the plan which nodes on path the tree has, and which of them are expanded.
void AddKnownNodes(GtkTreeView* tree, const std::string& path, VisitPlan& plan)
{
    GtkTreeModel* const model = gtk_tree_view_get_model(tree);
    GtkTreeIter node;
    bool is_known = gtk_tree_model_get_iter_first(model, &node);
    const std::string target = WithSlash(path);
    std::size_t done = pGTable->RootDir.size();
    while (is_known) {
        const std::string prefix = target.substr(0, done);
        plan.known.insert(prefix);
        if (TreeWalk(tree).IsExpanded(node)) {
            plan.expanded.insert(prefix);
        }
        const char* const slash = done < target.size() ? CharNext(target.c_str() + done, '/') : nullptr;
        is_known = slash != nullptr && FindChildNode(model, &node, std::string(target.c_str() + done, slash));
        done = slash != nullptr ? static_cast<std::size_t>(slash - target.c_str()) + 1 : done;
    }
}

/// Gives the node new children.
void RescanArrived(GtkTreeView* tree, const std::string& directory)
{
    std::string path = directory;
    GtkTreeIter node;
    if (!ArrivedReading()->levels.contains(directory) || !GetPathNode(tree, path, &node)) {
        return;
    }
    const bool was_expanded = TreeWalk(tree).IsExpanded(node);
    RemoveChildren(tree, &node);
    MergeArrived(tree, directory);
    if (was_expanded) {
        ExpandNode(tree, node);
    }
}

/// Expands the tree along the way that was read. Returns the deepest node reached. A directory that the
/// tree would not show, a hidden one for example, gets its node because it was asked for.
GtkTreeIter ExpandAlong(GtkTreeView* tree, const std::vector<std::string>& way, bool expands_last)
{
    GtkTreeIter reached;
    gtk_tree_model_get_iter_first(gtk_tree_view_get_model(tree), &reached);
    for (std::size_t i = 0; i < way.size(); ++i) {
        std::string directory = way[i];
        GtkTreeIter node;
        if (!GetPathNode(tree, directory, &node) && !CreateTreeNode(tree, WithoutSlash(directory), &node)) {
            break;
        }
        reached = node;
        MergeArrived(tree, directory);
        if (i + 1 < way.size() || expands_last) {
            ExpandNode(tree, node);
        }
    }
    return reached;
}

/// Selects the deepest displayed node on the way to path. The caller holds a SelectionPause, so that
/// this enters no directory.
void RestoreSelection(GtkTreeView* tree, const std::string& path)
{
    GtkTreeIter node;
    if (!gtk_tree_model_get_iter_first(gtk_tree_view_get_model(tree), &node)) {
        return;
    }
    std::size_t done = pGTable->RootDir.size();
    while (done < path.size() && gtk_tree_view_row_expanded(tree, TreeWalk(tree).PathOf(node).get())) {
        const char* const slash = CharNext(path.c_str() + done, '/');
        if (slash == nullptr) {
            break;
        }
        const std::string name(path.c_str() + done, slash);
        if (!FindChildNode(gtk_tree_view_get_model(tree), &node, name)) {
            break;
        }
        done = static_cast<std::size_t>(slash - path.c_str()) + 1;
    }
    gtk_tree_view_set_cursor(tree, TreeWalk(tree).PathOf(node).get(), nullptr, FALSE);
}

/// Enters the directory that was opened, or shows it again: commands end here and may have changed it.
void EnterOpened(GtkTreeView* tree, const GtkTreeIter& node, const Opening& opening)
{
    const std::string shown = pGTable->CurrentDir;
    if (tree == MainTree()) {
        ConnectTreeSelectSignal();
    }
    if (opening.before) {
        opening.before(ArrivedReading()->opened);
    }
    SetTreeSelectNode(tree, node);
    std::string selected;
    if (tree == MainTree() && GetTreeSelect(tree, nullptr, &selected) && selected == shown) {
        OnDirTree.Reopened();
    }
}

void ShowVisit(GtkTreeView* tree, const VisitPlan& plan, const Opening& opening)
{
    const VisitReading& reading = *ArrivedReading();
    if (reading.has_failed_root && pGTable->CurrentDir.empty() && OnDirTree.RootFailed != nullptr) {
        OnDirTree.RootFailed();
        return;
    }
    std::optional<GtkTreeIter> reached;
    {
        const SelectionPause pause(tree);
        std::string selected;
        GetTreeSelect(tree, nullptr, &selected);
        for (const std::string& directory : reading.rescanned) {
            RescanArrived(tree, directory);
        }
        for (const std::string& directory : plan.expand) {
            MergeArrived(tree, directory);
            ExpandArrived(tree, directory);
        }
        if (!reading.way.empty()) {
            const bool expands_last =
                plan.expand_last == EXPAND_LAST_YES || !reading.is_target || reading.way.size() == 1;
            reached = ExpandAlong(tree, reading.way, expands_last);
        } else if (!selected.empty()) {
            RestoreSelection(tree, selected);
        }
    }
    if (reached) {
        EnterOpened(tree, *reached, opening);
    }
    if (opening.after) {
        opening.after();
    }
}

void StartOpening(GtkTreeView* tree, VisitPlan plan, const Opening& opening)
{
    plan.rescan = opening.rescan;
    plan.has_list = tree == MainTree();
    for (const std::string& path : plan.open) {
        AddKnownNodes(tree, path, plan);
    }
    StartTreeVisit(
        tree, plan, [=] { ShowVisit(tree, plan, opening); }, tree == MainTree() ? RestoreShown : nullptr);
}

}  // namespace

void OpenChildTree(GtkTreeView* tree, const std::string& path, ExpandLast expand_last, const Opening& opening)
{
    if (tree == nullptr || path.empty() || CheckChildDirectory(path) != 0) {
        return;
    }
    VisitPlan plan;
    plan.open = {path};
    plan.expand_last = expand_last;
    StartOpening(tree, std::move(plan), opening);
}

void OpenTypedPath(GtkTreeView* tree, const std::string& typed, const Opening& opening)
{
    VisitPlan plan;
    plan.open = {typed};
    plan.is_typed = true;
    plan.expand_last = EXPAND_LAST_YES;
    StartOpening(tree, std::move(plan), opening);
}

void OpenFirstDirectory(GtkTreeView* tree, const std::vector<std::string>& paths, ExpandLast expand_last,
                        const Opening& opening, const std::function<void()>& none)
{
    VisitPlan plan;
    plan.open = paths;
    plan.only_existing = true;
    plan.expand_last = expand_last;
    Opening finding = opening;
    finding.after = [count = paths.size(), none, after = opening.after] {
        const bool is_found = ArrivedReading()->opened < count;
        if (const std::function<void()>& next = is_found ? after : none; next) {
            next();
        }
    };
    StartOpening(tree, std::move(plan), finding);
}

void RescanTree(GtkTreeView* tree, const std::string& path)
{
    if (tree != nullptr && CheckChildDirectory(path) == 0) {
        StartOpening(tree, {}, {.rescan = {WithSlash(path)}});
    }
}

namespace {

std::vector<std::string> ListExpandedPaths(GtkTreeView* tree)
{
    std::vector<std::string> paths;
    gtk_tree_view_map_expanded_rows(
        tree,
        [](GtkTreeView* view, GtkTreePath* path, gpointer data) {
            GtkTreeIter node;
            gtk_tree_model_get_iter(gtk_tree_view_get_model(view), &node, path);
            static_cast<std::vector<std::string>*>(data)->push_back(GetNodePath(view, node));
        },
        &paths);
    return paths;
}

}  // namespace

void RebuildTree()
{
    VisitPlan plan;
    plan.open = {pGTable->CurrentDir};
    plan.expand = ListExpandedPaths(MainTree());
    StartOpening(MainTree(), std::move(plan), {.rescan = {pGTable->RootDir}});
}

void ConnectTreeSelectSignal()
{
    if (pGTable->TreeSelectSignal == 0) {
        pGTable->TreeSelectSignal = g_signal_connect(gtk_tree_view_get_selection(MainTree()), "changed",
                                                     G_CALLBACK(on_DirTree_select_row), nullptr);
    }
}

void DisconnectTreeSelectSignal()
{
    if (pGTable->TreeSelectSignal != 0) {
        g_signal_handler_disconnect(gtk_tree_view_get_selection(MainTree()), pGTable->TreeSelectSignal);
        pGTable->TreeSelectSignal = 0;
    }
}
