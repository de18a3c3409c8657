#pragma once
// The widget kit: every window and dialog is put together from these builders, so that all look
// and behave alike. A builder shows what it makes and packs it where it says so; it returns null
// when an argument it needs is missing. Containers own the widgets, as everywhere in the toolkit.

#include <gtk/gtk.h>

#include <string>

#include "core/fnktable.h"
#include "kit/fnkutil-picture.h"

/// Result of a dialog builder that could not make a widget, or lacked an argument or its data.
constexpr int kWidgetError = -65535;
constexpr int kArgumentError = -65534;

/// Closes the window as a press of the button would.
enum DialogClosing { CLOSING_UNWIRED = 0, CLOSING_WIRED = 1 };

/// A centred modal dialog of fixed size; 0 for a size leaves it to the content. The dialog is
/// shown by ModalMainLoop.
GtkWidget* CreateDialogBox(GtkWidget** content, int width, int height);
/// The same with a vertical box in it.
GtkWidget* CreateNormalDialogBox(GtkWidget** vbox, int width, int height, int spacing);
/// The same with a picture beside the vertical box.
GtkWidget* CreateIconDialogBox(GtkWidget** vbox, const Picture& picture, int width, int height, int spacing);
/// The same with a notebook in it.
GtkWidget* CreateNotebookDialogBox(GtkWidget** notebook, int width, int height);

/// The row at the bottom of a dialog, for buttons from the right.
GtkWidget* CreateButtonRow(GtkWidget* dialog);
/// Adds the button row: OK and Cancel where a place for them is given. The last of them has the
/// focus and is the default; wired, the window manager's close presses it and it ends the loop.
/// 0 or kWidgetError.
int CreateDlgButtonBox(GtkWidget* dialog, GtkWidget** ok, GtkWidget** cancel, DialogClosing closing);

/// The bin around a bar. It does not tear off: the toolkit's handle boxes are past repair, they
/// draw nothing of their content and shrink to a sliver once detached.
GtkWidget* CreateHandleBox(GtkWidget* box);
GtkWidget* CreateVBox(GtkWidget* container, int spacing, int border);
GtkWidget* CreateHBox(GtkWidget* container, bool homogeneous, int spacing, int border);
/// A grid; unlike the others it and the next three are not packed.
GtkWidget* CreateTable(int row_spacing, int column_spacing, int border);
GtkWidget* CreateScroll();
/// A drop-down with an entry. max_length counts characters, 0 is no limit; entry may be null.
GtkWidget* CreateComboBox(GtkWidget** entry, bool editable, int max_length);
/// Not shown either.
GtkWidget* CreatePixmap(const Picture& picture);
GtkWidget* CreateLabel(GtkWidget* box, const char* text);
GtkWidget* CreateTabLabel(GtkWidget* notebook, int page, const char* text);
GtkWidget* CreateSeparator(GtkWidget* box);

/// Runs a dialog until a handler of its own calls gtk_main_quit, then destroys it. parent, a window
/// or a dialog that is running, is insensitive meanwhile; null for a dialog that leaves the one
/// below it as it looks.
void ModalMainLoop(GtkWidget* window, GtkWidget* parent);

gboolean on_delete_event(GtkWidget* widget, GdkEvent* event, gpointer button);
void on_CancelButton_clicked(GtkWidget* button, gpointer data);
gboolean on_Window_button_press_event(GtkWidget* widget, GdkEvent* event, gpointer data);
gboolean on_Window_visibility_notify(GtkWidget* widget, GdkEvent* event, gpointer data);
void on_ComboEntry_activate(GtkWidget* entry, gpointer button);

/// The entry of a drop-down made by CreateComboBox.
GtkWidget* ComboEntry(GtkWidget* combo);
/// Replaces the items; what the entry says stays.
void SetComboStrings(GtkWidget* combo, const History& list);
/// Whether the entry says exactly one of the items.
bool IsComboString(GtkWidget* combo);

/// Entries hold UTF-8, paths are bytes. The bytes are kept beside the text that stands for them
/// and are what GetEntryBytes returns until the text is edited.
void SetEntryBytes(GtkWidget* entry, const std::string& bytes);
std::string GetEntryBytes(GtkWidget* entry);

/// Records what the entry says, unless it is empty.
void AddHistoryListC(GtkWidget* combo, History& list);

/// Takes the focus out of every entry of the window, so that the panes get the keys.
void ReleaseEntryFocus(GtkWidget* window);

/// Breaks a label's lines where they get longer, at blanks or anywhere in a path, and adds nothing.
void WrapLabel(GtkWidget* label);

/// Keeps a label to one line. In want of room, or of more characters than it may ask room for, it
/// loses its middle and shows the whole text as a tip.
void ShortenLabel(GtkWidget* label, int max_characters);

/// The label of a status bar.
GtkWidget* StatusBarLabel(GtkWidget* status_bar);
/// The label of a status bar, set without its stack of messages; its description says the same.
void SetStatusBarText(GtkWidget* status_bar, const std::string& text);
/// What screen readers call the widget.
void SetAccessibleName(GtkWidget* widget, const char* name);
