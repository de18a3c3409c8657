#include "engine/fnkfiles-report.h"

#include <cerrno>

#include "core/fnkstring.h"

Result ReportStep()
{
    return static_cast<Result>(OnEngine.UpdateProgress());
}

int CheckMayChange()
{
    return OnEngine.IsLeft() ? ECANCELED : 0;
}

Result FileErrorMessage(OperationKind kind, const std::string& path, int error)
{
    const char* const format =
        kind == OPERATION_COPY ? _("Cannot copy file %s\ncause:%s") : _("Cannot move file %s\ncause:%s");
    if (OnEngine.MessageBox(_("Error"), FormatPathMessage(format, path, error), STYLE_SKIP) == RESULT_CANCEL) {
        return RESULT_CANCEL;
    }
    return ReportStep();
}

Result ReportDeleteFailure(const std::string& path, int error)
{
    const std::string message = FormatPathMessage(_("Cannot delete file %s\ncause:%s"), path, error);
    return OnEngine.MessageBox(_("Error"), message, STYLE_SKIP);
}

bool AskToOverwrite(const std::string& path)
{
    const std::string question = FormatPathMessage(_("%s already exists.\nDoes it overwrite?"), path);
    return OnEngine.MessageBox(_("Confirmation"), question, STYLE_QUESTION) == RESULT_OK;
}
