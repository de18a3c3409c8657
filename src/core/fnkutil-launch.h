#pragma once
// Decides how a file is opened, and starts programs that outlive this process.

#include <sys/types.h>

#include <string>
#include <vector>

/// The program associated with the extension of path, ignoring case. The first association wins.
/// Null if there is none. The result points into ExtensionList. The extension follows the last "."
/// of the whole path, even if that is in a directory name.
const std::string* GetCompatibleAP(const std::string& path);

/// What opening an entry means.
enum LaunchKind {
    LAUNCH_MISSING,       ///< There is no such entry.
    LAUNCH_STALLED,       ///< A link that leads nowhere.
    LAUNCH_UNREADABLE,    ///< A file that the user may not read.
    LAUNCH_NOTHING,       ///< The association of the extension names no program.
    LAUNCH_OUTSIDE_ROOT,  ///< The entry or the target of its link is outside RootDir.
    LAUNCH_DIRECTORY,
    LAUNCH_ITSELF,   ///< Run it: it is executable.
    LAUNCH_PROGRAM,  ///< Open it with the associated program.
    LAUNCH_CHOICE,   ///< Let the user choose a program.
};

struct Launch {
    LaunchKind kind = LAUNCH_MISSING;
    std::string path;     ///< Links followed; canonical and inside RootDir if there is something to open.
    std::string program;  ///< For LAUNCH_PROGRAM; never empty then.
};

/// Follows links from the absolute path and classifies what they lead to. A file without an association
/// goes to the desktop's opener if there are no programs to choose from.
Launch DecideLaunch(const std::string& path);

struct Browser {
    std::string start = "/usr/lib/netscape/start";  ///< Starts the web browser.
    std::string processes = "/proc";                ///< Where running processes are listed.
};

/// Why a program does not run.
struct StartFailure {
    std::string program;  ///< The one that was tried, which may be the desktop's opener in place of another.
    int error = 0;        ///< An errno; 0 if it runs.
};

/// The process id of this user's running browser, 0 if there is none.
pid_t CheckWebProcess(const std::string& processes = Browser().processes);

/// Finds key in text and stores the rest of its line in value, without leading blanks and cut to
/// size - 1 bytes. 0, or 1 if key is not found.
int GetStatus(const char* key, const char* text, std::string& value, std::size_t size);

/// Starts program, a file name that is looked up in PATH. It gets argument unless that is empty. It
/// is not a child of this process, has its own session and inherits only the three standard
/// descriptors. A script needs no "#!" line.
///
/// If program is browser.start, argument is a file to show. The desktop's opener shows it if
/// browser.start is not installed; else a running browser is told to show it.
///
/// Returns the id of a helper process, which has ended. Unless failure is null, waits until the program
/// runs, or cannot be executed, and tells which.
pid_t ExecProcess(const std::string& program, const std::string& argument, const Browser& browser = Browser(),
                  StartFailure* failure = nullptr);

/// Starts another instance with the same command line: "fennick" from PATH, else the file of this process.
pid_t ExecFennick();

/// The directory of this program's file, ending in "/"; empty if unknown.
std::string GetProgramDirectory();

/// Raises the limit on open files as far as useful and allowed: a walk keeps all directories from
/// its start to the current one open. Started programs get the original limit.
void RaiseOpenFileLimit();
