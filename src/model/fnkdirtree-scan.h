#pragma once
// Reads subdirectories for the directory tree.

#include <atomic>
#include <optional>
#include <string>
#include <vector>

struct Subdirectory {
    std::string name;
    /// The name of any one subdirectory of this one, or empty; none if it is not known yet. One is
    /// enough for the tree to draw an expander, so the directory need not be read to its end.
    std::optional<std::string> any_child;
};

enum ScanResult {
    SCAN_DONE,  ///< Also if permission to read the directory is denied; nothing is found then.
    SCAN_FAILED = -65532,
};

/// Appends the subdirectories that the tree shows, then sorts found by the bytes of the names. Skips
/// links, paths longer than kMaxPathBytes and, depending on the settings, hidden and backup names.
/// The any_child of a subdirectory that cannot be read is empty.
ScanResult ScanSubdirectories(const std::string& directory, std::vector<Subdirectory>& found);

/// The same in two steps, each of which ends early once stopped is true: the names, then their any_child.
ScanResult ScanNames(const std::string& directory, std::vector<Subdirectory>& found, const std::atomic<bool>& stopped);
void LookAhead(const std::string& directory, std::vector<Subdirectory>& found, const std::atomic<bool>& stopped);
