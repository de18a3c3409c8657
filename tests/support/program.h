#pragma once
// Programs that tell a test how they were started.

#include <poll.h>
#include <unistd.h>

#include <string>
#include <vector>

#include "scratch.h"

/// Makes programs that report their words, the name first, and listens to them.
class ReportingPrograms {
public:
    ReportingPrograms()
    {
        directory.Node("reports", S_IFIFO);
        // For writing as well, or it would be at its end whenever no program has it open.
        reports_ = open(directory.At("reports").c_str(), O_RDWR | O_CLOEXEC | O_NONBLOCK);
        Require(reports_ >= 0, "reports");
    }
    ~ReportingPrograms() { close(reports_); }

    /// The file of a program, in the directory unless the test has another place for it.
    std::string Make(const std::string& name) const { return Make(name, directory); }
    std::string Make(const std::string& name, const ScratchDirectory& place) const
    {
        const std::string pipe = directory.At("reports");
        return place.File(name, "#!/bin/sh\nprintf '%s\\0' \"$0\" \"$@\" end >'" + pipe + "'\n", 0755);
    }
    /// The words of the next program that is started; none when none is for long.
    std::vector<std::string> Next()
    {
        std::vector<std::string> words(1);
        struct pollfd waiting = {reports_, POLLIN, 0};
        for (char byte = 0; poll(&waiting, 1, 20'000) == 1 && read(reports_, &byte, 1) == 1;) {
            if (byte != '\0') {
                words.back() += byte;
            } else if (words.back() == "end") {
                words.pop_back();
                return words;
            } else {
                words.emplace_back();
            }
        }
        return {};
    }

    ScratchDirectory directory;

private:
    int reports_ = -1;
};
