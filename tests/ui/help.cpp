// The Help menu.

#include "commands/fnkhelpmenu.h"

#include "acts.h"
#include "program.h"

namespace {

class Help : public WindowTest {};

TEST_F(Help, TheManualOfThisProgramIsHandedToTheBrowser)
{
    ReportingPrograms programs;
    const std::string browser = programs.Make("xdg-open");
    const ScopedVariable path("PATH", programs.directory.Path().c_str());
    Start();
    const std::string program = files.At("bin/");
    EXPECT_TRUE(FindManual(program).ends_with("/share/fennick/Help/fennick.htm")) << FindManual(program);
    for (const char* const beside : {"help/fennick.htm", "share/fennick/Help/fennick.htm"}) {
        const std::string manual = files.File(beside);
        EXPECT_EQ(FindManual(program), manual);
    }
    if (access("/usr/lib/netscape/start", X_OK) == 0) {
        GTEST_SKIP() << "this machine has a browser of its own to start";
    }
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_MANUAL]));
    const std::vector<std::string> words = programs.Next();
    ASSERT_EQ(words.size(), 2U);
    EXPECT_EQ(words[0], browser);
    EXPECT_TRUE(words[1].starts_with("/") && words[1].ends_with("/fennick.htm")) << words[1];
}

}  // namespace
