#include "panes/fnkdirtree-nodes.h"

#include <algorithm>
#include <map>
#include <vector>

#include "core/fnkraii.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"

namespace {

GtkTreeStore* StoreOf(GtkTreeView* tree)
{
    return GTK_TREE_STORE(gtk_tree_view_get_model(tree));
}

/// Inserts a child of parent. Takes time linear in position: the store walks there from the start.
GtkTreeIter InsertNode(GtkTreeStore* store, GtkTreeIter* parent, std::size_t position, const std::string& name)
{
    GtkTreeIter node;
    gtk_tree_store_insert_with_values(store, &node, parent, static_cast<int>(position), kNodeNameColumn, name.c_str(),
                                      -1);
    return node;
}

struct ExistingChild {
    std::string name;
    GtkTreeIter node;
};

std::vector<ExistingChild> ListChildren(GtkTreeModel* model, GtkTreeIter* parent)
{
    std::vector<ExistingChild> children;
    GtkTreeIter child;
    for (gboolean more = gtk_tree_model_iter_children(model, &child, parent); more;
         more = gtk_tree_model_iter_next(model, &child)) {
        children.push_back({GetNodeName(model, child), child});
    }
    return children;
}

/// A node that can be expanded but has not been read has one child. If its name is not known, that has
/// none, and is never seen: it goes when the node is expanded.
void RemoveNamelessChild(GtkTreeStore* store, GtkTreeIter* parent)
{
    GtkTreeIter child;
    if (gtk_tree_model_iter_children(GTK_TREE_MODEL(store), &child, parent) &&
        GetNodeName(GTK_TREE_MODEL(store), child).empty()) {
        gtk_tree_store_remove(store, &child);
    }
}

/// Adds the one child that shows that parent can be expanded. Does nothing if name is empty or the
/// child exists.
void AddEarlyChild(GtkTreeStore* store, GtkTreeIter* parent, const std::string& name)
{
    if (!name.empty()) {
        const std::vector<ExistingChild> children = ListChildren(GTK_TREE_MODEL(store), parent);
        const auto place =
            std::lower_bound(children.begin(), children.end(), name,
                             [](const ExistingChild& child, const std::string& text) { return child.name < text; });
        if (place == children.end() || place->name != name) {
            InsertNode(store, parent, static_cast<std::size_t>(place - children.begin()), name);
        }
    }
    RemoveNamelessChild(store, parent);
}

/// To add or remove a child, the store counts its way to the parent. For all nodes of a level of 100,000
/// that takes minutes, so larger levels than this are put right as they are seen.
constexpr std::size_t kSmallLevel = 1000;
constexpr const char* kLateKey = "fennick-late";

/// What is known of the nodes in large levels, and not shown yet, by directory.
using LateLevels = std::map<std::string, std::vector<Subdirectory>>;

LateLevels& LateLevelsOf(GtkTreeStore* store)
{
    auto* late = static_cast<LateLevels*>(g_object_get_data(G_OBJECT(store), kLateKey));
    if (late == nullptr) {
        late = new LateLevels();
        const auto forget = [](gpointer data) { delete static_cast<LateLevels*>(data); };
        g_object_set_data_full(G_OBJECT(store), kLateKey, late, forget);
    }
    return *late;
}

/// The path of a node in bytes, ending in "/".
std::string PathOfNode(GtkTreeModel* model, const GtkTreeIter& node)
{
    std::string path = WithSlash(GetNodeName(model, node));
    GtkTreeIter child = node;
    GtkTreeIter parent;
    while (gtk_tree_model_iter_parent(model, &parent, &child)) {
        path.insert(0, WithSlash(GetNodeName(model, parent)));
        child = parent;
    }
    return path;
}

/// Merges found, which is sorted, into the children of parent. Inserts from last to first: InsertNode
/// then walks only past old children, and usually there are none.
void MergeChildren(GtkTreeStore* store, GtkTreeIter* parent, const std::vector<Subdirectory>& found)
{
    std::vector<ExistingChild> existing = ListChildren(GTK_TREE_MODEL(store), parent);
    const bool is_large = existing.size() > kSmallLevel;
    if (is_large) {
        LateLevelsOf(store)[PathOfNode(GTK_TREE_MODEL(store), *parent)] = found;
    }
    for (auto child = found.rbegin(); child != found.rend(); ++child) {
        while (!existing.empty() && existing.back().name > child->name) {
            existing.pop_back();
        }
        if (!existing.empty() && existing.back().name == child->name) {
            if (child->any_child && !is_large) {
                AddEarlyChild(store, &existing.back().node, *child->any_child);
            }
            existing.pop_back();
            continue;
        }
        GtkTreeIter node = InsertNode(store, parent, existing.size(), child->name);
        if (!child->any_child || !child->any_child->empty()) {
            InsertNode(store, &node, 0, child->any_child.value_or(""));
        }
    }
    RemoveNamelessChild(store, parent);
}

}  // namespace

GtkTreeStore* CreateNodeStore()
{
    GtkTreeStore* const store = gtk_tree_store_new(1, G_TYPE_STRING);
    InsertNode(store, nullptr, 0, pGTable->RootDir);
    return store;
}

std::string GetNodeName(GtkTreeModel* model, const GtkTreeIter& node)
{
    GtkTreeIter iter = node;
    char* name = nullptr;
    gtk_tree_model_get(model, &iter, kNodeNameColumn, &name, -1);
    const GlibPointer<char> owner(name);
    return name != nullptr ? name : "";
}

void CreateChildtree(GtkTreeView* tree, GtkTreeIter* node, const std::vector<Subdirectory>& found)
{
    MergeChildren(StoreOf(tree), node, found);
}

void ShowLookAhead(GtkTreeView* tree, const std::string& directory, const std::vector<Subdirectory>& found)
{
    std::string path = directory;
    GtkTreeIter parent;
    if (!GetPathNode(tree, path, &parent)) {
        return;
    }
    if (found.size() > kSmallLevel) {
        LateLevelsOf(StoreOf(tree))[path] = found;
        return;
    }
    auto known = found.begin();
    for (ExistingChild& child : ListChildren(GTK_TREE_MODEL(StoreOf(tree)), &parent)) {
        while (known != found.end() && known->name < child.name) {
            ++known;
        }
        if (known != found.end() && known->name == child.name && known->any_child) {
            AddEarlyChild(StoreOf(tree), &child.node, *known->any_child);
        }
    }
}

void ShowLateLookAhead(GtkTreeModel* model, const GtkTreeIter& node)
{
    GtkTreeIter child = node;
    GtkTreeIter parent;
    auto* const late = static_cast<LateLevels*>(g_object_get_data(G_OBJECT(model), kLateKey));
    if (late == nullptr || late->empty() || !gtk_tree_model_iter_parent(model, &parent, &child)) {
        return;
    }
    const auto level = late->find(PathOfNode(model, parent));
    if (level == late->end()) {
        return;
    }
    const std::string name = GetNodeName(model, node);
    const auto known =
        std::lower_bound(level->second.begin(), level->second.end(), name,
                         [](const Subdirectory& found, const std::string& text) { return found.name < text; });
    if (known != level->second.end() && known->name == name && known->any_child) {
        AddEarlyChild(GTK_TREE_STORE(model), &child, *known->any_child);
        known->any_child.reset();  // It may change from now on.
    }
}

bool CreateTreeNode(GtkTreeView* tree, const std::string& path, GtkTreeIter* node)
{
    std::string parent = GetParentDirectory(path);
    const std::string name = GetLastPath(path);
    GtkTreeIter parent_node;
    if (name.empty() || CheckChildDirectory(path) != 0 || !GetPathNode(tree, parent, &parent_node)) {
        return false;
    }
    const std::vector<ExistingChild> children = ListChildren(GTK_TREE_MODEL(StoreOf(tree)), &parent_node);
    const auto next = std::find_if(children.begin(), children.end(),
                                   [&name](const ExistingChild& child) { return child.name > name; });
    *node = InsertNode(StoreOf(tree), &parent_node, static_cast<std::size_t>(next - children.begin()), name);
    return true;
}

std::string GetNodePath(GtkTreeView* tree, const GtkTreeIter& node)
{
    return PathOfNode(gtk_tree_view_get_model(tree), node);
}

bool FindChildNode(GtkTreeModel* model, GtkTreeIter* node, const std::string& name)
{
    GtkTreeIter child;
    for (gboolean more = gtk_tree_model_iter_children(model, &child, node); more;
         more = gtk_tree_model_iter_next(model, &child)) {
        if (GetNodeName(model, child) == name) {
            *node = child;
            return true;
        }
    }
    return false;
}

bool GetPathNode(GtkTreeView* tree, std::string& path, GtkTreeIter* node)
{
    if (CheckChildDirectory(path) != 0) {
        return false;
    }
    path = WithSlash(path);
    GtkTreeModel* const model = gtk_tree_view_get_model(tree);
    GtkTreeIter reached;
    if (!gtk_tree_model_get_iter_first(model, &reached)) {
        return false;
    }
    const char* component = path.c_str() + pGTable->RootDir.size();
    for (const char* slash = CharNext(component, '/'); slash != nullptr; slash = CharNext(component, '/')) {
        if (!FindChildNode(model, &reached, std::string(component, slash))) {
            return false;
        }
        component = slash + 1;
    }
    *node = reached;
    return true;
}

void RemoveChildren(GtkTreeView* tree, GtkTreeIter* node)
{
    GtkTreeStore* const store = StoreOf(tree);
    const std::string path = GetNodePath(tree, *node);
    std::erase_if(LateLevelsOf(store), [&path](const auto& level) { return level.first.starts_with(path); });
    GtkTreeIter child;
    while (gtk_tree_model_iter_children(GTK_TREE_MODEL(store), &child, node)) {
        gtk_tree_store_remove(store, &child);
    }
}
