// What other programs say that is dropped.

#include "model/fnkfiles-dragtext.h"
#include "core/fnkutil.h"
#include "fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzHome home;
    const std::string text = AsText(data, size);
    for (const auto& paths : {SplitDragText(text), SplitUriList(text)}) {
        bool is_unambiguous = true;
        for (const std::string& path : paths) {
            Expect(path.starts_with('/') && path.size() <= kMaxPathBytes, "an absolute path");
            Expect(path.find('\0') == std::string::npos, "a name that a file can have");
            is_unambiguous = is_unambiguous && path.find("file:") == std::string::npos && !path.starts_with("//");
        }
        // "file:" in a name reads as the next item.
        Expect(!is_unambiguous || SplitDragText(MakeDragText(paths)) == paths, "a text is taken apart as it was made");
        std::vector<std::string> again = SplitUriList(MakeUriList(paths));
        Expect(again.size() == paths.size(), "a list is taken apart as it was made");
        for (std::size_t i = 0; i < again.size(); ++i) {
            Expect(WithSlash(again[i]) == WithSlash(paths[i]), "a list is taken apart as it was made");
        }
    }
    return 0;
}
