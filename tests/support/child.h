#pragma once
// Expectations that need a process of their own: another user, a limit, a mount.

#include <grp.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>
#include <functional>

#include "scratch.h"

enum ChildResult { CHILD_PASSED, CHILD_FAILED, CHILD_SKIPPED, CHILD_DIED };

/// Runs body in a forked child, which prints what it expected in vain, and waits for it. A child
/// that hangs dies of the alarm.
inline ChildResult RunInChild(const std::function<void()>& body)
{
    std::fflush(nullptr);
    const pid_t child = fork();
    if (child == 0) {
        alarm(60);
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

/// In a child: goes on as a user whom permissions stop and who owns directory.
inline void BecomeOrdinaryUser(const ScratchDirectory& directory)
{
    constexpr uid_t kNobody = 65534;
    if (geteuid() == 0) {
        Require(chown(directory.Path().c_str(), kNobody, kNobody) == 0 && setgroups(0, nullptr) == 0 &&
                    setresgid(kNobody, kNobody, kNobody) == 0 && setresuid(kNobody, kNobody, kNobody) == 0,
                "setresuid");
    }
}

/// In a child: puts a file system of that size at path, seen by the child alone. The child ends as
/// skipped where that is not allowed.
inline void MountSmallDisk(const std::string& path, const char* size_option)
{
    if (geteuid() != 0 || unshare(CLONE_NEWNS) != 0 || mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0 ||
        mount("none", path.c_str(), "tmpfs", 0, size_option) != 0) {
        _exit(CHILD_SKIPPED);
    }
}
