// The Help menu, and the manual itself.

#include "fnkhelpmenu.h"

#include "acts.h"
#include "program.h"

namespace {

class Help : public WindowTest {};

TEST_F(Help, TheManualIsHandedToTheBrowser)
{
    ReportingPrograms programs;
    const std::string browser = programs.Make("xdg-open");
    const ScopedVariable path("PATH", programs.directory.Path().c_str());
    Start();
    if (access("/usr/lib/netscape/start", X_OK) == 0) {
        GTEST_SKIP() << "this machine has a browser of its own to start";
    }
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_MANUAL]));
    const std::vector<std::string> words = programs.Next();
    ASSERT_EQ(words.size(), 2U);
    EXPECT_EQ(words[0], browser);
    EXPECT_TRUE(words[1].starts_with("/") && words[1].ends_with("/fennick.htm")) << words[1];
    // It is the manual of the program that runs, wherever that is.
    const std::string program = files.At("bin/");
    EXPECT_TRUE(FindManual(program).ends_with("/share/fennick/Help/fennick.htm")) << FindManual(program);
    const std::string source = files.File("help/fennick.htm");
    EXPECT_EQ(FindManual(program), source);
    const std::string moved = files.File("share/fennick/Help/fennick.htm");
    EXPECT_EQ(FindManual(program), moved);
}

TEST_F(Help, TheManualMentionsEveryEntryAndEverySetting)
{
    std::ifstream stream(FENNICK_MANUAL);
    const std::string manual{std::istreambuf_iterator<char>(stream), {}};
    Start();
    for (GtkWidget* const item : pMainW->MenuItem) {
        const std::string label = GTK_IS_SEPARATOR_MENU_ITEM(item) ? "" : gtk_menu_item_get_label(GTK_MENU_ITEM(item));
        EXPECT_NE(manual.find(">" + label.substr(0, label.find('('))), std::string::npos) << label;
    }
    Close();
    std::istringstream settings(home.Contents(".fennick"));
    for (std::string line; std::getline(settings, line);) {
        const std::string key = line.substr(0, line.find_first_of("=0123456789"));
        if (line.find('=') != std::string::npos && !key.ends_with("History")) {
            EXPECT_NE(manual.find("<code>" + key), std::string::npos) << line;
        }
    }
}

}  // namespace
