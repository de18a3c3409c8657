#include "commands/fnkfilemenu-new.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <functional>

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

/// Runs create, which returns 0 or an errno, and waits until the change is on the disk. On failure shows
/// a message with the reason.
bool Create(const std::string& path, const char* failure, const std::function<int()>& create)
{
    const std::optional<int> error = WaitFor(path, [path, create] {
        ExpectChangeOf(path);
        const int failed = create();
        if (failed == 0) {
            NoteChange();
        }
        return failed;
    });
    if (error && *error != 0) {
        MessageBox(_("Error"), FormatPathMessage(failure, path, *error), STYLE_ERROR);
    }
    return error == 0;
}

/// Asks for the path of a new object. False if the user cancels or, after a message, if nothing can be
/// created there.
bool AskForNewPath(OperationMode mode, std::string* path)
{
    if (CreateFileOperationDlg(mode, "", path) != RESULT_OK) {
        return false;
    }
    PathStatus status = WaitToCheckPath(path);
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
    return Create(path, _("Cannot create directory %s\ncause:%s"),
                  [path] { return mkdir(path.c_str(), kDirectoryMode) == 0 ? 0 : errno; });
}

bool CreateNewFile(const std::string& path)
{
    return Create(path, _("Cannot create file %s\ncause:%s"), [path] {
        constexpr int kNew = O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC;
        return Descriptor(open(path.c_str(), kNew, kFileMode)) ? 0 : errno;
    });
}

void ShowNewFile(const std::string& path)
{
    const std::string parent = GetParentDirectory(path);
    OpenChildTree(MainTree(), parent, EXPAND_LAST_NO, {.after = [parent, name = GetLastPath(path)] {
                      if (pGTable->CurrentDir == parent) {
                          SelectListNames({name});
                      }
                  }});
}

void on_Menu_NewDirectory_activate(GtkWidget*, gpointer)
{
    std::string path;
    if (!AskForNewPath(MODE_NEW_DIRECTORY, &path) || !CreateNewDirectory(WithSlash(path))) {
        return;
    }
    OpenChildTree(MainTree(), WithSlash(path), EXPAND_LAST_NO, {.rescan = {GetParentDirectory(path)}});
}

void on_Menu_NewFile_activate(GtkWidget*, gpointer)
{
    std::string path;
    if (!AskForNewPath(MODE_NEW_FILE, &path) || !CreateNewFile(path)) {
        return;
    }
    ShowNewFile(path);
}
