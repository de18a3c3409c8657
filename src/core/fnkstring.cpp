#include "core/fnkstring.h"

#include <unistd.h>

#include <array>

#include "core/fnkraii.h"
#include "core/fnktable.h"
#include "core/fnkutil.h"

namespace {

/// Longest status or tip line.
constexpr std::size_t kMaxTipBytes = 1023;

constexpr std::array<const char*, kMenuEntryCount> kMenuTips = {
    N_("Create a new window."),
    "",
    N_("Open a file."),
    N_("Copy files."),
    N_("Rename or move files."),
    N_("Delete files."),
    "",
    N_("Show property."),
    "",
    N_("Close this window."),
    N_("Select all files in the current Directory."),
    N_("Select a group files."),
    N_("Reverses the list of tagged files."),
    "",
    N_("Locate files on disk."),
    "",
    N_("Create symbolic link."),
    "",
    N_("Rescan the directory contents."),
    N_("Configure the application."),
    N_("Sort confirmation settings."),
    N_("Filter confirmation settings."),
    N_("Show Manual."),
    "",
    N_("Abort this application."),
    N_("Create a new directory."),
    N_("Create a new file."),
};

constexpr std::array<const char*, kToolSlotCount> kToolTips = {
    N_("Go to the previously visited directory."),
    N_("Go up level in the directory heirarchy."),
    N_("Go to this directory."),
    "",
    N_("Rescan the current directory."),
    "",
    N_("Go to your home directory."),
    "",
    N_("Show property."),
};

constexpr std::array<const char*, kColumnKinds> kColumnTitles = {
    N_("Name"),     N_("Size"),        N_("Permission"),        N_("User"),        N_("User ID"),       N_("Group"),
    N_("Group ID"), N_("Access time"), N_("Modification time"), N_("Change time"), N_("i Node number"),
};

template <std::size_t kCount>
std::string Translate(const std::array<const char*, kCount>& table, int index)
{
    // gettext translates the empty string to the header of the catalogue.
    if (index < 0 || index >= static_cast<int>(kCount) || *table[static_cast<std::size_t>(index)] == '\0') {
        return {};
    }
    return gettext(table[static_cast<std::size_t>(index)]);
}

/// Whether the directory has a catalogue of this program in any language. Other programs use the
/// same directory, so its existence proves nothing.
bool HasAnyCatalogue(const std::string& directory)
{
    const DirectoryStream stream(opendir(directory.c_str()));
    const dirent* entry = nullptr;
    while (stream != nullptr && (entry = readdir(stream.get())) != nullptr) {
        if (access((WithSlash(directory) + entry->d_name + "/LC_MESSAGES/fennick.mo").c_str(), R_OK) == 0) {
            return true;
        }
    }
    return false;
}

std::string EmptyIfTooLong(const std::string& tip)
{
    return tip.size() <= kMaxTipBytes ? tip : std::string();
}

}  // namespace

std::string GetMenuTipsString(int index)
{
    return EmptyIfTooLong(Translate(kMenuTips, index));
}

std::string GetToolTipsString(int slot)
{
    return EmptyIfTooLong(Translate(kToolTips, slot));
}

std::string GetListColumnString(int id)
{
    return Translate(kColumnTitles, id);
}

int GetListStringColumn(const char* title)
{
    if (title == nullptr) {
        return 0;
    }
    int id = 0;
    while (id < kColumnKinds && GetListColumnString(id) != title) {
        ++id;
    }
    return id;
}

std::string FindCatalogues(const std::string& program_directory)
{
    if (!program_directory.empty()) {
        // The installed tree, even if it was moved, and the build tree.
        for (const std::string& beside :
             {GetParentDirectory(program_directory) + "share/locale", program_directory + "locale"}) {
            if (HasAnyCatalogue(beside)) {
                return beside;
            }
        }
    }
    return FENNICK_LOCALE_DIR;
}
