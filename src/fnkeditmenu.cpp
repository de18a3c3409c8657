#include "fnkeditmenu.h"

#include "fnkdirtree.h"
#include "fnkfilemenu-targets.h"
#include "fnkmainwindow-record.h"
#include "fnktable.h"

void on_Menu_Edit_activate(GtkWidget*, gpointer)
{
    gtk_widget_set_sensitive(pMainW->MenuItem[MENU_SYMBOLIC_LINK], CountFileOperationTargets() == 1);
}

void on_Menu_RescanDirectory_activate(GtkWidget*, gpointer)
{
    RescanTree(MainTree(), pGTable->RootDir);
    pGTable->CurrentDir = pGTable->RootDir;
    OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_YES);
}
