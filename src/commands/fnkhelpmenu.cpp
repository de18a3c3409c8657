#include "commands/fnkhelpmenu.h"

#include <unistd.h>

#include "commands/fnkfilemenu-open.h"
#include "core/fnkstring.h"
#include "core/fnkutil-launch.h"
#include "core/fnkutil.h"
#include "core/fnkversion.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-widget.h"

#include "Abort.xpm"

namespace {

constexpr int kSpacing = 5;
constexpr const char* kInstalledManual = FENNICK_HELP_DIR "/fennick.htm";
/// Relative to the parent of the program's directory. The first is the place in an installation, even
/// one that was moved; the second, in the source tree of a build.
constexpr const char* kManualsBeside[] = {"share/fennick/Help/fennick.htm", "help/fennick.htm"};

void AddNotice(GtkWidget* vbox)
{
    const std::string text =
        FormatText(_("Version %s\n%s\n%s"), kVersion, kRights, _("Free software under the MIT licence"));
    GtkLabel* const label = GTK_LABEL(CreateLabel(vbox, text.c_str()));
    gtk_label_set_justify(label, GTK_JUSTIFY_RIGHT);
    gtk_label_set_xalign(label, 1.0F);
}

}  // namespace

void CreateAbortDlg()
{
    GtkWidget* vbox = nullptr;
    GtkWidget* const dialog = CreateNormalDialogBox(&vbox, 0, 0, kSpacing);
    gtk_window_set_title(GTK_WINDOW(dialog), _("Abort"));
    GtkWidget* const image = CreatePixmap(PICTURE(Abort));
    gtk_box_pack_start(GTK_BOX(vbox), image, FALSE, FALSE, 0);
    gtk_widget_show(image);
    AddNotice(vbox);
    GtkWidget* ok = nullptr;
    CreateDlgButtonBox(dialog, &ok, nullptr, CLOSING_WIRED);
    ModalMainLoop(dialog, pMainW->MainWindow);
}

std::string FindManual(const std::string& program_directory)
{
    for (const char* const beside : kManualsBeside) {
        const std::string path = GetParentDirectory(program_directory) + beside;
        if (access(path.c_str(), R_OK) == 0) {
            return path;
        }
    }
    return kInstalledManual;
}

void on_Menu_Manual_activate(GtkWidget*, gpointer)
{
    StartProgram(Browser().start, FindManual(GetProgramDirectory()));
}

void on_Menu_Abort_activate(GtkWidget*, gpointer)
{
    CreateAbortDlg();
}
