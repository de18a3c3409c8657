// Measures browsing large directories, in turns with the bare system calls and library functions that
// this takes at least; and how the time grows with the directory. Needs a display. FENNICK_BENCH_DIR
// names the folder for the scratch directory, which gets 1.2 million files.
//
//     script/with-display build/bench/bench-browse [--growth] [PART OF A NAME]

#include <dirent.h>
#include <fcntl.h>
#include <sys/stat.h>

#include <cstdint>
#include <cstring>
#include <memory>
#include <tuple>

#include "commands/fnkeditmenu-select.h"
#include "core/fnktable.h"
#include "kit/fnkmainwindow-record.h"
#include "measure.h"
#include "model/fnkfilelist-sort.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"

namespace {

constexpr int kEntries = 100'000;
constexpr int kMillion = 1'000'000;
constexpr int kSubdirectories = 10'000;

std::string top;

/// Names in no particular order, like those of real files.
std::string NameOf(int i)
{
    char name[64];
    std::snprintf(name, sizeof name, "%08x-file-%d.dat", static_cast<unsigned>(i) * 2654435761U, i);
    return name;
}

/// A directory of count files, created on first use.
std::string ManyFiles(int count)
{
    const std::string path = top + "/files" + std::to_string(count) + "/";
    if (!std::filesystem::create_directory(path)) {
        return path;
    }
    for (int i = 0; i < count; ++i) {
        const std::string name = path + NameOf(i);
        mknod(name.c_str(), S_IFREG | (i % 7 == 0 ? 0755 : 0644), 0);
        // Half of the files get a size: enough to sort by, and created twice as fast.
        if (count <= kEntries && i % 2 == 0) {
            truncate(name.c_str(), i * 37L % 5'000'000);
        }
    }
    return path;
}

std::string ManyDirectories(int count)
{
    const std::string path = top + "/dirs" + std::to_string(count) + "/";
    if (std::filesystem::create_directory(path)) {
        for (int i = 0; i < count; ++i) {
            std::filesystem::create_directories(path + NameOf(i) + "/below");
        }
    }
    return path;
}

void Settle()
{
    AwaitVisit();
}

/// Runs the main loop until the window has painted the pending changes.
void Paint()
{
    bool painted = false;
    GdkFrameClock* const clock = gtk_widget_get_frame_clock(pMainW->MainWindow);
    const gulong handler =
        g_signal_connect_swapped(clock, "after-paint", G_CALLBACK(+[](bool* done) { *done = true; }), &painted);
    gdk_frame_clock_request_phase(clock, GDK_FRAME_CLOCK_PHASE_PAINT);
    while (!painted) {
        gtk_main_iteration();
    }
    g_signal_handler_disconnect(clock, handler);
}

void BareRead(const std::string& path)
{
    DIR* const directory = opendir(path.c_str());
    while (const struct dirent* const entry = readdir(directory)) {
        struct stat st = {};
        fstatat(dirfd(directory), entry->d_name, &st, AT_SYMLINK_NOFOLLOW);
    }
    closedir(directory);
}

/// Reads the subdirectories of a directory, and each of them up to its first own subdirectory.
void BareExpand(const std::string& path)
{
    DIR* const directory = opendir(path.c_str());
    while (const struct dirent* const entry = readdir(directory)) {
        if (entry->d_type != DT_DIR || entry->d_name[0] == '.') {
            continue;
        }
        DIR* const child =
            fdopendir(openat(dirfd(directory), entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW | O_CLOEXEC));
        while (const struct dirent* const inner = readdir(child)) {
            if (inner->d_type == DT_DIR && inner->d_name[0] != '.') {
                break;
            }
        }
        closedir(child);
    }
    closedir(directory);
}

/// Shows a directory as a click in the tree does. The directory may be newer than the tree, which is
/// therefore read again.
void Enter(const std::string& path)
{
    OpenChildTree(MainTree(), path, EXPAND_LAST_NO, {.rescan = {pGTable->RootDir}});
    Settle();
}

void OpenAndPaint(const std::string& path)
{
    DisplayFileList(path);
    Settle();
}

/// The tree path of a directory's node, in a tree that has just been read again, so that the node has no
/// children yet.
GtkTreePath* FreshNode(const std::string& path)
{
    OpenChildTree(MainTree(), pGTable->RootDir, EXPAND_LAST_NO, {.rescan = {pGTable->RootDir}});
    Settle();
    GtkTreeIter node;
    std::string sought = path;
    GetPathNode(MainTree(), sought, &node);
    return gtk_tree_model_get_path(gtk_tree_view_get_model(MainTree()), &node);
}

GtkTreePath* node = nullptr;

Side Expanding(const std::string& path)
{
    return {[](int) {
                const std::unique_ptr<GtkTreePath, decltype(&gtk_tree_path_free)> held(node, gtk_tree_path_free);
                gtk_tree_view_expand_row(MainTree(), node, FALSE);
                Settle();
            },
            [path](int) { node = FreshNode(path); }};
}

/// Matches about every other row: the worst case, with the most separate ranges.
constexpr const char* kScattered = "*[13579].dat";

/// One pass over the rows, the least that choosing among them takes.
void LookAtRows()
{
    volatile std::size_t letters = 0;
    for (std::size_t i = 0; i < ListRows().Count(); ++i) {
        letters = letters + std::strlen(ListRows().Name(i));
    }
}

/// Timed until the selection is painted.
Side Selecting(void (*choose)(), void (*prepare)())
{
    return {[choose](int) {
                choose();
                Paint();
            },
            [prepare](int) {
                prepare();
                Settle();
            }};
}

void SelectScattered()
{
    SelectMatchingRows(kScattered);
}

Side SelectingAll()
{
    return Selecting(SelectAllListRows, UnselectAllListRows);
}

Side SelectingScattered()
{
    return Selecting(SelectScattered, UnselectAllListRows);
}

Side Inverting()
{
    return Selecting(InvertListSelection, SelectScattered);
}

void PressKey(guint keyval)
{
    GdkEvent* const event = gdk_event_new(GDK_KEY_PRESS);
    event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(pMainW->MainWindow)));
    event->key.keyval = keyval;
    gdk_event_set_device(event, gdk_seat_get_keyboard(gdk_display_get_default_seat(gdk_display_get_default())));
    gtk_main_do_event(event);
    gdk_event_free(event);
}

constexpr const char* kKindNames[] = {
    "Name",     "Size",        "Permission",        "User",        "User ID",      "Group",
    "Group ID", "Access time", "Modification time", "Change time", "i Node number"};
constexpr int kIconColumn = 0;
constexpr int kNameColumn = 1;
constexpr int kOtherColumn = 2;

/// A row's value in a column, as a plain std::stable_sort would get it.
struct PlainKey {
    std::int64_t number;
    std::string text;
};

PlainKey KeyOf(const FileRow& row, int kind)
{
    switch (kind) {
    case COLUMN_SIZE:
        return {row.size, {}};
    case COLUMN_USER_ID:
        return {row.uid, {}};
    case COLUMN_GROUP_ID:
        return {row.gid, {}};
    case COLUMN_ACCESS_TIME:
        return {row.access_time, {}};
    case COLUMN_MODIFICATION_TIME:
        return {row.modification_time, {}};
    case COLUMN_CHANGE_TIME:
        return {row.change_time, {}};
    case COLUMN_INODE:
        return {row.inode, {}};
    case COLUMN_NAME:
        return {0, ListRows().Name(row)};
    default:
        return {0, ListRows().CellText(row, kind)};
    }
}

/// Brings the rows into an order unrelated to the one to be measured. Sorting by the icon column is by
/// name, sorting by inode follows the order in which the files were created.
void Shuffle(int kind)
{
    pGTable->ColumnPosition[1] = kind == COLUMN_NAME ? static_cast<int>(COLUMN_INODE) : kind;
    pGTable->SortColumn = kind == COLUMN_NAME ? kOtherColumn : kIconColumn;
    pGTable->SortType = SORT_ASCENDING;
    SortFileList();
    Settle();
}

/// A click on the title of the column, without the painting that follows.
Side Sorting(int kind)
{
    return {[kind](int) { on_FileList_click_column(kind == COLUMN_NAME ? kNameColumn : kOtherColumn); },
            [kind](int) { Shuffle(kind); }};
}

std::vector<PlainKey> plain_keys;

Side SortingPlainly(int kind)
{
    return {[](int) {
                std::stable_sort(plain_keys.begin(), plain_keys.end(), [](const PlainKey& a, const PlainKey& b) {
                    return a.number != b.number ? a.number < b.number : a.text < b.text;
                });
            },
            [kind](int) {
                Shuffle(kind);
                plain_keys.clear();
                for (std::size_t i = 0; i < ListRows().Count(); ++i) {
                    plain_keys.push_back(KeyOf(ListRows().Row(i), kind));
                }
            }};
}

void MeasureOpening()
{
    for (const auto& [count, name, goal] :
         {std::tuple{kEntries, "open 100,000 entries", Goal{.ratio = 1.2, .pause = 80}},
          std::tuple{kMillion, "open 1,000,000 entries", Goal{.ratio = 1.3, .pause = 600}}}) {
        if (!wanted.Has(name)) {
            continue;
        }
        const std::string path = ManyFiles(count);
        Compare(name, goal, {[&](int) { OpenAndPaint(path); }}, "readdir + fstatat", {[&](int) { BareRead(path); }});
    }
}

void MeasureRows()
{
    Enter(ManyFiles(kEntries));
    const Goal goal = {.milliseconds = 100};
    const Side pass = {[](int) { LookAtRows(); }};
    Compare("select all of 100,000 rows", goal, SelectingAll(), "one pass", pass);
    Compare("invert among 100,000 rows", goal, Inverting(), "one pass", pass);
    Compare("select by pattern among 100,000 rows", goal, SelectingScattered(), "one pass", pass);
    Compare("a key with 100,000 rows selected", goal, Selecting([] { PressKey(GDK_KEY_Up); }, SelectAllListRows),
            "one pass", pass);
    UnselectAllListRows();
    for (int kind = COLUMN_NAME; kind <= COLUMN_INODE; ++kind) {
        const std::string name = std::string("sort 100,000 rows by ") + kKindNames[kind];
        Compare(name.c_str(), {.ratio = 1.5}, Sorting(kind), "std::stable_sort", SortingPlainly(kind));
    }
    pGTable->ColumnPosition[1] = COLUMN_SIZE;
}

void MeasureExpanding()
{
    const std::string path = ManyDirectories(kSubdirectories);
    Compare("expand 10,000 subdirectories", {.ratio = 2}, Expanding(path), "the same reads",
            {[&](int) { BareExpand(path); }});
}

void MeasureGrowth()
{
    const auto listed = [](Side (*step)()) {
        return [step](int count) {
            Enter(ManyFiles(count));
            return step();
        };
    };
    PrintGrowth("bare readdir + fstatat", kUpToAMillion,
                [](int count) { return Side{[path = ManyFiles(count)](int) { BareRead(path); }}; });
    PrintGrowth("open and paint", kUpToAMillion,
                [](int count) { return Side{[path = ManyFiles(count)](int) { OpenAndPaint(path); }}; });
    PrintGrowth("select all", kUpToAMillion, listed(SelectingAll));
    PrintGrowth("invert", kUpToAMillion, listed(Inverting));
    PrintGrowth("select by pattern", kUpToAMillion, listed(SelectingScattered));
    PrintGrowth("sort by name", kUpToAMillion, listed([] { return Sorting(COLUMN_NAME); }));
    PrintGrowth("std::stable_sort of names", kUpToAMillion, listed([] { return SortingPlainly(COLUMN_NAME); }));
    PrintGrowth("sort by i Node number", kUpToAMillion, listed([] { return Sorting(COLUMN_INODE); }));
    PrintGrowth("std::stable_sort of numbers", kUpToAMillion, listed([] { return SortingPlainly(COLUMN_INODE); }));
    PrintGrowth("sort by permission", kUpToAMillion, listed([] { return Sorting(COLUMN_PERMISSION); }));
    PrintGrowth("sort by modification time", kUpToAMillion, listed([] { return Sorting(COLUMN_MODIFICATION_TIME); }));
    PrintGrowth("expand", {1'000, 10'000, kEntries}, [](int count) { return Expanding(ManyDirectories(count)); });
}

}  // namespace

int main(int argc, char** argv)
{
    const BenchDirectory scratch;
    top = scratch.Path();
    gtk_init(&argc, &argv);
    ReadWanted(argc, argv);
    StartFennick(top);
    if (wanted.growth) {
        MeasureGrowth();
    } else {
        MeasureOpening();
        MeasureRows();
        MeasureExpanding();
    }
    return 0;
}
