#pragma once
// The widgets of the main window that other modules need. The window owns them all.

#include <gtk/gtk.h>

#include <array>

/// Places of MainW::MenuItem: the entries of the five menus in order, separators included.
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

/// Places of MainW::ToolButton; the spaces between the groups count.
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
    std::array<GtkWidget*, TOOL_SLOT_COUNT> ToolButton = {};  ///< A space holds the toolbar itself.
    GtkWidget* LocationCombo = nullptr;
    GtkWidget* Paned = nullptr;
    GtkWidget* TreeScroll = nullptr;
    GtkWidget* DirTree = nullptr;
    GtkWidget* ListScroll = nullptr;
    GtkWidget* FileList = nullptr;
    GtkWidget* StatusBar = nullptr;
    GtkWidget* FilterStatusBar = nullptr;

    int ListAnchor = -1;         ///< Row where a range starts that a click with Shift ends; -1 for none.
    int ListBatches = 0;         ///< Living objects of ListSelectionBatch.
    bool IsListChanged = false;  ///< The selection changed since it was last reported.
    int HeldRow = -1;            ///< Row of a press that may yet start a drag of the selection; -1 for none.
    std::array<int, 2> HeldRows = {-1, -1};  ///< Of the last two presses, -1 for one that was not held.
};

/// Null before InitGlobalTable and after TerminateGlobalTable, like pGTable.
inline MainW* pMainW = nullptr;
