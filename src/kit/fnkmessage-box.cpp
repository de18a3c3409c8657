#include "kit/fnkmessage-box.h"

#include <algorithm>
#include <array>

#include "core/fnkstring.h"
#include "kit/fnkutil-widget.h"

#include "Delete.xpm"
#include "Exclamation.xpm"
#include "Information.xpm"
#include "Question.xpm"
#include "Stop.xpm"

namespace {

constexpr int kBoxBorder = 10;
constexpr int kBoxSpacing = 10;
constexpr int kButtonWidth = 100;
constexpr int kButtonHeight = 30;

Picture MessageIcon(unsigned style)
{
    switch (style & 0xffff) {
    case 1:
        return PICTURE(Information);
    case 2:
        return PICTURE(Question);
    case 3:
        return PICTURE(Exclamation);
    case 5:
        return PICTURE(Delete);
    default:
        return PICTURE(Stop);
    }
}

/// The first button answers RESULT_OK; the second, unless null, RESULT_CANCEL.
using ButtonLabels = std::array<const char*, 2>;

ButtonLabels MessageButtons(unsigned style)
{
    switch (style >> 16) {
    case 1:
        return {N_("Yes"), nullptr};
    case 3:
        return {N_("Yes"), N_("No")};
    case 4:
        return {N_("OK"), N_("Cancel")};
    case 5:
        return {N_("Skip"), N_("Cancel")};
    default:
        return {N_("OK"), nullptr};
    }
}

/// The answer of a button, and where to store it.
struct Answer {
    Result* result;
    Result value;
};

void on_Answer_clicked(GtkWidget*, gpointer answer)
{
    const auto* const chosen = static_cast<const Answer*>(answer);
    *chosen->result = chosen->value;
    gtk_main_quit();
}

GtkWidget* AddAnswerButton(GtkWidget* row, const char* label, Answer* answer)
{
    GtkWidget* const button = AddDialogButton(row, gettext(label));
    gtk_widget_set_size_request(button, kButtonWidth, kButtonHeight);
    g_signal_connect(button, "clicked", G_CALLBACK(on_Answer_clicked), answer);
    return button;
}

/// Return presses this button, and so does closing the dialog.
void MakeDefault(GtkWidget* dialog, GtkWidget* button)
{
    gtk_widget_grab_focus(button);
    gtk_widget_grab_default(button);
    g_signal_connect(dialog, "delete-event", G_CALLBACK(on_delete_event), button);
}

void AddMessageLabel(GtkWidget* box, const std::string& message)
{
    GtkWidget* const label = CreateLabel(box, message.c_str());
    WrapLabel(label);
    gtk_label_set_selectable(GTK_LABEL(label), FALSE);
}

}  // namespace

Result MessageBox(const char* title, const std::string& message, unsigned style)
{
    GtkWidget* content = nullptr;
    GtkWidget* const dialog = CreateDialogBox(&content, 0, 0);
    gtk_window_set_title(GTK_WINDOW(dialog), title);
    GtkWidget* const box = CreateHBox(content, false, kBoxSpacing, kBoxBorder);
    GtkWidget* const icon = CreatePixmap(MessageIcon(style));
    gtk_widget_set_valign(icon, GTK_ALIGN_CENTER);
    gtk_box_pack_start(GTK_BOX(box), icon, FALSE, FALSE, 0);
    gtk_widget_show(icon);
    AddMessageLabel(box, message);

    Result result = RESULT_CANCEL;
    Answer answers[] = {{&result, RESULT_OK}, {&result, RESULT_CANCEL}};
    GtkWidget* const buttons = CreateButtonRow(dialog);
    gtk_container_set_border_width(GTK_CONTAINER(gtk_widget_get_parent(buttons)), kBoxBorder);
    const ButtonLabels labels = MessageButtons(style);
    GtkWidget* last = nullptr;
    for (std::size_t i = 0; i < labels.size() && labels[i] != nullptr; ++i) {
        last = AddAnswerButton(buttons, labels[i], &answers[i]);
    }
    MakeDefault(dialog, last);
    ModalMainLoop(dialog, nullptr);
    return result;
}

Result DeleteMessageBox(const std::string& name)
{
    GtkWidget* text_box = nullptr;
    GtkWidget* const dialog = CreateIconDialogBox(&text_box, PICTURE(Question), 0, 0, 0);
    gtk_window_set_title(GTK_WINDOW(dialog), _("Delete"));
    AddMessageLabel(text_box, FormatPathMessage(_("Delete - %s"), name));
    AddMessageLabel(text_box, _("Directory not empty.Is the file in a directory also delete? "));
    GtkWidget* const rest = gtk_check_button_new_with_label(_("Do the same for the rest"));
    gtk_box_pack_start(GTK_BOX(text_box), rest, FALSE, FALSE, 0);
    gtk_widget_show(rest);

    Result result = RESULT_ABORT;
    Answer answers[] = {{&result, RESULT_OK}, {&result, RESULT_CANCEL}, {&result, RESULT_ABORT}};
    GtkWidget* const buttons = CreateButtonRow(dialog);
    AddAnswerButton(buttons, N_("Yes"), &answers[0]);
    AddAnswerButton(buttons, N_("No"), &answers[1]);
    MakeDefault(dialog, AddAnswerButton(buttons, N_("Cancel"), &answers[2]));
    // Read the check box whenever it changes: ModalMainLoop destroys it before it returns.
    g_signal_connect(rest, "toggled", G_CALLBACK(+[](GtkToggleButton* button, gpointer yes) {
                         static_cast<Answer*>(yes)->value =
                             gtk_toggle_button_get_active(button) ? RESULT_YES_ALL : RESULT_OK;
                     }),
                     &answers[0]);
    ModalMainLoop(dialog, nullptr);
    return result;
}

void EntryMessageBox(const char* message, GtkWidget* entry)
{
    if (entry != nullptr) {
        gtk_widget_grab_focus(entry);
        gtk_editable_select_region(GTK_EDITABLE(entry), 0, -1);
    }
    MessageBox(_("Error"), message, STYLE_ERROR);
}

void FileExistMessageBox(PathStatus status, GtkWidget* entry)
{
    constexpr std::array<const char*, 9> kMessages = {
        N_("Path is too short."),
        N_("Path is too long."),
        N_("The specified path cannot be operated."),
        N_("Path is inaccurate."),
        N_("Parent directory does not exist."),
        N_("The specified file does not exist."),
        N_("The specified directory already exists."),
        N_("The specified file already exists."),
        N_("Internal error."),
    };
    if (status == PATH_LEFT) {
        return;
    }
    const auto index = static_cast<std::size_t>(status);
    EntryMessageBox(gettext(kMessages[std::min<std::size_t>(index, PATH_NULL)]), entry);
}
