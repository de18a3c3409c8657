#include "fnkfilemenu.h"

#include "fnktable-life.h"
#include "fnktoolbar.h"

void on_Menu_File_activate(GtkWidget*, gpointer)
{
    SensitivePropertyButton();
}

void on_Menu_CloseWindow_activate(GtkWidget*, gpointer)
{
    TerminateGlobalTable();
    gtk_main_quit();
}
