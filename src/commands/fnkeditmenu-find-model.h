#pragma once
// Serves a FoundTree to the tree view, with the columns of fnkdirtree-nodes: name and whether it is
// a directory. A tree of many matches costs no more than the matches themselves.

#include <gtk/gtk.h>

#include "model/fnkeditmenu-find-walk.h"

/// The caller owns it.
GtkTreeModel* NewFoundModel(FoundTree found);
