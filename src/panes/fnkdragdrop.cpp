#include "panes/fnkdragdrop.h"

#include <utility>

#include "core/fnktable.h"
#include "kit/fnkcommand.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-picture.h"
#include "kit/fnkutil-view.h"
#include "model/fnkfiles-dragtext.h"

std::function<void()> (*OnFilesDropped)(const std::vector<std::string>& items,
                                        const std::string& destination) = nullptr;

namespace {

enum TargetInfo : guint { TARGET_TEXT = 0, TARGET_URIS = 1 };

constexpr GdkDragAction kActions = static_cast<GdkDragAction>(GDK_ACTION_COPY | GDK_ACTION_MOVE);

char text_plain[] = "text/plain";
char text_uri_list[] = "text/uri-list";

/// The order of kAccepted decides which format a drop uses. URIs come first: a source that offers both
/// formats may send URIs as plain text too, with CR LF line ends.
constexpr GtkTargetEntry kOffered[] = {{text_plain, 0, TARGET_TEXT}, {text_uri_list, 0, TARGET_URIS}};
constexpr GtkTargetEntry kAccepted[] = {{text_uri_list, 0, TARGET_URIS}, {text_plain, 0, TARGET_TEXT}};

/// A button press on a row that has not become a drag yet.
struct Press {
    GtkTreeView* view = nullptr;  ///< Null if no button is down.
    guint button = 0;
    int x = 0;
    int y = 0;
    TreePath row;
    std::string path;  ///< Path of the row at the press. The rows may change while the button is down.
};

/// The state of drags from and to a view. Lives as long as the view.
struct ViewDrag {
    const DragPane& pane;
    Press press = {};
    std::vector<std::string> items = {};  ///< Paths being dragged from the view.
    std::string destination = {};         ///< Of a drop whose data has been requested.
};
constexpr const char* kViewDragKey = "fennick-drag";

ViewDrag& DragOf(gpointer data)
{
    return *static_cast<ViewDrag*>(data);
}

gboolean on_Pane_button_press(GtkWidget* widget, GdkEventButton* event, gpointer data)
{
    GtkTreeView* const view = GTK_TREE_VIEW(widget);
    ViewDrag& drag = DragOf(data);
    GtkTreePath* row = nullptr;
    drag.press = {};
    if (event->type == GDK_BUTTON_PRESS &&
        (event->button == GDK_BUTTON_PRIMARY || event->button == GDK_BUTTON_SECONDARY) &&
        event->window == gtk_tree_view_get_bin_window(view) &&
        gtk_tree_view_get_path_at_pos(view, static_cast<int>(event->x), static_cast<int>(event->y), &row, nullptr,
                                      nullptr, nullptr)) {
        drag.press = {view,
                      event->button,
                      static_cast<int>(event->x),
                      static_cast<int>(event->y),
                      TreePath(row),
                      drag.pane.PathOfRow(view, row)};
    }
    return FALSE;
}

gboolean on_Pane_button_release(GtkWidget*, GdkEventButton*, gpointer data)
{
    DragOf(data).press = {};
    return FALSE;
}

/// False if the pointer cannot be grabbed, as when another program holds it.
bool BeginDrag(GtkWidget* widget, GdkEvent* event, const Press& start)
{
    GtkTargetList* const targets = gtk_target_list_new(kOffered, G_N_ELEMENTS(kOffered));
    int x = 0;
    int y = 0;
    gtk_tree_view_convert_bin_window_to_widget_coords(start.view, start.x, start.y, &x, &y);
    GdkDragContext* const context =
        gtk_drag_begin_with_coordinates(widget, targets, kActions, static_cast<int>(start.button), event, x, y);
    gtk_target_list_unref(targets);
    if (context != nullptr) {
        gtk_drag_set_icon_surface(context, ClosedFolderPicture(widget));
    }
    return context != nullptr;
}

/// Whether the button is still down. The pane may miss the release, as when a dialog opened by a
/// double click gets it instead.
bool IsHeld(guint button, guint state)
{
    return (state & (button == GDK_BUTTON_PRIMARY ? GDK_BUTTON1_MASK : GDK_BUTTON3_MASK)) != 0;
}

gboolean on_Pane_motion_notify(GtkWidget* widget, GdkEventMotion* event, gpointer data)
{
    ViewDrag& drag = DragOf(data);
    Press& press = drag.press;
    if (press.view != nullptr && !IsHeld(press.button, event->state)) {
        press = {};
    }
    if (pGTable == nullptr || press.view != GTK_TREE_VIEW(widget) ||
        event->window != gtk_tree_view_get_bin_window(press.view) ||
        !gtk_drag_check_threshold(widget, press.x, press.y, static_cast<int>(event->x), static_cast<int>(event->y))) {
        return FALSE;
    }
    const Press start = std::exchange(press, {});
    if (start.path.empty() || drag.pane.PathOfRow(start.view, start.row.get()) != start.path) {
        return TRUE;
    }
    drag.items = drag.pane.PrepareDrag(start.view, start.row.get());
    if (!drag.items.empty() && !BeginDrag(widget, reinterpret_cast<GdkEvent*>(event), start)) {
        drag.items.clear();  // There is no "drag-end" for a drag that did not begin.
    }
    return TRUE;
}

void on_Pane_drag_data_get(GtkWidget*, GdkDragContext*, GtkSelectionData* data, guint info, guint, gpointer view_drag)
{
    const std::vector<std::string>& items = DragOf(view_drag).items;
    constexpr int kBitsPerUnit = 8;
    if (items.empty()) {
        return;
    }
    const std::string text = info == TARGET_URIS ? MakeUriList(items) : MakeDragText(items);
    gtk_selection_data_set(data, gtk_selection_data_get_target(data), kBitsPerUnit,
                           reinterpret_cast<const guchar*>(text.data()), static_cast<int>(text.size()));
}

void on_Pane_drag_end(GtkWidget*, GdkDragContext*, gpointer data)
{
    DragOf(data).items.clear();
}

/// Keeps the signal from the tree view's own handler, which would look for a row to drop on.
/// GTK_DEST_DEFAULT_MOTION has already told the source what a drop would do.
gboolean on_Pane_drag_motion(GtkWidget*, GdkDragContext*, int, int, guint, gpointer)
{
    return TRUE;
}

/// False while a command or a dialog runs.
bool CanAcceptDrop()
{
    return pGTable != nullptr && !IsBusy();
}

gboolean on_Pane_drag_drop(GtkWidget* widget, GdkDragContext* context, int x, int y, guint time, gpointer data)
{
    const GdkAtom target = gtk_drag_dest_find_target(widget, context, nullptr);
    if (target == GDK_NONE || !CanAcceptDrop()) {
        return FALSE;
    }
    DragOf(data).destination = DragOf(data).pane.FindDestination(GTK_TREE_VIEW(widget), x, y);
    gtk_drag_get_data(widget, context, target, time);
    return TRUE;
}

std::string ReadText(GtkSelectionData* data)
{
    constexpr int kBitsPerUnit = 8;
    const int length = gtk_selection_data_get_length(data);
    if (length <= 0 || gtk_selection_data_get_format(data) != kBitsPerUnit) {
        return {};
    }
    return {reinterpret_cast<const char*>(gtk_selection_data_get_data(data)), static_cast<std::size_t>(length)};
}

/// The items of a drop. Looking at them may take the disk long, which is told as work on path.
std::vector<std::string> SplitItems(const std::string& path, const std::string& text, guint info)
{
    const auto split = [text, info] { return info == TARGET_URIS ? SplitUriList(text) : SplitDragText(text); };
    return WaitFor(path, split).value_or(std::vector<std::string>());
}

/// A drop that waits for RunDrop.
struct Drop {
    GdkDragContext* context;
    std::string text;
    guint info;
    std::string destination;
    guint time;
};

/// Runs from the main loop, because the pop-up menu and the command run nested main loops, which must
/// not happen in a "drag-data-received" handler. The data may have taken long to arrive, so checks
/// again that no command has started since the drop.
gboolean RunDrop(gpointer data)
{
    auto* const drop = static_cast<Drop*>(data);
    std::function<void()> work;
    if (CanAcceptDrop() && OnFilesDropped != nullptr && !drop->text.empty() && !drop->destination.empty()) {
        const std::vector<std::string> items = SplitItems(drop->destination, drop->text, drop->info);
        if (!items.empty()) {
            work = OnFilesDropped(items, drop->destination);
        }
    }
    // Never ask the source to delete the originals: the engine does so in a move.
    gtk_drag_finish(drop->context, work != nullptr, FALSE, drop->time);
    if (work) {
        work();
    }
    return G_SOURCE_REMOVE;
}

void FreeDrop(gpointer data)
{
    auto* const drop = static_cast<Drop*>(data);
    g_object_unref(drop->context);
    delete drop;
}

void on_Pane_drag_data_received(GtkWidget* widget, GdkDragContext* context, int, int, GtkSelectionData* data,
                                guint info, guint time, gpointer view_drag)
{
    g_signal_stop_emission_by_name(widget, "drag-data-received");  // The tree view expects a row.
    auto* const drop = new Drop{GDK_DRAG_CONTEXT(g_object_ref(context)), ReadText(data), info,
                                std::exchange(DragOf(view_drag).destination, {}), time};
    g_idle_add_full(G_PRIORITY_DEFAULT, RunDrop, drop, FreeDrop);
}

using DropHandler = void (*)(const std::string& item);

/// A drop on an entry that waits for RunEntryDrop.
struct EntryDrop {
    std::string text;
    guint info;
    DropHandler dropped;
};

gboolean RunEntryDrop(gpointer data)
{
    const auto* const drop = static_cast<const EntryDrop*>(data);
    if (!CanAcceptDrop()) {
        return G_SOURCE_REMOVE;
    }
    const std::vector<std::string> items = SplitItems(pGTable->CurrentDir, drop->text, drop->info);
    if (!items.empty()) {
        drop->dropped(items.front());
    }
    return G_SOURCE_REMOVE;
}

/// Leaves text that names no files to the entry's own handler, which inserts it.
void on_Entry_drag_data_received(GtkWidget* entry, GdkDragContext* context, int, int, GtkSelectionData* data,
                                 guint info, guint time, gpointer handler)
{
    const std::string text = ReadText(data);
    if (info != TARGET_URIS && !text.starts_with("file:")) {
        return;
    }
    g_signal_stop_emission_by_name(entry, "drag-data-received");
    gtk_drag_finish(context, TRUE, FALSE, time);
    g_idle_add_full(G_PRIORITY_DEFAULT, RunEntryDrop, new EntryDrop{text, info, reinterpret_cast<DropHandler>(handler)},
                    [](gpointer drop) { delete static_cast<EntryDrop*>(drop); });
}

}  // namespace

void ConnectEntryDrop(GtkWidget* entry, void (*dropped)(const std::string& item))
{
    GtkTargetList* const targets = gtk_target_list_new(kAccepted, 1);
    gtk_target_list_add_text_targets(targets, TARGET_TEXT);
    gtk_drag_dest_set_target_list(entry, targets);
    gtk_target_list_unref(targets);
    g_signal_connect(entry, "drag-data-received", G_CALLBACK(on_Entry_drag_data_received),
                     reinterpret_cast<gpointer>(dropped));
}

void ConnectDragPane(GtkTreeView* view, const DragPane& pane)
{
    GtkWidget* const widget = GTK_WIDGET(view);
    auto* const data = new ViewDrag{pane};
    g_object_set_data_full(G_OBJECT(view), kViewDragKey, data,
                           [](gpointer view_drag) { delete static_cast<ViewDrag*>(view_drag); });
    // GTK_DEST_DEFAULT_DROP is left out: on_Pane_drag_drop requests the data itself.
    gtk_drag_dest_set(widget, static_cast<GtkDestDefaults>(GTK_DEST_DEFAULT_MOTION | GTK_DEST_DEFAULT_HIGHLIGHT),
                      kAccepted, G_N_ELEMENTS(kAccepted), kActions);
    g_signal_connect(widget, "button-press-event", G_CALLBACK(on_Pane_button_press), data);
    g_signal_connect(widget, "button-release-event", G_CALLBACK(on_Pane_button_release), data);
    g_signal_connect(widget, "motion-notify-event", G_CALLBACK(on_Pane_motion_notify), data);
    g_signal_connect(widget, "drag-data-get", G_CALLBACK(on_Pane_drag_data_get), data);
    g_signal_connect(widget, "drag-end", G_CALLBACK(on_Pane_drag_end), data);
    g_signal_connect(widget, "drag-motion", G_CALLBACK(on_Pane_drag_motion), data);
    g_signal_connect(widget, "drag-drop", G_CALLBACK(on_Pane_drag_drop), data);
    g_signal_connect(widget, "drag-data-received", G_CALLBACK(on_Pane_drag_data_received), data);
}
