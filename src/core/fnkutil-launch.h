#pragma once
// Opening a file: what it comes to, and how a program is started that outlives this one.

#include <sys/types.h>

#include <string>
#include <vector>

/// The program of the first association with the extension of path, capitals or not; it points
/// into ExtensionList. Null when there is none. The extension is what follows the last ".",
/// wherever in the path that is.
const std::string* GetCompatibleAP(const std::string& path);

/// What opening an entry comes to.
enum LaunchKind {
    LAUNCH_NOTHING,
    LAUNCH_OUTSIDE_ROOT,  ///< It is, or links to, what lies outside RootDir.
    LAUNCH_DIRECTORY,
    LAUNCH_ITSELF,   ///< It is a program.
    LAUNCH_PROGRAM,  ///< A program is associated with it.
    LAUNCH_CHOICE,   ///< The user is to choose a program for it.
};

struct Launch {
    LaunchKind kind = LAUNCH_NOTHING;
    std::string path;     ///< Where the links end; below RootDir and without ".." in it.
    std::string program;  ///< For LAUNCH_PROGRAM, never empty.
};

/// Follows the links that path, which is absolute, may be the first of, and classifies what is at
/// their end.
Launch DecideLaunch(const std::string& path);

/// Where the web browser is started, and where it is seen running.
struct Browser {
    std::string start = "/usr/lib/netscape/start";
    std::string processes = "/proc";
};

/// The process of a running browser of this user, 0 when there is none.
pid_t CheckWebProcess(const std::string& processes = Browser().processes);

/// Finds key in text and puts the rest of its line, without the blanks in front and cut to
/// size - 1 bytes, into value. 0, or 1 when key is not there.
int GetStatus(const char* key, const char* text, std::string& value, std::size_t size);

/// Starts a program, one file name that is searched for along the PATH, with the argument unless
/// that is empty. It is no child of this process, has a session of its own, and inherits nothing
/// open but the standard three. Nobody is told when it cannot be started. The browser's start
/// program has a running browser show the file; where it is not installed, the desktop's own way
/// to open files takes its place. The id of a helper process, which has ended.
pid_t ExecProcess(const std::string& program, const std::string& argument, const Browser& browser = Browser());

/// Starts another instance with the same command line: "fennick" along the PATH, or else the file
/// that this process runs.
pid_t ExecFennick();

/// Where the file of this program stands, ending in "/"; empty when that cannot be told.
std::string GetProgramDirectory();

/// Lets this process have many files open, as far as the system allows: a walk through a deep
/// tree keeps every directory on the way open. Programs that are started get the limit it had before.
void RaiseOpenFileLimit();
