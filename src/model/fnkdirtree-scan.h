#pragma once
// Reads subdirectories for the directory tree.

#include <string>
#include <vector>

struct Subdirectory {
    std::string name;
    /// Any subdirectory of this one, or empty. It tells the tree whether to draw an expander, without
    /// reading the whole directory.
    std::string any_child;
};

enum ScanResult {
    SCAN_DONE,  ///< Also without permission to read the directory; there are no children then.
    SCAN_FAILED = -65532,
};

/// Appends the subdirectories that the tree shows and sorts found by bytes. Skips links, paths
/// longer than kMaxPathBytes and, depending on the settings, hidden and backup names. A
/// subdirectory that cannot be read has no child.
ScanResult ScanSubdirectories(const std::string& directory, std::vector<Subdirectory>& found);
