// The cheapest possible program with a window, to compare all others with.

#include <gtk/gtk.h>

int main(int argc, char** argv)
{
    gtk_init(&argc, &argv);
    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_window_set_default_size(GTK_WINDOW(window), 600, 400);
    gtk_container_add(GTK_CONTAINER(window), gtk_label_new("Hello"));
    gtk_widget_show_all(window);
    gtk_main();
    return 0;
}
