#pragma once
// New files and links that appear under their name only once they are complete.

#include <string>

#include "core/fnkraii.h"

/// A new file in a directory. Until it is committed it has no name, or a temporary one if the file
/// system has no unnamed files. Without a commit the destructor removes it; if the process is killed, the
/// next new file in that directory does.
class NewFile {
public:
    /// Creates the file with mode 0600. The directory must stay open.
    explicit NewFile(int directory);
    NewFile(const NewFile&) = delete;
    NewFile& operator=(const NewFile&) = delete;
    ~NewFile();

    /// False if creating the file failed; Error is then the errno.
    explicit operator bool() const { return static_cast<bool>(file_); }
    int Error() const { return error_; }
    int Get() const { return file_.Get(); }

    /// Gives the complete file its name; call it once. 0 or an errno: EEXIST if the name is taken.
    int CommitAs(const std::string& name);
    /// Gives the complete file a temporary name, under which it waits for CommitOver. 0 or an errno.
    int Prepare();
    /// Atomically replaces any file of that name. Call Prepare first. 0 or an errno.
    int CommitOver(const std::string& name);

private:
    int CheckWritten() const;
    int Link(const std::string& name);

    int directory_;
    std::string temporary_;  ///< Empty while the file has no name.
    Descriptor file_;
    int error_ = 0;
};

/// Makes a symbolic link, replacing anything of that name but a directory, if check still returns 0 once
/// the link is made. 0 or an errno.
int ReplaceByLink(int directory, const std::string& name, const std::string& text, int (*check)());
