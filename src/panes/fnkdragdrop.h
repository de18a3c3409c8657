#pragma once
// What dragging files out of a pane and dropping them on one have in common. The toolkit's own
// drags of rows carry single rows of its own models only.

#include <gtk/gtk.h>

#include <string>
#include <vector>

/// Carries out a drop on a directory, whose path ends in "/": 0 when something was done. Set once
/// at start.
extern int (*OnFilesDropped)(const std::vector<std::string>& items, const std::string& destination);

/// What a pane has to say about drags.
struct DragPane {
    /// What the row stands for now, a path; empty where there is nothing to drag.
    std::string (*PathOfRow)(GtkTreeView* view, GtkTreePath* row);
    /// A drag starts on that row, which has something to drag: the paths that it carries, those of
    /// directories with a "/" at the end. None: no drag.
    std::vector<std::string> (*PrepareDrag)(GtkTreeView* view, GtkTreePath* pressed);
    /// The directory that a drop at these coordinates of the widget goes to; empty for none.
    std::string (*FindDestination)(GtkTreeView* view, int x, int y);
    /// Null where nothing follows.
    void (*Ended)();
};

/// Makes the pane a source and a target of drags. Presses that the pane's own handlers, connected
/// before, have taken start no drag.
void ConnectDragPane(GtkTreeView* view, const DragPane& pane);
