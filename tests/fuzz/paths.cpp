// Paths and names, as typed, as read from the disk, and as shown.

#include <glib.h>

#include "core/fnkutil-launch.h"
#include "core/fnkutil.h"
#include "fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static const FuzzHome home;
    [[maybe_unused]] static const bool is_made = [] {
        home.files.File("d/e/f.c");
        home.files.File("d/\xB0/g");
        home.files.Link("l", "d/e");
        home.files.Link("out", "/");
        home.files.Link("loop", "loop");
        return true;
    }();
    const std::string text = AsText(data, size).c_str();
    const bool is_utf8 = SetLocaleFor(size);
    const std::string parts = GetParentDirectory(text) + GetLastPath(text);
    Expect(parts == text || parts + "/" == text, "parent and name are the path");
    const std::string shown = DisplayText(AsText(data, size));
    Expect(g_utf8_validate(shown.data(), static_cast<gssize>(shown.size()), nullptr) != FALSE, "what is shown");
    CheckFileName(text);
    GetCompatibleAP(text);
    std::string path = text;
    const PathStatus status = CheckFileExist(&path);
    if (status == PATH_NEW || status == PATH_DIRECTORY || status == PATH_FILE) {
        Expect(path.starts_with('/') && path.size() <= kMaxPathBytes && CheckChildDirectory(path) == 0, "inside");
        // The second byte of a two-byte character may be a "/".
        Expect(!is_utf8 || (path.find("/../") == std::string::npos && path.find("/./") == std::string::npos),
               "canonical");
        struct stat st = {};
        Expect((lstat(path.c_str(), &st) == 0) == (status != PATH_NEW), "there or not");
        Expect(status == PATH_NEW || S_ISDIR(st.st_mode) == (status == PATH_DIRECTORY), "a directory or not");
        const Launch launch = DecideLaunch(path);
        Expect(launch.kind == LAUNCH_NOTHING || launch.kind == LAUNCH_OUTSIDE_ROOT ||
                   WithSlash(launch.path).starts_with(home.table.RootDir),
               "nothing outside the root is opened");
    }
    return 0;
}
