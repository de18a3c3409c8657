#include "commands/fnkfilemenu-property-pages.h"

#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "kit/fnkutil-widget.h"

namespace {

constexpr int kSpacing = 5;
constexpr int kPageSpacing = 10;
constexpr int kNameLimit = 512;
constexpr int kOwnerLimit = 128;
constexpr int kEntryCharacters = 28;
constexpr int kTextCharacters = 45;
/// Far enough to the right to leave the corner of a frame alone.
constexpr float kCaptionAlignment = 0.03F;
constexpr int kCaptionMargin = 4;

GtkWidget* NewLabel(const char* text)
{
    GtkWidget* const label = gtk_label_new(text);
    gtk_label_set_xalign(GTK_LABEL(label), 0.0F);
    gtk_label_set_yalign(GTK_LABEL(label), 0.5F);
    gtk_widget_show(label);
    return label;
}

void AddCaption(GtkWidget* table, int row, const char* text)
{
    gtk_grid_attach(GTK_GRID(table), NewLabel(text), 0, row, 1, 1);
}

/// Adds the widget beside the caption of a row.
void AddValue(GtkWidget* table, int row, GtkWidget* value)
{
    gtk_widget_set_hexpand(value, TRUE);
    gtk_grid_attach(GTK_GRID(table), value, 1, row, 1, 1);
    gtk_widget_show(value);
}

GtkWidget* AddText(GtkWidget* table, int row, const char* caption)
{
    AddCaption(table, row, caption);
    GtkWidget* const label = NewLabel("");
    ShortenLabel(label, kTextCharacters);
    AddValue(table, row, label);
    return label;
}

GtkWidget* AddEntry(GtkWidget* table, int row, const char* caption, int max_length)
{
    AddCaption(table, row, caption);
    GtkWidget* const entry = gtk_entry_new();
    gtk_entry_set_max_length(GTK_ENTRY(entry), max_length);
    gtk_entry_set_width_chars(GTK_ENTRY(entry), kEntryCharacters);
    SetAccessibleName(entry, caption);
    AddValue(table, row, entry);
    return entry;
}

/// Adds a table for captions and values.
GtkWidget* PackTable(GtkWidget* box, bool expand)
{
    GtkWidget* const table = CreateTable(kSpacing, kSpacing, kSpacing);
    gtk_box_pack_start(GTK_BOX(box), table, expand, expand, 0);
    return table;
}

void CreateStatisticsPage(GtkWidget* notebook, PropertyDlgData* data)
{
    GtkWidget* const page = CreateVBox(notebook, kSpacing, kSpacing);
    GtkWidget* const head = CreateHBox(page, false, kSpacing, kSpacing);
    data->Icon = gtk_image_new();
    gtk_box_pack_start(GTK_BOX(head), data->Icon, FALSE, FALSE, 0);
    gtk_widget_show(data->Icon);
    GtkWidget* const name_table = PackTable(head, true);
    data->PathLabel = AddText(name_table, 0, _("Path:"));
    data->NameEntry = AddEntry(name_table, 1, _("File name:"), kNameLimit);
    CreateSeparator(page);
    GtkWidget* const type_table = PackTable(page, false);
    data->TypeLabel = AddText(type_table, 0, _("File type:"));
    data->SizeLabel = AddText(type_table, 1, _("File size:"));
    CreateSeparator(page);
    GtkWidget* const time_table = PackTable(page, false);
    data->ChangedLabel = AddText(time_table, 0, _("Last changed time:"));
    data->ModifiedLabel = AddText(time_table, 1, _("Last modified time:"));
    data->AccessedLabel = AddText(time_table, 2, _("Last accessed time:"));
    CreateTabLabel(notebook, 0, _("Statistics"));
}

/// Shows the state by a tick as well, because some themes hardly shade a pressed button.
void AddTick(GtkWidget* toggle)
{
    GtkWidget* const tick = gtk_image_new_from_icon_name("object-select-symbolic", GTK_ICON_SIZE_BUTTON);
    gtk_button_set_image(GTK_BUTTON(toggle), tick);
    gtk_button_set_always_show_image(GTK_BUTTON(toggle), TRUE);
    gtk_widget_set_opacity(tick, 0.0);
    g_signal_connect(toggle, "toggled", G_CALLBACK(+[](GtkToggleButton* button, gpointer image) {
                         gtk_widget_set_opacity(GTK_WIDGET(image), gtk_toggle_button_get_active(button) ? 1.0 : 0.0);
                     }),
                     tick);
}

/// Gives the label the middle of the button, as if the tick beside it took no room.
void CentreLabel(GtkWidget* toggle)
{
    GtkWidget* const box = gtk_bin_get_child(GTK_BIN(gtk_bin_get_child(GTK_BIN(toggle))));
    GList* const children = gtk_container_get_children(GTK_CONTAINER(box));
    GtkWidget* const label = GTK_WIDGET(g_list_last(children)->data);
    g_list_free(children);
    int tick_width = 0;
    gtk_widget_get_preferred_width(gtk_button_get_image(GTK_BUTTON(toggle)), nullptr, &tick_width);
    gtk_widget_set_margin_end(label, tick_width + gtk_box_get_spacing(GTK_BOX(box)));
}

/// A click does not move the focus, but the Tab key can reach the toggle.
GtkWidget* NewToggle(const char* label, const std::string& accessible_name)
{
    GtkWidget* const toggle = gtk_toggle_button_new();
    if (label != nullptr) {
        gtk_button_set_label(GTK_BUTTON(toggle), label);
    }
    AddTick(toggle);
    if (label != nullptr) {
        CentreLabel(toggle);
    }
    gtk_widget_set_focus_on_click(toggle, FALSE);
    gtk_widget_set_receives_default(toggle, FALSE);  // Return presses the dialog's default button.
    SetAccessibleName(toggle, accessible_name.c_str());
    gtk_widget_show(toggle);
    return toggle;
}

void AddToggles(GtkWidget* table, PropertyDlgData* data)
{
    const std::array<const char*, kPermissionColumns> columns = {_("Read"), _("Write"), _("Exec"), _("Special")};
    const std::array<const char*, kPermissionRows> rows = {_("User"), _("Group"), _("Other")};
    const std::array<const char*, kPermissionRows> specials = {_("Set UID"), _("Set GID"), _("Sticky")};
    constexpr std::size_t kSpecial = kPermissionColumns - 1;
    // The four columns are equally wide, however long their headings are.
    GtkSizeGroup* const widths = gtk_size_group_new(GTK_SIZE_GROUP_HORIZONTAL);
    for (std::size_t column = 0; column < columns.size(); ++column) {
        GtkWidget* const heading = NewLabel(columns[column]);
        gtk_size_group_add_widget(widths, heading);
        gtk_grid_attach(GTK_GRID(table), heading, static_cast<int>(column) + 1, 0, 1, 1);
    }
    for (std::size_t row = 0; row < rows.size(); ++row) {
        AddCaption(table, static_cast<int>(row) + 1, rows[row]);
        for (std::size_t column = 0; column < columns.size(); ++column) {
            const char* const label = column == kSpecial ? specials[row] : nullptr;
            const std::string spoken = label != nullptr ? label : std::string(rows[row]) + " " + columns[column];
            GtkWidget* const toggle = NewToggle(label, spoken);
            gtk_size_group_add_widget(widths, toggle);
            gtk_widget_set_hexpand(toggle, TRUE);
            gtk_grid_attach(GTK_GRID(table), toggle, static_cast<int>(column) + 1, static_cast<int>(row) + 1, 1, 1);
            data->PermToggle[row][column] = toggle;
        }
    }
    g_object_unref(widths);
}

GtkWidget* AddFrame(GtkWidget* page, const char* title)
{
    GtkWidget* const frame = gtk_frame_new(title);
    gtk_frame_set_label_align(GTK_FRAME(frame), kCaptionAlignment, 0.5F);
    GtkWidget* const caption = gtk_frame_get_label_widget(GTK_FRAME(frame));
    gtk_widget_set_margin_start(caption, kCaptionMargin);
    gtk_widget_set_margin_end(caption, kCaptionMargin);
    gtk_box_pack_start(GTK_BOX(page), frame, FALSE, FALSE, 0);
    gtk_widget_show(frame);
    return CreateVBox(frame, kSpacing, kSpacing);
}

void CreatePermissionsPage(GtkWidget* notebook, PropertyDlgData* data)
{
    GtkWidget* const page = CreateVBox(notebook, kPageSpacing, kPageSpacing);
    GtkWidget* const mode_box = AddFrame(page, _("File permissions"));
    GtkWidget* const mode_line = CreateHBox(mode_box, false, kSpacing, 0);
    CreateLabel(mode_line, _("Current mode:"));
    data->ModeLabel = CreateLabel(mode_line, "");
    GtkWidget* const toggles = CreateTable(kSpacing, kSpacing, 0);
    gtk_box_pack_start(GTK_BOX(mode_box), toggles, FALSE, FALSE, 0);
    AddToggles(toggles, data);

    GtkWidget* const owner_table = PackTable(AddFrame(page, _("File ownership")), false);
    data->OwnerEntry = AddEntry(owner_table, 0, _("Owner"), kOwnerLimit);
    AddCaption(owner_table, 1, _("Group"));
    data->GroupCombo = CreateComboBox(nullptr, false, 0);
    SetAccessibleName(ComboEntry(data->GroupCombo), _("Group"));
    AddValue(owner_table, 1, data->GroupCombo);
    CreateTabLabel(notebook, 1, _("Permissions"));
}

}  // namespace

void CreatePropertyPages(GtkWidget* notebook, PropertyDlgData* data)
{
    CreateStatisticsPage(notebook, data);
    CreatePermissionsPage(notebook, data);
}
