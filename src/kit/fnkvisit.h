#pragma once
// Reads directories in threads, so that showing them never waits for a disk.
//
// Whoever starts a visit waits a moment. On a fast disk the result is shown by then; otherwise the main
// loop shows it when it arrives, and until then the window shows what it did before.

#include <gtk/gtk.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <string>

struct Visit {
    std::string what;  ///< The path that the status bar names while the visit takes long.
    /// These run in a thread, with a copy of the settings, and end early once stopped is true. They must
    /// own what they use. What read_details reads may be shown later.
    std::function<void(const std::atomic<bool>& stopped)> read;
    std::function<void(const std::atomic<bool>& stopped)> read_details;
    /// These run in the window's thread, and touch no disk. If has_details is false, show_details follows.
    std::function<void(bool has_details)> show;
    std::function<void()> show_details;
    /// Puts back what has changed on the screen to start the visit. May be null.
    std::function<void()> give_up;
};

/// Starts a visit in place of one that has not arrived yet. Nothing is shown once view is destroyed.
void StartVisit(GtkWidget* view, Visit visit);
/// Whether a visit has not arrived yet.
bool IsVisiting();
void GiveUpVisit();
/// How long StartVisit waits. Tests set it, so that what they see does not depend on the machine.
extern std::chrono::milliseconds VisitPatience;
