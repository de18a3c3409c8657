#pragma once
// The engine's calls of the system, all led through here by the linker: counted, and made to fail.

#include <atomic>
#include <functional>
#include <string>

struct Faults {
    /// Calls to go until one fails; negative while none is to fail, and none is counted.
    std::atomic<int> calls_to_go = -1;
    std::atomic<int> calls_made = 0;
    int error = 0;
    std::string failed_call;  ///< Its name, once it has.
    bool is_logging = false;
    std::string log = " ";            ///< The calls, each with a blank behind it.
    std::atomic<int> syncs = 0;       ///< Calls of sync(), which does not fail.
    std::function<void()> at_call;    ///< Done at that call instead of failing it, if there is one.
    bool disk_is_full = false;        ///< From that call on all that take room fail with ENOSPC; no other does.
    bool is_old_file_system = false;  ///< Lacks unnamed files, types of entries, and renaming that replaces nothing.
    bool spares_disk = false;         ///< Nothing here has to survive a failing machine.

    /// The next run of the engine is to fail at its call-th call.
    void Arm(int call, int with_error)
    {
        calls_made = 0;
        error = with_error;
        failed_call.clear();
        calls_to_go = call;
    }
    void Disarm() { calls_to_go = -1; }
};
extern Faults faults;
