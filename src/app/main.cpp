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
#include "kit/fnkutil-picture.h"
#include "kit/fnkutil-widget.h"

namespace {

/// Whoever started this may have closed them. The next file or connection that is opened would be
/// taken for one of them, and be sent warnings.
void OpenStandardDescriptors()
{
    for (const int descriptor : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO}) {
        if (fcntl(descriptor, F_GETFD) < 0) {
            open("/dev/null", O_RDWR);  // Gets the lowest number that is free: this one.
        }
    }
}

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

/// One picture in the sizes of title bars, window lists and panels, for every window. They are in
/// the program, so that they are there before it is installed, too.
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

/// Names are UTF-8 wherever they are shown, so a locale that this machine has not got gives way to
/// one without a language.
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

/// Without a display this says so, and is false.
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
    signal(SIGXFSZ, SIG_IGN);  // A file that grows too large is to be reported, not to end the program.
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
    if (CreateMainWindow() == nullptr) {
        std::fprintf(stderr, _("fennick: cannot read the directory %s\n"), pGTable->RootDir.c_str());
        return 0;
    }
    ShowMainWindow();
    gtk_main();
    return 0;
}
