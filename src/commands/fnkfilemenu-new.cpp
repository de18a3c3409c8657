#include "commands/fnkfilemenu-new.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>

#include "commands/fnkfilemenu-ask.h"
#include "core/fnkraii.h"
#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "engine/fnkfiles-sync.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkprogress.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"

namespace {

// Before the umask is applied.
constexpr mode_t kDirectoryMode = 0775;
constexpr mode_t kFileMode = 0666;

/// Notes the change. On failure, shows a message with the reason from errno instead.
bool ReportCreation(bool created, const char* failure, const std::string& path)
{
    if (created) {
        NoteChange();
    } else {
        MessageBox(_("Error"), FormatPathMessage(failure, path, errno), STYLE_ERROR);
    }
    return created;
}

/// Flushes the noted changes to the disk: EndProgress waits for them.
void SyncQuietly()
{
    SetupQuietRun();
    EndProgress();
}

/// Asks for the path of a new object. False if the user cancels or, after a message, if nothing can be
/// created there.
bool AskForNewPath(OperationMode mode, std::string* path)
{
    if (CreateFileOperationDlg(mode, "", path) != RESULT_OK) {
        return false;
    }
    PathStatus status = CheckFileExist(path);
    if (mode == MODE_NEW_DIRECTORY && path->size() >= kMaxPathBytes) {
        status = PATH_TOO_LONG;  // The final "/" of a directory would not fit.
    }
    if (status != PATH_NEW) {
        FileExistMessageBox(status, nullptr);
    }
    return status == PATH_NEW;
}

}  // namespace

bool CreateNewDirectory(const std::string& path)
{
    return ReportCreation(mkdir(path.c_str(), kDirectoryMode) == 0, _("Cannot create directory %s\ncause:%s"), path);
}

bool CreateNewFile(const std::string& path)
{
    const Descriptor file(open(path.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kFileMode));
    return ReportCreation(static_cast<bool>(file), _("Cannot create file %s\ncause:%s"), path);
}

void ShowNewFile(const std::string& path)
{
    SyncQuietly();
    const std::string parent = GetParentDirectory(path);
    OpenChildTree(MainTree(), parent, EXPAND_LAST_NO);
    if (pGTable->CurrentDir == parent) {
        ShowListRow(GetLastPath(path));
    }
}

void on_Menu_NewDirectory_activate(GtkWidget*, gpointer)
{
    std::string path;
    if (!AskForNewPath(MODE_NEW_DIRECTORY, &path) || !CreateNewDirectory(WithSlash(path))) {
        return;
    }
    SyncQuietly();
    RescanTree(MainTree(), GetParentDirectory(path));
    OpenChildTree(MainTree(), WithSlash(path), EXPAND_LAST_NO);
}

void on_Menu_NewFile_activate(GtkWidget*, gpointer)
{
    std::string path;
    if (!AskForNewPath(MODE_NEW_FILE, &path) || !CreateNewFile(path)) {
        return;
    }
    ShowNewFile(path);
}
