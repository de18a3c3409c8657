#pragma once
// What the benchmarks share: a scratch directory, a Fennick that runs in it, and procedures that measure
// Fennick in turns with a yardstick.

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

#include "app/fnkmainwindow.h"
#include "app/fnktable-life.h"
#include "app/fnktable-start.h"
#include "kit/fnkvisit.h"

/// Measures the longest time, in milliseconds, in which the main loop handled no event.
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

constexpr int kRuns = 5;

/// What is timed, and what is done, untimed, before each run. Both get the number of the run.
struct Side {
    std::function<void(int)> work;
    std::function<void(int)> prepare = [](int) {};
};

/// Upper limits; 0 for none.
struct Goal {
    double ratio = 0;
    double milliseconds = 0;
    /// Longest pause of the main loop in milliseconds.
    double pause = 0;
};

/// Median, minimum and maximum of the runs.
struct Times {
    double median;
    double least;
    double most;
    explicit Times(const std::vector<double>& runs)
        : median(Median(runs)),
          least(*std::min_element(runs.begin(), runs.end())),
          most(*std::max_element(runs.begin(), runs.end()))
    {
    }
    std::string Text() const
    {
        char text[64];
        std::snprintf(text, sizeof text, "%.*f ms (%.*f to %.*f)", Digits(), median, Digits(), least, Digits(), most);
        return text;
    }

private:
    int Digits() const { return median < 10 ? 2 : 0; }
};

inline std::string GoalText(const Goal& goal)
{
    std::string text;
    const auto append = [&text](double limit, const char* format) {
        char part[48];
        std::snprintf(part, sizeof part, format, limit);
        text += limit > 0 ? (text.empty() ? "" : ", ") + std::string(part) : "";
    };
    append(goal.ratio, "ratio %.1f");
    append(goal.milliseconds, "%.0f ms");
    append(goal.pause, "pause %.0f ms");
    return text;
}

/// What to measure: the table of comparisons or the table of growth, and only rows whose names contain
/// part.
struct Wanted {
    bool growth = false;
    std::string part;
    bool Has(const std::string& name) const { return name.find(part) != std::string::npos; }
};
inline Wanted wanted;

inline void ReadWanted(int argc, char** argv)
{
    for (int i = 1; i < argc; ++i) {
        const std::string argument = argv[i];
        if (argument == "--growth") {
            wanted.growth = true;
        } else {
            wanted.part = argument;
        }
    }
}

/// Measures both sides in turns and prints one row of a table: the work, ours, what it is compared
/// with, the ratio, the longest pause of the main loop, the goal and whether it is met.
inline void Compare(const char* name, const Goal& goal, const Side& ours, const char* against, const Side& other)
{
    if (!wanted.Has(name)) {
        return;
    }
    std::vector<double> our_times;
    std::vector<double> other_times;
    double pause = 0;
    for (int run = 0; run < kRuns; ++run) {
        // In alternating order, so that it is not always the same side that runs after the other.
        for (const bool is_ours : {run % 2 == 0, run % 2 != 0}) {
            const Side& side = is_ours ? ours : other;
            side.prepare(run);
            sync();
            PauseMeter meter;
            (is_ours ? our_times : other_times).push_back(Milliseconds([&] { side.work(run); }));
            pause = is_ours ? std::max(pause, meter.Longest()) : pause;
        }
    }
    const Times us(our_times);
    const Times them(other_times);
    const double ratio = us.median / them.median;
    const auto within = [](double value, double limit) { return limit <= 0 || value <= limit; };
    const bool met = within(ratio, goal.ratio) && within(us.median, goal.milliseconds) && within(pause, goal.pause);
    std::printf("| %s | %s | %s: %s | %.2f | %.0f ms | %s | %s |\n", name, us.Text().c_str(), against,
                them.Text().c_str(), ratio, pause, GoalText(goal).c_str(), met ? "met" : "**missed**");
    std::fflush(stdout);
}

const std::vector<int> kUpToAMillion = {1'000, 10'000, 100'000, 1'000'000};
/// From this count on one run is enough: it takes long, and noise matters less.
constexpr int kMeasuredOnce = 1'000'000;

/// Prints one row: the time that step takes for each count, and the growth factors from 10,000 on, where
/// fixed costs matter less. runs_of gives the number of runs for a count.
inline void PrintGrowth(
    const char* name, const std::vector<int>& counts, const std::function<Side(int)>& step,
    const std::function<int(int)>& runs_of = [](int) { return kRuns; })
{
    if (!wanted.Has(name)) {
        return;
    }
    std::vector<double> times;
    for (const int count : counts) {
        const Side side = step(count);
        std::vector<double> runs;
        for (int run = 0; run < runs_of(count); ++run) {
            side.prepare(run);
            runs.push_back(Milliseconds([&] { side.work(run); }));
        }
        times.push_back(Median(runs));
    }
    std::printf("| %s |", name);
    for (std::size_t i = 0; i < kUpToAMillion.size(); ++i) {
        i < times.size() ? std::printf(" %.2f ms |", times[i]) : std::printf(" |");
    }
    for (std::size_t i = 2; i < kUpToAMillion.size(); ++i) {
        i < times.size() ? std::printf(" %.1f |", times[i] / times[i - 1]) : std::printf(" |");
    }
    std::printf("\n");
    std::fflush(stdout);
}

/// A directory in FENNICK_BENCH_DIR, which is removed with its contents in the end. It also serves as
/// HOME.
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

    /// Without a final "/".
    const std::string& Path() const { return path_; }

private:
    std::string path_;
};

/// Handles all that is pending, the visit included.
inline void AwaitVisit()
{
    while (IsVisiting() || gtk_events_pending()) {
        gtk_main_iteration();
    }
}

/// Opens Fennick's window on a tree rooted at directory.
inline void StartFennick(const std::string& directory)
{
    std::string root = directory + "/";
    char program[] = "fennick";
    char option[] = "--home";
    char* arguments[] = {program, option, root.data(), nullptr};
    InitGlobalTable();
    SetStartDirectories(ParseCommandLine(3, arguments));
    SeedHistories();
    CreateMainWindow();
    ShowMainWindow();
    AwaitVisit();
}
