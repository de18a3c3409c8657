// Texts of others: paths and names, as typed, as read from the disk, and as shown; patterns; what is
// dropped.

#include <glib.h>

#include "core/fnkutil-launch.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "fuzz.h"
#include "model/fnkfilelist-rows.h"
#include "model/fnkfiles-dragtext.h"

namespace {

/// What comes before the first NUL is the pattern, what follows it the name.
void MatchText(const std::string& text)
{
    const std::string pattern = text.substr(0, text.find('\0'));
    const std::string name = pattern.size() < text.size() ? text.c_str() + pattern.size() + 1 : "";
    if (IsUsablePattern(pattern)) {
        MatchPattern(pattern, name.substr(0, 255).c_str());
        Expect(MatchPattern("*", name.substr(0, 255).c_str()), "everything");
    } else {
        Expect(pattern.empty() || pattern.size() > kMaxFilterBytes, "any other text is a pattern");
    }
}

void DropText(const std::string& text)
{
    for (const auto& paths : {SplitDragText(text), SplitUriList(text)}) {
        for (const std::string& path : paths) {
            Expect(path.starts_with('/') && path.size() <= kMaxPathBytes, "an absolute path");
            Expect(path.find('\0') == std::string::npos, "a name that a file can have");
        }
        const std::vector<std::string> again = SplitUriList(MakeUriList(paths));
        Expect(std::equal(again.begin(), again.end(), paths.begin(), paths.end(),
                          [](const auto& a, const auto& b) { return WithSlash(a) == WithSlash(b); }),
               "a list comes back");
    }
}

}  // namespace

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
    const bool is_utf8 = SetLocaleFor(size);
    MatchText(AsText(data, size));
    DropText(AsText(data, size));
    std::string text = AsText(data, size);
    text.erase(std::min(text.find('\0'), text.size()));
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
