#pragma once
// What the directory tree reads from the disk.

#include <string>
#include <vector>

struct Subdirectory {
    std::string name;
    /// A subdirectory of it, the first one met; empty when there is none. It is why the tree can
    /// draw an expander without reading the directory whole.
    std::string any_child;
};

enum ScanResult {
    SCAN_DONE,  ///< Also for a directory that may not be read: it has no children.
    SCAN_FAILED = -65532,
};

/// Lists the subdirectories of directory that the tree shows, in ascending byte order. Links to
/// directories, hidden and backup names (as the settings say) and paths that would grow longer
/// than kMaxPathBytes are left out. Whatever goes wrong below directory counts as no child there.
ScanResult ScanSubdirectories(const std::string& directory, std::vector<Subdirectory>& found);
