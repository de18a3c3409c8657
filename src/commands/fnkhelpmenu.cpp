#include "commands/fnkhelpmenu.h"

#include <unistd.h>

#include <optional>

#include "commands/fnkfilemenu-open.h"
#include "core/fnkstring.h"
#include "core/fnkutil-launch.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "core/fnkversion.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-widget.h"

#include "Abort.xpm"

namespace {

constexpr int kSpacing = 5;
constexpr const char* kManual = "fennick.htm";
constexpr const char* kInstalledManuals = FENNICK_HELP_DIR "/";
/// Relative to the parent of the program's directory. The first is the place in an installation, even
/// one that was moved; the second, in the source tree of a build.
constexpr const char* kManualsBeside[] = {"share/fennick/Help/", "help/"};

/// The manual of a directory in the language of the user. English ones are in the directory itself, others
/// in one named after their language. Empty if there is none.
std::string FindTranslation(const std::string& directory)
{
    for (const char* const* language = g_get_language_names(); *language != nullptr; ++language) {
        const std::string name = *language;
        const bool is_english = name == "C" || name == "en" || name.starts_with("en_");
        const std::string path = is_english ? directory + kManual : directory + name + "/" + kManual;
        if (access(path.c_str(), R_OK) == 0) {
            return path;
        }
    }
    return {};
}

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
        const std::string path = FindTranslation(GetParentDirectory(program_directory) + beside);
        if (!path.empty()) {
            return path;
        }
    }
    const std::string installed = FindTranslation(kInstalledManuals);
    return installed.empty() ? std::string(kInstalledManuals) + kManual : installed;
}

void on_Menu_Manual_activate(GtkWidget*, gpointer)
{
    const std::optional<std::string> manual =
        WaitFor(kInstalledManuals, [] { return FindManual(GetProgramDirectory()); });
    if (manual) {
        StartProgram(Browser().start, *manual);
    }
}

void on_Menu_Abort_activate(GtkWidget*, gpointer)
{
    CreateAbortDlg();
}
