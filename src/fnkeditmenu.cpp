#include "fnkeditmenu.h"

#include "fnkdirtree.h"
#include "fnkfilelist.h"

void on_Menu_SelectAll_activate(GtkWidget*, gpointer)
{
    SelectAllListRows();
}

void on_Menu_RescanDirectory_activate(GtkWidget*, gpointer)
{
    RescanTree(MainTree(), pGTable->RootDir);
    pGTable->CurrentDir = pGTable->RootDir;
    OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_YES);
}
