#pragma once
// The settings file "$HOME/.fennick". One table describes its content; reading, writing and
// resetting all walk that table.

#include <span>
#include <string>
#include <variant>
#include <vector>

#include "core/fnkfiles.h"
#include "core/fnktable.h"

/// Written, but never read.
struct ConstantSetting {
    const char* value;
};
struct TextSetting {
    std::string GTable::*field;
    std::size_t size;  ///< In bytes; a value must be shorter.
    bool has_default;  ///< DefaultGTable resets it.
};
struct NumberSetting {
    int GTable::*field;
};
/// Stored as "yes" or "no".
struct FlagSetting {
    int GTable::*field;
};
/// The keys ColumnPosition and ColumnSize of every column. They are valid only as a whole.
struct ColumnsSetting {};
struct ColorsSetting {};
struct HistorySetting {
    History GTable::*field;
};

struct Setting {
    const char* section;
    const char* key;  ///< Null for a setting of several keys.
    std::variant<ConstantSetting, TextSetting, NumberSetting, FlagSetting, ColumnsSetting, ColorsSetting,
                 HistorySetting>
        value;
};

/// In file order. A lookup finds the first line that begins with the key, so a key must precede
/// longer ones that begin with it ("Filter" before "FilterName").
extern const std::span<const Setting> kSettings;

/// Sizes and positions of the widgets in pixels, to be stored.
struct LiveLayout {
    bool HasWindow = false;
    int WindowX = 0;
    int WindowY = 0;
    int WindowWidth = 0;
    int WindowHeight = 0;
    int PandPosition = 0;         ///< 0 if there is no divider.
    std::vector<int> ColumnSize;  ///< Of the detail columns; empty if there is no list.
};

/// Reads the layout of the widgets. Null until the main window sets it.
extern LiveLayout (*ReadLiveLayout)();

/// "$HOME/.fennick"; empty without "HOME".
std::string GetSettingsPath();

/// Resets all stored settings but the histories and CurrentDir. Does nothing without a record.
void DefaultGTable();

/// Sets the record to the defaults, then to the stored values. If the file cannot be read, writes
/// a new one. Without "HOME", sets only the defaults. -1 without a record, else 0.
int GetGTable();

/// Stores the layout in the record and writes the record to the file.
FileResult SetGTable(const LiveLayout& layout);
/// The same with the result of ReadLiveLayout, or with an empty layout if that is null.
FileResult SetGTable();
