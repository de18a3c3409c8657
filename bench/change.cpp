// What changing files costs, progress dialog and all, beside the standard tools doing the same, in
// turns; and for how long the window does not paint meanwhile. Needs a display; FENNICK_BENCH_DIR
// names the folder for the scratch directory, which should be on a disk and have 12 GiB to spare.
//
//     script/with-display build/bench/bench-change [PART OF A NAME]

#include <glib.h>
#include <gtk/gtk.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "fnkfiles-copy.h"
#include "fnkfiles-delete.h"
#include "fnkmainwindow-record.h"
#include "fnkmainwindow.h"
#include "fnkprogress.h"
#include "fnktable-life.h"
#include "fnktable-start.h"
#include "fnktable.h"

namespace {

namespace fs = std::filesystem;

constexpr int kRuns = 5;
constexpr int kFiles = 10'000;
constexpr int kDirectories = 110;
constexpr std::size_t kLargeBytes = std::size_t{1} << 30;

std::string top;
/// Only what has this in its name is measured.
std::string wanted;

/// Milliseconds between two looks of the main loop.
class PauseMeter {
public:
    PauseMeter() : last_(g_get_monotonic_time()), source_(g_timeout_add(1, Look, this)) {}
    PauseMeter(const PauseMeter&) = delete;
    PauseMeter& operator=(const PauseMeter&) = delete;
    ~PauseMeter() { g_source_remove(source_); }
    double Longest()
    {
        Look(this);
        return longest_;
    }

private:
    static gboolean Look(gpointer data)
    {
        auto* const meter = static_cast<PauseMeter*>(data);
        const gint64 now = g_get_monotonic_time();
        meter->longest_ = std::max(meter->longest_, static_cast<double>(now - meter->last_) / 1e3);
        meter->last_ = now;
        return G_SOURCE_CONTINUE;
    }
    gint64 last_;
    double longest_ = 0;
    guint source_;
};

double Milliseconds(const std::function<void()>& work)
{
    const gint64 start = g_get_monotonic_time();
    work();
    return static_cast<double>(g_get_monotonic_time() - start) / 1e3;
}

void Tool(const std::string& command)
{
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "failed: %s\n", command.c_str());
        std::exit(1);
    }
}

double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Each is told which run it is.
void Compare(const char* name, const std::function<void(int)>& ours, const std::function<void(int)>& tool)
{
    if (std::string(name).find(wanted) == std::string::npos) {
        return;
    }
    std::vector<double> our_times;
    std::vector<double> tool_times;
    double longest_pause = 0;
    for (int run = 0; run < kRuns; ++run) {
        // In changing order, so that neither always finds what the other left.
        for (const bool is_ours : {run % 2 == 0, run % 2 != 0}) {
            sync();
            if (is_ours) {
                PauseMeter meter;
                our_times.push_back(Milliseconds([&] { ours(run); }));
                longest_pause = std::max(longest_pause, meter.Longest());
            } else {
                tool_times.push_back(Milliseconds([&] { tool(run); }));
            }
        }
    }
    const auto [our_least, our_most] = std::minmax_element(our_times.begin(), our_times.end());
    const auto [tool_least, tool_most] = std::minmax_element(tool_times.begin(), tool_times.end());
    std::printf("%-24s %7.0f ms (%.0f to %.0f)  tool %7.0f ms (%.0f to %.0f)  ratio %.2f  longest pause %.0f ms\n",
                name, Median(our_times), *our_least, *our_most, Median(tool_times), *tool_least, *tool_most,
                Median(our_times) / Median(tool_times), longest_pause);
    std::fflush(stdout);
}

/// As the commands do.
void RunCommand(OperationKind kind, const std::string& item, const std::function<void()>& work)
{
    SetupProgress({item}, kind);
    work();
    EndProgress();
}

void Copy(const std::string& source, const std::string& destination)
{
    RunCommand(OPERATION_COPY, source, [&] {
        int flag = 0;
        CopyFile(destination, source, &flag);
    });
}

void Delete(const std::string& item)
{
    RunCommand(OPERATION_DELETE, item, [&] {
        Result answer = RESULT_YES_ALL;
        RemoveFile(item, &answer);
    });
}

void MakeTree()
{
    for (int i = 0; i < kFiles; ++i) {
        const std::string directory =
            top + "/tree/d" + std::to_string(i % 10) + "/d" + std::to_string(i % kDirectories);
        fs::create_directories(directory);
        std::ofstream(directory + "/file" + std::to_string(i))
            << std::string(static_cast<std::size_t>(i) * 37 % 8193, 'x');
    }
    std::ofstream large(top + "/large", std::ios::binary);
    std::string block(1 << 20, '\0');
    for (std::size_t i = 0; i < kLargeBytes / block.size(); ++i) {
        std::generate(block.begin(), block.end(),
                      [seed = i]() mutable { return static_cast<char>(seed = seed * 69069 + 1); });
        large << block;
    }
    large.close();
    Tool("cat " + top + "/large > /dev/null");
}

void Measure()
{
    const auto at = [](const char* name, int run) { return top + "/" + name + std::to_string(run); };
    Compare(
        "copy 10,000 files", [&](int run) { Copy(top + "/tree/", at("ours", run)); },
        [&](int run) { Tool("cp -a " + top + "/tree " + at("tool", run) + " && sync"); });
    Compare(
        "count 10,000 files", [&](int) { CountOperationFile(top + "/tree/"); },
        [&](int) { Tool("find " + top + "/tree > /dev/null"); });
    for (int run = 0; run < kRuns; ++run) {
        for (const char* const name : {"doomed", "tool-doomed"}) {
            Tool("cp -a " + top + "/tree " + at(name, run));
        }
    }
    Compare(
        "delete 10,000 files", [&](int run) { Delete(at("doomed", run) + "/"); },
        [&](int run) { Tool("rm -rf " + at("tool-doomed", run) + " && sync"); });
    Compare(
        "copy 1 GiB", [&](int run) { Copy(top + "/large", at("our-large", run)); },
        [&](int run) { Tool("cp " + top + "/large " + at("tool-large", run) + " && sync"); });
}

void StartFennick()
{
    std::string root = top + "/";
    char program[] = "fennick";
    char option[] = "--home";
    char* arguments[] = {program, option, root.data(), nullptr};
    InitGlobalTable();
    TakeDirectories(ParseCommandLine(3, arguments));
    SeedHistories();
    gtk_widget_show(CreateMainWindow());
    while (gtk_events_pending()) {
        gtk_main_iteration();
    }
}

}  // namespace

int main(int argc, char** argv)
{
    const char* const parent = std::getenv("FENNICK_BENCH_DIR");
    std::string scratch = std::string(parent != nullptr ? parent : "/var/tmp") + "/fennick-bench.XXXXXX";
    if (mkdtemp(scratch.data()) == nullptr) {
        std::perror("fennick-bench");
        return 1;
    }
    top = scratch;
    setenv("HOME", top.c_str(), 1);
    gtk_init(&argc, &argv);
    wanted = argc > 1 ? argv[1] : "";
    MakeTree();
    StartFennick();
    Measure();
    fs::remove_all(top);
    return 0;
}
