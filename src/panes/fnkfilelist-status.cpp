#include "panes/fnkfilelist-status.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <algorithm>

#include "core/fnkraii.h"
#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist-selection.h"

namespace {

constexpr std::size_t kMaxStatusBytes = 1024;
/// Files per iteration of the main loop. This many take a few milliseconds.
constexpr std::size_t kSumPiece = 2000;

/// The summary in progress. It holds row numbers, so whoever changes the rows must restart it.
struct Summary {
    std::vector<std::size_t> rows;
    std::size_t next = 0;
    std::size_t counted = 0;
    std::uint64_t bytes = 0;
    std::string name;
    Descriptor directory;
};
Summary summary;
guint summary_source = 0;

void ShowStatus(std::string text)
{
    if (text.size() > kMaxStatusBytes) {
        const char* const last_character = g_utf8_find_prev_char(text.c_str(), text.c_str() + kMaxStatusBytes + 1);
        text.resize(static_cast<std::size_t>(last_character - text.c_str()));
    }
    pGTable->StatusText = std::move(text);
    RestoreStatusText();
}

void ShowSummary()
{
    const std::string size = ConvertSize(summary.bytes);
    ShowStatus(summary.counted == 1 ? FormatText(_(" %s  %s"), summary.name.c_str(), size.c_str())
                                    : FormatText(_(" %d files  %s"), static_cast<int>(summary.counted), size.c_str()));
}

/// Adds the next kSumPiece files. True once all are added and the sum is shown.
bool SumPiece()
{
    const FileRows& rows = ListRows();
    const std::size_t end = std::min(summary.next + kSumPiece, summary.rows.size());
    for (; summary.next < end; ++summary.next) {
        const char* const name = rows.Name(summary.rows[summary.next]);
        struct stat st = {};
        if (fstatat(summary.directory.Get(), name, &st, AT_SYMLINK_NOFOLLOW) == 0) {
            summary.bytes += static_cast<std::uint64_t>(st.st_size);
            summary.name = DisplayText(name);
            ++summary.counted;
        }
    }
    if (summary.next < summary.rows.size()) {
        return false;
    }
    ShowSummary();
    summary = Summary();
    return true;
}

void StartSummary()
{
    summary.rows = ListSelection();
    summary.directory = Descriptor(open(pGTable->CurrentDir.c_str(), O_PATH | O_DIRECTORY | O_CLOEXEC));
}

gboolean on_Summary_idle(gpointer)
{
    if (pMainW != nullptr) {
        if (summary.rows.empty()) {
            StartSummary();
        }
        if (!SumPiece()) {
            return G_SOURCE_CONTINUE;
        }
    }
    summary_source = 0;
    return G_SOURCE_REMOVE;
}

void StopSummary()
{
    if (summary_source != 0) {
        g_source_remove(summary_source);
        summary_source = 0;
    }
    summary = Summary();
}

}  // namespace

void DisplayFileStatus()
{
    StopSummary();
    if (pMainW == nullptr || MainList() == nullptr || pMainW->StatusBar == nullptr) {
        return;
    }
    const std::size_t count = CountListSelection();
    if (count == 0) {
        std::string path;
        GetTreeSelect(MainTree(), nullptr, &path);
        ShowStatus(" " + DisplayText(path));
    } else if (count > kSumPiece) {
        summary_source = g_idle_add(on_Summary_idle, nullptr);
    } else {
        StartSummary();
        SumPiece();
    }
}

void DisplayFilterStatus()
{
    if (pMainW == nullptr || MainList() == nullptr || pMainW->FilterStatusBar == nullptr) {
        return;
    }
    SetStatusBarText(pMainW->FilterStatusBar, pGTable->Filter
                                                  ? FormatText(_(" Filter: %s"), pGTable->FilterName.c_str())
                                                  : std::string(_(" Filter: Show all files")));
}

void RestoreStatusText()
{
    if (pMainW != nullptr && pMainW->StatusBar != nullptr) {
        SetStatusBarText(pMainW->StatusBar, pGTable->StatusText);
    }
}
