#include "commands/fnkeditmenu-link.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>
#include <string>
#include <vector>

#include "commands/fnkfilemenu-new.h"
#include "commands/fnkfilemenu-targets.h"
#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "engine/fnkfiles-report.h"
#include "engine/fnkfiles-sync.h"
#include "engine/fnkmessage.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkselfile.h"

#include "IconLink.xpm"

namespace {

constexpr int kSpacing = 5;
constexpr int kEntrySpacing = 10;
constexpr int kEntryWidth = 310;

/// Lives as long as the dialog.
struct LinkDlgInfo {
    GtkWidget* ExistingEntry = nullptr;
    GtkWidget* LinkEntry = nullptr;
    std::string Created;  ///< Path of the link once it exists.
};

GtkWidget* AddExistingEntry(GtkWidget* vbox)
{
    CreateLabel(vbox, _("Existing file name:"));
    GtkWidget* const hbox = CreateHBox(vbox, false, kEntrySpacing, 0);
    GtkWidget* const entry = gtk_entry_new();
    gtk_entry_set_max_length(GTK_ENTRY(entry), static_cast<int>(kMaxPathBytes));
    gtk_widget_set_size_request(entry, kEntryWidth, -1);
    SetAccessibleName(entry, _("Existing file name:"));
    gtk_box_pack_start(GTK_BOX(hbox), entry, TRUE, TRUE, 0);
    gtk_widget_show(entry);
    CreateBrowseButton(hbox, entry, BROWSE_FILE);
    return entry;
}

GtkWidget* AddLinkEntry(GtkWidget* vbox)
{
    CreateLabel(vbox, _("Symbolic link file name:"));
    GtkWidget* const hbox = CreateHBox(vbox, false, kEntrySpacing, 0);
    return ComboEntry(CreatePathCombo(hbox, _("Symbolic link file name:")));
}

/// Fills in the selected path, if any, and moves the focus to the first empty entry.
void OfferTarget(const LinkDlgInfo& info, const std::string& selected)
{
    if (!selected.empty()) {
        SetEntryBytes(info.ExistingEntry, selected);
    }
    gtk_widget_grab_focus(selected.empty() ? info.ExistingEntry : info.LinkEntry);
}

/// Checks the typed path of an existing file. A path that exists stays as typed, so that the link may
/// be relative; a directory just gets a final "/". Otherwise the path becomes canonical.
PathStatus CheckTarget(std::string* target)
{
    struct stat st = {};
    const std::string place = target->starts_with('/') ? *target : pGTable->CurrentDir + *target;
    if (target->empty() || target->size() > kMaxPathBytes || lstat(place.c_str(), &st) != 0) {
        return CheckFileExist(target);
    }
    if (!S_ISDIR(st.st_mode)) {
        return PATH_FILE;
    }
    *target = WithSlash(*target);
    return target->size() > kMaxPathBytes ? PATH_TOO_LONG : PATH_DIRECTORY;
}

/// Checks the typed name of the link and makes it canonical. A dangling link of that name counts as
/// an existing file, although CheckFileExist sees only that its target does not exist.
PathStatus CheckLinkName(std::string* name)
{
    struct stat st = {};
    std::string place = name->starts_with('/') ? *name : pGTable->CurrentDir + *name;
    const PathStatus status = CheckFileExist(name);
    place.erase(place.find_last_not_of('/') + 1);
    const bool may_be_link = status == PATH_NEW || status == PATH_INVALID;
    return may_be_link && lstat(place.c_str(), &st) == 0 ? PATH_FILE : status;
}

/// What came of making a link.
struct LinkResult {
    PathStatus target_status = PATH_NULL;
    PathStatus name_status = PATH_NULL;
    std::string name;
    int error = 0;
};

/// Checks both typed paths and makes the link if they are all right.
LinkResult MakeLink(std::string target, std::string name)
{
    LinkResult result;
    result.target_status = CheckTarget(&target);
    if (result.target_status != PATH_DIRECTORY && result.target_status != PATH_FILE) {
        return result;
    }
    result.name_status = CheckLinkName(&name);
    result.name = name;
    if (result.name_status == PATH_NEW) {
        ExpectChangeOf(name);
        result.error = CheckMayChange();
        if (result.error == 0 && symlink(target.c_str(), name.c_str()) != 0) {
            result.error = errno;
        }
        NoteChange();
    }
    return result;
}

}  // namespace

void CreateSymbolicLinkDlg()
{
    std::vector<std::string> paths;
    GetFileOperationString(paths, nullptr);
    if (!CheckFileOperationPaths(paths)) {
        return;
    }
    GtkWidget* vbox = nullptr;
    GtkWidget* const dialog = CreateIconDialogBox(&vbox, PICTURE(IconLink), 0, 0, kSpacing);
    gtk_window_set_title(GTK_WINDOW(dialog), _("Symbolic link"));
    LinkDlgInfo info;
    info.ExistingEntry = AddExistingEntry(vbox);
    info.LinkEntry = AddLinkEntry(vbox);

    GtkWidget* ok = nullptr;
    GtkWidget* cancel = nullptr;
    CreateDlgButtonBox(dialog, &ok, &cancel, CLOSING_WIRED);
    g_signal_connect(info.ExistingEntry, "activate", G_CALLBACK(on_ComboEntry_activate), ok);
    g_signal_connect(info.LinkEntry, "activate", G_CALLBACK(on_ComboEntry_activate), ok);
    g_signal_connect(ok, "clicked", G_CALLBACK(on_Link_OKButton_clicked), &info);
    OfferTarget(info, paths.empty() ? std::string() : paths.front());
    ModalMainLoop(dialog, pMainW->MainWindow);
    if (!info.Created.empty()) {
        ShowNewFile(info.Created);
    }
}

void on_Link_OKButton_clicked(GtkWidget*, gpointer data)
{
    auto* const info = static_cast<LinkDlgInfo*>(data);
    const auto checked = WaitFor(GetEntryBytes(info->LinkEntry),
                                 [target = GetEntryBytes(info->ExistingEntry), name = GetEntryBytes(info->LinkEntry)] {
                                     return MakeLink(target, name);
                                 });
    if (!checked) {
        return;
    }
    if (checked->target_status != PATH_DIRECTORY && checked->target_status != PATH_FILE) {
        FileExistMessageBox(checked->target_status, info->ExistingEntry);
    } else if (checked->name_status != PATH_NEW) {
        FileExistMessageBox(checked->name_status, info->LinkEntry);
    } else if (checked->error != 0) {
        MessageBox(_("Error"),
                   FormatText(_("Symbolic link has not been created.\ncause:%s"), g_strerror(checked->error)),
                   STYLE_ERROR);
    } else {
        info->Created = checked->name;
        gtk_main_quit();
    }
}

void on_Menu_SymbolicLink_activate(GtkWidget*, gpointer)
{
    CreateSymbolicLinkDlg();
}
