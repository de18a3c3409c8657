#pragma once
// The property dialog: what there is to know about one entry, and changing its mode, its owner and
// its name.

#include <gtk/gtk.h>
#include <sys/stat.h>

#include <string>

#include "commands/fnkfilemenu-property-pages.h"

/// The permission bit of a toggle.
mode_t PermissionBit(std::size_t row, std::size_t column);

/// Runs the dialog for the first selected row, or else for the tree's directory. 0, or
/// kArgumentError when there is none or it has vanished.
int CreatePropertyDlg();

/// Enables the Property command, in the menu and the toolbar, while there is exactly one thing to show.
void SensitivePropertyButton();

/// Fills the dialog; returns as the above.
int SetFileProperty(PropertyDlgData* data);
/// Shows the mode that the toggles edit.
void SetCurrentMode(const PropertyDlgData* data);
/// Disables what the user may not change.
void CheckPermission(const PropertyDlgData* data);

void on_PerToggle_toggled(GtkWidget* toggle, gpointer data);
/// Changes what differs from the disk: mode, owner and group, name. Stays open for another try
/// when one of the names is no good.
void on_Property_OKButton_clicked(GtkWidget* button, gpointer data);
