#pragma once
// The property dialog. It shows the attributes of one entry and changes its mode, owner and name.

#include <gtk/gtk.h>
#include <sys/stat.h>

#include <string>

#include "commands/fnkfilemenu-property-pages.h"

/// The permission bit of the toggle in that row and column.
mode_t PermissionBit(std::size_t row, std::size_t column);

/// Runs the dialog for the first selected row, or else for the tree's selected directory. Returns 0, or
/// kArgumentError if nothing is selected or the entry no longer exists.
int CreatePropertyDlg();

/// Enables the Property command in the menu and the toolbar if exactly one entry is selected.
void SensitivePropertyButton();

/// Fills the dialog. Returns 0 or kArgumentError, as CreatePropertyDlg does.
int SetFileProperty(PropertyDlgData* data);
/// Shows the mode in octal.
void SetCurrentMode(const PropertyDlgData* data);
/// Disables the widgets for what the user may not change.
void CheckPermission(const PropertyDlgData* data);

void on_PerToggle_toggled(GtkWidget* toggle, gpointer data);
/// Applies mode, owner, group and name where they differ from the disk. Leaves the dialog open if a
/// typed owner, group or file name is invalid.
void on_Property_OKButton_clicked(GtkWidget* button, gpointer data);
