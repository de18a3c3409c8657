#include "kit/fnkcommand.h"

#include <glib.h>

#include <utility>

#include "core/fnktable.h"
#include "kit/fnkutil-widget.h"
#include "kit/fnkvisit.h"

bool IsBusy()
{
    return IsModal() || IsVisiting();
}

void StartCommand(std::function<void()> command)
{
    if (IsBusy()) {
        return;
    }
    const auto run = [](gpointer data) -> gboolean {
        if (pGTable != nullptr && !IsBusy()) {
            (*static_cast<std::function<void()>*>(data))();
        }
        return G_SOURCE_REMOVE;
    };
    const auto forget = [](gpointer data) { delete static_cast<std::function<void()>*>(data); };
    g_idle_add_full(G_PRIORITY_DEFAULT, run, new std::function<void()>(std::move(command)), forget);
}
