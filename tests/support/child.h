#pragma once
// Expectations that need a process of their own: another user, a limit, a mount, a violent end.

#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>
#include <string>

#include "scratch.h"

enum ChildResult { CHILD_PASSED, CHILD_FAILED, CHILD_DIED, CHILD_SKIPPED };

/// Runs body in a forked child, which prints what it expected in vain, and waits for it. A child
/// that hangs dies of the alarm.
inline ChildResult RunInChild(const std::function<void()>& body)
{
    constexpr unsigned kDeadline = 60;
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(kDeadline);
        try {
            body();
        } catch (const std::exception& failure) {
            ADD_FAILURE() << failure.what();
        }
        std::fflush(nullptr);
        _exit(::testing::Test::HasFailure() ? CHILD_FAILED : CHILD_PASSED);
    }
    int status = 0;
    Require(child > 0 && waitpid(child, &status, 0) == child, "child");
    return WIFEXITED(status) ? static_cast<ChildResult>(WEXITSTATUS(status)) : CHILD_DIED;
}

/// In a child: goes on as a user whom permissions stop, and who owns the directories.
inline void BecomeOrdinaryUser(std::initializer_list<const ScratchDirectory*> owned)
{
    constexpr uid_t kNobody = 65534;
    if (geteuid() != 0) {
        return;
    }
    for (const ScratchDirectory* const directory : owned) {
        Require(chown(directory->Path().c_str(), kNobody, kNobody) == 0, "chown");
    }
    Require(setgroups(0, nullptr) == 0 && setresgid(kNobody, kNobody, kNobody) == 0 &&
                setresuid(kNobody, kNobody, kNobody) == 0,
            "setresuid");
}

/// In a child: puts a file system of so many bytes at path, seen by the child alone. Ends the
/// child as skipped where that is not allowed.
inline void MountSmallDisk(const std::string& path, const char* size)
{
    const int own_user = geteuid() == 0 ? 0 : CLONE_NEWUSER;
    const std::string options = std::string("mode=0777,size=") + size;
    if (unshare(CLONE_NEWNS | own_user) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", path.c_str(), "tmpfs", 0, options.c_str()) != 0) {
        _exit(CHILD_SKIPPED);
    }
}
