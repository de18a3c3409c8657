#include "app/fnktable-life.h"

#include <unistd.h>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <optional>
#include <utility>

#include "core/fnkfiles-associations.h"
#include "core/fnkfiles-settings.h"
#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkthread.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-picture.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkfilelist.h"

#include "CloseDir.xpm"
#include "OpenDir.xpm"

namespace {

constexpr int kStartError = -65533;
/// How long start and exit wait for the disk of the settings.
constexpr std::chrono::milliseconds kSettingsPatience{500};

bool IsJapaneseLocale()
{
    const char* const lang = std::getenv("LANG");
    return lang != nullptr && std::strncmp(lang, "ja_JP", 5) == 0;
}

/// Hides the window at once, so that it does not freeze on the screen while sync() blocks.
void HideMainWindow()
{
    if (pMainW != nullptr && pMainW->MainWindow != nullptr && gtk_widget_get_visible(pMainW->MainWindow)) {
        gtk_widget_hide(pMainW->MainWindow);
        gdk_display_flush(gdk_display_get_default());
    }
}

void SaveSettings(const LiveLayout& layout)
{
    if (TryFor(kSettingsPatience, [layout] { return SetGTable(layout); }) != FILE_DONE) {
        std::fprintf(stderr, _("fennick: cannot save the settings in %s\n"), GetSettingsPath().c_str());
    }
}

LiveLayout seen_layout;
guint layout_timer = 0;

gboolean NoteLayout(gpointer)
{
    layout_timer = 0;
    if (pMainW != nullptr && ReadLiveLayout != nullptr) {
        seen_layout = ReadLiveLayout();
    }
    return G_SOURCE_REMOVE;
}

/// Asking for the geometry takes the X server a while, and a window that is dragged changes it often.
gboolean on_MainWindow_configure_event(GtkWidget*, GdkEvent*, gpointer)
{
    constexpr guint kPause = 200;  // Milliseconds.
    if (layout_timer == 0) {
        layout_timer = g_timeout_add(kPause, NoteLayout, nullptr);
    }
    return FALSE;
}

}  // namespace

int InitGlobalTable()
{
    pMainW = new MainW;
    pGTable = new GTable;
    pGTable->JapaneseLocale = IsJapaneseLocale() ? 1 : 0;
    pGTable->OpenDirPixmap = ReadXpm(OpenDir_xpm);
    pGTable->CloseDirPixmap = ReadXpm(CloseDir_xpm);
    if (pGTable->OpenDirPixmap == nullptr || pGTable->CloseDirPixmap == nullptr) {
        return kStartError;
    }
    const auto read = [] {
        GetGTable();
        ReadAppInfo("[Extension]", &pGTable->ExtensionList);
        ReadAppInfo("[Application]", &pGTable->ApplicationList);
        return *pGTable;
    };
    // Without the settings this session starts with the defaults, and does not write over the file.
    if (std::optional<GTable> loaded = TryFor(kSettingsPatience, read)) {
        *pGTable = std::move(*loaded);
        pGTable->IsLoaded = true;
    }
    return 0;
}

void TerminateGlobalTable()
{
    if (pGTable != nullptr && pGTable->IsLoaded) {
        const LiveLayout layout = ReadLiveLayout != nullptr ? ReadLiveLayout() : LiveLayout();
        HideMainWindow();
        SaveSettings(layout);
    }
    // Clear the pointers first: callbacks can run while the contents are released.
    GTable* const table = std::exchange(pGTable, nullptr);
    MainW* const widgets = std::exchange(pMainW, nullptr);
    if (table != nullptr) {
        g_clear_object(&table->OpenDirPixmap);
        g_clear_object(&table->CloseDirPixmap);
        FreeAppInfo(table->ExtensionList);
        FreeAppInfo(table->ApplicationList);
    }
    delete table;
    delete widgets;
}

void WatchMainWindow()
{
    g_signal_connect(pMainW->MainWindow, "configure-event", G_CALLBACK(on_MainWindow_configure_event), nullptr);
}

void LeaveLostDisplay()
{
    if (pGTable != nullptr && pGTable->IsLoaded) {
        if (pMainW->Paned != nullptr) {
            seen_layout.PandPosition = gtk_paned_get_position(GTK_PANED(pMainW->Paned));
            seen_layout.ColumnSize = ListColumnWidths();
        }
        SaveSettings(seen_layout);
    }
    StopRuns();
    _exit(0);  // exit() would let the toolkit close its display.
}

void CloseMainWindow()
{
    const bool is_modal = IsModal();
    TerminateGlobalTable();
    if (is_modal) {
        LeaveProgram();  // The dialog that runs the innermost main loop must not go on without the records.
    }
    gtk_main_quit();
}

void LeaveProgram()
{
    if (!StopRuns()) {
        _exit(0);  // They would still use what exit() destroys.
    }
    std::exit(0);
}
