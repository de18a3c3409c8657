#pragma once
// Visits of the panes: reading what a tree and the list are to show, and showing it.

#include <gtk/gtk.h>

#include <functional>
#include <string>

#include "model/fnkdirtree-visit.h"

/// Reads what plan asks for, then calls show in the window's thread: at once if the disk is fast, or else
/// from the main loop, unless another visit comes first. If the user gives up, calls give_up, which may be
/// null, in its place. See StartVisit.
void StartTreeVisit(GtkTreeView* tree, VisitPlan plan, std::function<void()> show, std::function<void()> give_up);

/// Called when what took longer to learn of the entries of a directory arrives after the directory is
/// shown. The main window sets it once at start.
extern void (*OnRowDetails)(const std::string& directory, const RowDetails& details);

/// While show runs, what was read; null at other times.
VisitReading* ArrivedReading();
