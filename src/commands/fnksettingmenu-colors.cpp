#include "commands/fnksettingmenu-colors.h"

#include <algorithm>

#include "core/fnkstring.h"
#include "kit/fnkutil-color.h"
#include "kit/fnkutil-widget.h"

namespace {

constexpr int kPageSpacing = 10;
constexpr int kSpacing = 5;
constexpr int kRows = 4;
constexpr int kButtonWidth = 80;
constexpr int kButtonHeight = 22;
constexpr int kSampleWidth = 73;
constexpr int kSampleHeight = 15;
constexpr int kChooserBorder = 7;

/// Without the theme's padding the colour fills the button. It then covers the theme's focus line, so
/// the border shows the focus instead.
constexpr const char* kButtonStyle =
    "button { padding: 2px; min-width: 0; min-height: 0; }"
    "button:focus { border-color: @theme_selected_bg_color;"
    " box-shadow: inset 0 0 0 1px @theme_selected_bg_color; }";

/// Indexed like GTable::Colors.
constexpr std::array<const char*, kColorCount> kLabels = {
    N_("Directory"), N_("Executable file"),        N_("Normal file"), N_("Core file"),
    N_("Link file"), N_("Stalled link file file"), N_("Socket"),      N_("Special file"),
};

gboolean on_ColorSample_draw(GtkWidget*, cairo_t* cairo, gpointer color)
{
    const GdkRGBA rgba = ShownColor(*static_cast<const Color*>(color));
    gdk_cairo_set_source_rgba(cairo, &rgba);
    cairo_paint(cairo);
    return TRUE;
}

void on_ColorButton_clicked(GtkWidget* button, gpointer data)
{
    auto* const info = static_cast<OptionDlgInfo*>(data);
    const auto place = std::find(info->ColorButton.begin(), info->ColorButton.end(), button);
    if (place != info->ColorButton.end()) {
        const auto index = static_cast<std::size_t>(place - info->ColorButton.begin());
        ColorSelection(button, &info->Colors[index]);
        gtk_widget_queue_draw(info->ColorSample[index]);
    }
}

GtkWidget* NewColorButton(GtkWidget* sample, const char* label)
{
    GtkWidget* const button = gtk_button_new();
    gtk_widget_set_size_request(button, kButtonWidth, kButtonHeight);
    gtk_widget_set_valign(button, GTK_ALIGN_CENTER);
    GtkCssProvider* const provider = gtk_css_provider_new();
    gtk_css_provider_load_from_data(provider, kButtonStyle, -1, nullptr);
    gtk_style_context_add_provider(gtk_widget_get_style_context(button), GTK_STYLE_PROVIDER(provider),
                                   GTK_STYLE_PROVIDER_PRIORITY_APPLICATION);
    g_object_unref(provider);
    gtk_container_add(GTK_CONTAINER(button), sample);
    SetAccessibleName(button, label);
    gtk_widget_show_all(button);
    return button;
}

void CreateColorButton(GtkWidget* table, std::size_t index, int row, const char* label, OptionDlgInfo* info)
{
    GtkWidget* const caption = gtk_label_new(label);
    gtk_label_set_xalign(GTK_LABEL(caption), 0.0F);
    gtk_grid_attach(GTK_GRID(table), caption, 0, row, 1, 1);
    gtk_widget_show(caption);
    GtkWidget* const sample = gtk_drawing_area_new();
    gtk_widget_set_size_request(sample, kSampleWidth, kSampleHeight);
    g_signal_connect(sample, "draw", G_CALLBACK(on_ColorSample_draw), &info->Colors[index]);
    GtkWidget* const button = NewColorButton(sample, label);
    g_signal_connect(button, "clicked", G_CALLBACK(on_ColorButton_clicked), info);
    gtk_grid_attach(GTK_GRID(table), button, 1, row, 1, 1);
    info->ColorSample[index] = sample;
    info->ColorButton[index] = button;
}

/// Stores the chosen colour. An unchanged colour is not stored, because converting it back may round it.
void on_ColorOKButton_clicked(GtkWidget* dialog, Color* color)
{
    constexpr double kFull = 65535.0;
    const GdkRGBA before = ShownColor(*color);
    GdkRGBA chosen;
    gtk_color_chooser_get_rgba(GTK_COLOR_CHOOSER(dialog), &chosen);
    if (!gdk_rgba_equal(&chosen, &before)) {
        const auto component = [](double part) {
            return static_cast<std::uint16_t>(std::clamp(part, 0.0, 1.0) * kFull);
        };
        *color = {component(chosen.red), component(chosen.green), component(chosen.blue)};
    }
}

void on_ColorSelection_response(GtkWidget* dialog, int response, gpointer color)
{
    if (response == GTK_RESPONSE_OK) {
        on_ColorOKButton_clicked(dialog, static_cast<Color*>(color));
    }
    gtk_main_quit();
}

/// Gives one of the toolkit's own buttons the label that it has in our dialogs.
GtkWidget* RelabelButton(GtkWidget* dialog, int response, const char* label)
{
    GtkWidget* const button = gtk_dialog_get_widget_for_response(GTK_DIALOG(dialog), response);
    gtk_button_set_label(GTK_BUTTON(button), label);
    gtk_widget_set_can_default(button, TRUE);
    return button;
}

}  // namespace

void ColorSelection(GtkWidget* parent, Color* color)
{
    GtkWidget* const dialog =
        gtk_color_chooser_dialog_new(_("Color selection"), GTK_WINDOW(gtk_widget_get_toplevel(parent)));
    gtk_container_set_border_width(GTK_CONTAINER(dialog), kChooserBorder);
    gtk_window_set_position(GTK_WINDOW(dialog), GTK_WIN_POS_CENTER);
    gtk_window_set_modal(GTK_WINDOW(dialog), TRUE);
    gtk_window_set_resizable(GTK_WINDOW(dialog), FALSE);
    const GdkRGBA shown = ShownColor(*color);
    gtk_color_chooser_set_use_alpha(GTK_COLOR_CHOOSER(dialog), FALSE);
    gtk_color_chooser_set_rgba(GTK_COLOR_CHOOSER(dialog), &shown);
    GtkWidget* const ok = RelabelButton(dialog, GTK_RESPONSE_OK, _("OK"));
    gtk_box_reorder_child(GTK_BOX(gtk_widget_get_parent(ok)), ok, 0);
    GtkWidget* const cancel = RelabelButton(dialog, GTK_RESPONSE_CANCEL, _("Cancel"));
    gtk_widget_grab_focus(cancel);
    gtk_widget_grab_default(cancel);
    g_signal_connect(dialog, "delete-event", G_CALLBACK(on_delete_event), cancel);
    g_signal_connect(dialog, "response", G_CALLBACK(on_ColorSelection_response), color);
    ModalMainLoop(dialog, nullptr);
}

void CreateColorsPage(GtkWidget* notebook, OptionDlgInfo* info)
{
    GtkWidget* const page = CreateHBox(notebook, false, kPageSpacing, kSpacing);
    for (std::size_t first = 0; first < kColorCount; first += kRows) {
        GtkWidget* const table = CreateTable(kPageSpacing, kSpacing, 0);
        gtk_box_pack_start(GTK_BOX(page), table, first == 0, first == 0, 0);
        for (int row = 0; row < kRows; ++row) {
            const std::size_t index = first + static_cast<std::size_t>(row);
            CreateColorButton(table, index, row, gettext(kLabels[index]), info);
        }
    }
}
