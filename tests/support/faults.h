#pragma once
// The engine's system calls, which the linker leads through here to be counted and made to fail.

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
    std::string log = " ";       ///< The calls, each with a blank behind it.
    std::atomic<int> syncs = 0;  ///< Calls of sync() and syncfs().
    std::atomic<int> flush_error = 0;
    std::function<void()> at_call;    ///< Runs at that call, which then does not fail.
    bool is_old_file_system = false;  ///< No O_TMPFILE, no d_type, no RENAME_NOREPLACE.
    bool spares_disk = false;         ///< Nothing has to survive a crash of the machine.

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
