// Going places: the history, the other buttons of the toolbar, the location bar.

#include <map>

#include "windowtest.h"

namespace {

class Navigation : public WindowTest {
protected:
    Navigation() { Make({"A/a/", "B/", "C/", "D/"}); }

    /// Which of Back and Forward are offered, the place in the history, and the history.
    std::string State() const override
    {
        std::string text = IsToolSensitive(TOOL_BACK) ? "b" : "";
        text += (IsToolSensitive(TOOL_FORWARD) ? "f" : "") + std::to_string(pGTable->HistoryIndex) + ":";
        for (const std::string& path : pGTable->LocationDirHistory) {
            const bool is_below = path.starts_with(files.Path());
            text += path == files.Path() ? "." : is_below ? path.substr(files.Path().size()) : "?";
        }
        return text;
    }
};

TEST_F(Navigation, BackAndForwardWalkTheHistory)
{
    Start();
    Steps(
        "visit . = . - 0:.; node A = A/ - b0:A/.; node B = B/ - b0:B/A/.; node C = C/ - b0:C/B/A/.;"
        "back = B/ - bf1:C/B/A/.; back = A/ - bf2:C/B/A/.; back = . - f3:C/B/A/.; forward = A/ - bf2:C/B/A/.;"
        "forward = B/ - bf1:C/B/A/.; forward = C/ - b0:C/B/A/.; back;"
        // Going elsewhere adds to the front, and is the newest place.
        "node D = D/ - b0:D/C/B/A/.; back; back = B/ - bf2:D/C/B/A/.; node A = A/ - b0:A/D/C/B/.; back; back; back;"
        "back = . - f4:A/D/C/B/.; node D = D/ - b0:D/A/C/B/.; visit A/a; visit B = B/ - b0:B/A/a/D/A/C/.");
    // The drop-down offers the same. Picking from it only fills the entry; Return is for that.
    GtkComboBox* const combo = GTK_COMBO_BOX(pMainW->LocationCombo);
    EXPECT_EQ(gtk_tree_model_iter_n_children(gtk_combo_box_get_model(combo), nullptr), 6);
    gtk_combo_box_set_active(combo, 1);
    Settle();
    ExpectConsistent(DISK_AS_SHOWN, files.At("A/a/"));
    Steps("key Return = A/a/");
}

TEST_F(Navigation, BackGoesOnPastEntriesThatLeadNowhere)
{
    Settings("[LocationDirHistory]\nHistoryCount=3\nHistory0=/outside/\nHistory1=" + files.At("A/gone/further/") +
             "\nHistory2=" + files.At("B/") + "\n");
    Start();
    Steps(
        "back = B/ - f3:.?A/gone/further/B/; forward = . - b0:.?A/gone/further/B/; remove B; rescan;"
        "back = . - 0:.?A/gone/further/B/");
}

TEST_F(Navigation, UpHomeAndRescan)
{
    Start(files.Path(), files.At("A/a"));
    Steps("up = A/; up = .; visit A/a; home = .");
    home_variable.Set(nullptr);
    Steps("visit A/a; home = .; collapse A");
    home_variable.Set(files.At("A").c_str());
    Steps("home = A/; make A/b/; make A/file; rescan = A/; make E/below/; reread = .");
    EXPECT_FALSE(IsExpanded(files.At("A")));
    // Of what is gone, what is left of the way there.
    Steps("visit A/a = A/a/; remove A; make A; rescan = .");
    EXPECT_FALSE(IsInTree(files.At("A")));
}

TEST_F(Navigation, ATypedPathIsEnteredAsFarAsItExists)
{
    Make({"A/file", "\xFE/", "\xFF/"});
    Start();
    Steps(
        "type A/a; key Return = A/a/; type B/; key Return = B/;"
        "type A/file; key Return = A/; type A/a//; key Return = A/a/; type D/gone/further; key Return = D/ - b0:D/A/a/A/B/.;"
        "visit \xFF; visit \xFE = \xFE/");
    // The home, links, and what a shell would make of it.
    home_variable.Set(files.At("A").c_str());
    Make({"to-a -> A/a", "out -> /etc"});
    for (const auto& [typed, shown] : std::map<std::string, std::string>{{"~", "A/"},
                                                                         {"~/a/..//a/.", "A/a/"},
                                                                         {files.At("to-a"), "A/a/"},
                                                                         {files.At("out"), ""},
                                                                         {files.At("A/../B"), "B/"}}) {
        Visit("D");
        Type(typed);
        Press(GDK_KEY_Return);
        EXPECT_EQ(pGTable->CurrentDir, files.At(shown)) << typed;
    }
    Type("/half");
    Press(GDK_KEY_Escape);
    ExpectConsistent();
    EXPECT_FALSE(IsEntryFocused());
    Steps("visit \xFF; visit \xFE = \xFE/");
    // Bytes that are no text count until they are edited. Both look alike.
    gtk_combo_box_set_active(GTK_COMBO_BOX(pMainW->LocationCombo), 1);
    Steps("key Return = \xFF/");
    Type(LocationShown() + "x");
    Steps("key Return = .");
    EXPECT_FALSE(IsEntryFocused());
}

TEST_F(Navigation, ARejectedPathKeepsTheFocusUntilItIsCorrectedOrCleared)
{
    Start();
    Visit("A");
    std::string long_path = files.At("B/");
    while (long_path.size() <= kMaxPathBytes) {
        long_path += "\xE6\x97\xA5";  // Longer than the limit in bytes, not in characters.
    }
    for (const std::string& typed : Names{"/etc", long_path, files.At("A/gone")}) {
        Type(typed);
        Steps("key Return");
        Press("Tab");
        ClickRow("a");
        gtk_window_set_focus(Window(), nullptr);
        EXPECT_TRUE(IsEntryFocused());
        ExpectConsistent(DISK_AS_SHOWN, typed);
        UnselectAllListRows();
    }
    EXPECT_EQ(pGTable->CurrentDir, files.At("A/"));
    for (const std::string& text : {std::string(), files.At("A/")}) {
        Type(text);
        Press("Tab");
        EXPECT_FALSE(IsEntryFocused());
    }
    ExpectAt("A/");
}

}  // namespace
