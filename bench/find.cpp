// Measures finding files, from the press of OK to the painted result, in turns with find(1) doing the
// same. Also measures how long the main loop is blocked meanwhile. Needs a display. FENNICK_BENCH_DIR
// names the folder for the scratch directory, which gets 1.1 million files.
//
//     script/with-display build/bench/bench-find [--growth] [PART OF A NAME]

#include <fcntl.h>
#include <sys/stat.h>

#include "commands/fnkeditmenu-find-result.h"
#include "kit/fnkmainwindow-record.h"
#include "measure.h"

namespace {

constexpr int kDirectories = 100;  ///< Maximum in each top directory.
constexpr int kFiles = 99;         ///< In each of those directories.

std::string top;

/// In each directory one file begins with "one-", and one in five with "many-".
std::string FileName(int number)
{
    const char* const kind = number == 0 ? "one-" : number % 5 == 0 || number == 1 ? "many-" : "file-";
    return kind + std::to_string(number) + ".txt";
}

/// A tree of count entries, created on first use.
std::string Tree(int count)
{
    const std::string tree = top + "/" + std::to_string(count) + "/";
    const int directories = std::filesystem::create_directory(tree) ? count / (kFiles + 1) : 0;
    for (int i = 0; i < directories; ++i) {
        const std::string directory =
            tree + "d" + std::to_string(i / kDirectories) + "/e" + std::to_string(i % kDirectories) + "/";
        std::filesystem::create_directories(directory);
        for (int file = 0; file < kFiles; ++file) {
            mknod((directory + FileName(file)).c_str(), S_IFREG | 0644, 0);
        }
    }
    return tree;
}

/// Sets *data if the widget, or one in it, says that the search is over.
void LookForEnd(GtkWidget* widget, gpointer data)
{
    if (GTK_IS_LABEL(widget) && g_str_equal(gtk_label_get_text(GTK_LABEL(widget)), "Match file list")) {
        *static_cast<bool*>(data) = true;
    } else if (GTK_IS_CONTAINER(widget)) {
        gtk_container_forall(GTK_CONTAINER(widget), LookForEnd, data);
    }
}

/// Presses OK once the whole result is on the screen: before, it would stop the search. Runs with lower
/// priority than painting does.
gboolean LeaveResult(gpointer)
{
    GtkWidget* const dialog = gtk_grab_get_current();
    bool is_over = false;
    if (dialog != nullptr) {
        LookForEnd(dialog, &is_over);
    }
    if (is_over) {
        gtk_button_clicked(GTK_BUTTON(gtk_window_get_default_widget(GTK_WINDOW(dialog))));
    }
    return G_SOURCE_CONTINUE;
}

void Find(const std::string& tree, const char* pattern)
{
    const guint watch = g_timeout_add_full(G_PRIORITY_LOW, 1, LeaveResult, nullptr, nullptr);
    CreateFindResultDlg(pMainW->MainWindow, {tree, pattern, true});
    g_source_remove(watch);
}

void FindByTool(const std::string& tree, const char* pattern)
{
    Tool("find " + tree + " -name '" + pattern + "' > /dev/null");
}

void MeasureFinding(const char* name, const char* pattern)
{
    if (wanted.Has(name)) {
        const std::string tree = Tree(500'000);
        Compare(name, {.ratio = 1.5, .pause = 100}, {[&](int) { Find(tree, pattern); }}, "find",
                {[&](int) { FindByTool(tree, pattern); }});
    }
}

void MeasureGrowth()
{
    const auto growing = [](void (*find)(const std::string&, const char*)) {
        return [find](int count) { return Side{[find, tree = Tree(count)](int) { find(tree, "many-*"); }}; };
    };
    PrintGrowth("find a fifth of the files", kUpToAMillion, growing(Find));
    PrintGrowth("find(1), the same", kUpToAMillion, growing(FindByTool));
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
        MeasureFinding("find 5,000 of 500,000 files", "one-*");
        MeasureFinding("find 100,000 of 500,000 files", "many-*");
        MeasureFinding("find none of 500,000 files", "no such*");
    }
    return 0;
}
