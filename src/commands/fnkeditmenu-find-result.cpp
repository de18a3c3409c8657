#include "commands/fnkeditmenu-find-result.h"

#include <array>
#include <optional>

#include "commands/fnkeditmenu-find-model.h"
#include "core/fnkfiles-place.h"
#include "core/fnkstring.h"
#include "core/fnkutil.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree-view.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"

namespace {

constexpr int kWidth = 410;
constexpr int kHeight = 380;
constexpr int kSpacing = 5;
constexpr int kButtonSpacing = 10;
constexpr int kLabelCharacters = 40;
constexpr guint kPollInterval = 33;  ///< Milliseconds.

/// Lives as long as the dialog.
struct FindResultInfo {
    FindResult Result = FIND_RESULT_CLOSE;
    std::optional<BackgroundSearch> Search;  ///< Set while the search runs.
    guint Timer = 0;                         ///< Polls the search; 0 once it is done.
    GtkWidget* Label = nullptr;
    std::array<GtkWidget*, 2> Buttons = {};  ///< "Display directory" and "Serch again".
    GtkWidget* OKButton = nullptr;
    GtkTreeView* ResultTree = nullptr;
};

void SetResultSensitive(const FindResultInfo* info, bool sensitive)
{
    for (GtkWidget* const widget : {info->Buttons[0], info->Buttons[1], info->OKButton, GTK_WIDGET(info->ResultTree)}) {
        gtk_widget_set_sensitive(widget, sensitive);
    }
}

void ShowFound(const FindResultInfo* info, FoundTree found)
{
    GtkTreeModel* const model = NewFoundModel(std::move(found));
    gtk_tree_view_set_model(info->ResultTree, model);
    g_object_unref(model);
    gtk_tree_view_expand_all(info->ResultTree);
    gtk_label_set_text(GTK_LABEL(info->Label), _("Match file list"));
    SetResultSensitive(info, true);
    gtk_widget_grab_focus(info->OKButton);
}

gboolean on_Search_timeout(gpointer data)
{
    auto* const info = static_cast<FindResultInfo*>(data);
    if (!info->Search->IsDone()) {
        const std::string name = DisplayText(info->Search->CurrentName());
        gtk_label_set_text(GTK_LABEL(info->Label), FormatText(_("Find...%s"), name.c_str()).c_str());
        return G_SOURCE_CONTINUE;
    }
    info->Timer = 0;
    ShowFound(info, info->Search->TakeResult());
    info->Search.reset();
    return G_SOURCE_REMOVE;
}

void on_FindResult_OKButton_clicked(GtkWidget*, gpointer data)
{
    static_cast<FindResultInfo*>(data)->Result = FIND_RESULT_CLOSE;
    gtk_main_quit();
}

/// Stops a running search. If the search does not react, as when a disk hangs, a second close leaves
/// the dialog without waiting for it.
gboolean on_FindResult_delete_event(GtkWidget*, GdkEvent*, gpointer data)
{
    auto* const info = static_cast<FindResultInfo*>(data);
    if (info->Search && !info->Search->IsStopped()) {
        info->Search->Stop();
    } else {
        gtk_button_clicked(GTK_BUTTON(info->OKButton));
    }
    return TRUE;
}

/// Shows the selected match in the main window: opens a directory, or scrolls to a file in its
/// directory.
void OpenSelected(GtkTreeView* tree)
{
    std::string path;
    if (!GetTreeSelect(tree, nullptr, &path)) {
        return;
    }
    path = WithoutSlash(path);
    const auto show_file = [directory = GetParentDirectory(path), name = GetLastPath(path)] {
        if (pGTable->CurrentDir == directory) {
            ShowListRow(name);
        }
    };
    OpenFirstDirectory(MainTree(), {path, GetParentDirectory(path)}, EXPAND_LAST_NO, {.after = show_file}, nullptr);
}

void on_FindResult_ResultButton_clicked(GtkWidget* button, gpointer data)
{
    auto* const info = static_cast<FindResultInfo*>(data);
    if (button == info->Buttons[0]) {
        info->Result = FIND_RESULT_DISPLAY;
        OpenSelected(info->ResultTree);
    } else {
        info->Result = FIND_RESULT_AGAIN;
    }
    gtk_main_quit();
}

void on_ResultTree_row_activated(GtkTreeView*, GtkTreePath*, GtkTreeViewColumn*, gpointer button)
{
    gtk_button_clicked(GTK_BUTTON(button));
}

GtkWidget* AddLabel(GtkWidget* box)
{
    GtkWidget* const label = CreateLabel(box, _("Find..."));
    ShortenLabel(label, kLabelCharacters);
    return label;
}

GtkTreeView* AddResultTree(GtkWidget* box, const std::string& start)
{
    GtkWidget* const scroll = CreateScroll();
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scroll), GTK_SHADOW_IN);
    gtk_box_pack_start(GTK_BOX(box), scroll, TRUE, TRUE, 0);
    GtkTreeModel* const model = NewFoundModel(FoundTree(start));
    GtkTreeView* const tree = CreateNodeView(scroll, model, _("Match file list"));
    g_object_unref(model);
    // The only way to select a match with the keyboard.
    gtk_widget_set_can_focus(GTK_WIDGET(tree), TRUE);
    return tree;
}

void AddResultButtons(GtkWidget* box, FindResultInfo* info)
{
    GtkWidget* const button_box = gtk_button_box_new(GTK_ORIENTATION_HORIZONTAL);
    gtk_button_box_set_layout(GTK_BUTTON_BOX(button_box), GTK_BUTTONBOX_SPREAD);
    gtk_box_set_spacing(GTK_BOX(button_box), kButtonSpacing);
    gtk_box_pack_start(GTK_BOX(box), button_box, FALSE, FALSE, 0);
    const std::array<const char*, 2> labels = {_("Display directory"), _("Serch again")};
    for (std::size_t i = 0; i < labels.size(); ++i) {
        info->Buttons[i] = gtk_button_new_with_label(labels[i]);
        gtk_container_add(GTK_CONTAINER(button_box), info->Buttons[i]);
        g_signal_connect(info->Buttons[i], "clicked", G_CALLBACK(on_FindResult_ResultButton_clicked), info);
    }
    gtk_widget_show_all(button_box);
}

}  // namespace

FindResult CreateFindResultDlg(GtkWidget* parent, const FindRequest& request)
{
    FindResultInfo info;
    GtkWidget* vbox = nullptr;
    GtkWidget* const dialog = CreateNormalDialogBox(&vbox, kWidth, kHeight, kSpacing);
    gtk_window_set_title(GTK_WINDOW(dialog), _("Result of find"));
    info.Label = AddLabel(vbox);
    info.ResultTree = AddResultTree(vbox, request.StartPath);
    AddResultButtons(vbox, &info);
    CreateDlgButtonBox(dialog, &info.OKButton, nullptr, CLOSING_UNWIRED);
    SetResultSensitive(&info, false);
    g_signal_connect(info.ResultTree, "row-activated", G_CALLBACK(on_ResultTree_row_activated), info.Buttons[0]);
    g_signal_connect(dialog, "delete-event", G_CALLBACK(on_FindResult_delete_event), &info);
    g_signal_connect(info.OKButton, "clicked", G_CALLBACK(on_FindResult_OKButton_clicked), &info);

    info.Search.emplace(request);
    info.Timer = g_timeout_add(kPollInterval, on_Search_timeout, &info);
    ModalMainLoop(dialog, parent);
    if (info.Timer != 0) {
        g_source_remove(info.Timer);
    }
    return info.Result;
}
