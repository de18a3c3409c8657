// Files of lines: settings, associations, and the status of a process.

#include "core/fnkfiles-associations.h"
#include "core/fnkfiles-settings.h"
#include "core/fnkutil-launch.h"
#include "fuzz.h"

// Nothing here has to survive a crash of the machine.
extern "C" void sync() noexcept {}
extern "C" int fsync(int /*file*/)
{
    return 0;
}

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzHome home;
    GTable& table = home.table;
    const bool is_utf8 = SetLocaleFor(size);
    const std::string text = AsText(data, size);
    std::string value;
    Expect(GetStatus("Name:", text.c_str(), value, 5) != 0 || value.size() < 5, "cut");
    table = GTable();
    for (const char* const name : {".extension", ".fennick"}) {
        unlink(home.files.At(name).c_str());  // Truncating would wait for the disk.
        home.files.File(name, text);
    }
    ReadAppInfo("[Extension]", &table.ExtensionList);
    for (const AppInfo& entry : table.ExtensionList) {
        Expect(entry.Key.size() <= 255 && entry.Key.size() + entry.Value.size() < kMaxPathBytes, "lengths");
        Expect(text.find(entry.Key + "=" + entry.Value) != std::string::npos, "a line of the file");
        GetCompatibleAP("/directory.d/name." + entry.Key);
    }
    Expect(GetGTable() == 0, "reading ends well");
    Expect(table.ColumnCount >= 1 && table.ColumnCount <= kColumnKinds, "number of columns");
    const auto begin = table.ColumnPosition.begin();
    for (int i = 0; i < table.ColumnCount; ++i) {
        Expect(std::count(begin, begin + table.ColumnCount, begin[i]) == 1 && begin[i] >= 0, "each column once");
    }
    Expect(table.NameColumn >= 1 && table.NameColumn <= table.ColumnCount, "a column of names");
    Expect(table.CurrentDir.size() < kMaxPathBytes && table.FilterName.size() <= kMaxFilterBytes, "lengths");
    // Half a character at the end of a text would take the newline with it. Writing is slow: not every time.
    if (is_utf8 && size % 8 == 1) {
        Expect(SetGTable() == FILE_DONE, "what was read can be written");
        const std::string written = home.files.Contents(".fennick");
        table = GTable();
        Expect(GetGTable() == 0 && SetGTable() == FILE_DONE && home.files.Contents(".fennick") == written,
               "what is written comes back");
    }
    return 0;
}
