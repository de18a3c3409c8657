#include "commands/fnkeditmenu.h"

#include "commands/fnkfilemenu-targets.h"
#include "core/fnktable.h"
#include "kit/fnkmainwindow-record.h"
#include "panes/fnkdirtree.h"

void on_Menu_Edit_activate(GtkWidget*, gpointer)
{
    gtk_widget_set_sensitive(pMainW->MenuItem[MENU_SYMBOLIC_LINK], CountFileOperationTargets() == 1);
}

void on_Menu_RescanDirectory_activate(GtkWidget*, gpointer)
{
    OpenChildTree(MainTree(), pGTable->RootDir, EXPAND_LAST_YES, {.rescan = {pGTable->RootDir}});
}
