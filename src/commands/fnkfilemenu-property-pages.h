#pragma once
// The two pages of the property dialog.

#include <gtk/gtk.h>
#include <sys/stat.h>

#include <array>
#include <functional>
#include <string>

constexpr std::size_t kPermissionRows = 3;     ///< User, group, other.
constexpr std::size_t kPermissionColumns = 4;  ///< Read, write, execute, special.

/// Lives as long as the dialog.
struct PropertyDlgData {
    std::string Path;  ///< The entry's path; that of a directory ends in "/".
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
    bool IsApplied = false;             ///< The list must be read again, even if the user cancels in the end.
    std::function<void()> ShowRenamed;  ///< Set if a directory was renamed; shows it.
    std::function<void()> Select;       ///< Set if the entry is one of the list; selects it again.
    struct stat Stat = {};              ///< As read from disk, except for the mode, which the toggles edit.
};

/// Builds the pages with empty fields.
void CreatePropertyPages(GtkWidget* notebook, PropertyDlgData* data);
