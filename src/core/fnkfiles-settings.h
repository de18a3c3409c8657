#pragma once
// The settings file ".fennick" of the home directory: one table says what is in it, and reading,
// writing and the defaults all walk that table.

#include <span>
#include <string>
#include <variant>
#include <vector>

#include "core/fnkfiles.h"
#include "core/fnktable.h"

struct ConstantSetting {
    const char* value;
};
struct TextSetting {
    std::string GTable::*field;
    std::size_t size;  ///< One more than the bytes it may have.
    bool has_default;  ///< Whether DefaultGTable resets it.
};
struct NumberSetting {
    int GTable::*field;
};
struct FlagSetting {
    int GTable::*field;
};
/// ColumnCount, ColumnPosition and ColumnSize, which make sense only together.
struct ColumnsSetting {};
struct ColorsSetting {};
struct HistorySetting {
    History GTable::*field;
};

struct Setting {
    const char* section;
    const char* key;  ///< Null for settings of several keys.
    std::variant<ConstantSetting, TextSetting, NumberSetting, FlagSetting, ColumnsSetting, ColorsSetting,
                 HistorySetting>
        value;
};

/// In file order: a key that is the beginning of another of its section stands before it.
extern const std::span<const Setting> kSettings;

/// What the file remembers of the widgets; pixels.
struct LiveLayout {
    bool HasWindow = false;
    int WindowX = 0;
    int WindowY = 0;
    int WindowWidth = 0;
    int WindowHeight = 0;
    int PandPosition = 0;         ///< 0 while there is no divider.
    std::vector<int> ColumnSize;  ///< Of the detail columns; empty while there is no list.
};

/// Reads the live widgets; set by the main window, null while there is none.
extern LiveLayout (*ReadLiveLayout)();

/// Puts every stored setting back to its default, the histories and CurrentDir excepted.
/// Nothing happens without a record.
void DefaultGTable();

/// Puts the defaults and then the stored values into the record; where the file cannot be read, a
/// new one is written. Without "HOME" only the defaults. -1 without a record, else 0.
int GetGTable();

/// Writes the file from the record, which first takes over the layout.
FileResult SetGTable(const LiveLayout& layout);
/// The same with the layout of the live widgets, if there are any.
FileResult SetGTable();
