// The settings file: whatever is in it, a record comes out that can be worked with, and that comes
// back the same after it has been written.

#include "core/fnkfiles-settings.h"
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

}  // namespace

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzHome home;
    const bool utf8 = SetLocaleFor(size);
    home.table = GTable();
    home.Write(".fennick", AsText(data, size));
    Expect(GetGTable() == 0, "reading ends well");
    const GTable& table = home.table;
    Expect(table.ColumnCount >= 1 && table.ColumnCount <= kColumnKinds, "number of columns");
    Expect(table.NameColumn >= 0 && table.NameColumn <= table.ColumnCount, "a column of names");
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
