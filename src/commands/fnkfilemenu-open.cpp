#include "commands/fnkfilemenu-open.h"

#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkutil-launch.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkprogress.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist-status.h"
#include "panes/fnkselfile.h"

namespace {

/// Empty if the user cancels.
std::string ChooseProgram()
{
    std::string program;
    GtkWidget* dialog = nullptr;
    SelectAppDlg(&dialog, &program);
    if (dialog != nullptr) {
        gtk_widget_destroy(dialog);
    }
    return program;
}

void Run(const std::string& program, const std::string& argument)
{
    if (!program.empty() && ConfilmExec(program) == RESULT_OK) {
        StartProgram(program, argument);
    }
}

/// Says in the status line what came of opening path.
void Tell(const char* format, const std::string& path, int error = 0)
{
    ShowStatus(" " + FormatPathMessage(format, path, error));
}

}  // namespace

void ExecApplication(const std::string& path, const std::function<void()>& entered)
{
    const std::optional<Launch> decided = WaitFor(path, [path] { return DecideLaunch(path); });
    if (!decided) {
        return;
    }
    const Launch& launch = *decided;
    switch (launch.kind) {
    case LAUNCH_MISSING:
        Tell(_("%s does not exist."), path);
        break;
    case LAUNCH_STALLED:
        Tell(_("The link %s leads nowhere."), path);
        break;
    case LAUNCH_UNREADABLE:
        Tell(_("You may not read %s."), launch.path);
        break;
    case LAUNCH_NOTHING:
        Tell(_("No program is set to open %s."), launch.path);
        break;
    case LAUNCH_OUTSIDE_ROOT:
        FileExistMessageBox(PATH_OUTSIDE_ROOT, nullptr);
        break;
    case LAUNCH_DIRECTORY:
        OpenChildTree(MainTree(), launch.path, EXPAND_LAST_YES, {.after = entered});
        break;
    case LAUNCH_ITSELF:
        Run(launch.path, "");
        break;
    case LAUNCH_PROGRAM:
        Run(launch.program, launch.path);
        break;
    case LAUNCH_CHOICE:
        Run(ChooseProgram(), launch.path);
        break;
    }
}

void StartProgram(const std::string& program, const std::string& argument)
{
    const auto failure = WaitFor(program, [program, argument] {
        StartFailure result;
        ExecProcess(program, argument, Browser(), &result);
        return result;
    });
    if (failure && failure->error != 0) {
        Tell(_("Cannot start %s: %s"), failure->program, failure->error);
    }
}

Result ConfilmExec(const std::string& name)
{
    if (!pGTable->ConfilmExec) {
        return RESULT_OK;
    }
    return MessageBox(_("Execute"), FormatPathMessage(_("Execute %s ?"), name), STYLE_QUESTION);
}
