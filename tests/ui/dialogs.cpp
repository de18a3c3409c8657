// The widget kit: what a running dialog does to the windows below it, and drop-downs that hold bytes.

#include "acts.h"

namespace {

class Dialogs : public WindowTest {};

TEST_F(Dialogs, ADialogHoldsTheInputUntilItIsClosed)
{
    files.File("a");
    Start();
    for (const MenuEntry entry : {MENU_PROPERTY, MENU_FIND_FILE, MENU_SELECT_FILES, MENU_SYMBOLIC_LINK, MENU_OPTION,
                                  MENU_SORT_COLUMN, MENU_FILTER_VIEW, MENU_ABORT}) {
        SCOPED_TRACE(entry);
        SelectNames({"a"});
        DuringDialogs([=] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[entry])); },
                      {[this, entry](GtkWidget* dialog) {
                          GtkWindow* const window = GTK_WINDOW(dialog);
                          EXPECT_FALSE(gtk_widget_is_sensitive(pMainW->FileList));
                          EXPECT_EQ(gtk_window_get_transient_for(window), Window());
                          GtkWidget* const button = FindByText(dialog, entry == MENU_ABORT ? "OK" : "Cancel");
                          EXPECT_EQ(gtk_window_get_default_widget(window), button) << "Return changes nothing";
                          SendKey(pMainW->MainWindow, GDK_KEY_Tab);  // Goes to the dialog.
                          SendClose(dialog);
                      }});
        EXPECT_EQ(SelectedNames(), Names{"a"});
        EXPECT_TRUE(gtk_widget_is_sensitive(pMainW->FileList));
        ExpectConsistent();
    }
}

TEST_F(Dialogs, ADropDownKeepsTheBytesOfItsItems)
{
    Start();
    GtkWidget* entry = nullptr;
    GtkWidget* const combo = CreateComboBox(&entry, true, 10);
    g_object_ref_sink(combo);
    const History items = {"/\xFF/", "/\xFE/", "plain"};
    gtk_entry_set_text(GTK_ENTRY(entry), "typed");
    SetComboStrings(combo, items);
    EXPECT_EQ(GetEntryBytes(entry), "typed") << "new items leave the text alone";
    EXPECT_FALSE(IsComboString(combo));
    for (std::size_t i = 0; i < items.size(); ++i) {
        gtk_combo_box_set_active(GTK_COMBO_BOX(combo), static_cast<int>(i));
        EXPECT_EQ(GetEntryBytes(entry), items[i]);
        EXPECT_TRUE(IsComboString(combo));
    }
    SetComboStrings(combo, {"other"});
    EXPECT_FALSE(IsComboString(combo));
    SetEntryBytes(entry, "/\xFF");
    gtk_entry_set_text(GTK_ENTRY(entry), "/x");
    History history = {"a"};
    AddHistoryListC(combo, history);
    SetEntryBytes(entry, "");
    AddHistoryListC(combo, history);
    EXPECT_EQ(history, (History{"/x", "a"}));
    gtk_widget_destroy(combo);
    g_object_unref(combo);
}

}  // namespace
