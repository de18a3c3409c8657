#include "app/fnkmainwindow.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "app/fnkmainwindow-keys.h"
#include "app/fnkmenubar.h"
#include "app/fnktable-life.h"
#include "app/fnktoolbar.h"
#include "commands/fnkfilemenu-drop.h"
#include "commands/fnkfilemenu-open.h"
#include "commands/fnkfilemenu-property.h"
#include "core/fnkfiles-settings.h"
#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-view.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree-drag.h"
#include "panes/fnkdirtree-view.h"
#include "panes/fnkdirtree-visit.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkdragdrop.h"
#include "panes/fnkfilelist-status.h"
#include "panes/fnkfilelist.h"
#include "panes/fnklocationbar.h"

namespace {

constexpr int kStatusSpacing = 2;
/// Where location, panes and status begin and end, in pixels from the window's sides.
constexpr int kEdge = 4;
/// The blank that status texts begin with.
constexpr int kStatusBlank = 3;
constexpr int kFilterStatusWidth = 202;
/// Whatever the settings file says, at least this many pixels of the window stay on the screen, and of
/// the list beside the divider.
constexpr int kMinVisible = 64;
/// Minimum height of the panes in pixels; the toolkit cannot draw scroll bars in less.
constexpr int kPaneHeight = 80;

constexpr const char* kPanedStyle = "paned > separator { min-width: 10px; }";

void on_MainWindow_destroy(GtkWidget*, gpointer)
{
    gtk_main_quit();
}

gboolean on_MainWindow_delete_event(GtkWidget*, GdkEvent*, gpointer)
{
    const bool is_modal = IsModal();
    TerminateGlobalTable();
    if (is_modal) {
        LeaveProgram();
    }
    return FALSE;
}

/// Shows a directory that was selected in the tree: list, location bar, history and buttons.
void EnterDirectory(const std::string& path)
{
    const std::string left = pGTable->CurrentDir;
    const bool has_keys = CountListSelection() > 0;
    LeaveFileList();
    pGTable->CurrentDir = path;
    SetEntryBytes(ComboEntry(pMainW->LocationCombo), path);
    EnterFileList();
    if (std::exchange(pMainW->IsReturning, false) && has_keys && left.size() > path.size() && left.starts_with(path)) {
        SelectListNames({left.substr(path.size(), left.find('/', path.size()) - path.size())});
    }
    if (pGTable->HistoryWalk == 0) {
        AddHistoryListC(pMainW->LocationCombo, pGTable->LocationDirHistory);
        SetComboStrings(pMainW->LocationCombo, pGTable->LocationDirHistory);
        pGTable->HistoryIndex = 0;
    }
    pGTable->HistoryWalk = 0;
    SensitiveHistoryButtons();
    gtk_widget_set_sensitive(pMainW->ToolButton[TOOL_UP], path != pGTable->RootDir);
    ReleaseEntryFocus(pMainW->MainWindow);
}

/// Ends the program: without its root there is nothing to show.
void ReportRootFailure()
{
    std::fprintf(stderr, _("fennick: cannot read the directory %s\n"), pGTable->RootDir.c_str());
    LeaveProgram();
}

void UpdateForSelection()
{
    SensitivePropertyButton();
    DisplayFileStatus();
    ShowTreeKeys(MainTree(), CountListSelection() == 0);
}

void RefreshDirectory()
{
    DisplayFileList(pGTable->CurrentDir);
}

LiveLayout ReadLayout()
{
    LiveLayout layout;
    if (pMainW == nullptr || pMainW->MainWindow == nullptr) {
        return layout;
    }
    if (GdkWindow* const window = gtk_widget_get_window(pMainW->MainWindow)) {
        layout.HasWindow = true;
        gdk_window_get_root_origin(window, &layout.WindowX, &layout.WindowY);
        gtk_window_get_size(GTK_WINDOW(pMainW->MainWindow), &layout.WindowWidth, &layout.WindowHeight);
    }
    layout.PandPosition = pMainW->Paned != nullptr ? gtk_paned_get_position(GTK_PANED(pMainW->Paned)) : 0;
    layout.ColumnSize = ListColumnWidths();
    return layout;
}

GdkRectangle ScreenSize()
{
    GdkRectangle size = {};
    gdk_window_get_geometry(gdk_get_default_root_window(), nullptr, nullptr, &size.width, &size.height);
    return size;
}

void PlaceWindow(GtkWindow* window)
{
    const GdkRectangle screen = ScreenSize();
    if (pGTable->WindowWidth >= screen.width && pGTable->WindowHeight >= screen.height) {
        gtk_window_set_position(window, GTK_WIN_POS_CENTER);
    } else {
        pGTable->WindowX = std::clamp(pGTable->WindowX, 0, std::max(0, screen.width - kMinVisible));
        pGTable->WindowY = std::clamp(pGTable->WindowY, 0, std::max(0, screen.height - kMinVisible));
        gtk_window_move(window, pGTable->WindowX, pGTable->WindowY);
    }
    if (pGTable->WindowWidth > 0 && pGTable->WindowHeight > 0) {
        gtk_window_set_default_size(window, std::min(pGTable->WindowWidth, screen.width),
                                    std::min(pGTable->WindowHeight, screen.height));
    }
}

GtkWidget* CreatePaned(GtkWidget* box)
{
    GtkWidget* const paned = gtk_paned_new(GTK_ORIENTATION_HORIZONTAL);
    gtk_paned_set_wide_handle(GTK_PANED(paned), TRUE);
    SetStyle(paned, kPanedStyle);
    gtk_box_pack_start(GTK_BOX(box), paned, TRUE, TRUE, 0);
    int divider = pGTable->PandPosition > 0 ? pGTable->PandPosition : kDefaultDivider;
    if (pGTable->WindowWidth > 0) {
        const int width = std::min(pGTable->WindowWidth, ScreenSize().width);
        divider = std::clamp(divider, 1, std::max(kDefaultDivider, width - kMinVisible));
    }
    gtk_paned_set_position(GTK_PANED(paned), divider);
    gtk_widget_set_size_request(paned, -1, kPaneHeight);
    gtk_widget_set_margin_start(paned, kEdge);
    gtk_widget_set_margin_end(paned, kEdge);
    gtk_widget_set_can_focus(paned, FALSE);  // Keys belong to the panes in it.
    gtk_widget_show(paned);
    return paned;
}

/// Keeps the end of the text, the file size, visible however long the name is. The label fills its
/// bar and takes no space from the other bar.
void FitStatusLabel(GtkWidget* bar)
{
    GtkWidget* const label = StatusBarLabel(bar);
    GtkWidget* const area = gtk_statusbar_get_message_area(GTK_STATUSBAR(bar));
    ShortenLabel(label, 1);
    gtk_box_set_child_packing(GTK_BOX(area), label, TRUE, TRUE, 0, GTK_PACK_START);
    gtk_widget_set_halign(label, GTK_ALIGN_FILL);
    gtk_label_set_xalign(GTK_LABEL(label), 0.0F);
}

GtkWidget* CreateStatusBar(GtkWidget* box, const char* name, bool expand)
{
    GtkWidget* const bar = gtk_statusbar_new();
    gtk_widget_set_margin_top(bar, 0);
    gtk_widget_set_margin_bottom(bar, 0);
    gtk_widget_set_margin_start(bar, kEdge - kStatusBlank);
    gtk_widget_set_margin_end(bar, kEdge);
    gtk_box_pack_start(GTK_BOX(box), bar, expand, expand, 0);
    FitStatusLabel(bar);
    SetAccessibleName(bar, name);
    gtk_widget_show(bar);
    return bar;
}

/// Makes the bar wide enough for its text without a filter, in any font and language.
void FitFilterStatus()
{
    constexpr int kInsets = 40;  // Borders of bar, frame and label.
    GtkWidget* const bar = pMainW->FilterStatusBar;
    const int text_width = GetTextWidth(StatusBarLabel(bar), _(" Filter: Show all files"));
    gtk_widget_set_size_request(bar, std::max(kFilterStatusWidth, text_width + kInsets), -1);
}

}  // namespace

GtkWidget* CreateMainWindow()
{
    OnEngine = CommandEvents();
    OnDirTree = {.Entered = EnterDirectory, .Reopened = RefreshDirectory, .RootFailed = ReportRootFailure};
    OnRowDetails = ShowListDetails;
    OnFileList = {.SelectionChanged = UpdateForSelection, .FileActivated = ExecApplication};
    OnFilesDropped = UIFileDragDrop;
    ReadLiveLayout = ReadLayout;

    GtkWidget* const window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    pMainW->MainWindow = window;
    gtk_window_set_title(GTK_WINDOW(window), _("Fennick"));
    PlaceWindow(GTK_WINDOW(window));

    GtkWidget* const vbox = CreateVBox(window, 0, 0);
    CreateMenuBar(vbox);
    CreateToolBar(vbox);
    pMainW->LocationCombo = CreateLocationBar(vbox);
    pMainW->Paned = CreatePaned(vbox);
    CreateDirTree(pMainW->Paned);
    ConnectTreeDrag(MainTree());
    CreateFileList(pMainW->Paned);

    CreateSeparator(vbox);
    GtkWidget* const status_box = CreateHBox(vbox, false, kStatusSpacing, 0);
    pMainW->StatusBar = CreateStatusBar(status_box, _("Status"), true);
    pMainW->FilterStatusBar = CreateStatusBar(status_box, _("Filter status"), false);
    DisplayFilterStatus();
    FitFilterStatus();

    g_signal_connect(window, "destroy", G_CALLBACK(on_MainWindow_destroy), nullptr);
    g_signal_connect(window, "delete-event", G_CALLBACK(on_MainWindow_delete_event), nullptr);
    g_signal_connect(window, "key-press-event", G_CALLBACK(on_MainWindow_key_press_event), nullptr);
    g_signal_connect(window, "set-focus", G_CALLBACK(on_MainWindow_set_focus), nullptr);
    return window;
}

void ShowMainWindow()
{
    gtk_widget_show(pMainW->MainWindow);
    ReleaseEntryFocus(pMainW->MainWindow);
    pGTable->CurrentDir.clear();  // Nothing is shown yet.
    OpenChildTree(MainTree(), pGTable->StartDir.empty() ? pGTable->RootDir : pGTable->StartDir, EXPAND_LAST_NO);
}
