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

/// Makes the relative path of a directory absolute. Anything else stays as typed, also a link to a
/// directory: IsDirectory does not follow it. Trusted arguments are not looked at.
std::string DirectoryArgument(const Arguments& arguments, std::size_t index, Trust trust)
{
    const std::string argument = index < arguments.size() ? arguments[index] : "";
    if (argument.empty() || argument.front() == '/') {
        return argument;
    }
    if (trust == TRUST_ARGUMENTS) {
        return GlibPointer<char>(g_canonicalize_filename(argument.c_str(), nullptr)).get();
    }
    const std::string real = IsDirectory(argument) ? GetRealDirectory(argument) : "";
    return real.empty() ? argument : real;
}

/// Makes a relative path absolute, unless it begins with "~". SetStartDirectories resolves the rest.
std::string StartArgument(const Arguments& arguments, std::size_t index)
{
    const std::string argument = index < arguments.size() ? arguments[index] : "";
    if (argument.empty() || argument.front() == '/' || argument == "~" || argument.starts_with("~/")) {
        return argument;
    }
    return WithSlash(GlibPointer<char>(g_get_current_dir()).get()) + argument;
}

bool IsUsable(const std::string& directory, Trust trust)
{
    return !directory.empty() && WithSlash(directory).size() <= kMaxPathBytes &&
           (trust == TRUST_ARGUMENTS || IsDirectory(directory));
}

CommandLine Parse(const Arguments& arguments, Trust trust)
{
    CommandLine result;
    const std::string option = arguments.size() > 1 ? arguments[1] : "";
    if (option == "--version") {
        result.is_version_requested = true;
    } else if (option == "--root") {
        result.root = "/";
        result.start = StartArgument(arguments, 2);
    } else if (option == "--home") {
        const std::string root = DirectoryArgument(arguments, 2, trust);
        result.root = IsUsable(root, trust) ? root : "";
        result.start = StartArgument(arguments, 3);
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
