#pragma once
// The one record of settings and shared state. Every module reads and writes its fields directly;
// there is exactly one per process, alive from InitGlobalTable to TerminateGlobalTable.

#include <array>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

typedef struct _GdkPixbuf GdkPixbuf;
typedef struct _GtkWidget GtkWidget;

/// Longest path in bytes the program works with, "/" of a directory included.
constexpr std::size_t kMaxPathBytes = 2047;
/// Longest name pattern in bytes.
constexpr std::size_t kMaxFilterBytes = 511;
/// Number of detail column kinds (see ColumnId).
constexpr int kColumnKinds = 11;
/// Number of row colours, one per file type; FIFOs share the colour of normal files.
constexpr int kColorCount = 8;
constexpr int kDefaultDivider = 200;

/// What a detail column shows; the numbers stand in the settings file.
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

/// 16-bit components; the settings file keeps their high bytes.
struct Color {
    std::uint16_t red = 0;
    std::uint16_t green = 0;
    std::uint16_t blue = 0;
};

/// A line "key=value" of the associations: a file name extension or the name of an application, and
/// the program it stands for. Bytes.
struct AppInfo {
    std::string Key;
    std::string Value;
};

/// Texts of a history, newest first.
using History = std::vector<std::string>;

/// Fields with an initialiser below "stored" carry the default of their key in the settings file.
/// Flags are 0 or 1. Directory paths are bytes, never longer than kMaxPathBytes, ending in "/".
struct GTable {
    int JapaneseLocale = 0;  ///< Chooses the Japanese date format.
    char** ArgV = nullptr;   ///< Command line as the toolkit left it; not owned.
    std::string StartDir;    ///< Directory named on the command line; empty when none was valid.

    GdkPixbuf* OpenDirPixmap = nullptr;   ///< Expanded folder; owned.
    GdkPixbuf* CloseDirPixmap = nullptr;  ///< Collapsed folder; owned.

    std::string StatusText;              ///< What the status bar says while no tip is shown.
    std::string RootDir;                 ///< Top of the tree; the user cannot leave it.
    int HistoryIndex = 0;                ///< Entry of LocationDirHistory now shown; 0 is the newest.
    int HistoryWalk = 0;                 ///< Flag: Back or Forward is under way, do not record the directory.
    int NameColumn = 1;                  ///< List column (the icon column is 0) that shows the name.
    unsigned long TreeSelectSignal = 0;  ///< Handler of the tree selection; 0 while disconnected.

    std::vector<AppInfo> ExtensionList;    ///< Which program opens a file; the first that fits counts.
    std::vector<AppInfo> ApplicationList;  ///< What the user can choose from when none does.

    unsigned ScrollTimer = 0;  ///< Scrolls the tree during a drag over its edge; 0 for none.
    unsigned ExpandTimer = 0;  ///< Expands the node that a drag rests on; 0 for none.

    GtkWidget* ProgressDlg = nullptr;  ///< While a file operation shows one.
    GtkWidget* ProgressBar = nullptr;
    int ProgressDone = 0;    ///< Steps reported.
    int ProgressTotal = 0;   ///< Steps counted beforehand.
    int ProgressCancel = 0;  ///< Flag: the dialog's Cancel was pressed.

    // Stored.
    std::string CurrentDir;  ///< Directory shown in the file list.
    int WindowX = 50;        ///< Pixels, of the window manager's frame.
    int WindowY = 50;
    int WindowWidth = 600;
    int WindowHeight = 400;
    int PandPosition = kDefaultDivider;  ///< Width of the tree pane in pixels; 0 means unset.
    int SortColumn = 1;                  ///< List column: 0 the icon, detail column i is i + 1.
    int SortType = SORT_ASCENDING;
    int Filter = 0;  ///< Flag: FilterName chooses the files that are listed.
    std::string FilterName = "*";
    int ShowBackup = 0;
    int ShowHidden = 0;
    int SortCase = 0;    ///< Flag: ignore case when sorting texts.
    int MixFileDir = 0;  ///< Flag: directories are sorted among the files.
    int ConfilmDel = 1;
    int ConfilmOverwrite = 1;
    int ConfilmExec = 0;
    int ShowProgress = 1;
    int ColumnCount = 3;  ///< 1 to kColumnKinds.
    std::array<int, kColumnKinds> ColumnPosition = {COLUMN_NAME, COLUMN_SIZE, COLUMN_MODIFICATION_TIME};
    std::array<int, kColumnKinds> ColumnSize = {150, 70, 0};        ///< Pixels; 0: natural width.
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

/// Null before InitGlobalTable and after TerminateGlobalTable: callbacks that may run while the
/// window is torn down look here first.
extern GTable* pGTable;

/// NameColumn as ColumnPosition says; 1 when no column shows names.
int FindNameColumn(const GTable& table);
