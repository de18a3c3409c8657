// What browsing a large directory costs, beside the bare system calls it cannot do without, in one
// run. Needs a display; FENNICK_BENCH_DIR names the folder for the scratch directories.

#include <benchmark/benchmark.h>
#include <dirent.h>
#include <fcntl.h>
#include <gtk/gtk.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "fnkdirtree.h"
#include "fnkeditmenu-select.h"
#include "fnkfilelist-sort.h"
#include "fnkfilelist.h"
#include "fnkmainwindow-record.h"
#include "fnktable.h"
#include "measure.h"

namespace {

namespace fs = std::filesystem;

constexpr int kEntries = 100'000;
constexpr int kSubdirectories = 10'000;

std::string top;

std::string ManyFiles()
{
    return top + "/files/";
}

std::string ManyDirectories()
{
    return top + "/dirs/";
}

/// Names that come in no order, as those of real files.
std::string NameOf(int i)
{
    char name[64];
    std::snprintf(name, sizeof name, "%08x-file-%d.dat", static_cast<unsigned>(i) * 2654435761U, i);
    return name;
}

void MakeDirectories()
{
    fs::create_directories(ManyFiles());
    for (int i = 0; i < kEntries; ++i) {
        const int fd = open((ManyFiles() + NameOf(i)).c_str(), O_WRONLY | O_CREAT | O_CLOEXEC, 0644);
        [[maybe_unused]] const int resized = ftruncate(fd, i * 37L % 5'000'000);
        close(fd);
    }
    for (int i = 0; i < kSubdirectories; ++i) {
        fs::create_directories(ManyDirectories() + NameOf(i) + "/below");
    }
}

void Settle()
{
    while (gtk_events_pending()) {
        gtk_main_iteration();
    }
}

void StartAmongManyFiles()
{
    StartFennick(top);
    OpenChildTree(MainTree(), ManyFiles(), EXPAND_LAST_NO);
    Settle();
}

void BareRead(const std::string& path)
{
    DIR* const directory = opendir(path.c_str());
    while (const struct dirent* const entry = readdir(directory)) {
        struct stat st = {};
        benchmark::DoNotOptimize(fstatat(dirfd(directory), entry->d_name, &st, AT_SYMLINK_NOFOLLOW));
    }
    closedir(directory);
}

void ListBare(benchmark::State& state)
{
    for (auto _ : state) {
        BareRead(ManyFiles());
    }
}

void ListDisplayFileList(benchmark::State& state)
{
    for (auto _ : state) {
        DisplayFileList(ManyFiles());
    }
    Settle();
}

void ListDisplayAndPaint(benchmark::State& state)
{
    for (auto _ : state) {
        DisplayFileList(ManyFiles());
        Settle();
    }
}

/// One click on the title of the column, the view following.
void SortByColumn(benchmark::State& state)
{
    pGTable->ColumnPosition[1] = static_cast<int>(state.range(0));
    const int column = state.range(0) == COLUMN_NAME ? 1 : 2;
    for (auto _ : state) {
        on_FileList_click_column(column);
    }
    pGTable->ColumnPosition[1] = COLUMN_SIZE;
    Settle();
}

void PressKey(guint keyval, guint modifiers)
{
    GdkEvent* const event = gdk_event_new(GDK_KEY_PRESS);
    event->key.window = GDK_WINDOW(g_object_ref(gtk_widget_get_window(pMainW->MainWindow)));
    event->key.keyval = keyval;
    event->key.state = modifiers;
    gdk_event_set_device(event, gdk_seat_get_keyboard(gdk_display_get_default_seat(gdk_display_get_default())));
    gtk_main_do_event(event);
    gdk_event_free(event);
}

void SelectAll(benchmark::State& state)
{
    for (auto _ : state) {
        SelectAllListRows();
        state.PauseTiming();
        UnselectAllListRows();
        state.ResumeTiming();
    }
}

/// Every other row or so: as many single rows as there can be.
constexpr const char* kScattered = "*[13579].dat";

void SelectScattered(benchmark::State& state)
{
    for (auto _ : state) {
        SelectMatchingRows(kScattered);
        state.PauseTiming();
        UnselectAllListRows();
        state.ResumeTiming();
    }
}

void InvertScattered(benchmark::State& state)
{
    SelectMatchingRows(kScattered);
    for (auto _ : state) {
        InvertListSelection();
    }
    UnselectAllListRows();
}

void KeyWithAllSelected(benchmark::State& state)
{
    for (auto _ : state) {
        state.PauseTiming();
        SelectAllListRows();
        Settle();
        state.ResumeTiming();
        PressKey(GDK_KEY_Up, 0);
    }
}

void ExpandBare(benchmark::State& state)
{
    for (auto _ : state) {
        DIR* const directory = opendir(ManyDirectories().c_str());
        while (const struct dirent* const entry = readdir(directory)) {
            if (entry->d_type != DT_DIR || entry->d_name[0] == '.') {
                continue;
            }
            const int fd = openat(dirfd(directory), entry->d_name, O_RDONLY | O_DIRECTORY | O_NOFOLLOW);
            DIR* const child = fdopendir(fd);
            while (const struct dirent* const inner = readdir(child)) {
                if (inner->d_type == DT_DIR && inner->d_name[0] != '.') {
                    break;
                }
            }
            closedir(child);
        }
        closedir(directory);
    }
}

void ExpandInTree(benchmark::State& state, bool paint)
{
    for (auto _ : state) {
        state.PauseTiming();
        RescanTree(MainTree(), pGTable->RootDir);
        Settle();
        GtkTreeIter node;
        std::string path = ManyDirectories();
        GetPathNode(MainTree(), path, &node);
        GtkTreePath* const tree_path = gtk_tree_model_get_path(gtk_tree_view_get_model(MainTree()), &node);
        state.ResumeTiming();
        gtk_tree_view_expand_row(MainTree(), tree_path, FALSE);
        if (paint) {
            Settle();
        }
        state.PauseTiming();
        gtk_tree_path_free(tree_path);
        state.ResumeTiming();
    }
}

}  // namespace

BENCHMARK(ListBare)->Unit(benchmark::kMillisecond);
BENCHMARK(ListDisplayFileList)->Unit(benchmark::kMillisecond);
BENCHMARK(ListDisplayAndPaint)->Unit(benchmark::kMillisecond);
BENCHMARK(SortByColumn)->DenseRange(COLUMN_NAME, COLUMN_INODE)->Unit(benchmark::kMillisecond);
BENCHMARK(SelectAll)->Unit(benchmark::kMillisecond);
BENCHMARK(SelectScattered)->Unit(benchmark::kMillisecond);
BENCHMARK(InvertScattered)->Unit(benchmark::kMillisecond);
BENCHMARK(KeyWithAllSelected)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK(ExpandBare)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ExpandInTree, read, false)->Unit(benchmark::kMillisecond)->Iterations(10);
BENCHMARK_CAPTURE(ExpandInTree, read_and_paint, true)->Unit(benchmark::kMillisecond)->Iterations(10);

int main(int argc, char** argv)
{
    const BenchDirectory scratch;
    top = scratch.Path();
    gtk_init(&argc, &argv);
    benchmark::Initialize(&argc, argv);
    MakeDirectories();
    StartAmongManyFiles();
    benchmark::RunSpecifiedBenchmarks();
    return 0;
}
