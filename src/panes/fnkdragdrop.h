#pragma once
// Drag and drop of files, for both panes. The toolkit's row drags cannot be used: they carry a single
// row, and only from the toolkit's own models.

#include <gtk/gtk.h>

#include <functional>
#include <string>
#include <vector>

/// Asks what to do with dropped items in destination, which ends in "/". Returns what does it, or null
/// for nothing. Set once at start.
extern std::function<void()> (*OnFilesDropped)(const std::vector<std::string>& items, const std::string& destination);

/// What differs between the panes.
struct DragPane {
    /// The path of a row; empty if the row cannot be dragged.
    std::string (*PathOfRow)(GtkTreeView* view, GtkTreePath* row);
    /// Called when a drag starts on a row; may change the selection. Returns the paths to drag, those
    /// of directories ending in "/". An empty result cancels the drag.
    std::vector<std::string> (*PrepareDrag)(GtkTreeView* view, GtkTreePath* pressed);
    /// The directory under a point of the widget; empty if nothing can be dropped there.
    std::string (*FindDestination)(GtkTreeView* view, int x, int y);
};

/// Makes the pane a drag source and a drop target. pane must outlive the view. A press that an
/// earlier handler of the view has consumed starts no drag.
void ConnectDragPane(GtkTreeView* view, const DragPane& pane);

/// Calls dropped with the first of the files that are dropped on an entry, instead of inserting their
/// names.
void ConnectEntryDrop(GtkWidget* entry, void (*dropped)(const std::string& item));
