#pragma once
// The tree model of the search result. It has the columns of fnkdirtree-nodes and serves a FoundTree
// without copying it.

#include <gtk/gtk.h>

#include "model/fnkeditmenu-find-walk.h"

/// The caller owns the model.
GtkTreeModel* NewFoundModel(FoundTree found);
