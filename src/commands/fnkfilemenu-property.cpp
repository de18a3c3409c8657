#include "commands/fnkfilemenu-property.h"

#include <unistd.h>

#include <memory>

#include "commands/fnkfilemenu-property-pages.h"
#include "commands/fnkfilemenu-targets.h"
#include "core/fnkfiles-place.h"
#include "core/fnkraii.h"
#include "core/fnkstring.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "engine/fnkfilemenu-property-change.h"
#include "engine/fnkfiles-copy.h"
#include "engine/fnkfiles-report.h"
#include "engine/fnkfiles-sync.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"

#include "FileCore.xpm"
#include "FileDir.xpm"
#include "FileExec.xpm"
#include "FileFIFO.xpm"
#include "FileLink.xpm"
#include "FileLinkLost.xpm"
#include "FileNormal.xpm"
#include "FileSocket.xpm"
#include "FileSpecial.xpm"

namespace {

constexpr std::size_t kMaxNameBytes = 512;

struct TypeAppearance {
    const char* text;
    Picture icon;
};

/// Indexed by FileType.
constexpr std::array<TypeAppearance, 9> kTypes = {{
    {N_("Directory"), PICTURE(FileDir)},
    {N_("Execute file"), PICTURE(FileExec)},
    {N_("Normal file"), PICTURE(FileNormal)},
    {N_("Core file"), PICTURE(FileCore)},
    {N_("Symbolic link file"), PICTURE(FileLink)},
    {N_("Stalled link file"), PICTURE(FileLinkLost)},
    {N_("Socket file"), PICTURE(FileSocket)},
    {N_("Special device"), PICTURE(FileSpecial)},
    {N_("FIFO file"), PICTURE(FileFIFO)},
}};

GtkWidget* GroupEntry(const PropertyDlgData* data)
{
    return ComboEntry(data->GroupCombo);
}

}  // namespace

mode_t PermissionBit(std::size_t row, std::size_t column)
{
    constexpr mode_t kBits[kPermissionRows][kPermissionColumns] = {
        {S_IRUSR, S_IWUSR, S_IXUSR, S_ISUID},
        {S_IRGRP, S_IWGRP, S_IXGRP, S_ISGID},
        {S_IROTH, S_IWOTH, S_IXOTH, S_ISVTX},
    };
    return kBits[row][column];
}

void SensitivePropertyButton()
{
    const bool one_target = CountFileOperationTargets() == 1;
    gtk_widget_set_sensitive(pMainW->MenuItem[MENU_PROPERTY], one_target);
    gtk_widget_set_sensitive(pMainW->ToolButton[TOOL_PROPERTY], one_target);
}

int CreatePropertyDlg()
{
    PropertyDlgData data;
    GtkWidget* notebook = nullptr;
    GtkWidget* ok = nullptr;
    GtkWidget* cancel = nullptr;
    data.Dialog = CreateNotebookDialogBox(&notebook, 0, 0);
    CreatePropertyPages(notebook, &data);
    CreateDlgButtonBox(data.Dialog, &ok, &cancel, CLOSING_WIRED);
    if (SetFileProperty(&data) != 0) {
        gtk_widget_destroy(data.Dialog);
        return kArgumentError;
    }
    for (const auto& row : data.PermToggle) {
        for (GtkWidget* const toggle : row) {
            g_signal_connect(toggle, "toggled", G_CALLBACK(on_PerToggle_toggled), &data);
        }
    }
    g_signal_connect(data.NameEntry, "activate", G_CALLBACK(on_ComboEntry_activate), ok);
    g_signal_connect(data.OwnerEntry, "activate", G_CALLBACK(on_ComboEntry_activate), ok);
    g_signal_connect(ok, "clicked", G_CALLBACK(on_Property_OKButton_clicked), &data);
    ModalMainLoop(data.Dialog, pMainW->MainWindow);
    if (data.ShowRenamed) {
        data.ShowRenamed();
    } else if (data.IsApplied) {
        OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_NO, {.after = data.Select});
    }
    return 0;
}

namespace {

/// What the disk and the system's tables say of the entry.
struct PropertyReading {
    struct stat st = {};
    FileType type = FT_NORMAL;
    std::string link_target;  ///< As stored in the link.
    std::string owner;
    std::string group;
    History groups;
};

/// Runs in a thread. Nothing if the entry does not exist.
std::shared_ptr<PropertyReading> ReadProperty(const std::string& path)
{
    const auto reading = std::make_shared<PropertyReading>();
    if (lstat(path.c_str(), &reading->st) != 0) {
        return nullptr;
    }
    reading->type = GetFileType(path, reading->st);
    if (S_ISLNK(reading->st.st_mode)) {
        const GlibPointer<char> target(g_file_read_link(path.c_str(), nullptr));
        reading->link_target = target != nullptr ? target.get() : "";
    }
    reading->owner = FindUserName(reading->st.st_uid);
    reading->group = FindGroupName(reading->st.st_gid);
    reading->groups = ListOfferedGroups(reading->st.st_gid);
    return reading;
}

/// The name of the type. For a link also its target.
std::string DescribeType(const PropertyReading& reading)
{
    const char* const text = gettext(kTypes[reading.type].text);
    return S_ISLNK(reading.st.st_mode)
               ? FormatText(_("%s (Exist file:%s)"), text, DisplayText(reading.link_target).c_str())
               : text;
}

void SetText(GtkWidget* label, const std::string& text)
{
    gtk_label_set_text(GTK_LABEL(label), text.c_str());
}

void ShowName(const PropertyDlgData* data)
{
    const std::string name = GetLastPath(data->Path);
    const std::string shown = DisplayText(name.empty() ? data->Path : name);  // "/" has no name.
    gtk_window_set_title(GTK_WINDOW(data->Dialog), FormatText(_("Property - %s"), shown.c_str()).c_str());
    SetEntryBytes(data->NameEntry, name);
    SetText(data->PathLabel, DisplayText(GetParentDirectory(data->Path)));
}

void ShowStatistics(const PropertyDlgData* data, const PropertyReading& reading)
{
    const struct stat& st = reading.st;
    ShowPicture(data->Icon, kTypes[reading.type].icon);
    SetText(data->TypeLabel, DescribeType(reading));
    SetText(data->SizeLabel, FormatText(_("%s (%lldByte)"), ConvertSize(static_cast<std::uint64_t>(st.st_size)).c_str(),
                                        static_cast<long long>(st.st_size)));
    SetText(data->ChangedLabel, GetFormatTime(st.st_ctime, true).value_or(""));
    SetText(data->ModifiedLabel, GetFormatTime(st.st_mtime, true).value_or(""));
    SetText(data->AccessedLabel, GetFormatTime(st.st_atime, true).value_or(""));
}

void ShowToggles(const PropertyDlgData* data, mode_t mode)
{
    for (std::size_t row = 0; row < kPermissionRows; ++row) {
        for (std::size_t column = 0; column < kPermissionColumns; ++column) {
            gtk_toggle_button_set_active(GTK_TOGGLE_BUTTON(data->PermToggle[row][column]),
                                         (mode & PermissionBit(row, column)) != 0);
        }
    }
}

}  // namespace

int SetFileProperty(PropertyDlgData* data)
{
    std::vector<std::string> paths;
    if (GetFileOperationString(paths, nullptr) == SELECTION_NONE || !CheckFileOperationPaths(paths)) {
        return kArgumentError;
    }
    data->Path = paths.front();
    const auto read = WaitFor(data->Path, [path = data->Path] { return ReadProperty(path); });
    if (!read || *read == nullptr) {
        return kArgumentError;
    }
    const PropertyReading& reading = **read;
    ShowName(data);
    ShowStatistics(data, reading);
    ShowToggles(data, reading.st.st_mode);
    data->Stat = reading.st;
    SetCurrentMode(data);
    SetEntryBytes(data->OwnerEntry, reading.owner);
    SetComboStrings(data->GroupCombo, reading.groups);
    SetEntryBytes(GroupEntry(data), reading.group);
    CheckPermission(data);
    return 0;
}

void SetCurrentMode(const PropertyDlgData* data)
{
    gtk_label_set_text(GTK_LABEL(data->ModeLabel), FormatText("%04o", data->Stat.st_mode & kPermissionBits).c_str());
}

void CheckPermission(const PropertyDlgData* data)
{
    const bool is_super_user = getuid() == 0;
    const bool may_change = is_super_user || getuid() == data->Stat.st_uid;
    gtk_widget_set_sensitive(data->OwnerEntry, is_super_user);
    gtk_widget_set_sensitive(data->GroupCombo, may_change);
    gtk_widget_set_sensitive(data->NameEntry, may_change && data->Path != pGTable->RootDir);
    // The mode of a link has no meaning, and chmod would change that of its target.
    const bool has_mode = !S_ISLNK(data->Stat.st_mode);
    for (const auto& row : data->PermToggle) {
        for (GtkWidget* const toggle : row) {
            gtk_widget_set_sensitive(toggle, may_change && has_mode);
        }
    }
}

void on_PerToggle_toggled(GtkWidget* toggle, gpointer pointer)
{
    auto* const data = static_cast<PropertyDlgData*>(pointer);
    for (std::size_t row = 0; row < kPermissionRows; ++row) {
        for (std::size_t column = 0; column < kPermissionColumns; ++column) {
            if (data->PermToggle[row][column] == toggle) {
                data->Stat.st_mode ^= PermissionBit(row, column);
            }
        }
    }
    SetCurrentMode(data);
}

namespace {

/// What the dialog says, for the thread that applies it.
struct PropertyChange {
    std::string path;
    mode_t mode;
    std::string owner;
    std::string group;
    std::string name;
};

struct PropertyResult {
    bool is_applied = false;        ///< Something may have changed.
    bool is_refused = false;        ///< The dialog must stay open.
    PathStatus status = PATH_NULL;  ///< What to say of the name or of the file, unless PATH_NULL.
    std::string new_name;           ///< Empty if it stays.
    std::string renamed_to;         ///< Of a directory; empty if its name stays.
    bool is_there = false;          ///< Whether that is a directory now.
};

/// Notes a change, or shows the failure.
void ReportChange(PropertyResult* result, bool changed, const char* failure)
{
    if (changed) {
        result->is_applied = true;
        NoteChange();
    } else {
        OnEngine.MessageBox(_("Error"), failure, STYLE_ERROR);
    }
}

/// False, after a message, if the user or group does not exist.
bool ApplyOwner(const PropertyChange& change, const struct stat& now, PropertyResult* result)
{
    const char* const failure = _("Owner/Group cannot be changed.");
    const std::optional<uid_t> owner = FindUserId(change.owner);
    const std::optional<gid_t> group = FindGroupId(change.group);
    if (!owner || !group) {
        OnEngine.MessageBox(_("Error"), failure, STYLE_ERROR);
        return false;
    }
    if (*owner != now.st_uid || *group != now.st_gid) {
        ReportChange(result, CheckMayChange() == 0 && ChangeOwner(change.path, *owner, *group), failure);
    }
    return true;
}

/// Checks a new name and makes a path of it. Calls lstat first, because CheckFileExist would follow a
/// link of that name.
PathStatus CheckNewName(const std::string& parent, const std::string& name, std::string* target)
{
    if (name.empty()) {
        return PATH_EMPTY;
    }
    if (name.size() > kMaxNameBytes) {
        return PATH_TOO_LONG;
    }
    *target = parent + name;
    struct stat st = {};
    if (lstat(target->c_str(), &st) == 0) {
        return S_ISDIR(st.st_mode) ? PATH_DIRECTORY : PATH_FILE;
    }
    return CheckFileExist(target);
}

void ApplyName(const PropertyChange& change, PropertyResult* result)
{
    std::string target;
    if (change.name == GetLastPath(change.path)) {
        return;
    }
    const PathStatus status = CheckNewName(GetParentDirectory(change.path), change.name, &target);
    if (status != PATH_NEW) {
        result->status = status;
        result->is_refused = true;
        return;
    }
    int flag = 0;
    MoveFile(target, change.path, &flag);
    result->new_name = GetLastPath(target);
    if (S_ISDIR(change.mode)) {
        result->renamed_to = target;
        result->is_there = IsDirectory(target);
    }
}

/// Runs in a thread.
PropertyResult ApplyProperty(const PropertyChange& change)
{
    PropertyResult result;
    struct stat now = {};
    if (lstat(change.path.c_str(), &now) != 0) {
        result.status = PATH_NEW;  // Says that the file does not exist.
        return result;
    }
    ExpectChangeOf(change.path);
    if (change.mode != now.st_mode) {
        ReportChange(&result, CheckMayChange() == 0 && ChangeMode(change.path, change.mode),
                     _("Permission cannot be changed."));
    }
    if (!ApplyOwner(change, now, &result)) {
        result.is_refused = true;
    } else {
        ApplyName(change, &result);
    }
    return result;
}

/// Shows the window's directory again after a directory was renamed.
void ShowRenamedDirectory(const std::string& old_path, const PropertyResult& result,
                          const std::function<void()>& select)
{
    const std::string old_parent = GetParentDirectory(old_path);
    const std::string new_parent = GetParentDirectory(result.renamed_to);
    // CurrentDir may be inside the renamed directory: a rescan can leave an ancestor of CurrentDir
    // selected.
    if (pGTable->CurrentDir.starts_with(old_path) && result.is_there) {
        const std::string below = pGTable->CurrentDir.substr(old_path.size());
        OpenChildTree(MainTree(), WithSlash(result.renamed_to) + below, EXPAND_LAST_NO,
                      {.rescan = {old_parent, new_parent}});
    } else {
        OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_NO,
                      {.rescan = {old_parent, new_parent}, .after = select});
    }
}

}  // namespace

void on_Property_OKButton_clicked(GtkWidget*, gpointer pointer)
{
    auto* const data = static_cast<PropertyDlgData*>(pointer);
    const PropertyChange change = {data->Path, data->Stat.st_mode, GetEntryBytes(data->OwnerEntry),
                                   GetEntryBytes(GroupEntry(data)), GetEntryBytes(data->NameEntry)};
    const std::optional<PropertyResult> result = WaitFor(data->Path, [change] { return ApplyProperty(change); });
    if (!result) {
        return;
    }
    data->IsApplied = data->IsApplied || result->is_applied || !result->is_refused;
    if (result->status != PATH_NULL) {
        FileExistMessageBox(result->status, result->is_refused ? data->NameEntry : nullptr);
    }
    if (CountListSelection() > 0) {
        // One of them, according to whether the change succeeded.
        data->Select = [names = std::vector{GetLastPath(data->Path), result->new_name}] { SelectListNames(names); };
    }
    if (!result->renamed_to.empty()) {
        data->ShowRenamed = [path = data->Path, renamed = *result, select = data->Select] {
            ShowRenamedDirectory(path, renamed, select);
        };
    }
    if (!result->is_refused) {
        gtk_main_quit();
    }
}
