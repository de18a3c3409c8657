// Texts of lines: the settings, from which a usable record comes that is the same once it was
// written and read again; the associations; and what the system says of a process.

#include <algorithm>

#include "core/fnkfiles-associations.h"
#include "core/fnkfiles-settings.h"
#include "core/fnkutil-launch.h"
#include "fuzz.h"

// Nothing here has to survive a failing machine, and the disk is slow.
extern "C" void sync() noexcept {}
extern "C" int fsync(int /*file*/)
{
    return 0;
}

namespace {

void ExpectToComeBack(FuzzHome& home)
{
    Expect(SetGTable() == FILE_DONE, "what was read can be written");
    const std::string written = home.files.Contents(".fennick");
    home.table = GTable();
    Expect(GetGTable() == 0 && SetGTable() == FILE_DONE, "and once more");
    Expect(home.files.Contents(".fennick") == written, "what is written is read again");
}

void CheckAssociations(FuzzHome& home, const std::string& text)
{
    home.Write(".extension", text);
    std::vector<AppInfo>& list = home.table.ExtensionList;
    list.clear();
    Expect(ReadAppInfo("[Extension]", &list) == 0 && ReadAppInfo("[Application]", &list) == 0, "reading ends well");
    for (const AppInfo& entry : list) {
        Expect(entry.Key.size() <= 255 && entry.Key.size() + entry.Value.size() < kMaxPathBytes, "lengths");
        Expect(text.find(entry.Key + "=" + entry.Value) != std::string::npos, "a line of the file");
        const std::string* const program = GetCompatibleAP("/directory.d/name." + entry.Key);
        Expect(program == nullptr || text.find(*program) != std::string::npos, "a program of the file");
    }
}

void CheckStatus(const std::string& text)
{
    for (const char* const key : {"Name:", "State:"}) {
        std::string value = "before";
        if (GetStatus(key, text.c_str(), value, 5) != 0) {
            Expect(value == "before" && text.find(key) == std::string::npos, "left alone");
        } else {
            Expect(value.size() < 5 && value.find('\n') == std::string::npos, "one line, cut");
        }
    }
}

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzHome home;
    const bool utf8 = SetLocaleFor(size);
    home.table = GTable();
    const std::string text = AsText(data, size);
    CheckStatus(text.c_str());
    CheckAssociations(home, text);
    home.Write(".fennick", text);
    Expect(GetGTable() == 0, "reading ends well");
    const GTable& table = home.table;
    Expect(table.ColumnCount >= 1 && table.ColumnCount <= kColumnKinds, "number of columns");
    for (int i = 0; i < table.ColumnCount; ++i) {
        const auto begin = table.ColumnPosition.begin();
        Expect(std::count(begin, begin + table.ColumnCount, begin[i]) == 1 && begin[i] >= 0, "each column once");
    }
    Expect(table.NameColumn >= 1 && table.NameColumn <= table.ColumnCount, "a column of names");
    Expect(table.CurrentDir.size() < kMaxPathBytes && table.FilterName.size() <= kMaxFilterBytes, "lengths");
    for (const History* const history : {&table.LocationDirHistory, &table.DirHistory, &table.FilterHistory}) {
        for (const std::string& entry : *history) {
            Expect(!entry.empty() && entry.size() <= kMaxPathBytes, "entries of histories");
        }
    }
    // A text that ends in the first half of a character would take the line's end with it. A
    // whole file is much to read: not every time.
    if (utf8 && size % 8 == 1) {
        ExpectToComeBack(home);
    }
    return 0;
}
