// What every dialog does to the window below it.

#include "acts.h"

namespace {

class Dialogs : public WindowTest {};

TEST_F(Dialogs, HoldTheInputUntilTheyAreClosed)
{
    files.File("a");
    Start();
    SelectNames({"a"});
    for (const MenuEntry entry : {MENU_PROPERTY, MENU_FIND_FILE, MENU_SELECT_FILES, MENU_SYMBOLIC_LINK, MENU_OPTION,
                                  MENU_SORT_COLUMN, MENU_FILTER_VIEW, MENU_ABORT}) {
        SCOPED_TRACE(entry);
        DuringDialogs([=] { gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[entry])); },
                      {[this, entry](GtkWidget* dialog) {
                          EXPECT_FALSE(gtk_widget_is_sensitive(pMainW->FileList));
                          EXPECT_EQ(gtk_window_get_transient_for(GTK_WINDOW(dialog)), Window());
                          EXPECT_EQ(gtk_window_get_default_widget(GTK_WINDOW(dialog)),
                                    FindByText(dialog, entry == MENU_ABORT ? "OK" : "Cancel"));
                          SendKey(pMainW->MainWindow, GDK_KEY_Tab);  // Goes to the dialog.
                          SendClose(dialog);
                      }});
        EXPECT_EQ(SelectedNames(), Names{"a"});
        EXPECT_TRUE(gtk_widget_is_sensitive(pMainW->FileList));
    }
    ExpectConsistent();
}

}  // namespace
