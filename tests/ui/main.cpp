// Tests that only list themselves need no display: the toolkit starts in the fixture.

#include <gtest/gtest.h>

#include "scratch.h"

#include <glib.h>

int main(int argc, char** argv)
{
    ::testing::InitGoogleTest(&argc, argv);
    g_log_set_always_fatal(static_cast<GLogLevelFlags>(G_LOG_LEVEL_WARNING | G_LOG_LEVEL_CRITICAL | G_LOG_FATAL_MASK));
    // The same on every machine and in every session. The toolkit asks once where its data goes, so
    // that place outlives the home of a test. Nothing else stands beside the directories of a test.
    const ScratchDirectory scratch;
    chmod(scratch.Path().c_str(), 01777);
    setenv("TMPDIR", scratch.Path().c_str(), 1);
    for (const char* const name : {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME"}) {
        setenv(name, scratch.Directory("toolkit").c_str(), 1);
    }
    setenv("LOCPATH", FENNICK_MARKED_CATALOGUES, 1);
    setenv("LC_ALL", "xx.UTF-8", 1);
    unsetenv("LANGUAGE");
    umask(022);
    return RUN_ALL_TESTS();
}
