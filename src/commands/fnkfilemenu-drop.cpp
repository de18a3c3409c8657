#include "commands/fnkfilemenu-drop.h"

#include "commands/fnkfilemenu-operation.h"
#include "commands/fnkfilemenu-targets.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkprogress.h"
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

std::function<void()> UIFileDragDrop(const std::vector<std::string>& items, const std::string& destination)
{
    if (items.empty() || destination.empty()) {
        return nullptr;
    }
    const std::string& first = items.front();
    if (GetParentDirectory(first) == destination || first == destination ||
        !WaitFor(destination, [destination] { return IsDirectory(destination); }).value_or(false)) {
        return nullptr;
    }
    const PopupChoice choice = AskAtPointer();
    if (choice != POPUP_COPY && choice != POPUP_MOVE) {
        return nullptr;
    }
    return [items, destination, kind = choice == POPUP_MOVE ? OPERATION_MOVE : OPERATION_COPY] {
        RunOperation(kind, items, TransferTo(kind, destination));
        std::vector<std::string> rescan = {ParentInTree(destination)};
        if (kind == OPERATION_MOVE) {
            rescan.push_back(ParentInTree(GetParentDirectory(items.front())));
        }
        OpenChildTree(MainTree(), destination, EXPAND_LAST_YES, {.rescan = rescan});
    };
}
