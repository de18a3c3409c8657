#include "panes/fnkdirtree-visit.h"

#include <memory>
#include <utility>

#include "kit/fnkvisit.h"
#include "panes/fnkdirtree-nodes.h"
#include "panes/fnkdirtree-view.h"

void (*OnRowDetails)(const std::string& directory, const RowDetails& details) = nullptr;

namespace {

VisitReading* arrived = nullptr;

std::string NameVisit(const VisitPlan& plan)
{
    for (const std::vector<std::string>& paths : {plan.open, plan.rescan, plan.expand}) {
        if (!paths.empty()) {
            return paths.front();
        }
    }
    return plan.list;
}

void Show(VisitReading& reading, bool has_details, const std::function<void()>& show)
{
    if (has_details) {
        reading.levels = std::move(reading.looked_ahead);
        reading.rows.SetDetails(reading.details);
    }
    VisitReading* const outer = std::exchange(arrived, &reading);
    show();
    arrived = outer;
}

void ShowDetails(GtkTreeView* tree, const VisitReading& reading)
{
    for (const auto& [directory, found] : reading.looked_ahead) {
        ShowLookAhead(tree, directory, found);
    }
    UpdateSeenNodes(GTK_WIDGET(tree));
    if (!reading.list.empty() && OnRowDetails != nullptr) {
        OnRowDetails(reading.list, reading.details);
    }
}

}  // namespace

void StartTreeVisit(GtkTreeView* tree, VisitPlan plan, std::function<void()> show, std::function<void()> give_up)
{
    const auto reading = std::make_shared<VisitReading>();
    const std::string what = NameVisit(plan);
    const auto read = [reading, owned = std::move(plan)](const std::atomic<bool>& stopped) {
        ReadVisit(owned, *reading, stopped);
    };
    StartVisit(GTK_WIDGET(tree),
               {.what = what,
                .read = read,
                .read_details = [reading](const std::atomic<bool>& stopped) { ReadVisitDetails(*reading, stopped); },
                .show = [reading, show = std::move(show)](bool has_details) { Show(*reading, has_details, show); },
                .show_details = [reading, tree] { ShowDetails(tree, *reading); },
                .give_up = std::move(give_up)});
}

VisitReading* ArrivedReading()
{
    return arrived;
}
