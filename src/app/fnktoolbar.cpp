#include "app/fnktoolbar.h"

#include <array>
#include <string>
#include <vector>

#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "kit/fnkmainwindow-record.h"
#include "kit/fnkutil-shortcut.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist-status.h"

#include "Back.xpm"
#include "Foward.xpm"
#include "Home.xpm"
#include "Property.xpm"
#include "Rescan.xpm"
#include "Up.xpm"

namespace {

/// The list needs the height more than the buttons do.
constexpr const char* kBarStyle = "toolbar { padding: 1px; }";
constexpr const char* kButtonStyle = "button { padding: 1px 6px; min-height: 0; }";
/// All buttons fit into a window of the default width in every language.
constexpr const char* kLabelStyle = "label { padding: 0; }";

using ToolHandler = void (*)(GtkWidget*, gpointer);

struct ToolEntry {
    const char* label;  ///< Null for a space.
    Picture image;
    ToolHandler handler;
    const char* shortcut;  ///< Null for none.
};

constexpr std::array<ToolEntry, TOOL_SLOT_COUNT> kTools = {{
    {N_("Back"), PICTURE(Back), on_Tool_Back_clicked, "<Alt>Left"},
    {N_("Up"), PICTURE(Up), on_Tool_Up_clicked, "<Alt>Up"},
    {N_("Forward"), PICTURE(Foward), on_Tool_Forward_clicked, "<Alt>Right"},
    {nullptr, {}, nullptr, nullptr},
    {N_("Rescan"), PICTURE(Rescan), on_Tool_Rescan_clicked, "F5"},
    {nullptr, {}, nullptr, nullptr},
    {N_("Home"), PICTURE(Home), on_Tool_Home_clicked, "<Alt>Home"},
    {nullptr, {}, nullptr, nullptr},
    {N_("Property"), PICTURE(Property), on_Tool_Property_clicked, nullptr},
}};

/// Calls the handler, unless the records are already gone. A visit may replace another.
void on_Tool_clicked(GtkWidget* item, gpointer slot)
{
    if (pGTable != nullptr && !IsModal()) {
        kTools[GPOINTER_TO_SIZE(slot)].handler(item, nullptr);
    }
}

/// Not the accelerator of the button, which would be dead where the window is too narrow for it.
gboolean on_Tool_shortcut(gpointer slot)
{
    if (pGTable != nullptr && !IsModal() && gtk_widget_get_sensitive(pMainW->ToolButton[GPOINTER_TO_SIZE(slot)])) {
        kTools[GPOINTER_TO_SIZE(slot)].handler(nullptr, nullptr);
    }
    return TRUE;
}

gboolean on_Tool_enter(GtkWidget*, GdkEvent*, gpointer slot)
{
    if (pMainW != nullptr && pMainW->StatusBar != nullptr) {
        SetStatusBarText(pMainW->StatusBar, GetToolTipsString(GPOINTER_TO_INT(slot)));
    }
    return FALSE;
}

gboolean on_Tool_leave(GtkWidget*, GdkEvent*, gpointer)
{
    RestoreStatusText();
    return FALSE;
}

GtkWidget* CreateToolButton(GtkWidget* toolbar, int slot)
{
    const ToolEntry& tool = kTools[static_cast<std::size_t>(slot)];
    if (tool.label == nullptr) {
        GtkToolItem* const space = gtk_separator_tool_item_new();
        gtk_toolbar_insert(GTK_TOOLBAR(toolbar), space, -1);
        gtk_widget_show(GTK_WIDGET(space));
        return toolbar;
    }
    GtkWidget* const image = CreatePixmap(tool.image);
    gtk_widget_show(image);
    GtkToolItem* const item = gtk_tool_button_new(image, gettext(tool.label));
    std::string tip = GetToolTipsString(slot);
    if (tool.shortcut != nullptr) {
        tip = TipWithShortcut(tip, tool.shortcut);
        AddShortcut(pMainW->MainWindow, tool.shortcut, on_Tool_shortcut, GINT_TO_POINTER(slot));
    }
    GtkWidget* const label = gtk_label_new(gettext(tool.label));
    SetStyle(label, kLabelStyle);
    gtk_widget_show(label);
    gtk_tool_button_set_label_widget(GTK_TOOL_BUTTON(item), label);
    gtk_tool_item_set_tooltip_text(item, tip.c_str());
    // Buttons of equal width would not fit into a window of the default width.
    gtk_tool_item_set_homogeneous(item, FALSE);
    gtk_toolbar_insert(GTK_TOOLBAR(toolbar), item, -1);
    gtk_widget_show(GTK_WIDGET(item));
    g_signal_connect(item, "clicked", G_CALLBACK(on_Tool_clicked), GINT_TO_POINTER(slot));

    GtkWidget* const button = gtk_bin_get_child(GTK_BIN(item));
    SetStyle(button, kButtonStyle);
    gtk_widget_set_can_focus(button, FALSE);  // Keys belong to the panes.
    gtk_widget_add_events(button, GDK_ENTER_NOTIFY_MASK | GDK_LEAVE_NOTIFY_MASK);
    g_signal_connect(button, "enter-notify-event", G_CALLBACK(on_Tool_enter), GINT_TO_POINTER(slot));
    g_signal_connect(button, "leave-notify-event", G_CALLBACK(on_Tool_leave), GINT_TO_POINTER(slot));
    return GTK_WIDGET(item);
}

void SetToolSensitive(ToolSlot slot, bool sensitive)
{
    gtk_widget_set_sensitive(pMainW->ToolButton[slot], sensitive);
}

enum HistoryStep { STEP_NEWER = -1, STEP_OLDER = 1 };

/// The indices of the entries that Back or Forward may lead to, the nearest first.
std::vector<int> ListHistoryTargets(HistoryStep step)
{
    const History& history = pGTable->LocationDirHistory;
    std::vector<int> targets;
    for (int i = pGTable->HistoryIndex + step; i >= 0 && i < static_cast<int>(history.size()); i += step) {
        const std::string& path = history[static_cast<std::size_t>(i)];
        if (CheckChildDirectory(path) == 0 && WithSlash(path) != pGTable->CurrentDir) {
            targets.push_back(i);
        }
    }
    return targets;
}

/// Opens the nearest entry that is a directory. Without any, the button has nothing to do.
void WalkHistory(HistoryStep step, ToolSlot slot)
{
    const std::vector<int> targets = ListHistoryTargets(step);
    std::vector<std::string> paths;
    paths.reserve(targets.size());
    for (const int target : targets) {
        paths.push_back(pGTable->LocationDirHistory[static_cast<std::size_t>(target)]);
    }
    const auto before = [targets](std::size_t chosen) {
        pGTable->HistoryWalk = 1;
        pGTable->HistoryIndex = targets[chosen];
        pMainW->IsReturning = true;
    };
    OpenFirstDirectory(MainTree(), paths, EXPAND_LAST_YES, {.before = before},
                       [slot] { SetToolSensitive(slot, false); });
}

}  // namespace

GtkWidget* CreateToolBar(GtkWidget* box)
{
    GtkWidget* const handle_box = CreateHandleBox(box);
    if (handle_box == nullptr) {
        return nullptr;
    }
    GtkWidget* const toolbar = gtk_toolbar_new();
    gtk_toolbar_set_style(GTK_TOOLBAR(toolbar), GTK_TOOLBAR_BOTH);
    SetStyle(toolbar, kBarStyle);
    gtk_container_add(GTK_CONTAINER(handle_box), toolbar);
    gtk_widget_show(toolbar);
    for (int slot = 0; slot < TOOL_SLOT_COUNT; ++slot) {
        pMainW->ToolButton[static_cast<std::size_t>(slot)] = CreateToolButton(toolbar, slot);
    }
    SetToolSensitive(TOOL_UP, false);
    SetToolSensitive(TOOL_FORWARD, false);
    return handle_box;
}

void SensitiveHistoryButtons()
{
    SetToolSensitive(TOOL_BACK, !ListHistoryTargets(STEP_OLDER).empty());
    SetToolSensitive(TOOL_FORWARD, !ListHistoryTargets(STEP_NEWER).empty());
}

void on_Tool_Back_clicked(GtkWidget*, gpointer)
{
    WalkHistory(STEP_OLDER, TOOL_BACK);
}

void on_Tool_Forward_clicked(GtkWidget*, gpointer)
{
    WalkHistory(STEP_NEWER, TOOL_FORWARD);
}

void on_Tool_Up_clicked(GtkWidget*, gpointer)
{
    OpenChildTree(MainTree(), GetParentDirectory(pGTable->CurrentDir), EXPAND_LAST_YES,
                  {.before = [](std::size_t) { pMainW->IsReturning = true; }});
}

void on_Tool_Rescan_clicked(GtkWidget*, gpointer)
{
    OpenChildTree(MainTree(), pGTable->CurrentDir, EXPAND_LAST_YES, {.rescan = {pGTable->CurrentDir}});
}

void on_Tool_Home_clicked(GtkWidget*, gpointer)
{
    const std::string home = GetHomeDirectory();
    const bool is_inside = !home.empty() && CheckChildDirectory(home) == 0;
    OpenChildTree(MainTree(), is_inside ? home : pGTable->RootDir, EXPAND_LAST_YES);
}

void on_Tool_Property_clicked(GtkWidget*, gpointer)
{
    gtk_menu_item_activate(GTK_MENU_ITEM(pMainW->MenuItem[MENU_PROPERTY]));
}
