#include "kit/fnkutil-pattern.h"

#include "core/fnktable.h"
#include "core/fnkutil-text.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkutil-widget.h"

namespace {

constexpr int kSpacing = 5;
constexpr int kEntryWidth = 340;

GtkWidget* AddPatternCombo(GtkWidget* box, const char* accessible_name, const std::string& pattern)
{
    GtkWidget* entry = nullptr;
    GtkWidget* const combo = CreateComboBox(&entry, true, static_cast<int>(kMaxFilterBytes));
    gtk_widget_set_size_request(combo, kEntryWidth, -1);
    SetAccessibleName(entry, accessible_name);
    SetComboStrings(combo, pGTable->FilterHistory);
    gtk_box_pack_start(GTK_BOX(box), combo, FALSE, FALSE, 0);
    SetEntryBytes(entry, pattern);
    return combo;
}

}  // namespace

void CreatePatternDlg(const PatternDlgTexts& texts, const std::string& pattern, GCallback ok_handler)
{
    GtkWidget* vbox = nullptr;
    GtkWidget* const dialog = CreateIconDialogBox(&vbox, texts.icon, 0, 0, kSpacing);
    gtk_window_set_title(GTK_WINDOW(dialog), texts.title);
    CreateLabel(vbox, texts.prompt);
    GtkWidget* const combo = AddPatternCombo(vbox, texts.prompt, pattern);
    GtkWidget* ok = nullptr;
    GtkWidget* cancel = nullptr;
    CreateDlgButtonBox(dialog, &ok, &cancel, CLOSING_WIRED);
    g_signal_connect(ComboEntry(combo), "activate", G_CALLBACK(on_ComboEntry_activate), ok);
    g_signal_connect(ok, "clicked", ok_handler, combo);
    gtk_widget_grab_focus(ComboEntry(combo));
    ModalMainLoop(dialog, pMainW->MainWindow);
}

bool AcceptPattern(GtkWidget* combo, const char* error_message, std::string* pattern)
{
    *pattern = GetEntryBytes(ComboEntry(combo));
    if (!IsUsablePattern(*pattern)) {
        EntryMessageBox(error_message, ComboEntry(combo));
        return false;
    }
    AddHistoryListC(combo, pGTable->FilterHistory);
    return true;
}
