#include "model.h"

#include <algorithm>
#include <cerrno>

namespace {

std::string Slashed(const std::string& path)
{
    return path.ends_with('/') ? path : path + "/";
}

std::string Unslashed(const std::string& path)
{
    return path.size() > 1 && path.ends_with('/') ? path.substr(0, path.size() - 1) : path;
}

std::string LastOf(const std::string& path)
{
    const std::string plain = Unslashed(path);
    return plain.substr(plain.rfind('/') + 1);
}

Result Step()
{
    return static_cast<Result>(OnEngine.UpdateProgress());
}

Result Undeletable(const std::string& path, int error)
{
    return OnEngine.MessageBox("Error", FormatPathMessage("Cannot delete file %s\ncause:%s", path, error), STYLE_SKIP);
}

/// Whether it is there nobody can tell.
Result Unseen(const std::string& path, bool counted, int error = EACCES)
{
    if (Undeletable(path, error) == RESULT_CANCEL) {
        return RESULT_CANCEL;
    }
    const Result progress = counted ? Step() : RESULT_DONE;
    return progress != RESULT_DONE ? progress : RESULT_OK;
}

Result Unmakeable(const std::string& path, int error)
{
    OnEngine.MessageBox("Error", FormatPathMessage("Cannot create directory %s\ncause:%s", path, error), STYLE_ERROR);
    return RESULT_CANCEL;
}

Result Untransferable(OperationKind kind, const std::string& path, int error)
{
    const char* const format =
        kind == OPERATION_COPY ? "Cannot copy file %s\ncause:%s" : "Cannot move file %s\ncause:%s";
    return OnEngine.MessageBox("Error", FormatPathMessage(format, path, error), STYLE_SKIP) == RESULT_CANCEL ? RESULT_CANCEL
                                                                                                    : Step();
}

Result Missing(const std::string& path)
{
    OnEngine.MessageBox("Error", FormatPathMessage("%s does not exist.", path), STYLE_ERROR);
    return Step();
}

bool AgreesToOverwrite(const std::string& path)
{
    const std::string question = FormatPathMessage("%s already exists.\nDoes it overwrite?", path);
    return OnEngine.MessageBox("Confirmation", question, STYLE_QUESTION) == RESULT_OK;
}

NodePointer CloneNode(const NodePointer& node, std::map<NodePointer, NodePointer>& clones)
{
    NodePointer& clone = clones[node];
    if (clone == nullptr) {
        clone = std::make_shared<Node>(*node);
        for (auto& [name, child] : clone->entries) {
            child = CloneNode(child, clones);
        }
    }
    return clone;
}

}  // namespace

NodePointer Model::Clone() const
{
    std::map<NodePointer, NodePointer> clones;
    return CloneNode(root, clones);
}

NodePointer Model::Look(const NodePointer& directory, const std::string& name) const
{
    const auto found = directory->entries.find(name);
    return MayEnter(*directory) && found != directory->entries.end() ? found->second : nullptr;
}

NodePointer Model::Make(const NodePointer& directory, const std::string& name, mode_t type, mode_t mode) const
{
    auto made = std::make_shared<Node>();
    made->type = type;
    made->mode = mode;
    made->owner = user_;
    directory->entries[name] = made;
    return made;
}

void Model::Walk(const std::string& path, bool follow, int& links, Spot& spot) const
{
    std::size_t begin = 0;
    if (path.starts_with('/')) {
        begin = root_path_.size();
        spot.way = {root};
        if (!Slashed(path).starts_with(root_path_)) {
            spot = {{}, "", nullptr, ENOENT};
            return;
        }
    }
    spot.node = spot.way.back();
    while (begin < path.size()) {
        const std::size_t end = std::min(path.find('/', begin), path.size());
        const std::string name = path.substr(begin, end - begin);
        begin = end + 1;
        const bool is_last = begin >= path.size();
        if (name.empty() || name == ".") {
            continue;
        }
        if (!MayEnter(*spot.way.back())) {
            spot = {is_last ? spot.way : std::vector<NodePointer>(), name, nullptr, EACCES};
            return;
        }
        if (name == "..") {
            if (spot.way.size() == 1) {
                has_left_root = true;
            } else {
                spot.way.pop_back();
            }
            spot.node = spot.way.back();
            continue;
        }
        spot.name = name;
        spot.node = Look(spot.way.back(), name);
        if (spot.node == nullptr) {
            spot.error = ENOENT;
        } else if (spot.node->IsLink() && (follow || !is_last)) {
            if (++links > 40) {
                spot = {{}, name, nullptr, ELOOP};
                return;
            }
            Walk(spot.node->content, true, links, spot);
        }
        if (is_last || spot.node == nullptr) {
            break;
        }
        if (!spot.node->IsDirectory()) {
            spot = {{}, name, nullptr, ENOTDIR};
            return;
        }
        if (spot.way.back() != spot.node) {
            spot.way.push_back(spot.node);
        }
    }
    if (spot.node == nullptr && begin < path.size()) {
        spot.way.clear();
    }
    // What is followed is where it leads to; a directory ends its own way.
    if (follow && spot.node != nullptr && spot.node->IsDirectory() && !spot.way.empty() &&
        spot.way.back() != spot.node) {
        spot.way.push_back(spot.node);
    }
}

Spot Model::Find(const std::string& path, bool follow) const
{
    Spot spot;
    int links = 0;
    Walk(Unslashed(path), follow, links, spot);
    return spot;
}

bool Model::IsInside(const std::string& target, const std::string& source_path, const NodePointer& source) const
{
    if (target.starts_with(Slashed(source_path))) {
        return true;
    }
    // The deepest directory on the way that there is.
    Spot spot = Find(target);
    if (spot.node != nullptr && spot.node->IsDirectory()) {
        spot.way.push_back(spot.node);
    } else {
        std::string path = target;
        do {
            path.erase(path.rfind('/'));
            spot = Find(path, true);
        } while (spot.node == nullptr || !spot.node->IsDirectory());
    }
    return std::find(spot.way.begin(), spot.way.end(), source) != spot.way.end();
}

int Model::Unlink(const NodePointer& directory, const std::string& name) const
{
    if (!MayChange(*directory)) {
        return EACCES;
    }
    const auto found = directory->entries.find(name);
    if (!found->second->entries.empty()) {
        return ENOTEMPTY;
    }
    directory->entries.erase(found);
    return 0;
}

Result Model::Remove(const Entry& entry, bool counted) const
{
    const NodePointer node = Look(entry.directory, entry.name);
    if (node == nullptr) {
        return MayEnter(*entry.directory) ? RESULT_DONE : Unseen(entry.path, counted);
    }
    const int error = Unlink(entry.directory, entry.name);
    if (error != 0 && Undeletable(entry.path, error) == RESULT_CANCEL) {
        return RESULT_CANCEL;
    }
    const Result progress = counted && !node->IsDirectory() ? Step() : RESULT_DONE;
    return progress != RESULT_DONE ? progress : error != 0 ? RESULT_OK : RESULT_DONE;
}

Result Model::Empty(const Entry& entry, const NodePointer& node, Result* answer) const
{
    bool something_stays = false;
    const std::map<std::string, NodePointer> names = node->entries;
    for (const auto& [name, child] : names) {
        if (*answer == RESULT_CANCEL) {
            const Result given = OnEngine.DeleteMessageBox(entry.path);
            if (given != RESULT_OK && given != RESULT_YES_ALL) {
                return given == RESULT_CANCEL ? RESULT_OK : RESULT_CANCEL;
            }
            *answer = given;
        }
        const Result result = DeleteEntry({node, name, Slashed(entry.path) + name}, answer);
        if (result == RESULT_CANCEL) {
            return result;
        }
        something_stays = something_stays || result == RESULT_OK;
    }
    return something_stays ? RESULT_OK : RESULT_DONE;
}

Result Model::DeleteEntry(const Entry& entry, Result* answer) const
{
    const NodePointer node = Look(entry.directory, entry.name);
    if (node == nullptr || !node->IsDirectory()) {
        return Remove(entry, true);
    }
    if (!MayRead(*node)) {
        return RESULT_CANCEL;
    }
    const Result emptied = Empty(entry, node, answer);
    return emptied != RESULT_DONE ? emptied : Remove(entry, false);
}

Result Model::Delete(const std::string& path, Result* answer)
{
    const Spot spot = Find(path);
    if (spot.node == nullptr) {
        return spot.error == EACCES || spot.error == ELOOP ? Unseen(path, true, spot.error) : RESULT_DONE;
    }
    return DeleteEntry({spot.Directory(), spot.name, path}, answer);
}

/// One directory; whatever else has its name goes, a link only when that is agreed.
Result Model::MakeOne(const Entry& entry, mode_t mode, bool may_replace_link, NodePointer* made) const
{
    const NodePointer old = Look(entry.directory, entry.name);
    if (old != nullptr && !old->IsDirectory()) {
        if (old->IsLink() && !may_replace_link && !AgreesToOverwrite(entry.path)) {
            return RESULT_OK;
        }
        Remove(entry, false);
        if (Look(entry.directory, entry.name) != nullptr) {
            return Unmakeable(entry.path, EEXIST);
        }
    }
    if (old != nullptr && old->IsDirectory()) {
        *made = old;
        return RESULT_DONE;
    }
    if (!MayChange(*entry.directory)) {
        return Unmakeable(entry.path, EACCES);
    }
    *made = Make(entry.directory, entry.name, S_IFDIR, mode | (entry.directory->mode & S_ISGID));
    return RESULT_DONE;
}

Result Model::MakeDirectories(const std::string& path, const std::string& kept, bool may_replace_link,
                              NodePointer* made)
{
    NodePointer directory = root;
    for (std::size_t begin = root_path_.size(); begin < path.size();) {
        const std::size_t end = path.find('/', begin);
        const std::string prefix = path.substr(0, end);
        const std::string name = path.substr(begin, end - begin);
        begin = end + 1;
        const bool is_last = begin == path.size();
        NodePointer next = Look(directory, name);
        if (next != nullptr && next->IsLink() && prefix.size() < Unslashed(kept).size()) {
            const Spot led = Find(prefix, true);
            if (led.error == EACCES) {
                return Unmakeable(prefix, EACCES);
            }
            next = led.node;
        }
        if (next == nullptr || !next->IsDirectory()) {
            const Result result =
                MakeOne({directory, name, prefix}, is_last ? 0700 : 0755, is_last && may_replace_link, &next);
            if (result != RESULT_DONE) {
                return result;
            }
        }
        directory = next;
    }
    *made = directory;
    return RESULT_DONE;
}

/// Whether a file or link may come to be at the target. An empty directory has gone for it then.
bool Model::MakeWay(const Entry& target, bool may_exist, Result* result, NodePointer* removed) const
{
    const NodePointer old = may_exist ? Look(target.directory, target.name) : nullptr;
    if (old == nullptr) {
        return true;
    }
    if (old->IsDirectory()) {
        *result = Remove(target, false);
        *removed = old;
    } else if (!MayChange(*target.directory)) {
        *result = Undeletable(target.path, EACCES);
    }
    return *result == RESULT_DONE;
}

int Model::CopyWhole(const NodePointer& node, const Entry& source, const Entry& target, std::string* culprit) const
{
    *culprit = source.path;
    if (node->type == S_IFREG && !MayRead(*node) && !node->content.empty()) {
        return EACCES;
    }
    *culprit = target.path;
    if (!MayChange(*target.directory)) {
        return EACCES;
    }
    const bool has_content = node->type == S_IFREG || node->IsLink();
    const NodePointer copy = Make(target.directory, target.name, node->IsLink() ? S_IFLNK : S_IFREG, node->mode);
    copy->content = has_content ? node->content : "";
    return 0;
}

int Model::MoveWhole(const NodePointer& node, const Entry& source, const Entry& target) const
{
    const bool keeps_parent = source.directory == target.directory;
    if (!MayChange(*source.directory) || !MayChange(*target.directory) ||
        (node->IsDirectory() && !keeps_parent && user_ != 0 && (node->mode & 0200) == 0)) {
        return EACCES;
    }
    source.directory->entries.erase(source.name);
    target.directory->entries[target.name] = node;
    return 0;
}

/// What is dealt with by itself, not entry by entry.
Result Model::TransferWhole(OperationKind kind, const Entry& source, const Entry& target, bool may_exist) const
{
    if (source.directory == target.directory && source.name == target.name) {
        return Step();
    }
    Result refusal = RESULT_DONE;
    NodePointer removed;
    if (!MakeWay(target, may_exist, &refusal, &removed)) {
        return Step() == RESULT_CANCEL ? RESULT_CANCEL : refusal;
    }
    const NodePointer node = Look(source.directory, source.name);
    std::string culprit = Unslashed(target.path);
    const int error =
        kind == OPERATION_COPY ? CopyWhole(node, source, target, &culprit) : MoveWhole(node, source, target);
    if (error == 0) {
        return Step();
    }
    const Result result = Untransferable(kind, culprit, error);
    if (removed != nullptr) {
        removed->inode = 0;  // It comes back.
        target.directory->entries[target.name] = removed;
    }
    return result;
}

Result Model::TransferEntry(OperationKind kind, const Entry& source, const Entry& target) const
{
    const NodePointer node = Look(source.directory, source.name);
    if (node == nullptr) {
        return Missing(source.path);
    }
    const NodePointer old = Look(target.directory, target.name);
    if (!node->IsDirectory() || (kind == OPERATION_MOVE && old == nullptr)) {
        return TransferWhole(kind, source, target, true);
    }
    if (old == node) {
        return Step();
    }
    NodePointer directory;
    const Result made = MakeOne({target.directory, target.name, Unslashed(target.path)}, 0700, false, &directory);
    return made == RESULT_DONE ? TransferInto(kind, source, node, target, directory)
           : made == RESULT_OK ? Step()
                               : made;
}

Result Model::TransferInto(OperationKind kind, const Entry& source, const NodePointer& node, const Entry& target,
                           const NodePointer& directory) const
{
    directory->mode = node->mode;
    if (!MayEnter(*source.directory) || !MayRead(*node)) {
        return Untransferable(kind, source.path, EACCES);
    }
    const std::map<std::string, NodePointer> names = node->entries;
    for (const auto& [name, child] : names) {
        const NodePointer seen = Look(node, name);
        const std::string slash = seen != nullptr && seen->IsDirectory() ? "/" : "";
        const Result result = TransferEntry(kind, {node, name, Slashed(source.path) + name + slash},
                                            {directory, name, Slashed(target.path) + name + slash});
        if (result == RESULT_CANCEL || (kind == OPERATION_MOVE && result != RESULT_DONE)) {
            return result;
        }
    }
    if (kind == OPERATION_MOVE) {
        Remove(source, false);
    }
    return RESULT_DONE;
}

Result Model::Transfer(OperationKind kind, const std::string& destination, const std::string& source, int* flag)
{
    if (destination == source) {
        return Step();
    }
    const Spot from = Find(source);
    if (from.node == nullptr) {
        return Missing(source);
    }
    const Spot place = Find(destination);
    if (place.node == nullptr && place.error != ENOENT && place.error != ENOTDIR) {
        return Untransferable(kind, destination, place.error);
    }
    const bool is_into = place.node != nullptr && place.node->IsDirectory();
    const bool is_directory = from.node->IsDirectory();
    if (!is_into && destination.ends_with('/') && !is_directory) {
        return Untransferable(kind, destination, place.node != nullptr ? ENOTDIR : ENOENT);
    }
    const std::string target = is_into ? Slashed(destination) + LastOf(source) : Unslashed(destination);
    const Spot to = Find(target);
    if (target == Unslashed(source) || (is_directory && to.node == from.node)) {
        return Step();
    }
    if (is_directory && !target.starts_with(Slashed(source)) && to.error == EACCES) {
        return Untransferable(kind, target, EACCES);
    }
    if (is_directory && IsInside(target, source, from.node)) {
        OnEngine.MessageBox("Error", "Cannot move to a sub directory.", STYLE_ERROR);
        return Step();
    }
    const bool seems_free = to.node == nullptr && (to.error == ENOENT || to.error == ENOTDIR);
    const bool is_asked = confirms && *flag == 0 && !seems_free;
    if (is_asked && !AgreesToOverwrite(target)) {
        return Step();
    }
    *flag = 1;
    const Entry source_entry{from.Directory(), from.name, source};
    if (is_directory && (kind == OPERATION_COPY || to.node != nullptr)) {
        NodePointer directory;
        const Result made = MakeDirectories(target + "/", destination, is_asked, &directory);
        return made == RESULT_DONE ? TransferInto(kind, source_entry, from.node, {nullptr, "", target}, directory)
               : made == RESULT_OK ? Step()
                                   : made;
    }
    if (to.way.empty()) {
        const Spot parent = Find(target.substr(0, target.rfind('/')), true);
        return Untransferable(kind, target, parent.node == nullptr ? parent.error : ENOTDIR);
    }
    return TransferWhole(kind, source_entry, {to.Directory(), to.name, target}, true);
}
