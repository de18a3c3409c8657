#pragma once
// Keyboard navigation in trees.

#include <gtk/gtk.h>

/// Maps keys of the numeric keypad, and Shift+Tab, to the plain keys.
guint PlainKey(guint key);
/// Whether it is a plain key that moves in a tree or folds it.
bool IsTreeKey(guint key);
/// Acts on the selected node. Return expands it, all other keys are those of IsTreeKey.
void TreeKeyPress(GtkTreeView* tree, guint key);

/// Lets the tree take the focus and handle its keys. The main tree never has the focus; its keys come
/// from the window.
void TakeTreeKeys(GtkTreeView* tree);
