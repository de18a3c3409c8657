// What finding files costs, from the press of OK to the painted result, beside find(1) looking for
// the same, in turns; and for how long the window does not paint meanwhile. Needs a display;
// FENNICK_BENCH_DIR names the folder for the scratch directory, which takes half a million files.
//
//     script/with-display build/bench/bench-find [PART OF A NAME]

#include <fcntl.h>
#include <sys/stat.h>

#include "fnkeditmenu-find-result.h"
#include "fnkmainwindow-record.h"
#include "measure.h"

namespace {

constexpr int kTopDirectories = 50;
constexpr int kDirectories = 100;  ///< In each of them.
constexpr int kFiles = 99;         ///< In each of those.

/// One file in a hundred is a "one-", one in five a "many-".
std::string FileName(int number)
{
    const char* const kind = number == 0 ? "one-" : number % 5 == 0 || number == 1 ? "many-" : "file-";
    return kind + std::to_string(number) + ".txt";
}

void MakeTree(const std::string& top)
{
    for (int i = 0; i < kTopDirectories * kDirectories; ++i) {
        const std::string directory =
            top + "/d" + std::to_string(i % kTopDirectories) + "/e" + std::to_string(i / kTopDirectories) + "/";
        std::filesystem::create_directories(directory);
        for (int file = 0; file < kFiles; ++file) {
            mknod((directory + FileName(file)).c_str(), S_IFREG | 0644, 0);
        }
    }
}

/// Presses OK as soon as the result is on the screen: with less priority than painting it.
gboolean LeaveResult(gpointer)
{
    GtkWidget* const dialog = gtk_grab_get_current();
    GtkWidget* const button = dialog != nullptr ? gtk_window_get_default_widget(GTK_WINDOW(dialog)) : nullptr;
    if (button != nullptr && gtk_widget_is_sensitive(button)) {
        gtk_button_clicked(GTK_BUTTON(button));
    }
    return G_SOURCE_CONTINUE;
}

void Find(const std::string& top, const char* pattern)
{
    const guint watch = g_timeout_add_full(G_PRIORITY_LOW, 1, LeaveResult, nullptr, nullptr);
    CreateFindResultDlg(pMainW->MainWindow, {top + "/", pattern, true});
    g_source_remove(watch);
}

}  // namespace

int main(int argc, char** argv)
{
    const BenchDirectory scratch;
    const std::string top = scratch.Path();
    gtk_init(&argc, &argv);
    MakeTree(top);
    StartFennick(top);
    const auto measure = [&](const char* name, const char* pattern) {
        Compare(argc > 1 ? argv[1] : "", name, {.ratio = 1.5, .pause = 100}, {[&](int) { Find(top, pattern); }}, "find",
                {[&](int) { Tool("find " + top + " -name '" + pattern + "' > /dev/null"); }});
    };
    measure("find 5,000 of 500,000 files", "one-*");
    measure("find 100,000 of 500,000 files", "many-*");
    measure("find none of 500,000 files", "no such*");
    return 0;
}
