#pragma once
// The widgets and shared state of the main window. The window owns the widgets.

#include <gtk/gtk.h>

#include <array>
#include <map>
#include <string>

/// Indices of MainW::MenuItem: the entries of the five menus in order. Separators count too.
enum MenuEntry {
    MENU_NEW_WINDOW = 0,
    MENU_NEW = 1,
    MENU_OPEN = 2,
    MENU_COPY = 3,
    MENU_MOVE = 4,
    MENU_DELETE = 5,
    MENU_PROPERTY = 7,
    MENU_CLOSE_WINDOW = 9,
    MENU_SELECT_ALL = 10,
    MENU_SELECT_FILES = 11,
    MENU_INVERT_SELECTION = 12,
    MENU_FIND_FILE = 14,
    MENU_SYMBOLIC_LINK = 16,
    MENU_RESCAN_DIRECTORY = 18,
    MENU_OPTION = 19,
    MENU_SORT_COLUMN = 20,
    MENU_FILTER_VIEW = 21,
    MENU_MANUAL = 22,
    MENU_ABORT = 24,
    MENU_STORED_COUNT = 25,
};

/// Indices of MainW::ToolButton. The spaces between groups count too.
enum ToolSlot {
    TOOL_BACK = 0,
    TOOL_UP = 1,
    TOOL_FORWARD = 2,
    TOOL_RESCAN = 4,
    TOOL_HOME = 6,
    TOOL_PROPERTY = 8,
    TOOL_SLOT_COUNT = 9,
};

struct MainW {
    GtkWidget* MainWindow = nullptr;
    std::array<GtkWidget*, MENU_STORED_COUNT> MenuItem = {};
    std::array<GtkWidget*, TOOL_SLOT_COUNT> ToolButton = {};  ///< The toolbar itself at a space.
    GtkWidget* LocationCombo = nullptr;
    GtkWidget* Paned = nullptr;
    GtkWidget* TreeScroll = nullptr;
    GtkWidget* DirTree = nullptr;
    GtkWidget* ListScroll = nullptr;
    GtkWidget* FileList = nullptr;
    GtkWidget* StatusBar = nullptr;
    GtkWidget* FilterStatusBar = nullptr;

    /// Name of the first visible row of each directory that was left, for the way back.
    std::map<std::string, std::string> ListPlaces;
    bool IsReturning = false;       ///< Back, Forward or Up is about to enter a directory.
    int ListAnchor = -1;            ///< Row from which Shift+click extends the selection; -1: none.
    int ListBatches = 0;            ///< Number of live ListSelectionBatch objects.
    bool IsListChanged = false;     ///< The selection has changed since the last report.
    int HeldRow = -1;               ///< Row of a button press that may start a drag of the selection; -1: none.
    bool IsHeldToUnselect = false;  ///< Whether its release unselects HeldRow, or else selects it alone.
    std::array<int, 2> HeldRows = {-1, -1};  ///< HeldRow after the last two presses, older first.
};

/// Like pGTable, null before InitGlobalTable and after TerminateGlobalTable.
inline MainW* pMainW = nullptr;
