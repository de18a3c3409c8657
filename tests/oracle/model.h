#pragma once
// What is on the disk, in memory, and what copying, moving, deleting and making directories must
// make of it: told as plainly as can be, and independent of how the engine does it.

#include <sys/stat.h>

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "engine/fnkmessage.h"
#include "engine/fnkmessage.h"

struct Node;
using NodePointer = std::shared_ptr<Node>;

/// An inode; several names may have the same.
struct Node {
    mode_t type = S_IFREG;
    mode_t mode = 0644;
    std::string content;  ///< Or the text of the link.
    uid_t owner = 0;
    ino_t inode = 0;  ///< 0 until it is known, as for what a command made.
    std::map<std::string, NodePointer> entries;

    bool IsDirectory() const { return type == S_IFDIR; }
    bool IsLink() const { return type == S_IFLNK; }
};

/// A name in a directory, whether or not anything has it.
struct Spot {
    std::vector<NodePointer> way;  ///< From the root to the directory; empty when that cannot be reached.
    std::string name;
    NodePointer node;
    int error = 0;  ///< Why there is no node.

    const NodePointer& Directory() const { return way.back(); }
};

/// An item on its way: where it is, and what messages call it.
struct Entry {
    NodePointer directory;
    std::string name;
    std::string path;
};

class Model {
public:
    /// root_path, ending in "/", is where the root is on the disk.
    Model(std::string root_path, uid_t user) : root_path_(std::move(root_path)), user_(user)
    {
        root->type = S_IFDIR;
        root->mode = 0755;
        root->owner = user;
    }

    Result Transfer(OperationKind kind, const std::string& destination, const std::string& source, int* flag);
    Result Delete(const std::string& path, Result* answer);
    Result MakeDirectories(const std::string& path, const std::string& kept, bool may_replace_link, NodePointer* made);

    Spot Find(const std::string& path, bool follow = false) const;
    NodePointer Clone() const;

    NodePointer root = std::make_shared<Node>();
    mutable bool has_left_root = false;  ///< A link led to where nothing is known.
    bool confirms = true;                ///< Whether overwriting is asked about.

private:
    bool MayEnter(const Node& directory) const { return user_ == 0 || (directory.mode & 0100) != 0; }
    bool MayChange(const Node& directory) const { return user_ == 0 || (directory.mode & 0300) == 0300; }
    bool MayRead(const Node& node) const { return user_ == 0 || (node.mode & 0400) != 0; }
    NodePointer Look(const NodePointer& directory, const std::string& name) const;
    NodePointer Make(const NodePointer& directory, const std::string& name, mode_t type, mode_t mode) const;
    void Walk(const std::string& path, bool follow, int& links, Spot& spot) const;
    bool IsInside(const std::string& target, const std::string& source_path, const NodePointer& source) const;
    int Unlink(const NodePointer& directory, const std::string& name) const;

    Result Remove(const Entry& entry, bool counted) const;
    Result DeleteEntry(const Entry& entry, Result* answer) const;
    Result Empty(const Entry& entry, const NodePointer& node, Result* answer) const;
    Result MakeOne(const Entry& entry, mode_t mode, bool may_replace_link, NodePointer* made) const;
    bool MakeWay(const Entry& target, bool may_exist, Result* result, NodePointer* removed) const;
    Result TransferWhole(OperationKind kind, const Entry& source, const Entry& target, bool may_exist) const;
    int CopyWhole(const NodePointer& node, const Entry& source, const Entry& target, std::string* culprit) const;
    int MoveWhole(const NodePointer& node, const Entry& source, const Entry& target) const;
    Result TransferInto(OperationKind kind, const Entry& source, const NodePointer& node, const Entry& target,
                        const NodePointer& directory) const;
    Result TransferEntry(OperationKind kind, const Entry& source, const Entry& target) const;

    std::string root_path_;
    uid_t user_;
};
