#include "app/fnktable-start.h"

#include <glib.h>

#include <chrono>
#include <optional>
#include <vector>

#include "core/fnkraii.h"
#include "core/fnktable.h"
#include "core/fnkthread.h"
#include "core/fnkutil.h"

namespace {

using Arguments = std::vector<std::string>;

/// How long to wait for a directory of the command line before it is taken as it is.
constexpr std::chrono::milliseconds kPatience{200};

enum Trust { TRUST_NOTHING, TRUST_ARGUMENTS };

std::string GetArgument(const Arguments& arguments, std::size_t index)
{
    return index < arguments.size() ? arguments[index] : "";
}

bool IsUsable(const std::string& directory, Trust trust)
{
    return !directory.empty() && WithSlash(directory).size() <= kMaxPathBytes &&
           (trust == TRUST_ARGUMENTS || IsDirectory(directory));
}

/// The root as an absolute path; empty if it is not a usable directory. A link to a directory is none,
/// as in the tree. Trusted arguments are not looked at.
std::string ResolveRoot(const std::string& argument, Trust trust)
{
    std::string root = argument;
    if (!argument.empty() && argument.front() != '/') {
        if (trust == TRUST_ARGUMENTS) {
            root = GlibPointer<char>(g_canonicalize_filename(argument.c_str(), nullptr)).get();
        } else {
            root = IsDirectory(argument) ? GetRealDirectory(argument) : "";
        }
    }
    return IsUsable(root, trust) ? root : "";
}

/// Makes a relative path absolute, unless it begins with "~". SetStartDirectories resolves the rest.
std::string MakeStartAbsolute(const std::string& argument)
{
    if (argument.empty() || argument.front() == '/' || BeginsWithTilde(argument)) {
        return argument;
    }
    return WithSlash(GlibPointer<char>(g_get_current_dir()).get()) + argument;
}

CommandLine Parse(const Arguments& arguments, Trust trust)
{
    CommandLine result;
    const std::string option = GetArgument(arguments, 1);
    if (option == "--version") {
        result.is_version_requested = true;
    } else if (option == "--root") {
        result.root = "/";
        result.start = MakeStartAbsolute(GetArgument(arguments, 2));
    } else if (option == "--home") {
        result.root = ResolveRoot(GetArgument(arguments, 2), trust);
        result.start = MakeStartAbsolute(GetArgument(arguments, 3));
    }
    if (result.root.empty()) {
        result.root = GetHomeDirectory();
    }
    result.root = WithSlash(result.root);
    return result;
}

}  // namespace

CommandLine ParseCommandLine(int argc, char** argv)
{
    const Arguments arguments(argv, argv + argc);
    const std::optional<CommandLine> parsed =
        TryFor(kPatience, [arguments] { return Parse(arguments, TRUST_NOTHING); });
    return parsed ? *parsed : Parse(arguments, TRUST_ARGUMENTS);
}

void SetStartDirectories(const CommandLine& command_line)
{
    pGTable->RootDir = command_line.root;
    const std::string& start = command_line.start;
    const auto resolve = [start] {
        const std::string path = ResolveTypedPath(start);
        return IsUsable(path, TRUST_NOTHING) ? path : std::string();
    };
    const std::optional<std::string> resolved = TryFor(kPatience, resolve);
    if (resolved && !resolved->empty()) {
        pGTable->StartDir = WithSlash(*resolved);
    } else if (!resolved && IsUsable(start, TRUST_ARGUMENTS) && CheckChildDirectory(start) == 0) {
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
