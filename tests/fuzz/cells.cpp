// The texts that the list is sorted by.

#include "model/fnkfilelist-sort.h"
#include "fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzHome home;
    std::uint64_t numbers[2] = {};
    AsText(data, size).copy(reinterpret_cast<char*>(numbers), sizeof numbers);
    const auto [a, b] = AsTwoTexts(data, size);
    for (int flags = 0; flags < 4; ++flags) {
        home.table.SortCase = flags & 1;
        home.table.JapaneseLocale = flags >> 1;
        Expect((CompareString(a.c_str(), b.c_str()) > 0) == (CompareString(b.c_str(), a.c_str()) < 0), "texts");
        Expect(CompareSize(a.c_str(), b.c_str()) + CompareSize(b.c_str(), a.c_str()) <= 1, "sizes");
        const bool later = CompareTime(a.c_str(), b.c_str()) > 0;
        Expect(!(later && CompareTime(b.c_str(), a.c_str()) > 0), "times");

        // What the program itself writes into the cells is ordered as what it stands for.
        const std::string sizes[] = {ConvertSize(numbers[0]), ConvertSize(numbers[1])};
        Expect(CompareSize(sizes[0].c_str(), sizes[1].c_str()) == 0 || numbers[0] > numbers[1], "sizes of files");
        std::string times[2];
        std::int64_t minutes[2] = {};
        for (int i = 0; i < 2; ++i) {
            // Years of four digits.
            const auto seconds = static_cast<std::int64_t>(numbers[i] % 250'000'000'000);
            times[i] = GetFormatTime(seconds, false).value_or("");
            minutes[i] = seconds / 60;
        }
        Expect((CompareTime(times[0].c_str(), times[1].c_str()) > 0) == (minutes[0] > minutes[1]), "times of files");
    }
    return 0;
}
