// The file of associations.

#include "core/fnkfiles-associations.h"
#include "core/fnkutil-launch.h"
#include "fuzz.h"

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    static FuzzHome home;
    const std::string text = AsText(data, size);
    home.Write(".extension", text);
    SetLocaleFor(size);
    home.table.ExtensionList.clear();
    home.table.ApplicationList.clear();
    Expect(ReadAppInfo("[Extension]", &home.table.ExtensionList) == 0, "reading ends well");
    Expect(ReadAppInfo("[Application]", &home.table.ApplicationList) == 0, "reading ends well");
    for (const auto* const list : {&home.table.ExtensionList, &home.table.ApplicationList}) {
        for (const AppInfo& entry : *list) {
            Expect(entry.Key.size() <= 255 && entry.Key.size() + entry.Value.size() < kMaxPathBytes, "lengths");
            Expect(text.find(entry.Key + "=" + entry.Value) != std::string::npos, "a line of the file");
        }
    }
    for (const AppInfo& entry : home.table.ExtensionList) {
        const std::string* const program = GetCompatibleAP("/directory.d/name." + entry.Key);
        Expect(program == nullptr || text.find(*program) != std::string::npos, "a program of the file");
    }
    return 0;
}
