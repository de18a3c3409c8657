#pragma once
// Watches a directory from which something was dragged: another program may take it some time later.

#include <string>

/// Reads the directory, which ends in "/", again whenever entries have gone from it, as long as it or a
/// directory below it is shown. Replaces an earlier watch.
void WatchDirectory(const std::string& path);
