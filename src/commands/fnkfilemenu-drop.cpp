#include "commands/fnkfilemenu-drop.h"

#include "commands/fnkfilemenu-operation.h"
#include "commands/fnkfilemenu-targets.h"
#include "core/fnkutil.h"
#include "engine/fnkfiles-copy.h"
#include "kit/fnkmainwindow-record.h"
#include "panes/fnkdirtree.h"

namespace {

/// A menu learns from an event which pointer it belongs to. A drop from another program comes without
/// an event, so make one up.
PopupChoice AskAtPointer()
{
    GdkEvent* const event = gdk_event_new(GDK_BUTTON_RELEASE);
    event->button.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(pMainW->MainWindow)));
    event->button.time = gtk_get_current_event_time();
    GdkDisplay* const display = gdk_window_get_display(event->button.window);
    gdk_event_set_device(event, gdk_seat_get_pointer(gdk_display_get_default_seat(display)));
    const PopupChoice choice = CreateFileOperationPopup(event);
    gdk_event_free(event);
    return choice;
}

}  // namespace

int UIFileDragDrop(const std::vector<std::string>& items, const std::string& destination)
{
    if (items.empty() || destination.empty()) {
        return 1;
    }
    // A copy, because destination may refer to a field of pGTable that the command changes.
    const std::string place = destination;
    const std::string& first = items.front();
    if (GetParentDirectory(first) == place || first == place || !IsDirectory(place)) {
        return 1;
    }
    const PopupChoice choice = AskAtPointer();
    if (choice != POPUP_COPY && choice != POPUP_MOVE) {
        return 1;
    }
    int flag = 0;
    const auto transfer = choice == POPUP_MOVE ? MoveFile : CopyFile;
    RunOperation(choice == POPUP_MOVE ? OPERATION_MOVE : OPERATION_COPY, items,
                 [&](const std::string& item) { return transfer(place, item, &flag); });
    if (choice == POPUP_MOVE) {
        RescanTree(MainTree(), ParentInTree(GetParentDirectory(first)));
    }
    RescanTree(MainTree(), ParentInTree(place));
    OpenChildTree(MainTree(), place, EXPAND_LAST_YES);
    return 0;
}
