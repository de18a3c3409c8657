#include "commands/fnkeditmenu-find-model.h"

#include "panes/fnkdirtree-nodes.h"

G_DECLARE_FINAL_TYPE(FnkFoundModel, fnk_found_model, FNK, FOUND_MODEL, GObject)

struct _FnkFoundModel {
    GObject parent_instance;
    FoundTree* found;
};

namespace {

const FoundTree& FoundOf(GtkTreeModel* model)
{
    return *FNK_FOUND_MODEL(model)->found;
}

std::uint32_t IndexOf(const GtkTreeIter* iter)
{
    return GPOINTER_TO_UINT(iter->user_data);
}

const FoundEntry& EntryOf(GtkTreeModel* model, const GtkTreeIter* iter)
{
    return FoundOf(model).Entry(IndexOf(iter));
}

/// The model never changes, so one stamp is enough.
gboolean SetIter(GtkTreeIter* iter, std::uint32_t index)
{
    iter->stamp = 1;
    iter->user_data = GUINT_TO_POINTER(index);
    return TRUE;
}

gboolean ClearIter(GtkTreeIter* iter)
{
    iter->stamp = 0;
    return FALSE;
}

GtkTreeModelFlags GetFlags(GtkTreeModel*)
{
    return GTK_TREE_MODEL_ITERS_PERSIST;
}

int GetColumnCount(GtkTreeModel*)
{
    return kNodeDirectoryColumn + 1;
}

GType GetColumnType(GtkTreeModel*, int column)
{
    return column == kNodeNameColumn ? G_TYPE_STRING : G_TYPE_BOOLEAN;
}

int IterCountChildren(GtkTreeModel* model, GtkTreeIter* iter)
{
    return iter == nullptr ? 1 : static_cast<int>(EntryOf(model, iter).child_count);
}

gboolean IterNthChild(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent, int n)
{
    if (n < 0 || n >= IterCountChildren(model, parent)) {
        return ClearIter(iter);
    }
    const std::uint32_t first = parent == nullptr ? FoundTree::kTop : EntryOf(model, parent).first_child;
    return SetIter(iter, first + static_cast<std::uint32_t>(n));
}

gboolean IterChildren(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent)
{
    return IterNthChild(model, iter, parent, 0);
}

gboolean IterHasChild(GtkTreeModel* model, GtkTreeIter* iter)
{
    return EntryOf(model, iter).child_count > 0;
}

gboolean IterParent(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* child)
{
    return IndexOf(child) == FoundTree::kTop ? ClearIter(iter) : SetIter(iter, EntryOf(model, child).parent);
}

/// The index among the children of the parent; 0 for the top.
std::uint32_t PlaceOf(GtkTreeModel* model, const GtkTreeIter* iter)
{
    const std::uint32_t index = IndexOf(iter);
    return index == FoundTree::kTop ? 0 : index - FoundOf(model).Entry(EntryOf(model, iter).parent).first_child;
}

gboolean MoveIter(GtkTreeModel* model, GtkTreeIter* iter, int step)
{
    GtkTreeIter parent;
    const int place = static_cast<int>(PlaceOf(model, iter));
    GtkTreeIter self = *iter;
    return IterNthChild(model, iter, IterParent(model, &parent, &self) ? &parent : nullptr, place + step);
}

gboolean IterNext(GtkTreeModel* model, GtkTreeIter* iter)
{
    return MoveIter(model, iter, 1);
}

gboolean IterPrevious(GtkTreeModel* model, GtkTreeIter* iter)
{
    return MoveIter(model, iter, -1);
}

gboolean GetIter(GtkTreeModel* model, GtkTreeIter* iter, GtkTreePath* path)
{
    const int* const places = gtk_tree_path_get_indices(path);
    GtkTreeIter parent;
    for (int depth = 0; depth < gtk_tree_path_get_depth(path); ++depth) {
        if (!IterNthChild(model, iter, depth == 0 ? nullptr : &parent, places[depth])) {
            return FALSE;
        }
        parent = *iter;
    }
    return TRUE;
}

GtkTreePath* GetPath(GtkTreeModel* model, GtkTreeIter* iter)
{
    GtkTreePath* const path = gtk_tree_path_new();
    GtkTreeIter node = *iter;
    GtkTreeIter parent;
    do {
        gtk_tree_path_prepend_index(path, static_cast<int>(PlaceOf(model, &node)));
        parent = node;
    } while (IterParent(model, &node, &parent));
    return path;
}

void GetValue(GtkTreeModel* model, GtkTreeIter* iter, int column, GValue* value)
{
    g_value_init(value, GetColumnType(model, column));
    if (column == kNodeNameColumn) {
        g_value_set_string(value, FoundOf(model).Name(IndexOf(iter)));
    } else {
        g_value_set_boolean(value, EntryOf(model, iter).is_directory);
    }
}

void InitTreeModel(GtkTreeModelIface* iface)
{
    iface->get_flags = GetFlags;
    iface->get_n_columns = GetColumnCount;
    iface->get_column_type = GetColumnType;
    iface->get_iter = GetIter;
    iface->get_path = GetPath;
    iface->get_value = GetValue;
    iface->iter_next = IterNext;
    iface->iter_previous = IterPrevious;
    iface->iter_children = IterChildren;
    iface->iter_has_child = IterHasChild;
    iface->iter_n_children = IterCountChildren;
    iface->iter_nth_child = IterNthChild;
    iface->iter_parent = IterParent;
}

}  // namespace

// Two casts, or the compiler warns that the function types differ.
G_DEFINE_TYPE_WITH_CODE(FnkFoundModel, fnk_found_model, G_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(GTK_TYPE_TREE_MODEL, reinterpret_cast<GInterfaceInitFunc>(
                                                                       reinterpret_cast<void (*)()>(InitTreeModel))))

static void fnk_found_model_init(FnkFoundModel*) {}

static void fnk_found_model_finalize(GObject* object)
{
    delete FNK_FOUND_MODEL(object)->found;
    G_OBJECT_CLASS(fnk_found_model_parent_class)->finalize(object);
}

static void fnk_found_model_class_init(FnkFoundModelClass* klass)
{
    G_OBJECT_CLASS(klass)->finalize = fnk_found_model_finalize;
}

GtkTreeModel* NewFoundModel(FoundTree found)
{
    auto* const model = static_cast<FnkFoundModel*>(g_object_new(fnk_found_model_get_type(), nullptr));
    model->found = new FoundTree(std::move(found));
    return GTK_TREE_MODEL(model);
}
