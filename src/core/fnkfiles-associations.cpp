#include "core/fnkfiles-associations.h"

#include <cstring>
#include <string>

#include "core/fnkfiles.h"
#include "core/fnkutil-text.h"
#include "core/fnkutil.h"

namespace {

constexpr const char* kFileName = ".extension";
constexpr std::size_t kMaxLineBytes = 2047;
constexpr std::size_t kMaxKeyBytes = 255;

/// Skips a line that is too long: the beginning of its value could name a different program.
void AppendEntry(const std::string& line, std::vector<AppInfo>& list)
{
    const char* const separator = line.size() <= kMaxLineBytes ? CharNext(line.c_str(), '=') : nullptr;
    if (separator == nullptr) {
        return;
    }
    const auto key_length = static_cast<std::size_t>(separator - line.c_str());
    if (key_length <= kMaxKeyBytes) {
        list.push_back({line.substr(0, key_length), line.substr(key_length + 1)});
    }
}

class LineReader {
public:
    explicit LineReader(const char* text) : position_(text), end_(text + std::strlen(text)), stepper_(position_, end_)
    {
    }
    bool IsAtEnd() const { return position_ == end_; }
    std::string Next()
    {
        const char* const begin = position_;
        while (position_ != end_ && *position_ != '\n') {
            position_ = stepper_.Next(position_);
        }
        std::string line(begin, position_);
        if (line.ends_with('\r')) {
            line.pop_back();  // Editors of other systems end lines like that.
        }
        if (position_ != end_) {
            ++position_;
        }
        return line;
    }

private:
    const char* position_;
    const char* end_;
    CharStepper stepper_;
};

}  // namespace

int ReadAppInfo(const char* section, std::vector<AppInfo>* list)
{
    if (section == nullptr || list == nullptr) {
        return -1;
    }
    const std::string home = GetHomeDirectory();
    std::string text;
    if (home.empty() || ReadFile(home + "/" + kFileName, &text) != FILE_DONE) {
        return 0;
    }
    const char* const found = std::strstr(text.c_str(), section);
    if (found == nullptr) {
        return 0;
    }
    LineReader reader(found);
    reader.Next();
    while (!reader.IsAtEnd()) {
        const std::string line = reader.Next();
        if (line.empty() || line.front() == '[') {
            break;
        }
        AppendEntry(line, *list);
    }
    return 0;
}

void FreeAppInfo(std::vector<AppInfo>& list)
{
    list = {};
}
