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
constexpr int kCellInsets = 10;
/// Pixels between two titles, which the last column lacks when it is measured.
constexpr int kTitleSeparator = 2;
/// Pixels of a cell area beside its text.
constexpr int kCellPadding = 4;

/// Of the Name column while it takes the room that the others leave.
constexpr int kNarrowestName = 64;
/// Rows that a column is fitted to, besides those in view.
constexpr std::size_t kFitSample = 1000;

enum CellKind { CELL_TEXT, CELL_DATE, CELL_NUMBER };

struct ColumnKind {
    CellKind cells;       ///< Numbers are never cut. Only text is aligned left.
    const char* typical;  ///< Sample text that determines the width of a column without a stored one.
};
constexpr std::array<ColumnKind, kColumnKinds> kColumns = {{
    {CELL_TEXT, "a-rather-long-name.tar.gz"},
    {CELL_NUMBER, "1023.9MByte"},
    {CELL_TEXT, "drwxrwxrwx"},
    {CELL_TEXT, "username"},
    {CELL_NUMBER, "-2147483648"},
    {CELL_TEXT, "groupname"},
    {CELL_NUMBER, "-2147483648"},
    {CELL_DATE, "May 28 2028 08:08"},
    {CELL_DATE, "May 28 2028 08:08"},
    {CELL_DATE, "May 28 2028 08:08"},
    {CELL_NUMBER, "-2147483648"},
}};

const ColumnKind& KindOf(int id)
{
    return kColumns[static_cast<std::size_t>(id)];
}

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
    return width + kTitleSeparator;
}

int TextCellWidth(GtkTreeView* list, const std::string& text)
{
    return GetTextWidth(GTK_WIDGET(list), text.c_str()) + kCellInsets;
}

/// Wide enough for the title and for a typical cell.
int NaturalWidth(GtkTreeView* list, GtkTreeViewColumn* column, int id)
{
    return std::max(TitleWidth(column), TextCellWidth(list, KindOf(id).typical));
}

/// The width of a column in the default settings; 0 if it is not displayed by default.
int DefaultWidth(int id)
{
    const GTable defaults;
    const auto end = defaults.ColumnPosition.begin() + defaults.ColumnCount;
    const auto place = std::find(defaults.ColumnPosition.begin(), end, id);
    return place != end ? defaults.ColumnSize[static_cast<std::size_t>(place - defaults.ColumnPosition.begin())] : 0;
}

/// Whether the column is the Name column and the user has not set its width.
bool TakesFreeRoom(std::size_t position)
{
    const int stored = pGTable->ColumnSize[position];
    return static_cast<int>(position) + 1 == pGTable->NameColumn &&
           (stored <= 0 || stored == DefaultWidth(COLUMN_NAME));
}

/// The stored width, or the natural width if none is stored. A right-aligned column that still has its
/// default width grows to its natural width: with a large font the default would cut off digits.
int ColumnWidth(GtkTreeView* list, GtkTreeViewColumn* column, std::size_t position)
{
    const int id = pGTable->ColumnPosition[position];
    const int stored = pGTable->ColumnSize[position];
    if (TakesFreeRoom(position)) {
        return kNarrowestName;
    }
    if (stored <= 0) {
        return NaturalWidth(list, column, id);
    }
    const bool is_untouched = stored == DefaultWidth(id);
    const int needed = KindOf(id).cells != CELL_TEXT && is_untouched ? NaturalWidth(list, column, id) : 0;
    return std::max(needed, std::clamp(stored, kNarrowestColumn, kWidestColumn));
}

constexpr const char* kColumnNumberKey = "fennick-list-column";

/// The place of a column among the detail columns; -1 for the icons and the filler.
int PositionOf(GtkTreeViewColumn* column)
{
    return GPOINTER_TO_INT(g_object_get_data(G_OBJECT(column), kColumnNumberKey)) - 1;
}

const FileRows* RowsOf(GtkTreeView* list)
{
    GtkTreeModel* const model = gtk_tree_view_get_model(list);
    return model != nullptr ? &ModelRows(FNK_LIST_MODEL(model)) : nullptr;
}

/// Wide enough for the title, what is in view, and a sample of the rest.
int FittedWidth(GtkTreeView* list, GtkTreeViewColumn* column, int id)
{
    int width = KindOf(id).cells == CELL_NUMBER ? NaturalWidth(list, column, id) : TitleWidth(column);
    const FileRows* const rows = RowsOf(list);
    if (rows == nullptr) {
        return width;
    }
    const auto include = [&](std::size_t row) {
        width = std::max(width, TextCellWidth(list, rows->CellText(rows->Row(row), id)));
    };
    const std::size_t stride = 1 + rows->Count() / kFitSample;
    for (std::size_t row = 0; row < rows->Count(); row += stride) {
        include(row);
    }
    GtkTreePath* first = nullptr;
    GtkTreePath* last = nullptr;
    if (stride > 1 && gtk_tree_view_get_visible_range(list, &first, &last)) {
        const TreePath first_owner(first);
        const TreePath last_owner(last);
        for (int row = gtk_tree_path_get_indices(first)[0]; row <= gtk_tree_path_get_indices(last)[0]; ++row) {
            include(static_cast<std::size_t>(row));
        }
    }
    return std::min(width, kWidestColumn);
}

// The room beside the columns goes to the Name column until the user sets its width, then to an empty
// last column, the filler. Both take it by "expand". The toolkit distributes the room again only if its
// own width or the number of expanding columns changes. So that number has to change when a column gets
// another width, or the list would scroll into empty space.

void on_FileList_resize_column(GtkTreeViewColumn* column, GParamSpec*, gpointer);

/// Sets a width as the program, not the user.
void SetWidth(GtkTreeViewColumn* column, int width)
{
    const auto handler = reinterpret_cast<gpointer>(on_FileList_resize_column);
    g_signal_handlers_block_matched(column, G_SIGNAL_MATCH_FUNC, 0, 0, nullptr, handler, nullptr);
    gtk_tree_view_column_set_fixed_width(column, width);
    g_signal_handlers_unblock_matched(column, G_SIGNAL_MATCH_FUNC, 0, 0, nullptr, handler, nullptr);
}

GtkTreeViewColumn* Filler(GtkTreeView* list)
{
    return gtk_tree_view_get_column(list, pGTable->ColumnCount + 1);
}

/// The Name column while it takes the free room, else null.
GtkTreeViewColumn* RoomTaker(GtkTreeView* list)
{
    const int name = pGTable->NameColumn;
    return name > 0 && TakesFreeRoom(static_cast<std::size_t>(name - 1)) ? gtk_tree_view_get_column(list, name)
                                                                         : nullptr;
}

/// Key under which the list keeps whether a column expanded at the last size allocation.
constexpr const char* kWasExpandingKey = "fennick-was-expanding";

/// Called when a column is about to get another width.
void ShareRoom(GtkTreeView* list, GtkTreeViewColumn* column, int width)
{
    if (Filler(list) == nullptr) {
        return;  // The columns are still being added.
    }
    GtkTreeViewColumn* const name = RoomTaker(list);
    if (name == nullptr) {
        const bool was_expanding = g_object_get_data(G_OBJECT(list), kWasExpandingKey) != nullptr;
        gtk_tree_view_column_set_expand(Filler(list), !was_expanding);
        gtk_tree_view_column_set_visible(Filler(list), TRUE);
        return;
    }
    // It gets what will be left, and expands again once this has been allocated.
    const int growth = width - gtk_tree_view_column_get_width(column);
    if (growth == 0) {
        return;
    }
    gtk_tree_view_column_set_expand(name, FALSE);
    SetWidth(name, std::max(kNarrowestName, gtk_tree_view_column_get_width(name) - growth));
}

/// Keeps number columns wide enough for every number in the list, whatever width is set.
void UpdateLeastWidths(GtkTreeView* list)
{
    std::int64_t largest = 0;
    const FileRows* const rows = RowsOf(list);
    for (std::size_t row = 0; rows != nullptr && row < rows->Count(); ++row) {
        largest = std::max(largest, rows->Row(row).size);
    }
    for (int i = 0; i < pGTable->ColumnCount; ++i) {
        const int id = pGTable->ColumnPosition[static_cast<std::size_t>(i)];
        if (KindOf(id).cells != CELL_NUMBER) {
            continue;
        }
        int width = TextCellWidth(list, KindOf(id).typical);
        if (id == COLUMN_SIZE) {
            width = std::max(width, TextCellWidth(list, ConvertSize(static_cast<std::uint64_t>(largest))));
        }
        GtkTreeViewColumn* const column = gtk_tree_view_get_column(list, i + 1);
        if (width != gtk_tree_view_column_get_min_width(column)) {
            gtk_tree_view_column_set_min_width(column, width);
            ShareRoom(list, column, std::max(width, gtk_tree_view_column_get_fixed_width(column)));
        }
    }
}

gboolean ExpandRoomTaker(gpointer data)
{
    GtkTreeView* const list = GTK_TREE_VIEW(data);
    const bool is_there = pGTable != nullptr && gtk_widget_get_mapped(GTK_WIDGET(list));
    if (GtkTreeViewColumn* const name = is_there ? RoomTaker(list) : nullptr) {
        SetWidth(name, kNarrowestName);
        gtk_tree_view_column_set_expand(name, TRUE);
    }
    return G_SOURCE_REMOVE;
}

void on_FileList_size_allocate(GtkWidget* widget, GdkRectangle*, gpointer)
{
    if (pGTable == nullptr) {
        return;
    }
    GtkTreeView* const list = GTK_TREE_VIEW(widget);
    GtkTreeViewColumn* const name = RoomTaker(list);
    const bool is_expanding =
        gtk_tree_view_column_get_expand(Filler(list)) || (name != nullptr && gtk_tree_view_column_get_expand(name));
    g_object_set_data(G_OBJECT(list), kWasExpandingKey, GINT_TO_POINTER(is_expanding));
    if (name != nullptr && !is_expanding) {
        // Not now: the toolkit would forget it at the end of the allocation.
        g_idle_add_full(GTK_PRIORITY_RESIZE - 1, ExpandRoomTaker, g_object_ref(list), g_object_unref);
    }
}

/// Stores the width that the user sets.
void on_FileList_resize_column(GtkTreeViewColumn* column, GParamSpec*, gpointer index)
{
    if (pGTable == nullptr) {
        return;
    }
    GtkTreeView* const list = GTK_TREE_VIEW(gtk_tree_view_column_get_tree_view(column));
    const std::size_t position = GPOINTER_TO_SIZE(index);
    int width = gtk_tree_view_column_get_fixed_width(column);
    if (width < 0) {  // After a double click on the edge.
        width = FittedWidth(list, column, pGTable->ColumnPosition[position]);
        SetWidth(column, width);
    }
    width = std::max(width, gtk_tree_view_column_get_min_width(column));
    if (TakesFreeRoom(position)) {
        gtk_tree_view_column_set_expand(column, FALSE);
        if (width == gtk_tree_view_column_get_width(column)) {
            return;  // A press on the edge, which does not change the width.
        }
        width += width == DefaultWidth(COLUMN_NAME) ? 1 : 0;  // The default would mean that it is not set.
    }
    pGTable->ColumnSize[position] = width;
    ShareRoom(list, column, width);
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

void on_FileList_column_clicked(GtkTreeViewColumn* column, gpointer handler)
{
    if (pGTable != nullptr) {
        reinterpret_cast<ColumnClickHandler>(handler)(PositionOf(column) + 1);
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
    GtkWidget* const title = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    GtkWidget* const picture = CreatePixmap(PICTURE(CloseDir));
    gtk_box_pack_start(GTK_BOX(title), picture, TRUE, TRUE, 0);
    // A label that is not shown names the button. SetAccessibleName would create the accessible of the list.
    gtk_container_add(GTK_CONTAINER(title), gtk_label_new(_("Directory")));
    gtk_widget_show(picture);
    gtk_widget_show(title);
    gtk_tree_view_column_set_widget(column, title);
    MakeClickable(column, 0, clicked);
}

void AppendDetailColumn(GtkTreeView* list, std::size_t position, ColumnClickHandler clicked)
{
    const int id = pGTable->ColumnPosition[position];
    GtkCellRenderer* const cell = gtk_cell_renderer_text_new();
    g_object_set(cell, "xalign", KindOf(id).cells == CELL_TEXT ? 0.0F : 1.0F, "single-paragraph-mode", TRUE,
                 "ellipsize", PANGO_ELLIPSIZE_END, nullptr);
    FixRowHeight(GTK_WIDGET(list), cell);
    GtkTreeViewColumn* const column = AppendColumn(list, cell, DrawText, id);
    gtk_tree_view_column_set_title(column, GetListColumnString(id).c_str());
    GtkWidget* const title = gtk_label_new(gtk_tree_view_column_get_title(column));
    gtk_label_set_ellipsize(GTK_LABEL(title), PANGO_ELLIPSIZE_END);
    gtk_widget_show(title);
    gtk_tree_view_column_set_widget(column, title);
    gtk_tree_view_column_set_alignment(column, 0.0F);
    gtk_tree_view_column_set_resizable(column, TRUE);
    gtk_tree_view_column_set_min_width(column, kNarrowestColumn);
    MakeClickable(column, static_cast<int>(position) + 1, clicked);
    gtk_tree_view_column_set_fixed_width(column, ColumnWidth(list, column, position));
    gtk_tree_view_column_set_expand(column, TakesFreeRoom(position));
    g_signal_connect(column, "notify::fixed-width", G_CALLBACK(on_FileList_resize_column), GSIZE_TO_POINTER(position));
}

void AppendFillerColumn(GtkTreeView* list)
{
    GtkTreeViewColumn* const column = gtk_tree_view_column_new();
    gtk_tree_view_column_set_sizing(column, GTK_TREE_VIEW_COLUMN_FIXED);
    gtk_tree_view_append_column(list, column);
    gtk_widget_set_can_focus(gtk_tree_view_column_get_button(column), FALSE);
    gtk_tree_view_column_set_expand(column, RoomTaker(list) == nullptr);
    gtk_tree_view_column_set_visible(column, RoomTaker(list) == nullptr);
    g_signal_connect(list, "size-allocate", G_CALLBACK(on_FileList_size_allocate), nullptr);
}

/// Shows the whole text of a cell that is cut.
gboolean on_FileList_query_tooltip(GtkWidget* widget, int x, int y, gboolean by_key, GtkTooltip* tooltip, gpointer)
{
    GtkTreeView* const list = GTK_TREE_VIEW(widget);
    GtkTreeModel* model = nullptr;
    GtkTreePath* row = nullptr;
    GtkTreeIter iter;
    if (pGTable == nullptr || by_key || !gtk_tree_view_get_tooltip_context(list, &x, &y, by_key, &model, &row, &iter)) {
        return FALSE;
    }
    const TreePath path(row);
    GtkTreeViewColumn* column = nullptr;
    gtk_tree_view_get_path_at_pos(list, x, y, nullptr, &column, nullptr, nullptr);
    const int position = column != nullptr ? PositionOf(column) : -1;
    if (position < 0) {
        return FALSE;
    }
    const FileRows& rows = ModelRows(FNK_LIST_MODEL(model));
    const std::string text =
        rows.CellText(rows.Row(ModelRowIndex(&iter)), pGTable->ColumnPosition[static_cast<std::size_t>(position)]);
    GdkRectangle area = {};
    gtk_tree_view_get_cell_area(list, path.get(), column, &area);
    if (GetTextWidth(widget, text.c_str()) + kCellPadding <= area.width) {
        return FALSE;
    }
    ShowWholeText(tooltip, text.c_str());
    gtk_tree_view_set_tooltip_cell(list, tooltip, path.get(), column, nullptr);
    return TRUE;
}

}  // namespace

void AppendListColumns(GtkTreeView* list, ColumnClickHandler clicked)
{
    AppendIconColumn(list, clicked);
    for (std::size_t i = 0; i < static_cast<std::size_t>(pGTable->ColumnCount); ++i) {
        AppendDetailColumn(list, i, clicked);
    }
    AppendFillerColumn(list);
    gtk_widget_set_has_tooltip(GTK_WIDGET(list), TRUE);
    g_signal_connect(list, "query-tooltip", G_CALLBACK(on_FileList_query_tooltip), nullptr);
}

int ListColumnSize(GtkTreeView* list, int position)
{
    const auto place = static_cast<std::size_t>(position);
    if (TakesFreeRoom(place)) {
        return pGTable->ColumnSize[place];
    }
    GtkTreeViewColumn* const column = gtk_tree_view_get_column(list, position + 1);
    return std::max(gtk_tree_view_column_get_fixed_width(column), gtk_tree_view_column_get_min_width(column));
}

void UpdateSortArrows(GtkTreeView* list)
{
    const int sorted = EffectiveSortColumn();
    for (int i = 0; i <= pGTable->ColumnCount; ++i) {
        GtkTreeViewColumn* const column = gtk_tree_view_get_column(list, i);
        gtk_tree_view_column_set_sort_indicator(column, i == sorted);
        gtk_tree_view_column_set_sort_order(column, IsShownAscending() ? GTK_SORT_ASCENDING : GTK_SORT_DESCENDING);
    }
    UpdateLeastWidths(list);
    // The icon column is as wide as its title, sort arrow included.
    GtkTreeViewColumn* const icon = gtk_tree_view_get_column(list, 0);
    const int width = std::max(kIconWidth, TitleWidth(icon));
    if (width != gtk_tree_view_column_get_fixed_width(icon)) {
        ShareRoom(list, icon, width);
        gtk_tree_view_column_set_fixed_width(icon, width);
    }
}
