// Patterns as typed, and names that they are compared with.

#include "model/fnkfilelist-rows.h"
#include "core/fnkutil.h"
#include "fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzHome home;
    const auto texts = AsTwoTexts(data, size);
    const std::string& pattern = texts.first;
    const std::string name = texts.second.substr(0, 255);
    if (!IsUsablePattern(pattern)) {
        Expect(pattern.empty() || pattern.size() > kMaxFilterBytes, "any other text is a pattern");
        return 0;
    }
    SetLocaleFor(size);
    const bool matches = MatchPattern(pattern, name.c_str());
    Expect(MatchPattern("*", name.c_str()), "everything");
    home.table.Filter = 1;
    home.table.FilterName = pattern;
    Expect(name == ".." || (CheckFilter(name.c_str()) != 0) == matches, "the filter is the pattern");
    return 0;
}
