#pragma once
// The fixture of tests of the file engine, and the state of a tree to be compared.

#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <filesystem>
#include <map>
#include <string>
#include <vector>

#include "answers.h"
#include "engine/fnkfiles-copy.h"
#include "tabletest.h"

using Asked = std::vector<std::string>;
/// Paths in a tree and what is there: type, permission bits, and what can be read of the content,
/// or the link text.
using Tree = std::map<std::string, std::string>;

class EngineTest : public TableTest {
protected:
    EngineTest() { answers = Answers(); }

    /// Every object below the directory, as a stranger would find it.
    Tree Describe(const std::string& name) const
    {
        Tree tree;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(
                 files.At(name), std::filesystem::directory_options::skip_permission_denied)) {
            const std::string path = std::filesystem::relative(entry.path(), files.Path());
            tree[path.substr(name.empty() ? 0 : name.size() + 1)] = DescribeObject(path);
        }
        return tree;
    }
    std::string DescribeObject(const std::string& path) const
    {
        const struct stat st = files.Status(path);
        char mode[16];
        std::snprintf(mode, sizeof mode, "%o ", st.st_mode & 07777);
        if (S_ISLNK(st.st_mode)) {
            char text[PATH_MAX];
            const ssize_t length = readlink(files.At(path).c_str(), text, sizeof text);
            return "link " + std::string(text, static_cast<std::size_t>(length));
        }
        const std::string kind = S_ISDIR(st.st_mode) ? "directory " : S_ISREG(st.st_mode) ? "file " : "special ";
        const bool is_readable = S_ISREG(st.st_mode) && access(files.At(path).c_str(), R_OK) == 0;
        return kind + mode + (is_readable ? files.Contents(path) : "");
    }
    bool Exists(const std::string& name) const
    {
        struct stat st = {};
        return lstat(files.At(name).c_str(), &st) == 0;
    }

    /// As the commands do, one flag for all sources.
    Result Copy(const std::string& destination, const std::vector<std::string>& sources)
    {
        return Run(CopyFile, destination, sources);
    }
    Result Move(const std::string& destination, const std::vector<std::string>& sources)
    {
        return Run(MoveFile, destination, sources);
    }

    std::string Question(const std::string& name) const
    {
        return "Confirmation: " + files.At(name) + " already exists.\nDoes it overwrite?";
    }
    std::string Failure(const std::string& verb, const std::string& name, const std::string& cause) const
    {
        return "Error: Cannot " + verb + " file " + files.At(name) + "\ncause:" + cause + " [Skip]";
    }
    /// What the engine should not leave behind.
    Tree TemporariesIn(const std::string& name) const
    {
        Tree left;
        for (const auto& [path, what] : Describe(name)) {
            if (path.find(".fennick-") != std::string::npos) {
                left[path] = what;
            }
        }
        return left;
    }

private:
    using Engine = Result (*)(const std::string&, const std::string&, int*);
    Result Run(Engine engine, const std::string& destination, const std::vector<std::string>& sources)
    {
        int flag = 0;
        Result result = RESULT_DONE;
        for (const std::string& source : sources) {
            result = engine(files.At(destination), files.At(source), &flag);
            if (result == RESULT_CANCEL) {
                break;
            }
        }
        return result;
    }
};
