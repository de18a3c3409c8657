#include <fcntl.h>
#include <glib-unix.h>
#include <gtk/gtk.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>

#include "fnkdirtree.h"
#include "fnkmainwindow-record.h"
#include "fnkmainwindow.h"
#include "fnkstring.h"
#include "fnktable-life.h"
#include "fnktable-start.h"
#include "fnktable.h"
#include "fnkutil-launch.h"
#include "fnkutil-widget.h"
#include "fnkversion.h"

namespace {

int signal_pipe[2] = {-1, -1};

/// Only notes the signal; the main loop does the rest.
void SignalHandler(int)
{
    const int saved = errno;
    const char note = 0;
    [[maybe_unused]] const ssize_t written = write(signal_pipe[1], &note, 1);
    errno = saved;
}

/// Runs in whatever main loop is innermost. That loop's dialog must not go on with records that
/// are gone, so the process ends here.
gboolean on_Signal(int, GIOCondition, gpointer)
{
    TerminateGlobalTable();
    std::exit(0);
}

void InstallSignalHandler()
{
    if (pipe2(signal_pipe, O_CLOEXEC | O_NONBLOCK) != 0) {
        return;
    }
    g_unix_fd_add(signal_pipe[0], G_IO_IN, on_Signal, nullptr);
    struct sigaction action = {};
    action.sa_handler = SignalHandler;
    action.sa_flags = SA_RESTART;
    for (const int signum : {SIGINT, SIGQUIT, SIGTERM}) {
        sigaction(signum, &action, nullptr);
    }
}

void StartToolkit(int* argc, char*** argv)
{
    bindtextdomain("fennick", FENNICK_LOCALE_DIR);
    bind_textdomain_codeset("fennick", "UTF-8");
    textdomain("fennick");
    gdk_set_allowed_backends("x11,*");
    gtk_init(argc, argv);
}

}  // namespace

int main(int argc, char** argv)
{
    const CommandLine command_line = ParseCommandLine(argc, argv);
    if (command_line.version) {
        g_print("Fennick  Version %s %s\n%s\n", kVersion, kVersionDate, kRights);
        return 0;
    }
    RaiseOpenFileLimit();
    signal(SIGXFSZ, SIG_IGN);  // A file that grows too large is to be reported, not to end the program.
    StartToolkit(&argc, &argv);
    if (InitGlobalTable() != 0) {
        TerminateGlobalTable();
        return 0;
    }
    pGTable->ArgV = argv;
    TakeDirectories(command_line);
    SeedHistories();
    InstallSignalHandler();
    GtkWidget* const window = CreateMainWindow();
    if (window == nullptr) {
        std::fprintf(stderr, "fennick: cannot read the directory %s\n", pGTable->RootDir.c_str());
        return 0;
    }
    gtk_widget_show(window);
    ReleaseEntryFocus(window);
    OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_NO);
    gtk_main();
    return 0;
}
