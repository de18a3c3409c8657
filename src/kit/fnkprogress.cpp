#include "kit/fnkprogress.h"

#include <gtk/gtk.h>

#include <algorithm>
#include <utility>

#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "engine/fnkfiles-sync.h"
#include "engine/fnkprogress-count.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-widget.h"

namespace {

constexpr int kDialogWidth = 350;
constexpr int kDialogHeight = 110;
constexpr int kSpacing = 5;
/// Microseconds. About 30 frames a second; painting more often would slow the work down.
constexpr gint64 kPaintEvery = 33'000;

/// Grabs all input while a command runs, in case there is no dialog. Null when no command runs.
GtkWidget* input_guard = nullptr;
gint64 last_painted = 0;

const char* KindLabel(OperationKind kind)
{
    switch (kind) {
    case OPERATION_MOVE:
        return _("File moving...");
    case OPERATION_DELETE:
        return _("File deleting...");
    default:
        return _("File copying...");
    }
}

void on_ProgressCancelButton_clicked(GtkWidget*, gpointer)
{
    if (pGTable != nullptr) {
        pGTable->ProgressCancel = 1;
    }
}

void ReleaseInput()
{
    if (input_guard != nullptr) {
        gtk_grab_remove(input_guard);
        gtk_widget_destroy(input_guard);
        input_guard = nullptr;
    }
}

/// Shows 0 while the steps are still being counted.
void ShowFraction()
{
    const double done = pGTable->ProgressDone;
    const double fraction = done == 0 ? 0.0 : std::min(1.0, done / std::max(1, pGTable->ProgressTotal));
    gtk_progress_bar_set_fraction(GTK_PROGRESS_BAR(pGTable->ProgressBar), fraction);
}

/// Handles pending events only; waiting for an event could block for ever.
void ProcessPending()
{
    while (gtk_events_pending()) {
        gtk_main_iteration_do(FALSE);
    }
    last_painted = g_get_monotonic_time();
}

GtkWidget* CreateProgressDlg(OperationKind kind)
{
    GtkWidget* vbox = nullptr;
    GtkWidget* const dialog = CreateNormalDialogBox(&vbox, kDialogWidth, kDialogHeight, kSpacing);
    gtk_window_set_title(GTK_WINDOW(dialog), _("File operation"));
    gtk_window_set_transient_for(GTK_WINDOW(dialog), GTK_WINDOW(pMainW->MainWindow));
    CreateLabel(vbox, KindLabel(kind));
    pGTable->ProgressBar = gtk_progress_bar_new();
    gtk_progress_bar_set_show_text(GTK_PROGRESS_BAR(pGTable->ProgressBar), TRUE);
    gtk_box_pack_start(GTK_BOX(vbox), pGTable->ProgressBar, FALSE, FALSE, 0);
    gtk_widget_show(pGTable->ProgressBar);
    GtkWidget* cancel = nullptr;
    CreateDlgButtonBox(dialog, nullptr, &cancel, CLOSING_UNWIRED);
    g_signal_connect(dialog, "button-press-event", G_CALLBACK(on_Window_button_press_event), nullptr);
    g_signal_connect(dialog, "delete-event", G_CALLBACK(on_delete_event), cancel);
    g_signal_connect(cancel, "clicked", G_CALLBACK(on_ProgressCancelButton_clicked), nullptr);
    gtk_widget_show(dialog);
    gtk_grab_add(dialog);
    return dialog;
}

}  // namespace

void SetupQuietRun()
{
    if (input_guard == nullptr) {
        input_guard = gtk_invisible_new();
        gtk_widget_show(input_guard);
        gtk_grab_add(input_guard);
    }
}

void SetupProgress(const std::vector<std::string>& items, OperationKind kind)
{
    if (items.empty()) {
        return;
    }
    SetupQuietRun();
    if (!pGTable->ShowProgress) {
        return;
    }
    pGTable->ProgressDone = 0;
    pGTable->ProgressTotal = 0;
    pGTable->ProgressCancel = 0;
    pGTable->ProgressDlg = CreateProgressDlg(kind);
    ProcessPending();
    RaiseProgressDlg();
    for (const std::string& item : items) {
        pGTable->ProgressTotal += CountOperationFile(item);
    }
}

bool KeepPainting()
{
    if (g_get_monotonic_time() - last_painted < kPaintEvery) {
        return pGTable->ProgressDlg != nullptr && pGTable->ProgressCancel != 0;
    }
    if (pGTable->ProgressDlg != nullptr) {
        ShowFraction();
    }
    ProcessPending();
    return pGTable->ProgressDlg != nullptr && pGTable->ProgressCancel != 0;
}

int UpdateProgress()
{
    if (!pGTable->ShowProgress) {
        KeepPainting();
        return 0;
    }
    ++pGTable->ProgressDone;
    const bool cancelled = KeepPainting();
    if (pGTable->ProgressDlg == nullptr) {
        return 0;
    }
    if (!cancelled && pGTable->ProgressDone != pGTable->ProgressTotal) {
        return 0;
    }
    ShowFraction();
    ProcessPending();
    DestroyProgressDlg();
    // Cancel may have been pressed while events were processed.
    return pGTable->ProgressCancel != 0 ? static_cast<int>(RESULT_CANCEL) : 0;
}

void EndProgress()
{
    if (pGTable->ShowProgress && pGTable->ProgressDlg != nullptr) {
        pGTable->ProgressDone = std::max(0, pGTable->ProgressTotal - 1);
        UpdateProgress();
        DestroyProgressDlg();
    }
    FlushChanges();
    ReleaseInput();
}

void DestroyProgressDlg()
{
    if (GtkWidget* const dialog = std::exchange(pGTable->ProgressDlg, nullptr)) {
        pGTable->ProgressBar = nullptr;
        gtk_grab_remove(dialog);
        gtk_widget_destroy(dialog);
    }
}

void RaiseProgressDlg()
{
    if (pGTable->ProgressDlg != nullptr) {
        gdk_window_raise(gtk_widget_get_window(pGTable->ProgressDlg));
    }
}
