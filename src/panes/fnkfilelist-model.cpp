#include "panes/fnkfilelist-model.h"

#include <utility>

#include "model/fnkfilelist-sort.h"

struct _FnkListModel {
    GObject parent_instance;
    FileRows* rows;
    int stamp;  ///< Changes whenever the rows are sorted, which invalidates older iterators.
};

namespace {

FileRows& RowsOf(GtkTreeModel* model)
{
    return *FNK_LIST_MODEL(model)->rows;
}

gboolean SetIter(GtkTreeModel* model, GtkTreeIter* iter, std::size_t index)
{
    if (index >= RowsOf(model).Count()) {
        iter->stamp = 0;
        return FALSE;
    }
    iter->stamp = FNK_LIST_MODEL(model)->stamp;
    iter->user_data = GSIZE_TO_POINTER(index);
    return TRUE;
}

GtkTreeModelFlags GetFlags(GtkTreeModel*)
{
    return static_cast<GtkTreeModelFlags>(GTK_TREE_MODEL_LIST_ONLY);
}

int GetColumnCount(GtkTreeModel*)
{
    return kColumnKinds;
}

GType GetColumnType(GtkTreeModel*, int)
{
    return G_TYPE_STRING;
}

gboolean GetIter(GtkTreeModel* model, GtkTreeIter* iter, GtkTreePath* path)
{
    const int index = gtk_tree_path_get_depth(path) == 1 ? gtk_tree_path_get_indices(path)[0] : -1;
    return index >= 0 && SetIter(model, iter, static_cast<std::size_t>(index));
}

GtkTreePath* GetPath(GtkTreeModel*, GtkTreeIter* iter)
{
    return gtk_tree_path_new_from_indices(static_cast<int>(ModelRowIndex(iter)), -1);
}

void GetValue(GtkTreeModel* model, GtkTreeIter* iter, int column, GValue* value)
{
    const FileRows& rows = RowsOf(model);
    g_value_init(value, G_TYPE_STRING);
    g_value_set_string(value, rows.CellText(rows.Row(ModelRowIndex(iter)), column).c_str());
}

gboolean IterNext(GtkTreeModel* model, GtkTreeIter* iter)
{
    return SetIter(model, iter, ModelRowIndex(iter) + 1);
}

gboolean IterPrevious(GtkTreeModel* model, GtkTreeIter* iter)
{
    // For row 0 this wraps around to an index that no row has.
    return SetIter(model, iter, ModelRowIndex(iter) - 1);
}

gboolean IterChildren(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent)
{
    return parent == nullptr && SetIter(model, iter, 0);
}

gboolean IterHasChild(GtkTreeModel*, GtkTreeIter*)
{
    return FALSE;
}

int IterCountChildren(GtkTreeModel* model, GtkTreeIter* iter)
{
    return iter == nullptr ? static_cast<int>(RowsOf(model).Count()) : 0;
}

gboolean IterNthChild(GtkTreeModel* model, GtkTreeIter* iter, GtkTreeIter* parent, int n)
{
    return parent == nullptr && n >= 0 && SetIter(model, iter, static_cast<std::size_t>(n));
}

gboolean IterParent(GtkTreeModel*, GtkTreeIter* iter, GtkTreeIter*)
{
    iter->stamp = 0;
    return FALSE;
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

// Two casts: with one, the compiler warns that the function types differ.
G_DEFINE_TYPE_WITH_CODE(FnkListModel, fnk_list_model, G_TYPE_OBJECT,
                        G_IMPLEMENT_INTERFACE(GTK_TYPE_TREE_MODEL, reinterpret_cast<GInterfaceInitFunc>(
                                                                       reinterpret_cast<void (*)()>(InitTreeModel))))

static void fnk_list_model_init(FnkListModel* model)
{
    model->rows = new FileRows;
    model->stamp = 1;
}

static void fnk_list_model_finalize(GObject* object)
{
    delete FNK_LIST_MODEL(object)->rows;
    G_OBJECT_CLASS(fnk_list_model_parent_class)->finalize(object);
}

static void fnk_list_model_class_init(FnkListModelClass* klass)
{
    G_OBJECT_CLASS(klass)->finalize = fnk_list_model_finalize;
}

FnkListModel* NewListModel()
{
    return FNK_LIST_MODEL(g_object_new(fnk_list_model_get_type(), nullptr));
}

FileRows& ModelRows(FnkListModel* model)
{
    return *model->rows;
}

void SetModelRows(FnkListModel* model, FileRows rows)
{
    *model->rows = std::move(rows);
    ++model->stamp;
}

std::vector<int> SortModelRows(FnkListModel* model)
{
    const std::vector<std::uint32_t> order = SortFileRows(*model->rows);
    ++model->stamp;
    return {order.begin(), order.end()};
}

std::size_t ModelRowIndex(const GtkTreeIter* iter)
{
    return GPOINTER_TO_SIZE(iter->user_data);
}
