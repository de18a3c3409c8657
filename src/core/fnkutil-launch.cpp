#include "core/fnkutil-launch.h"

#include <fcntl.h>
#include <glib.h>
#include <limits.h>
#include <signal.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>

#include "core/fnkraii.h"
#include "core/fnktable.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"

namespace {

constexpr const char* kBrowserName = "netscape";
constexpr const char* kDesktopOpener = "xdg-open";
constexpr const char* kOwnName = "fennick";
constexpr const char* kOwnFile = "/proc/self/exe";
constexpr const char* kShell = "/bin/sh";
constexpr const char* kDefaultSearchPath = "/bin:/usr/bin";
constexpr const char kForkFailed[] = "Not enough mmemory! Stop.\n";
constexpr std::size_t kStatusBytes = 2047;
constexpr std::size_t kStatusValueSize = 512;

}  // namespace

const std::string* GetCompatibleAP(const std::string& path)
{
    const char* extension = nullptr;
    for (const char* dot = CharNext(path.c_str(), '.'); dot != nullptr; dot = CharNext(extension, '.')) {
        extension = dot + 1;
    }
    if (extension == nullptr) {
        return nullptr;
    }
    for (const AppInfo& association : pGTable->ExtensionList) {
        if (g_ascii_strcasecmp(association.Key.c_str(), extension) == 0) {
            return &association.Value;
        }
    }
    return nullptr;
}

namespace {

enum Location { LOCATION_INSIDE, LOCATION_OUTSIDE, LOCATION_MISSING };

/// Makes path canonical, but does not follow a link at its end, and makes it begin with RootDir.
///
/// Comparing the text with RootDir is not enough. A path that begins with RootDir can leave it by
/// ".." or through a link, and a RootDir that contains links has other names.
Location LocateInRoot(std::string& path)
{
    while (path.size() > 1 && path.back() == '/') {
        path.pop_back();
    }
    const std::string root = GetRealDirectory(pGTable->RootDir);
    const std::size_t name_begin = path.rfind('/') + 1;
    const std::string name = path.substr(name_begin);
    std::string real;
    if (name.empty() || IsDotOrDotDot(name.c_str()) || WithSlash(path) == pGTable->RootDir) {
        real = GetRealDirectory(path);
    } else if (const std::string parent = GetRealDirectory(path.substr(0, name_begin)); !parent.empty()) {
        real = parent + name;
    }
    if (real.empty() || root.empty()) {
        return CheckChildDirectory(path) == 0 ? LOCATION_MISSING : LOCATION_OUTSIDE;
    }
    if (!SpellFromRoot(real, root)) {
        return LOCATION_OUTSIDE;
    }
    path = real;
    return LOCATION_INSIDE;
}

bool MayRead(const struct stat& st)
{
    return (st.st_mode & (st.st_uid == getuid() ? S_IRUSR : S_IROTH)) != 0;
}

/// How to open an object that is not a link.
Launch Classify(const std::string& path, const struct stat& st)
{
    if (S_ISDIR(st.st_mode)) {
        return {LAUNCH_DIRECTORY, path, ""};
    }
    if ((st.st_mode & S_IXUSR) != 0) {
        return {LAUNCH_ITSELF, path, ""};
    }
    if (!MayRead(st)) {
        return {LAUNCH_UNREADABLE, path, ""};
    }
    const std::string* const program = GetCompatibleAP(path);
    if (program == nullptr && pGTable->ApplicationList.empty()) {
        return {LAUNCH_PROGRAM, path, kDesktopOpener};
    }
    if (program == nullptr) {
        return {LAUNCH_CHOICE, path, ""};
    }
    return {program->empty() ? LAUNCH_NOTHING : LAUNCH_PROGRAM, path, *program};
}

}  // namespace

Launch DecideLaunch(const std::string& path)
{
    std::string place = path;
    LaunchKind failure = LAUNCH_MISSING;
    for (int links = 0; links <= kMaxLinks; ++links) {
        if (place.empty() || place.size() > kMaxPathBytes) {
            break;
        }
        const Location location = LocateInRoot(place);
        if (location == LOCATION_OUTSIDE) {
            return {LAUNCH_OUTSIDE_ROOT, place, ""};
        }
        struct stat st = {};
        if (location == LOCATION_MISSING || lstat(place.c_str(), &st) != 0) {
            break;
        }
        if (!S_ISLNK(st.st_mode)) {
            return Classify(place, st);
        }
        failure = LAUNCH_STALLED;
        if (!FollowLink(place)) {
            break;
        }
    }
    return {failure, path, ""};
}

int GetStatus(const char* key, const char* text, std::string& value, std::size_t size)
{
    const char* position = std::strstr(text, key);
    if (position == nullptr) {
        return 1;
    }
    position += std::strlen(key);
    position += std::strspn(position, " \t");
    value.assign(position, std::min(std::strcspn(position, "\n"), size - 1));
    return 0;
}

namespace {

/// The beginning of a process status file; empty if the process belongs to another user.
std::string ReadOwnStatus(const std::string& path)
{
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK));
    struct stat st = {};
    char buffer[kStatusBytes + 1] = {};
    if (!file || fstat(file.Get(), &st) != 0 || st.st_uid != getuid() || read(file.Get(), buffer, kStatusBytes) <= 0) {
        return {};
    }
    return buffer;
}

bool IsRunningBrowser(const std::string& status)
{
    std::string name;
    std::string state;
    return GetStatus("Name:", status.c_str(), name, kStatusValueSize) == 0 && name.starts_with(kBrowserName) &&
           GetStatus("State:", status.c_str(), state, kStatusValueSize) == 0 && !state.starts_with('Z');
}

}  // namespace

pid_t CheckWebProcess(const std::string& processes)
{
    const DirectoryStream directory(opendir(processes.c_str()));
    while (const struct dirent* const entry = directory != nullptr ? readdir(directory.get()) : nullptr) {
        const auto process = static_cast<pid_t>(std::strtol(entry->d_name, nullptr, 10));
        if (process > 0 && IsRunningBrowser(ReadOwnStatus(processes + "/" + entry->d_name + "/status"))) {
            return process;
        }
    }
    return 0;
}

namespace {

/// The files to try for a program name, in the order of PATH.
std::vector<std::string> FindCandidates(const std::string& program)
{
    if (program.empty() || program.find('/') != std::string::npos) {
        return {program};
    }
    const char* const variable = std::getenv("PATH");
    const std::string search_path = variable != nullptr ? variable : kDefaultSearchPath;
    std::vector<std::string> candidates;
    for (std::size_t begin = 0; begin <= search_path.size();) {
        const std::size_t end = std::min(search_path.find(':', begin), search_path.size());
        const std::string directory = search_path.substr(begin, end - begin);
        candidates.push_back(WithSlash(directory.empty() ? "." : directory) + program);
        begin = end + 1;
    }
    return candidates;
}

std::vector<char*> PointersTo(std::vector<std::string>& texts)
{
    std::vector<char*> pointers;
    pointers.reserve(texts.size() + 1);
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

/// The limit on open files when this process started; all 0 until RaiseOpenFileLimit records it.
struct rlimit initial_file_limit = {};

// The procedures from here to ForkAndExit run between fork and exec. Other threads may have held
// locks at the fork, so only async-signal-safe calls are allowed.

/// Where a program that cannot be executed reports its errno: the descriptor after the standard ones.
/// It closes when a program is executed.
constexpr int kReport = STDERR_FILENO + 1;

/// The program must not inherit ignored or blocked signals.
void ResetSignals()
{
    struct sigaction action = {};
    action.sa_handler = SIG_DFL;
    for (int signum = 1; signum < NSIG; ++signum) {
        sigaction(signum, &action, nullptr);
    }
    sigset_t none;
    sigemptyset(&none);
    sigprocmask(SIG_SETMASK, &none, nullptr);
}

void KeepReport(int report)
{
    if (report == kReport) {
        fcntl(kReport, F_SETFD, FD_CLOEXEC);
    } else if (dup3(report, kReport, O_CLOEXEC) < 0) {
        close(kReport);
    }
}

void CloseDescriptors()
{
    constexpr unsigned kFirst = kReport + 1;
    if (close_range(kFirst, UINT_MAX, 0) == 0) {
        return;
    }
    // The kernel is too old for close_range.
    const long limit = sysconf(_SC_OPEN_MAX);
    for (int fd = kFirst; fd < limit; ++fd) {
        close(fd);
    }
}

/// Whether a file that the kernel does not know how to execute may be a script without a "#!" line. Text
/// has no NUL; a picture on a disk where every file is executable does.
bool MayBeScript(const char* file)
{
    char begin[256];
    const int script = open(file, O_RDONLY | O_CLOEXEC | O_NONBLOCK);
    const ssize_t count = script >= 0 ? read(script, begin, sizeof begin) : -1;
    close(script);
    return count >= 0 && std::memchr(begin, '\0', static_cast<std::size_t>(count)) == nullptr;
}

/// Executes the first file that the kernel accepts. As execvp does, hands a script without a "#!" line to
/// the shell. Its arguments are those of the shell, with a place for the script as the second. Reports the
/// error if there is none, as execvp does: that a file may not be executed rather than that one is missing.
[[noreturn]] void ExecFirst(char* const* files, char* const* arguments, char** shell_arguments, int report)
{
    int error = ENOENT;
    setsid();
    ResetSignals();
    KeepReport(report);
    CloseDescriptors();
    if (initial_file_limit.rlim_max != 0) {
        setrlimit(RLIMIT_NOFILE, &initial_file_limit);
    }
    for (; *files != nullptr; ++files) {
        execve(*files, arguments, environ);
        if (errno == ENOEXEC && MayBeScript(*files)) {
            shell_arguments[1] = *files;
            execve(kShell, shell_arguments, environ);
        }
        error = errno == ENOENT || errno == ENOTDIR ? error : errno;
    }
    [[maybe_unused]] const ssize_t written = write(kReport, &error, sizeof error);
    _exit(0);
}

[[noreturn]] void ForkAndExit(char* const* files, char* const* arguments, char** shell_arguments, int report)
{
    const pid_t child = _Fork();
    if (child == 0) {
        ExecFirst(files, arguments, shell_arguments, report);
    }
    if (child < 0) {
        [[maybe_unused]] const ssize_t written = write(STDERR_FILENO, kForkFailed, sizeof kForkFailed - 1);
    }
    _exit(child < 0 ? 1 : 0);
}

/// Starts the program from a helper process that ends at once. The program is then a child of init,
/// which reaps it. Returns the id of the helper. Unless error is null, waits until the program runs, and
/// stores 0, or the errno if no file could be executed.
pid_t StartDetached(std::vector<std::string> files, std::vector<std::string> arguments, int* error)
{
    int ends[2] = {-1, -1};
    [[maybe_unused]] const int made = pipe2(ends, O_CLOEXEC);  // Without a pipe, the error stays unknown.
    const Descriptor reader(ends[0]);
    Descriptor writer(ends[1]);
    const std::vector<char*> file_pointers = PointersTo(files);
    const std::vector<char*> argument_pointers = PointersTo(arguments);
    std::vector<std::string> shell_arguments = arguments;
    shell_arguments.insert(shell_arguments.begin(), kShell);
    std::vector<char*> shell_pointers = PointersTo(shell_arguments);
    // Block signals, or our handlers could run in the child before exec.
    sigset_t all;
    sigset_t before;
    sigfillset(&all);
    pthread_sigmask(SIG_SETMASK, &all, &before);
    const pid_t helper = fork();
    if (helper == 0) {
        ForkAndExit(file_pointers.data(), argument_pointers.data(), shell_pointers.data(), writer.Get());
    }
    pthread_sigmask(SIG_SETMASK, &before, nullptr);
    if (helper < 0) {
        g_log(nullptr, G_LOG_LEVEL_ERROR, "%s", kForkFailed);
    }
    while (waitpid(helper, nullptr, 0) < 0 && errno == EINTR) {
    }
    if (error != nullptr) {
        *error = 0;
        writer = Descriptor();
        while (reader && read(reader.Get(), error, sizeof *error) < 0 && errno == EINTR) {
        }
    }
    return helper;
}

/// The program and its arguments. ExecProcess explains the special case of the browser.
std::vector<std::string> MakeCommand(const std::string& program, const std::string& argument, const Browser& browser)
{
    if (argument.empty()) {
        return {program};
    }
    if (program != browser.start) {
        return {program, argument};
    }
    if (access(browser.start.c_str(), X_OK) != 0) {
        return {kDesktopOpener, argument};
    }
    if (CheckWebProcess(browser.processes) != 0) {
        return {program, "-remote", "openURL(" + argument + ")"};
    }
    return {program, "file:" + argument};
}

}  // namespace

pid_t ExecProcess(const std::string& program, const std::string& argument, const Browser& browser,
                  StartFailure* failure)
{
    const std::vector<std::string> command = MakeCommand(program, argument, browser);
    if (failure != nullptr) {
        failure->program = command.front();
    }
    return StartDetached(FindCandidates(command.front()), command, failure != nullptr ? &failure->error : nullptr);
}

pid_t ExecFennick()
{
    std::vector<std::string> files = FindCandidates(kOwnName);
    files.emplace_back(kOwnFile);
    std::vector<std::string> arguments = {kOwnName};
    if (char** const line = pGTable->ArgV; line != nullptr) {
        arguments.assign(line, line + g_strv_length(line));
    }
    return StartDetached(files, arguments, nullptr);
}

std::string GetProgramDirectory()
{
    std::string program;
    return ReadLink(kOwnFile, program) ? GetParentDirectory(program) : std::string();
}

void RaiseOpenFileLimit()
{
    // Ample: a path of kMaxPathBytes has at most 1,023 directories, and a walk needs two descriptors for
    // each.
    constexpr rlim_t kManyFiles = 65536;
    struct rlimit limit = {};
    if (getrlimit(RLIMIT_NOFILE, &limit) == 0) {
        initial_file_limit = limit;
        limit.rlim_cur = std::min(limit.rlim_max, std::max(limit.rlim_cur, kManyFiles));
        setrlimit(RLIMIT_NOFILE, &limit);
    }
}
