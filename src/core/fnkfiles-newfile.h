#pragma once
// New files and links, which get their name only when they are complete.

#include <string>

#include "core/fnkraii.h"

/// A file that is being written in a directory. It has no name there, or where the file system
/// knows no files without one a temporary name, which goes with the object, and with the process.
class NewFile {
public:
    /// Only its writer may read it yet. The directory must stay open.
    explicit NewFile(int directory);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    /// False when it could not be made; Error says why.
    explicit operator bool() const { return static_cast<bool>(file_); }
    int Error() const { return error_; }
    int Get() const { return file_.Get(); }

    /// Gives the complete file its name, once. 0 or an errno; EEXIST when something has that name.
    int CommitAs(const std::string& name);
    /// The same in place of whatever has that name; what was there goes in that instant.
    int CommitOver(const std::string& name);

private:
    int Link(const std::string& name);

    int directory_;
    std::string temporary_;  ///< Empty while it has no name.
    Descriptor file_;
    int error_ = 0;
};

/// Makes a symbolic link in place of whatever has that name, but a directory. 0 or an errno.
int ReplaceByLink(int directory, const std::string& name, const std::string& text);
