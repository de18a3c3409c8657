// Paths and names of any bytes, as typed, as read from the disk, and as shown.

#include <glib.h>

#include "model/fnkfilelist-rows.h"
#include "core/fnkutil-launch.h"
#include "core/fnkutil.h"
#include "fuzz.h"

namespace {

void CheckSteps(const std::string& text)
{
    const char* const found = CharNext(text.c_str(), '/');
    Expect(found == nullptr || (found < text.c_str() + text.size() && *found == '/'), "the delimiter");
    const std::string_view all = text;
    CharStepper stepper(all.data(), all.data() + all.size());
    std::size_t steps = 0;
    for (const char* at = all.data(); at != all.data() + all.size(); at = stepper.Next(at)) {
        Expect(++steps <= all.size(), "steps go forwards and end at the end");
    }
}

void CheckParts(const std::string& path)
{
    const std::string parent = GetParentDirectory(path);
    const std::string name = GetLastPath(path);
    Expect(path.starts_with(parent), "a parent begins the path");
    Expect(parent + name == path || parent + name + "/" == path, "parent and name are the path");
}

void CheckTyped(const GTable& table, std::string path, bool utf8)
{
    const bool is_longer = path.size() > kMaxPathBytes;
    struct stat st = {};
    const PathStatus status = CheckFileExist(&path);
    Expect(!is_longer || status == PATH_TOO_LONG, "too long");
    if (status == PATH_NEW || status == PATH_DIRECTORY || status == PATH_FILE) {
        Expect(path.starts_with('/') && path.size() <= kMaxPathBytes, "absolute");
        Expect(CheckChildDirectory(path) == 0, "inside the root");
        // Of two bytes that are one character the second may be a "/".
        Expect(!utf8 || (path.find("/../") == std::string::npos && path.find("/./") == std::string::npos), "canonical");
        Expect((lstat(path.c_str(), &st) == 0) == (status != PATH_NEW), "there or not");
        Expect(status == PATH_NEW || S_ISDIR(st.st_mode) == (status == PATH_DIRECTORY), "a directory or not");
        if (status != PATH_NEW) {
            GetFileType(path, st);
            const Launch launch = DecideLaunch(path);
            Expect(launch.kind == LAUNCH_NOTHING || launch.kind == LAUNCH_OUTSIDE_ROOT ||
                       WithSlash(launch.path).starts_with(table.RootDir),
                   "nothing outside the root is opened");
        }
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzHome home;
    static const bool made = [] {
        home.files.File("a");
        home.files.File("d/e/f.c");
        home.files.File("d/\xB0/g");
        home.files.Link("l", "d/e");
        home.files.Link("out", "/");
        home.files.Link("loop", "loop");
        return true;
    }();
    Expect(made, "files to be found");
    const std::string text = AsText(data, size).c_str();
    const bool utf8 = SetLocaleFor(size);
    CheckSteps(text);
    CheckParts(text);
    CheckTyped(home.table, text, utf8);
    const std::string shown = DisplayText(AsText(data, size));
    Expect(g_utf8_validate(shown.data(), static_cast<gssize>(shown.size()), nullptr) != FALSE, "what is shown");
    CheckFileName(text);
    GetCompatibleAP(text);
    AddHistoryListS(home.table.DirHistory, text);
    Expect(home.table.DirHistory.size() <= 10, "a history of ten");
    return 0;
}
