#pragma once
// Builders for all windows and dialogs, so that they look and behave alike. Unless noted, a builder
// shows its widget and packs it into its first argument. It returns null if a required argument is
// missing. As usual in the toolkit, containers own their widgets.

#include <gtk/gtk.h>

#include <string>

#include "core/fnktable.h"
#include "kit/fnkutil-picture.h"

/// Errors of dialog builders.
constexpr int kWidgetError = -65535;    ///< A widget could not be created.
constexpr int kArgumentError = -65534;  ///< An argument or its data is missing.

/// Whether CreateDlgButtonBox connects the handlers that close the dialog.
enum DialogClosing { CLOSING_UNWIRED = 0, CLOSING_WIRED = 1 };

/// A centred modal dialog that cannot be resized. Sizes are in pixels; 0 fits the content.
/// ModalMainLoop shows the dialog.
GtkWidget* CreateDialogBox(GtkWidget** content, int width, int height);
/// The same with a vertical box.
GtkWidget* CreateNormalDialogBox(GtkWidget** vbox, int width, int height, int spacing);
/// The same with a picture beside a vertical box.
GtkWidget* CreateIconDialogBox(GtkWidget** vbox, const Picture& picture, int width, int height, int spacing);
/// The same with a notebook.
GtkWidget* CreateNotebookDialogBox(GtkWidget** notebook, int width, int height);

/// The row for buttons at the bottom of a dialog, aligned to the right.
GtkWidget* CreateButtonRow(GtkWidget* dialog);
/// Adds a button, which can be the default, to a button row. label is translated.
GtkWidget* AddDialogButton(GtkWidget* row, const char* label);
/// Adds a button row with OK and Cancel; a null pointer leaves out its button. The last button is the
/// default and has the focus. With CLOSING_WIRED, closing the window presses the last button, which
/// ends the main loop. Returns 0 or kWidgetError.
int CreateDlgButtonBox(GtkWidget* dialog, GtkWidget** ok, GtkWidget** cancel, DialogClosing closing);

/// A frame for a bar. It cannot be detached. GtkHandleBox can, but it does not draw its content and
/// shrinks to a sliver once detached.
GtkWidget* CreateHandleBox(GtkWidget* box);
GtkWidget* CreateVBox(GtkWidget* container, int spacing, int border);
GtkWidget* CreateHBox(GtkWidget* container, bool homogeneous, int spacing, int border);
// These four builders do not pack their widgets.

/// A grid.
GtkWidget* CreateTable(int row_spacing, int column_spacing, int border);
GtkWidget* CreateScroll();
/// A combo box with an entry. max_length is in characters, 0 for no limit. entry may be null.
GtkWidget* CreateComboBox(GtkWidget** entry, bool editable, int max_length);
/// An image, not shown yet.
GtkWidget* CreatePixmap(const Picture& picture);

GtkWidget* CreateLabel(GtkWidget* box, const char* text);
GtkWidget* CreateTabLabel(GtkWidget* notebook, int page, const char* text);
GtkWidget* CreateSeparator(GtkWidget* box);

/// While one exists, a dialog or a command runs.
class ModalScope {
public:
    ModalScope();
    ModalScope(const ModalScope&) = delete;
    ModalScope& operator=(const ModalScope&) = delete;
    ~ModalScope();
};
bool IsModal();

/// Runs a dialog until one of its handlers calls gtk_main_quit, then destroys it. Meanwhile parent,
/// the main window or another running dialog, is insensitive. If parent is null, the windows below
/// take no input either, but look as before.
void ModalMainLoop(GtkWidget* window, GtkWidget* parent);

/// Presses button instead of closing the window.
gboolean on_delete_event(GtkWidget* widget, GdkEvent* event, gpointer button);
/// Ends the main loop.
void on_CancelButton_clicked(GtkWidget* button, gpointer data);
/// These two raise the window of the widget.
gboolean on_Window_button_press_event(GtkWidget* widget, GdkEvent* event, gpointer data);
gboolean on_Window_visibility_notify(GtkWidget* widget, GdkEvent* event, gpointer data);
/// Presses button.
void on_ComboEntry_activate(GtkWidget* entry, gpointer button);

/// The entry of a combo box from CreateComboBox.
GtkWidget* ComboEntry(GtkWidget* combo);
/// Replaces the items; the entry keeps its text.
void SetComboStrings(GtkWidget* combo, const History& list);
/// Whether the entry's text equals one of the items.
bool IsComboString(GtkWidget* combo);

/// Entries hold UTF-8, but paths are bytes. SetEntryBytes shows the bytes as valid UTF-8 and keeps the
/// original. GetEntryBytes returns the original until the text is edited, then the text.
void SetEntryBytes(GtkWidget* entry, const std::string& bytes);
std::string GetEntryBytes(GtkWidget* entry);

/// Adds the entry's text to list, unless it is empty.
void AddHistoryListC(GtkWidget* combo, History& list);

/// Takes the focus out of the window's entries, so that the panes get the keys.
void ReleaseEntryFocus(GtkWidget* window);

/// Wraps a label's long lines at blanks, or anywhere in a long word, without hyphens.
void WrapLabel(GtkWidget* label);

/// Makes a tooltip of a text of any length.
void ShowWholeText(GtkTooltip* tooltip, const char* text);

/// Keeps a label on one line and at most max_characters wide. An ellipsis replaces the middle of a
/// text that does not fit; the tooltip shows the whole text.
void ShortenLabel(GtkWidget* label, int max_characters);

GtkWidget* StatusBarLabel(GtkWidget* status_bar);
/// Sets the label and the accessible description of a status bar. Bypasses its message stack.
void SetStatusBarText(GtkWidget* status_bar, const std::string& text);
/// Adds CSS rules for the widget alone.
void SetStyle(GtkWidget* widget, const char* rules);

/// Sets the name that screen readers use. That of an entry is also that of the arrow beside it.
void SetAccessibleName(GtkWidget* widget, const char* name);
