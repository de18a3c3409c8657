// What other programs drop.

#include "core/fnkutil.h"
#include "fuzz.h"
#include "model/fnkfiles-dragtext.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzHome home;
    const std::string text = AsText(data, size);
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
    return 0;
}
