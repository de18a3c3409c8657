#include "fnkeditmenu.h"

#include "fnkdirtree.h"
#include "fnktable.h"

void on_Menu_RescanDirectory_activate(GtkWidget*, gpointer)
{
    RescanTree(MainTree(), pGTable->RootDir);
    pGTable->CurrentDir = pGTable->RootDir;
    OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_YES);
}
