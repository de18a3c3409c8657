#include "panes/fnklocationbar.h"

#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "engine/fnkmessage.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-shortcut.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree-visit.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkdragdrop.h"
#include "panes/fnkfilelist-status.h"

namespace {

constexpr int kBoxSpacing = 5;
constexpr int kBoxMargin = 4;  ///< At both sides, like that of the panes below.
constexpr int kBoxBorder = 1;
constexpr int kComboWidth = 500;
constexpr const char* kShortcut = "<Control>L";

gboolean on_Location_shortcut(gpointer entry)
{
    gtk_widget_grab_focus(GTK_WIDGET(entry));
    return TRUE;
}

void OpenDropped(const std::string& item)
{
    OpenFirstDirectory(MainTree(), {item, GetParentDirectory(item)}, EXPAND_LAST_YES, {}, nullptr);
}

}  // namespace

GtkWidget* CreateLocationBar(GtkWidget* box)
{
    GtkWidget* const handle_box = CreateHandleBox(box);
    if (handle_box == nullptr) {
        return nullptr;
    }
    GtkWidget* const hbox = CreateHBox(handle_box, false, kBoxSpacing, 0);
    gtk_widget_set_margin_start(hbox, kBoxMargin);
    gtk_widget_set_margin_end(hbox, kBoxMargin);
    gtk_widget_set_margin_top(hbox, kBoxBorder);
    gtk_widget_set_margin_bottom(hbox, kBoxBorder);
    CreateLabel(hbox, _("Location:"));
    GtkWidget* entry = nullptr;
    GtkWidget* const combo = CreateComboBox(&entry, true, kMaxPathBytes);
    gtk_widget_set_size_request(combo, kComboWidth, -1);
    gtk_widget_set_can_default(entry, TRUE);
    SetAccessibleName(entry, _("Location"));
    gtk_widget_set_tooltip_text(entry, TipWithShortcut(_("Location"), kShortcut).c_str());
    AddShortcut(pMainW->MainWindow, kShortcut, on_Location_shortcut, entry);
    ConnectEntryDrop(entry, OpenDropped);
    SetComboStrings(combo, pGTable->LocationDirHistory);
    gtk_box_pack_start(GTK_BOX(hbox), combo, TRUE, TRUE, 0);
    g_signal_connect(entry, "activate", G_CALLBACK(on_LocationComboEntry_activate), nullptr);
    return combo;
}

void on_LocationComboEntry_activate(GtkWidget* entry, gpointer)
{
    if (pGTable == nullptr || IsModal()) {
        return;
    }
    const std::string typed = GetEntryBytes(entry);
    OpenTypedPath(MainTree(), typed.empty() ? pGTable->CurrentDir : typed, {.after = [typed] {
                      if (ArrivedReading()->is_outside) {
                          ShowStatus(" " + std::string(_("The specified path cannot be operated.")));
                      } else if (ArrivedReading()->is_missing) {
                          ShowStatus(" " + FormatPathMessage(_("There is no directory %s."), typed));
                      }
                  }});
}

void LeaveLocation()
{
    SetEntryBytes(ComboEntry(pMainW->LocationCombo), pGTable->CurrentDir);
    ReleaseEntryFocus(pMainW->MainWindow);
}

bool IsLocationFocused()
{
    return gtk_window_get_focus(GTK_WINDOW(pMainW->MainWindow)) == ComboEntry(pMainW->LocationCombo);
}

void on_MainWindow_set_focus(GtkWindow* window, GtkWidget* widget, gpointer)
{
    if (pMainW == nullptr || pMainW->LocationCombo == nullptr || !IsLocationFocused()) {
        return;
    }
    GtkWidget* const entry = ComboEntry(pMainW->LocationCombo);
    const bool is_empty = gtk_entry_get_text_length(GTK_ENTRY(entry)) == 0;
    if (widget != entry && !is_empty && !IsComboString(pMainW->LocationCombo)) {
        g_signal_stop_emission_by_name(window, "set-focus");
    }
}
