#pragma once
// The record of settings and shared state. The window's exists from InitGlobalTable to
// TerminateGlobalTable, and every module reads and writes its fields directly.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

typedef struct _GdkPixbuf GdkPixbuf;
typedef struct _GtkWidget GtkWidget;

/// Longest path in bytes, including the "/" of a directory.
constexpr std::size_t kMaxPathBytes = 2047;
/// Longest name pattern in bytes.
constexpr std::size_t kMaxFilterBytes = 511;
/// Number of ColumnIds.
constexpr int kColumnKinds = 11;
/// One per file type, except that FIFOs share the colour of normal files.
constexpr int kColorCount = 8;
/// Default width of the tree pane in pixels.
constexpr int kDefaultDivider = 200;

/// What a detail column shows. The settings file stores these numbers.
enum ColumnId {
    COLUMN_NAME,
    COLUMN_SIZE,
    COLUMN_PERMISSION,
    COLUMN_USER,
    COLUMN_USER_ID,
    COLUMN_GROUP,
    COLUMN_GROUP_ID,
    COLUMN_ACCESS_TIME,
    COLUMN_MODIFICATION_TIME,
    COLUMN_CHANGE_TIME,
    COLUMN_INODE,
};

enum SortDirection { SORT_ASCENDING = 0, SORT_DESCENDING = 1 };

/// 16-bit components. The settings file stores only their high bytes.
struct Color {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
};

/// A "key=value" line of the associations. The key is an extension or the name of an application,
/// the value its program.
struct AppInfo {
    std::string Key;
    std::string Value;
};

/// Newest first.
using History = std::vector<std::string>;

/// Flags are 0 or 1. Directory paths end in "/" and have at most kMaxPathBytes bytes.
struct GTable {
    int JapaneseLocale = 0;  ///< Flag: use the Japanese date format.
    char** ArgV = nullptr;   ///< Command line without the toolkit's options; not owned.
    bool IsLoaded = false;   ///< The settings file has been read; until then it must not be written.
    std::string StartDir;    ///< Valid directory from the command line, or empty.

    GdkPixbuf* OpenDirPixmap = nullptr;   ///< Expanded folder; owned.
    GdkPixbuf* CloseDirPixmap = nullptr;  ///< Collapsed folder; owned.

    std::string StatusText;              ///< Status bar text while no tip is shown.
    std::string RootDir;                 ///< Top of the tree; the user cannot leave it.
    int HistoryIndex = 0;                ///< Shown entry of LocationDirHistory; 0 is the newest.
    int HistoryWalk = 0;                 ///< Flag: Back or Forward is running, do not record the directory.
    int NameColumn = 1;                  ///< List column of the name; column 0 is the icon.
    unsigned long TreeSelectSignal = 0;  ///< Handler of the tree selection; 0 while disconnected.

    std::vector<AppInfo> ExtensionList;    ///< Which program opens a file; the first match counts.
    std::vector<AppInfo> ApplicationList;  ///< Offered to the user if ExtensionList has no match.

    unsigned ScrollTimer = 0;  ///< Scrolls the tree during a drag over its edge; 0 for none.
    unsigned ExpandTimer = 0;  ///< Expands the node under a resting drag; 0 for none.

    GtkWidget* ProgressDlg = nullptr;  ///< Null unless a file operation shows it.
    GtkWidget* ProgressBar = nullptr;
    int ProgressDone = 0;    ///< Steps done.
    int ProgressTotal = 0;   ///< Steps in total.
    int ProgressCancel = 0;  ///< Flag: the user pressed Cancel.

    // Stored in the settings file; the initialisers are the defaults.
    std::string CurrentDir;  ///< Directory shown in the file list.
    int WindowX = 50;        ///< Pixels. The position is that of the window manager's frame.
    int WindowY = 50;
    int WindowWidth = 600;
    int WindowHeight = 400;
    int PandPosition = kDefaultDivider;  ///< Width of the tree pane in pixels; 0 means unset.
    int SortColumn = 1;                  ///< List column: 0 for the icon, i + 1 for detail column i.
    int SortType = SORT_ASCENDING;
    int Filter = 0;  ///< Flag: list only files that match FilterName.
    std::string FilterName = "*";
    int ShowBackup = 0;
    int ShowHidden = 0;
    int SortCase = 0;    ///< Flag: ignore case when sorting.
    int MixFileDir = 0;  ///< Flag: sort directories among the files.
    int ConfilmDel = 1;
    int ConfilmOverwrite = 1;
    int ConfilmExec = 0;
    int ShowProgress = 1;
    int ColumnCount = 3;  ///< 1 to kColumnKinds.
    std::array<int, kColumnKinds> ColumnPosition = {COLUMN_NAME, COLUMN_SIZE, COLUMN_MODIFICATION_TIME};
    std::array<int, kColumnKinds> ColumnSize = {150, 70, 0};        ///< Pixels; 0 for natural width.
    std::array<Color, kColorCount> Colors = {{{0, 0, 0xff00},       // directory
                                              {0, 0xff00, 0},       // executable
                                              {0, 0, 0},            // normal
                                              {0xff00, 0, 0},       // core
                                              {0xff00, 0xff00, 0},  // symbolic link
                                              {0xff00, 0, 0},       // stalled link
                                              {0xff00, 0, 0xff00},  // socket
                                              {0, 0, 0}}};          // device
    History LocationDirHistory;
    History DirHistory;
    History FilterHistory;
};

/// Null before InitGlobalTable and after TerminateGlobalTable. Callbacks that may run while the
/// window is destroyed must check it. A thread that works for the window has a copy of its own.
extern constinit thread_local GTable* pGTable;

/// The NameColumn that follows from ColumnPosition; 1 if no column shows names.
int FindNameColumn(const GTable& table);
