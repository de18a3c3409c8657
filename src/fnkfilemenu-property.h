#pragma once
// The property dialog: what there is to know about one entry, and changing its mode, its owner and
// its name.

#include <gtk/gtk.h>
#include <sys/stat.h>

#include <array>
#include <string>

constexpr std::size_t kPermissionRows = 3;     ///< User, group, other.
constexpr std::size_t kPermissionColumns = 4;  ///< Read, write, execute, special.

/// Lives as long as the dialog.
struct PropertyDlgData {
    std::string Path;  ///< Of the entry; a directory's ends in "/".
    GtkWidget* Dialog = nullptr;
    GtkWidget* Icon = nullptr;
    GtkWidget* PathLabel = nullptr;
    GtkWidget* NameEntry = nullptr;
    GtkWidget* TypeLabel = nullptr;
    GtkWidget* SizeLabel = nullptr;
    GtkWidget* ChangedLabel = nullptr;
    GtkWidget* ModifiedLabel = nullptr;
    GtkWidget* AccessedLabel = nullptr;
    GtkWidget* ModeLabel = nullptr;
    std::array<std::array<GtkWidget*, kPermissionColumns>, kPermissionRows> PermToggle = {};
    GtkWidget* OwnerEntry = nullptr;
    GtkWidget* GroupCombo = nullptr;
    bool IsApplied = false;  ///< Something was changed, even if the dialog is then cancelled.
    struct stat Stat = {};   ///< As it was when the dialog was filled; its mode is what the toggles edit.
};

/// The permission bit of a toggle.
mode_t PermissionBit(std::size_t row, std::size_t column);

/// Runs the dialog for the first selected row, or else for the tree's directory. 0, or
/// kArgumentError when there is none or it has vanished.
int CreatePropertyDlg();

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
