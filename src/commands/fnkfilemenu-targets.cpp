#include "commands/fnkfilemenu-targets.h"

#include <algorithm>

#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "kit/fnkmessage-box.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"

SelectionKind GetFileOperationString(std::vector<std::string>& paths, std::string* description)
{
    // Indexed by SelectionKind; shown in English in every language.
    constexpr const char* kKindWords[] = {"file", "directory", "file/directory"};
    bool files = false;
    bool directories = false;
    std::size_t count = 0;
    std::string label;
    const FileRows& rows = ListRows();
    const std::vector<std::size_t> selection = ListSelection();
    for (const std::size_t index : selection) {
        if (rows.IsParentRow(index)) {
            continue;
        }
        const bool is_directory = rows.Row(index).is_directory;
        (is_directory ? directories : files) = true;
        label = DisplayLine(rows.Name(index));
        paths.push_back(ListRowPath(index));
        ++count;
    }
    std::string tree_path;
    if (selection.empty() && GetTreeSelect(MainTree(), nullptr, &tree_path)) {
        directories = true;
        label = DisplayLine(tree_path);
        paths.push_back(std::move(tree_path));
        ++count;
    }
    if (count == 0) {
        return SELECTION_NONE;
    }
    const SelectionKind kind = !directories ? SELECTION_FILES : files ? SELECTION_BOTH : SELECTION_DIRECTORIES;
    if (description != nullptr) {
        if (count > 1) {
            label = std::to_string(count);
        }
        *description = FormatText(_("%s %s"), label.c_str(), kKindWords[kind]);
    }
    return kind;
}

bool CheckFileOperationPaths(const std::vector<std::string>& paths)
{
    const bool is_workable =
        std::all_of(paths.begin(), paths.end(), [](const std::string& path) { return path.size() <= kMaxPathBytes; });
    if (!is_workable) {
        FileExistMessageBox(PATH_TOO_LONG, nullptr);
    }
    return is_workable;
}

std::size_t CountFileOperationTargets()
{
    const std::size_t rows = CountListSelection();
    return rows > 0 ? rows : GetTreeSelect(MainTree(), nullptr, nullptr) ? 1 : 0;
}

std::string ParentInTree(const std::string& path)
{
    const std::string parent = GetParentDirectory(path);
    return CheckChildDirectory(parent) == 0 ? parent : pGTable->RootDir;
}
