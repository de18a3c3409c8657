#include "panes/fnkfilelist-columns.h"

#include <algorithm>
#include <array>

#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "kit/fnkutil-color.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "model/fnkfilelist-sort.h"
#include "panes/fnkfilelist-model.h"

#include "CloseDir.xpm"

namespace {

constexpr int kIconWidth = 18;
constexpr int kNarrowestColumn = 16;
constexpr int kWidestColumn = 4000;
/// Pixels for the insets of a cell on both sides and some space.
constexpr int kCellInsets = 14;

struct ColumnKind {
    bool align_right;
    const char* typical;  ///< Sample text that determines the width of a column without a stored one.
};
constexpr std::array<ColumnKind, kColumnKinds> kColumns = {{
    {false, "a-rather-long-name.tar.gz"},
    {true, "1023.9MByte"},
    {false, "drwxrwxrwx"},
    {false, "username"},
    {true, "2147483647"},
    {false, "groupname"},
    {true, "2147483647"},
    {true, "May 28 2028 08:08"},
    {true, "May 28 2028 08:08"},
    {true, "May 28 2028 08:08"},
    {true, "2147483647"},
}};

void DrawIcon(GtkTreeViewColumn* column, GtkCellRenderer* cell, GtkTreeModel* model, GtkTreeIter* iter, gpointer)
{
    if (pGTable == nullptr) {
        return;
    }
    const FileRow& row = ModelRows(FNK_LIST_MODEL(model)).Row(ModelRowIndex(iter));
    GtkWidget* const list = gtk_tree_view_column_get_tree_view(column);
    g_object_set(cell, "surface", row.is_directory ? ClosedFolderPicture(list) : nullptr, nullptr);
}

GdkRGBA RowColor(GtkWidget* list, const FileRow& row)
{
    // The settings have no colour for FIFOs.
    const FileType type = row.type == FT_FIFO ? FT_NORMAL : row.type;
    return TextColor(list, pGTable->Colors[type]);
}

void DrawText(GtkTreeViewColumn* column, GtkCellRenderer* cell, GtkTreeModel* model, GtkTreeIter* iter, gpointer id)
{
    if (pGTable == nullptr) {
        return;
    }
    const FileRows& rows = ModelRows(FNK_LIST_MODEL(model));
    const std::size_t index = ModelRowIndex(iter);
    const FileRow& row = rows.Row(index);
    g_object_set(cell, "text", rows.CellText(row, GPOINTER_TO_INT(id)).c_str(), nullptr);

    GtkTreeView* const list = GTK_TREE_VIEW(gtk_tree_view_column_get_tree_view(column));
    if (gtk_tree_selection_iter_is_selected(gtk_tree_view_get_selection(list), iter)) {
        g_object_set(cell, "foreground-set", FALSE, nullptr);
        return;
    }
    const GdkRGBA color = RowColor(GTK_WIDGET(list), row);
    g_object_set(cell, "foreground-rgba", &color, nullptr);
}

int TitleWidth(GtkTreeViewColumn* column)
{
    int width = 0;
    gtk_widget_get_preferred_width(gtk_tree_view_column_get_button(column), nullptr, &width);
    return width;
}

/// Wide enough for the title with its sort arrow and for a typical cell.
int NaturalWidth(GtkTreeView* list, GtkTreeViewColumn* column, int id)
{
    const gboolean has_arrow = gtk_tree_view_column_get_sort_indicator(column);
    gtk_tree_view_column_set_sort_indicator(column, TRUE);
    const int title = TitleWidth(column);
    gtk_tree_view_column_set_sort_indicator(column, has_arrow);
    const char* const typical = kColumns[static_cast<std::size_t>(id)].typical;
    return std::max(title, GetTextWidth(GTK_WIDGET(list), typical) + kCellInsets);
}

/// The width of a column in the default settings; 0 if it is not displayed by default.
int DefaultWidth(int id)
{
    const GTable defaults;
    const auto end = defaults.ColumnPosition.begin() + defaults.ColumnCount;
    const auto place = std::find(defaults.ColumnPosition.begin(), end, id);
    return place != end ? defaults.ColumnSize[static_cast<std::size_t>(place - defaults.ColumnPosition.begin())] : 0;
}

/// The stored width, or the natural width if none is stored. A right-aligned column that still has its
/// default width grows to its natural width: with a large font the default would cut off digits.
int ColumnWidth(GtkTreeView* list, GtkTreeViewColumn* column, std::size_t position)
{
    const int id = pGTable->ColumnPosition[position];
    const int stored = pGTable->ColumnSize[position];
    if (stored <= 0) {
        return NaturalWidth(list, column, id);
    }
    const ColumnKind& kind = kColumns[static_cast<std::size_t>(id)];
    const bool is_untouched = stored == DefaultWidth(id);
    const int needed = kind.align_right && is_untouched ? NaturalWidth(list, column, id) : 0;
    return std::max(needed, std::clamp(stored, kNarrowestColumn, kWidestColumn));
}

void on_FileList_resize_column(GtkTreeViewColumn* column, GParamSpec*, gpointer index)
{
    if (pGTable != nullptr) {
        pGTable->ColumnSize[GPOINTER_TO_SIZE(index)] = gtk_tree_view_column_get_fixed_width(column);
    }
}

GtkTreeViewColumn* AppendColumn(GtkTreeView* list, GtkCellRenderer* cell, GtkTreeCellDataFunc draw, int id)
{
    GtkTreeViewColumn* const column = gtk_tree_view_column_new();
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_pack_start(column, cell, TRUE);
    gtk_tree_view_column_set_cell_data_func(column, cell, draw, GINT_TO_POINTER(id), nullptr);
    gtk_tree_view_append_column(list, column);
    return column;
}

constexpr const char* kColumnNumberKey = "fennick-list-column";

void on_FileList_column_clicked(GtkTreeViewColumn* column, gpointer handler)
{
    if (pGTable != nullptr) {
        const int number = GPOINTER_TO_INT(g_object_get_data(G_OBJECT(column), kColumnNumberKey));
        reinterpret_cast<ColumnClickHandler>(handler)(number);
    }
}

void MakeClickable(GtkTreeViewColumn* column, int list_column, ColumnClickHandler handler)
{
    gtk_tree_view_column_set_clickable(column, TRUE);
    g_object_set_data(G_OBJECT(column), kColumnNumberKey, GINT_TO_POINTER(list_column));
    g_signal_connect(column, "clicked", G_CALLBACK(on_FileList_column_clicked), reinterpret_cast<gpointer>(handler));
}

void AppendIconColumn(GtkTreeView* list, ColumnClickHandler clicked)
{
    GtkTreeViewColumn* const column = AppendColumn(list, gtk_cell_renderer_pixbuf_new(), DrawIcon, 0);
    GtkWidget* const title = CreatePixmap(PICTURE(CloseDir));
    gtk_widget_show(title);
    gtk_tree_view_column_set_widget(column, title);
    MakeClickable(column, 0, clicked);
}

void AppendDetailColumn(GtkTreeView* list, std::size_t position, ColumnClickHandler clicked)
{
    const int id = pGTable->ColumnPosition[position];
    GtkCellRenderer* const cell = gtk_cell_renderer_text_new();
    g_object_set(cell, "xalign", kColumns[static_cast<std::size_t>(id)].align_right ? 1.0F : 0.0F,
                 "single-paragraph-mode", TRUE, "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    FixRowHeight(GTK_WIDGET(list), cell);
    GtkTreeViewColumn* const column = AppendColumn(list, cell, DrawText, id);
    gtk_tree_view_column_set_title(column, GetListColumnString(id).c_str());
    gtk_tree_view_column_set_alignment(column, 0.0F);
    gtk_tree_view_column_set_resizable(column, TRUE);
    gtk_tree_view_column_set_min_width(column, kNarrowestColumn);
    MakeClickable(column, static_cast<int>(position) + 1, clicked);
    gtk_tree_view_column_set_fixed_width(column, ColumnWidth(list, column, position));
    g_signal_connect(column, "notify::fixed-width", G_CALLBACK(on_FileList_resize_column), GSIZE_TO_POINTER(position));
}

/// Key under which the filler keeps the value of "expand" at the last size allocation.
constexpr const char* kWasExpandingKey = "fennick-was-expanding";

void on_FileList_size_allocate(GtkWidget*, GdkRectangle*, gpointer filler)
{
    const gboolean expands = gtk_tree_view_column_get_expand(GTK_TREE_VIEW_COLUMN(filler));
    g_object_set_data(G_OBJECT(filler), kWasExpandingKey, GINT_TO_POINTER(expands));
}

/// When a column gets wider, the toolkit does not shrink the filler, and the list scrolls into empty
/// space. The toolkit distributes the width again only if the number of expanding columns changes, so
/// this toggles whether the filler expands. As the last column, the filler gets the remaining width
/// either way.
void on_Column_notify_fixed_width(GtkTreeViewColumn*, GParamSpec*, gpointer filler)
{
    const bool was_expanding = g_object_get_data(G_OBJECT(filler), kWasExpandingKey) != nullptr;
    gtk_tree_view_column_set_expand(GTK_TREE_VIEW_COLUMN(filler), !was_expanding);
}

/// Adds an empty last column for the remaining width, which would otherwise widen the last real one.
void AppendFillerColumn(GtkTreeView* list)
{
    GtkTreeViewColumn* const column = gtk_tree_view_column_new();
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_column_set_expand(column, TRUE);
    for (int i = 0; i <= pGTable->ColumnCount; ++i) {
        g_signal_connect_object(gtk_tree_view_get_column(list, i), "notify::fixed-width",
                                G_CALLBACK(on_Column_notify_fixed_width), column, GConnectFlags());
    }
    gtk_tree_view_append_column(list, column);
    g_signal_connect_object(list, "size-allocate", G_CALLBACK(on_FileList_size_allocate), column, GConnectFlags());
}

}  // namespace

void AppendListColumns(GtkTreeView* list, ColumnClickHandler clicked)
{
    AppendIconColumn(list, clicked);
    for (std::size_t i = 0; i < static_cast<std::size_t>(pGTable->ColumnCount); ++i) {
        AppendDetailColumn(list, i, clicked);
    }
    AppendFillerColumn(list);
}

void UpdateSortArrows(GtkTreeView* list)
{
    const int sorted = EffectiveSortColumn();
    for (int i = 0; i <= pGTable->ColumnCount; ++i) {
        GtkTreeViewColumn* const column = gtk_tree_view_get_column(list, i);
        gtk_tree_view_column_set_sort_indicator(column, i == sorted);
        gtk_tree_view_column_set_sort_order(column, IsShownAscending() ? GTK_SORT_ASCENDING : GTK_SORT_DESCENDING);
    }
    // The icon column is as wide as its title, sort arrow included.
    GtkTreeViewColumn* const icon = gtk_tree_view_get_column(list, 0);
    gtk_tree_view_column_set_fixed_width(icon, std::max(kIconWidth, TitleWidth(icon)));
}
