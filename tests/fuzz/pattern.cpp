// Patterns as typed, and names that they are compared with.

#include <algorithm>

#include "model/fnkfilelist-rows.h"
#include "core/fnkutil.h"
#include "fuzz.h"

namespace {

bool IsPlainByte(char byte)
{
    return byte > 0 && byte != '[' && byte != '\\';
}

/// The two wildcards and nothing else.
bool MatchSimply(const char* pattern, const char* name)
{
    const char* star = nullptr;
    const char* star_name = nullptr;
    while (*name != '\0') {
        if (*pattern == '*') {
            star = ++pattern;
            star_name = name;
        } else if (*pattern != '\0' && (*pattern == '?' || *pattern == *name)) {
            ++pattern;
            ++name;
        } else if (star != nullptr) {
            pattern = star;
            name = ++star_name;
        } else {
            return false;
        }
    }
    return pattern[std::strspn(pattern, "*")] == '\0';
}

}  // namespace

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
    const auto is_plain = [](const std::string& text) { return std::all_of(text.begin(), text.end(), IsPlainByte); };
    SetLocaleFor(size);
    const bool matches = MatchPattern(pattern, name.c_str());
    Expect(!is_plain(pattern) || !is_plain(name) || matches == MatchSimply(pattern.c_str(), name.c_str()),
           "the same as a simple comparison");
    Expect(MatchPattern("*", name.c_str()), "everything");
    home.table.Filter = 1;
    home.table.FilterName = pattern;
    Expect(name == ".." || (CheckFilter(name.c_str()) != 0) == matches, "the filter is the pattern");
    return 0;
}
