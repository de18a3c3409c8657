#include "commands/fnkfilemenu-operation.h"

#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <iterator>
#include <memory>

#include "commands/fnkfilemenu-ask.h"
#include "commands/fnkfilemenu-new.h"
#include "commands/fnkfilemenu-targets.h"
#include "core/fnkstring.h"
#include "core/fnktable.h"
#include "core/fnkutil.h"
#include "engine/fnkfiles-copy.h"
#include "kit/fnkmessage-box.h"
#include "kit/fnkprogress.h"
#include "kit/fnkutil-shortcut.h"
#include "kit/fnkutil-widget.h"
#include "panes/fnkdirtree.h"
#include "panes/fnkfilelist.h"

Result RunOperation(OperationKind kind, const std::vector<std::string>& paths, const OperationStep& step,
                    const std::function<void(Result result)>& end)
{
    const auto result = std::make_shared<Result>(RESULT_DONE);
    const RunEnd run_end = RunCommand(paths, kind, [=] {
        for (const std::string& path : paths) {
            // The user may have cancelled while the files were counted.
            *result = OnEngine.IsCancelled() ? RESULT_CANCEL : step(path);
            if (*result == RESULT_CANCEL) {
                break;
            }
        }
        if (end && !OnEngine.IsLeft()) {
            end(*result);
        }
    });
    return run_end == RUN_DONE ? *result : RESULT_CANCEL;
}

namespace {

enum Destination { DESTINATION_READY, DESTINATION_MADE, DESTINATION_REFUSED };

/// Several sources need a directory to go into: at a plain path, each would replace the one before.
/// Creates a missing directory. Shows a message if that fails or a file is in the way.
Destination PrepareDestination(const std::vector<std::string>& sources, const std::string& destination)
{
    if (sources.size() == 1) {
        return DESTINATION_READY;
    }
    const auto mode = WaitFor(destination, [destination] {
        struct stat st = {};
        return lstat(destination.c_str(), &st) == 0 ? st.st_mode : 0;
    });
    if (mode == mode_t(0)) {
        return CreateNewDirectory(destination) ? DESTINATION_MADE : DESTINATION_REFUSED;
    }
    if (mode && !S_ISDIR(*mode)) {
        FileExistMessageBox(PATH_FILE, nullptr);
    }
    return mode && S_ISDIR(*mode) ? DESTINATION_READY : DESTINATION_REFUSED;
}

}  // namespace

void FileOperation(OperationKind kind)
{
    std::vector<std::string> sources;
    std::string description;
    std::string destination;
    const auto mode = static_cast<OperationMode>(kind);
    if (GetFileOperationString(sources, &description) == SELECTION_NONE || !CheckFileOperationPaths(sources) ||
        CreateFileOperationDlg(mode, description, &destination) != RESULT_OK) {
        return;
    }
    const bool is_about_entries = CountListSelection() > 0;
    const Destination prepared = PrepareDestination(sources, destination);
    if (prepared == DESTINATION_REFUSED) {
        return;
    }
    if (sources.size() > 1) {
        destination = WithSlash(destination);
    }
    const Result result = RunOperation(kind, sources, TransferTo(kind, destination), [=](Result last) {
        if (prepared == DESTINATION_MADE && last == RESULT_CANCEL) {
            rmdir(destination.c_str());  // Fails, as it should, if something has been put into it.
        }
    });
    const std::string parent = ParentInTree(destination);
    std::vector<std::string> rescan = {parent};
    if (kind == OPERATION_MOVE) {
        rescan.push_back(ParentInTree(sources.front()));
    }
    // The first that is a directory is opened.
    const std::vector<std::string> shown =
        result == RESULT_DONE ? std::vector{destination, parent} : std::vector{parent};
    const auto select = [=] {
        if (!is_about_entries || result != RESULT_DONE) {
            return;
        }
        // One entry may have got another name.
        std::vector<std::string> names = {GetLastPath(destination)};
        if (pGTable->CurrentDir == WithSlash(destination)) {
            names.clear();
            std::transform(sources.begin(), sources.end(), std::back_inserter(names), GetLastPath);
        }
        SelectListNames(names);
    };
    OpenFirstDirectory(MainTree(), shown, EXPAND_LAST_YES, {.rescan = rescan, .after = select}, nullptr);
}

OperationStep TransferTo(OperationKind kind, const std::string& destination)
{
    return [transfer = kind == OPERATION_MOVE ? MoveFile : CopyFile, destination,
            flag = 0](const std::string& source) mutable { return transfer(destination, source, &flag); };
}

namespace {

constexpr int kPopupBorder = 2;

void AddPopupItem(GtkWidget* menu, const char* label, GCallback handler, PopupChoice* choice)
{
    GtkWidget* const item = CreateMenuItemWithMnemonic(label);
    g_signal_connect(item, "activate", handler, choice);
    gtk_menu_shell_append(GTK_MENU_SHELL(menu), item);
    gtk_widget_show(item);
}

void on_PopupCopy_activate(GtkWidget*, gpointer choice)
{
    *static_cast<PopupChoice*>(choice) = POPUP_COPY;
}

void on_PopupMove_activate(GtkWidget*, gpointer choice)
{
    *static_cast<PopupChoice*>(choice) = POPUP_MOVE;
}

}  // namespace

PopupChoice CreateFileOperationPopup(const GdkEvent* event)
{
    PopupChoice choice = POPUP_NOTHING;
    GtkWidget* const menu = gtk_menu_new();
    g_object_ref_sink(menu);
    gtk_container_set_border_width(GTK_CONTAINER(menu), kPopupBorder);
    AddPopupItem(menu, _("Copy(_C)"), G_CALLBACK(on_PopupCopy_activate), &choice);
    AddPopupItem(menu, _("Move(_M)"), G_CALLBACK(on_PopupMove_activate), &choice);
    gtk_widget_add_events(gtk_widget_get_toplevel(menu), GDK_VISIBILITY_NOTIFY_MASK);
    g_signal_connect(gtk_widget_get_toplevel(menu), "visibility-notify-event", G_CALLBACK(on_Window_visibility_notify),
                     nullptr);
    // A choice emits "deactivate" first. It is safe to quit there: the item's "activate" still comes
    // before gtk_main returns.
    g_signal_connect(menu, "deactivate", G_CALLBACK(on_CancelButton_clicked), nullptr);
    gtk_menu_popup_at_pointer(GTK_MENU(menu), event);
    if (gtk_widget_get_mapped(menu)) {
        const ModalScope scope;
        gtk_main();
    }
    gtk_widget_destroy(menu);
    g_object_unref(menu);
    return choice;
}
