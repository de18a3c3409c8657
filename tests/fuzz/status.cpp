// What processes are said to be.

#include "core/fnkutil-launch.h"
#include "fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto [key, text] = AsTwoTexts(data, size);
    for (const std::string& wanted : {key, std::string("Name:"), std::string("State:")}) {
        for (const std::size_t room : {1U, 5U, 512U}) {
            std::string value = "before";
            if (GetStatus(wanted.c_str(), text.c_str(), value, room) != 0) {
                Expect(value == "before" && text.find(wanted) == std::string::npos, "left alone");
                continue;
            }
            Expect(value.size() < room && value.find('\n') == std::string::npos, "one line, cut");
            Expect(value.empty() || (value.front() != ' ' && value.front() != '\t'), "without blanks in front");
        }
    }
    return 0;
}
