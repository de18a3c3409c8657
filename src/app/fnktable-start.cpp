#include "app/fnktable-start.h"

#include "core/fnktable.h"
#include "core/fnkutil.h"

namespace {

std::string ArgumentAt(int argc, char** argv, int index)
{
    return index < argc ? argv[index] : "";
}

/// Makes the relative path of a directory absolute. Anything else stays as typed, also a link to a
/// directory: IsDirectory does not follow it.
std::string DirectoryArgument(int argc, char** argv, int index)
{
    const std::string argument = ArgumentAt(argc, argv, index);
    if (argument.empty() || argument.front() == '/' || !IsDirectory(argument)) {
        return argument;
    }
    const std::string real = GetRealDirectory(argument);
    return real.empty() ? argument : real;
}

}  // namespace

CommandLine ParseCommandLine(int argc, char** argv)
{
    CommandLine result;
    const std::string option = ArgumentAt(argc, argv, 1);
    if (option == "--version") {
        result.is_version_requested = true;
    } else if (option == "--root") {
        result.root = "/";
        result.start = DirectoryArgument(argc, argv, 2);
    } else if (option == "--home") {
        const std::string root = DirectoryArgument(argc, argv, 2);
        if (!root.empty() && WithSlash(root).size() <= kMaxPathBytes && IsDirectory(root)) {
            result.root = root;
        }
        result.start = DirectoryArgument(argc, argv, 3);
    }
    if (result.root.empty()) {
        result.root = GetHomeDirectory();
    }
    result.root = WithSlash(result.root);
    return result;
}

void SetStartDirectories(const CommandLine& command_line)
{
    pGTable->RootDir = command_line.root;
    const std::string& start = command_line.start;
    if (!start.empty() && WithSlash(start).size() <= kMaxPathBytes && IsDirectory(start) &&
        CheckChildDirectory(start) == 0) {
        pGTable->StartDir = WithSlash(start);
    }
}

void SeedHistories()
{
    AddHistoryListS(pGTable->LocationDirHistory, pGTable->RootDir);
    if (pGTable->DirHistory.empty()) {
        pGTable->DirHistory = {pGTable->RootDir};
    }
    if (pGTable->FilterHistory.empty()) {
        pGTable->FilterHistory = {"*"};
    }
}
