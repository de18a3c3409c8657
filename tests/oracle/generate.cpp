#include "generate.h"

#include "disk.h"
#include "engine/fnkfiles-copy.h"
#include "engine/fnkfiles-delete.h"
#include "engine/fnkfiles-directory.h"
#include "core/fnktable.h"

namespace {

constexpr mode_t kFileModes[] = {0644, 0600, 0755, 04755, 0444, 0666, 0};
constexpr mode_t kDirectoryModes[] = {0755, 0755, 0755, 0700, 02775, 01777, 0555, 0311, 0644, 0};

struct Found {
    std::string path;
    NodePointer node;
};

void ListPlaces(const std::string& path, const NodePointer& directory, std::vector<Found>& places)
{
    for (const auto& [name, node] : directory->entries) {
        places.push_back({path + name, node});
        ListPlaces(path + name + "/", node, places);
    }
}

}  // namespace

Generator::Generator(std::uint64_t seed, std::string root_path, uid_t user)
    : engine_(seed), root_path_(std::move(root_path)), user_(user)
{
    const std::string names[] = {"a", "b", "c", "D", " ", "-rf", "%s%n", "x.bak~", ".h", "\xFF\n", "\xE3\x81\x82"};
    for (std::size_t count = 2 + Below(3); names_.size() < count;) {
        names_.push_back(Pick(names));
    }
}

std::string Generator::MakeContent()
{
    const std::string mark = "content " + std::to_string(++contents_);
    switch (Below(12)) {
    case 0:
        return "";
    case 1: {
        std::string holes(4096 * (1 + Below(6)) + Below(2) * 7, '\0');
        holes.replace(Below(2) * (holes.size() - mark.size()), mark.size(), mark);
        return holes;
    }
    case 2:
        return OneIn(4) ? mark + std::string(66'000, 'x') : mark + std::string(Below(9000), 'y');
    default:
        return mark;
    }
}

/// Relative ones lead no higher than the root.
std::string Generator::MakeLinkText(std::size_t depth)
{
    switch (Below(depth > 0 ? 6 : 4)) {
    case 0:
        return Pick(names_);
    case 1:
        return root_path_ + Pick(names_) + "/" + Pick(names_);
    case 2:
        return ".";
    case 3:
        return root_path_.substr(0, root_path_.size() - (OneIn(2) ? 1 : 0));
    case 4:
        return "../" + Pick(names_);
    default:
        return "..";
    }
}

NodePointer Generator::MakeNode(std::size_t depth)
{
    const std::size_t kind = Below(20);
    if (kind >= 18 && !files_.empty()) {
        return Pick(files_);
    }
    auto node = std::make_shared<Node>();
    node->owner = user_ == 0 && OneIn(4) ? 1000 : user_;
    if (kind < 8) {
        node->type = S_IFDIR;
        node->mode = OneIn(3) ? Pick(kDirectoryModes) : 0755;
    } else if (kind < 15) {
        node->mode = Pick(kFileModes);
        node->content = MakeContent();
        files_.push_back(node);
    } else if (kind < 17) {
        node->type = S_IFLNK;
        node->mode = 0777;
        node->content = MakeLinkText(depth);
    } else {
        node->type = S_IFIFO;
    }
    return node;
}

Model Generator::MakeTree()
{
    Model model(root_path_, user_);
    std::vector<std::pair<NodePointer, std::size_t>> directories = {{model.root, 0}};
    for (std::size_t left = 2 + Below(11); left > 0; --left) {
        const auto [directory, depth] = Pick(directories);
        NodePointer& node = directory->entries[Pick(names_)];
        if (node == nullptr) {
            node = MakeNode(depth);
            if (node->IsDirectory()) {
                directories.emplace_back(node, depth + 1);
            }
        }
    }
    return model;
}

/// Something that is there, sometimes by a way that leads through a link.
std::string Generator::PickPath(const Model& model)
{
    std::vector<Found> places;
    ListPlaces(root_path_, model.root, places);
    if (places.empty()) {
        return root_path_ + Pick(names_);
    }
    const Found place = Pick(places);
    if (place.node->IsLink() && OneIn(2)) {
        const std::string inner = place.path + "/" + Pick(names_);
        const NodePointer node = model.Find(inner).node;
        return inner + (node != nullptr && node->IsDirectory() ? "/" : "");
    }
    return place.path + (place.node->IsDirectory() ? "/" : "");
}

/// Something that is not there, or so it seems.
std::string Generator::NewPath(const Model& model)
{
    std::string path = PickPath(model);
    if (!path.ends_with('/')) {
        path.erase(path.rfind('/') + 1);
    }
    return path + Pick(names_) + (OneIn(6) ? "/" + Pick(names_) : "");
}

Command::Command(Generator& random, const Model& model)
{
    constexpr CommandKind kKinds[] = {COMMAND_COPY, COMMAND_COPY,   COMMAND_COPY,   COMMAND_MOVE, COMMAND_MOVE,
                                      COMMAND_MOVE, COMMAND_DELETE, COMMAND_DELETE, COMMAND_MAKE};
    kind = random.Pick(kKinds);
    destination = random.OneIn(3) ? random.NewPath(model) : random.PickPath(model);
    if (destination.ends_with('/') && random.OneIn(2)) {
        destination.pop_back();
    }
    if (random.OneIn(8)) {
        destination = random.root_path_;
    }
    for (std::size_t count = kind == COMMAND_MAKE ? 0 : 1 + random.Below(3); count > 0; --count) {
        sources.push_back(random.PickPath(model));
    }
    confirms = !random.OneIn(3);
    for (int i = 0; i < 12; ++i) {
        constexpr Result kDeletes[] = {RESULT_OK, RESULT_YES_ALL, RESULT_OK, RESULT_CANCEL, RESULT_ABORT};
        script.to_messages.push_back(random.OneIn(4) ? RESULT_CANCEL : RESULT_OK);
        script.to_deletes.push_back(random.Pick(kDeletes));
    }
    script.cancel_at_step = random.OneIn(6) ? static_cast<int>(1 + random.Below(4)) : -1;
}

namespace {

/// The loops of the commands: the first cancelled item is the last.
template <typename Transfer, typename Delete>
Result RunItems(const Command& command, Transfer transfer, Delete remove)
{
    Result result = RESULT_DONE;
    int flag = 0;
    Result answer = RESULT_CANCEL;
    for (const std::string& source : command.sources) {
        if (command.kind == COMMAND_DELETE) {
            result = remove(source, &answer);
            answer = answer == RESULT_OK ? RESULT_CANCEL : answer;
        } else {
            result = transfer(source, &flag);
        }
        if (result == RESULT_CANCEL) {
            break;
        }
    }
    return result;
}

}  // namespace

Result Command::RunEngine() const
{
    answers = script;
    pGTable->ConfilmOverwrite = confirms ? 1 : 0;
    if (kind == COMMAND_MAKE) {
        Descriptor directory;
        return CreateDirectoryEx(destination.ends_with('/') ? destination : destination + "/", destination, LINK_ASK,
                                 &directory);
    }
    return RunItems(
        *this,
        [this](const std::string& source, int* flag) {
            return kind == COMMAND_COPY ? CopyFile(destination, source, flag) : MoveFile(destination, source, flag);
        },
        RemoveFile);
}

Result Command::RunModel(Model& model) const
{
    answers = script;
    model.confirms = confirms;
    if (kind == COMMAND_MAKE) {
        NodePointer directory;
        return model.MakeDirectories(destination.ends_with('/') ? destination : destination + "/", destination, false,
                                     &directory);
    }
    return RunItems(
        *this,
        [&](const std::string& source, int* flag) {
            return model.Transfer(static_cast<OperationKind>(kind), destination, source, flag);
        },
        [&](const std::string& source, Result* answer) { return model.Delete(source, answer); });
}

std::string Command::Describe() const
{
    constexpr const char* kNames[] = {"copy", "move", "delete", "make"};
    std::string line = kNames[kind - COMMAND_COPY];
    for (const std::string& source : sources) {
        line += " " + Printable(source);
    }
    line += kind == COMMAND_DELETE ? "" : " to " + Printable(destination);
    line += confirms ? ", asking first; answers " : "; answers ";
    for (const Result answer : script.to_messages) {
        line += answer == RESULT_OK ? "y" : "n";
    }
    for (const Result answer : script.to_deletes) {
        line += std::to_string(answer & 0xF);
    }
    return line + ", cancelled at step " + std::to_string(script.cancel_at_step) + "\n";
}
