// Patterns, and names to match: the text up to the first NUL, and what follows it.

#include "core/fnkutil.h"
#include "fuzz.h"
#include "model/fnkfilelist-rows.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const std::string text = AsText(data, size);
    const std::string pattern = text.c_str();
    const std::string name = pattern.size() < size ? text.c_str() + pattern.size() + 1 : "";
    SetLocaleFor(size);
    if (IsUsablePattern(pattern)) {
        MatchPattern(pattern, name.substr(0, 255).c_str());
        Expect(MatchPattern("*", name.substr(0, 255).c_str()), "everything");
    } else {
        Expect(pattern.empty() || pattern.size() > kMaxFilterBytes, "any other text is a pattern");
    }
    return 0;
}
