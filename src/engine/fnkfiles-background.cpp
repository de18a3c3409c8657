#include "engine/fnkfiles-background.h"

#include <chrono>
#include <future>
#include <system_error>

#include "engine/fnkmessage.h"

void RunInBackground(const std::function<void(const std::atomic<bool>& stop)>& work)
{
    constexpr std::chrono::milliseconds kPollInterval{5};
    std::atomic<bool> stop = false;
    std::future<void> done;
    try {
        done = std::async(std::launch::async, [&] { work(stop); });
    } catch (const std::system_error&) {
        work(stop);  // No thread available: block the windows rather than fail.
        return;
    }
    while (done.wait_for(kPollInterval) != std::future_status::ready) {
        if (OnEngine.KeepPainting()) {
            stop = true;
        }
    }
}
