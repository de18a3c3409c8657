#pragma once
// What the benchmarks that need a window have in common: a scratch directory, the program in it,
// and ours beside a standard tool in turns.

#include <glib.h>
#include <gtk/gtk.h>
#include <unistd.h>

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "fnkmainwindow.h"
#include "fnktable-life.h"
#include "fnktable-start.h"

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

inline double Milliseconds(const std::function<void()>& work)
{
    const gint64 start = g_get_monotonic_time();
    work();
    return static_cast<double>(g_get_monotonic_time() - start) / 1e3;
}

inline void Tool(const std::string& command)
{
    if (std::system(command.c_str()) != 0) {
        std::fprintf(stderr, "failed: %s\n", command.c_str());
        std::exit(1);
    }
}

inline double Median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

/// Each is told which run it is. Prints nothing unless wanted is part of the name.
inline void Compare(const std::string& wanted, const char* name, const std::function<void(int)>& ours,
                    const std::function<void(int)>& tool)
{
    constexpr int kRuns = 5;
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

/// A directory below FENNICK_BENCH_DIR, removed with everything in it at the end; also the home of
/// the program while it is measured.
class BenchDirectory {
public:
    BenchDirectory()
    {
        const char* const parent = std::getenv("FENNICK_BENCH_DIR");
        path_ = std::string(parent != nullptr ? parent : "/var/tmp") + "/fennick-bench.XXXXXX";
        if (mkdtemp(path_.data()) == nullptr) {
            std::perror("fennick-bench");
            std::exit(1);
        }
        setenv("HOME", path_.c_str(), 1);
    }
    BenchDirectory(const BenchDirectory&) = delete;
    BenchDirectory& operator=(const BenchDirectory&) = delete;
    ~BenchDirectory() { std::filesystem::remove_all(path_); }

    /// Without a "/" at its end.
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

/// The window, rooted at a directory.
inline void StartFennick(const std::string& directory)
{
    std::string root = directory + "/";
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
