#include <fcntl.h>
#include <glib-unix.h>
#include <gtk/gtk.h>
#include <signal.h>
#include <unistd.h>

#include <cerrno>
#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <initializer_list>
#include <string>

#include "app/fnkmainwindow.h"
#include "app/fnktable-life.h"
#include "app/fnktable-start.h"
#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkutil-launch.h"
#include "core/fnkversion.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-picture.h"
#include "kit/fnkutil-widget.h"

#include <gdk/gdkx.h>  // Last, because Xlib defines macros of common names.

namespace {

/// Opens the standard file descriptors that the parent process has closed. Otherwise the next file or
/// connection would get one of their numbers, and warnings would be written to it.
void OpenStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            open("/dev/null", O_RDWR);  // Gets the lowest free number: this one.
        }
    }
}

int signal_pipe[2] = {-1, -1};

/// Only wakes the main loop, which does the rest.
void SignalHandler(int)
{
    const int saved = errno;
    const char note = 0;
    [[maybe_unused]] const ssize_t written = write(signal_pipe[1], &note, 1);
    errno = saved;
}

/// Runs in the innermost main loop. Exits at once, because the dialog that runs that loop must not go on
/// without the records.
gboolean on_Signal(int, GIOCondition, gpointer)
{
    TerminateGlobalTable();
    LeaveProgram();
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
    for (const int signum : {SIGINT, SIGQUIT, SIGTERM, SIGHUP}) {
        struct sigaction before = {};
        sigaction(signum, nullptr, &before);
        if (signum != SIGHUP || before.sa_handler != SIG_IGN) {  // nohup wants to outlive its terminal.
            sigaction(signum, &action, nullptr);
        }
    }
}

/// Xlib calls this once the connection to the X server is lost, from within any of its calls.
int on_DisplayLost(Display*)
{
    LeaveLostDisplay();
}

void InstallDisplayHandler()
{
    if (GDK_IS_X11_DISPLAY(gdk_display_get_default())) {
        XSetIOErrorHandler(on_DisplayLost);
    }
}

/// Sets the icon of all windows, in the sizes of title bars, window lists and panels. Icons that are
/// resources also work before the program is installed.
void SetWindowIcons()
{
    GList* icons = nullptr;
    for (const int size : {16, 24, 32, 48, 64, 128}) {
        const std::string path = "/fennick/icons/" + std::to_string(size) + ".png";
        if (GdkPixbuf* const icon = ReadResource(path, "png")) {
            icons = g_list_append(icons, icon);
        }
    }
    gtk_window_set_default_icon_list(icons);
    g_list_free_full(icons, g_object_unref);
}

/// Falls back to C.UTF-8 if the user's locale is not installed, since names are shown as UTF-8.
void InitLocale()
{
    if (std::setlocale(LC_ALL, "") == nullptr) {
        std::setlocale(LC_ALL, "C.UTF-8");
    }
    gtk_disable_setlocale();
    bindtextdomain("fennick", FindCatalogues(GetProgramDirectory()).c_str());
    bind_textdomain_codeset("fennick", "UTF-8");
    textdomain("fennick");
}

/// Opens the display; if there is none, prints an error and returns false.
bool InitToolkit(int* argc, char*** argv)
{
    gdk_set_allowed_backends("x11,*");
    if (gtk_init_check(argc, argv)) {
        SetWindowIcons();
        return true;
    }
    const char* const option = gdk_get_display_arg_name();
    const char* const display = option != nullptr ? option : std::getenv("DISPLAY");
    if (display == nullptr || *display == '\0') {
        std::fprintf(stderr, "%s\n", _("fennick: there is no display to open a window on, DISPLAY is not set"));
    } else {
        std::fprintf(stderr, _("fennick: cannot open the display %s\n"), display);
    }
    return false;
}

}  // namespace

int main(int argc, char** argv)
{
    OpenStandardDescriptors();
    const CommandLine command_line = ParseCommandLine(argc, argv);
    if (command_line.is_version_requested) {
        g_print("Fennick  Version %s %s\n%s\n", kVersion, kVersionDate, kRights);
        return 0;
    }
    RaiseOpenFileLimit();
    signal(SIGXFSZ, SIG_IGN);  // Writing a file that is too large then fails instead of ending the program.
    InitLocale();
    if (!InitToolkit(&argc, &argv)) {
        return 1;
    }
    if (InitGlobalTable() != 0) {
        TerminateGlobalTable();
        return 0;
    }
    pGTable->ArgV = argv;
    SetStartDirectories(command_line);
    SeedHistories();
    InstallSignalHandler();
    InstallDisplayHandler();
    CreateMainWindow();
    WatchMainWindow();
    ShowMainWindow();
    gtk_main();
    LeaveProgram();
}
