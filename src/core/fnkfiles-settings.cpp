#include "core/fnkfiles-settings.h"

#include <array>

#include "core/fnkutil-text.h"
#include "core/fnkutil.h"
#include "core/fnkversion.h"

namespace {

constexpr const char* kFileName = ".fennick";
constexpr const char* kHeader = "#\n# Fennick\n# Configuration file.\n# %s\n# Do not edit.\n#\n";

constexpr const char* kInit = "[Init]";
constexpr const char* kMainWindow = "[Main Window]";
constexpr const char* kDetailedView = "[Detailed View]";
constexpr const char* kSetting = "[Setting]";

constexpr Setting kSettingTable[] = {
    {kInit, "FileVersion", ConstantSetting{"1.00"}},
    {kInit, "CurrentDir", TextSetting{&GTable::CurrentDir, kMaxPathBytes, false}},
    {kMainWindow, "WindowX", NumberSetting{&GTable::WindowX}},
    {kMainWindow, "WindowY", NumberSetting{&GTable::WindowY}},
    {kMainWindow, "WindowWidth", NumberSetting{&GTable::WindowWidth}},
    {kMainWindow, "WindowHeight", NumberSetting{&GTable::WindowHeight}},
    {kMainWindow, "PandPosition", NumberSetting{&GTable::PandPosition}},
    {kDetailedView, "SortColumn", NumberSetting{&GTable::SortColumn}},
    {kDetailedView, "SortType", NumberSetting{&GTable::SortType}},
    {kDetailedView, "ColumnCount", NumberSetting{&GTable::ColumnCount}},
    {kDetailedView, nullptr, ColumnsSetting{}},
    {kDetailedView, "Filter", FlagSetting{&GTable::Filter}},
    {kDetailedView, "FilterName", TextSetting{&GTable::FilterName, kMaxFilterBytes + 1, true}},
    {kSetting, "ShowBackup", FlagSetting{&GTable::ShowBackup}},
    {kSetting, "ShowHidden", FlagSetting{&GTable::ShowHidden}},
    {kSetting, "SortCase", FlagSetting{&GTable::SortCase}},
    {kSetting, "MixFileDir", FlagSetting{&GTable::MixFileDir}},
    {kSetting, "ConfilmDel", FlagSetting{&GTable::ConfilmDel}},
    {kSetting, "ConfilmOverwrite", FlagSetting{&GTable::ConfilmOverwrite}},
    {kSetting, "ConfilmExec", FlagSetting{&GTable::ConfilmExec}},
    {kSetting, "ShowProgress", FlagSetting{&GTable::ShowProgress}},
    {kSetting, nullptr, ColorsSetting{}},
    {"[LocationDirHistory]", nullptr, HistorySetting{&GTable::LocationDirHistory}},
    {"[DirHistory]", nullptr, HistorySetting{&GTable::DirHistory}},
    {"[FilterHistory]", nullptr, HistorySetting{&GTable::FilterHistory}},
};

struct ColorKey {
    const char* name;
    std::uint16_t Color::*component;
};
constexpr ColorKey kColorKeys[] = {
    {"Red", &Color::red},
    {"Green", &Color::green},
    {"Blue", &Color::blue},
};

std::string Indexed(const char* key, std::size_t index)
{
    return key + std::to_string(index);
}

/// Reads one setting from the text into the record.
struct Reader {
    const char* text;
    const Setting& setting;
    GTable& table;

    void operator()(const ConstantSetting&) const {}
    void operator()(const TextSetting& value) const
    {
        GetString(text, setting.section, setting.key, table.*value.field, value.size);
    }
    void operator()(const NumberSetting& value) const
    {
        GetNumeric(text, setting.section, setting.key, table.*value.field);
    }
    void operator()(const FlagSetting& value) const { GetFlag(text, setting.section, setting.key, table.*value.field); }
    void operator()(const ColumnsSetting&) const;
    void operator()(const ColorsSetting&) const
    {
        for (std::size_t i = 0; i < table.Colors.size(); ++i) {
            for (const ColorKey& key : kColorKeys) {
                GetColor(text, (Indexed("Color", i) + key.name).c_str(), table.Colors[i].*key.component);
            }
        }
    }
    void operator()(const HistorySetting& value) const { GetHistoryList(text, setting.section, table.*value.field); }
};

/// Whether the columns are known and distinct, and one of them shows the name.
bool IsUsableLayout(const GTable& table)
{
    std::array<bool, kColumnKinds> seen = {};
    for (std::size_t i = 0; i < static_cast<std::size_t>(table.ColumnCount); ++i) {
        const int id = table.ColumnPosition[i];
        if (id < 0 || id >= kColumnKinds || seen[static_cast<std::size_t>(id)]) {
            return false;
        }
        seen[static_cast<std::size_t>(id)] = true;
    }
    return seen[COLUMN_NAME];
}

void Reader::operator()(const ColumnsSetting&) const
{
    const GTable defaults;
    bool usable = table.ColumnCount >= 1 && table.ColumnCount <= kColumnKinds;
    for (std::size_t i = 0; usable && i < static_cast<std::size_t>(table.ColumnCount); ++i) {
        const std::string position_key = Indexed("ColumnPosition", i);
        if (GetNumeric(text, setting.section, position_key.c_str(), table.ColumnPosition[i]) != FILE_DONE) {
            // Keep the widths read so far.
            table.ColumnCount = defaults.ColumnCount;
            table.ColumnPosition = defaults.ColumnPosition;
            break;
        }
        GetNumeric(text, setting.section, Indexed("ColumnSize", i).c_str(), table.ColumnSize[i]);
    }
    if (!usable || !IsUsableLayout(table)) {
        table.ColumnCount = defaults.ColumnCount;
        table.ColumnPosition = defaults.ColumnPosition;
        table.ColumnSize = defaults.ColumnSize;
    }
    table.NameColumn = FindNameColumn(table);
}

/// Appends one setting to the text. False if it cannot be written.
struct Writer {
    std::string& text;
    const Setting& setting;
    const GTable& table;

    bool operator()(const ConstantSetting& value) const
    {
        return SetString(text, setting.section, setting.key, value.value);
    }
    bool operator()(const TextSetting& value) const
    {
        // The file cannot store a newline, which the name of a directory may contain.
        const std::string& stored = table.*value.field;
        const bool one_line = stored.find('\n') == std::string::npos;
        return SetString(text, setting.section, setting.key, one_line ? stored : GTable().*value.field);
    }
    bool operator()(const NumberSetting& value) const
    {
        return SetNumeric(text, setting.section, setting.key, table.*value.field);
    }
    bool operator()(const FlagSetting& value) const
    {
        return SetFlag(text, setting.section, setting.key, table.*value.field);
    }
    bool operator()(const ColumnsSetting&) const
    {
        bool done = true;
        for (std::size_t i = 0; i < static_cast<std::size_t>(table.ColumnCount); ++i) {
            done = SetNumeric(text, setting.section, Indexed("ColumnPosition", i), table.ColumnPosition[i]) && done;
            done = SetNumeric(text, setting.section, Indexed("ColumnSize", i), table.ColumnSize[i]) && done;
        }
        return done;
    }
    bool operator()(const ColorsSetting&) const
    {
        bool done = true;
        for (std::size_t i = 0; i < table.Colors.size(); ++i) {
            for (const ColorKey& key : kColorKeys) {
                const int component = table.Colors[i].*key.component >> 8;
                done = SetNumeric(text, setting.section, Indexed("Color", i) + key.name, component) && done;
            }
        }
        return done;
    }
    bool operator()(const HistorySetting& value) const
    {
        SetHistoryList(text, setting.section, table.*value.field);
        return true;
    }
};

void StoreLayout(GTable& table, const LiveLayout& layout)
{
    if (layout.HasWindow) {
        table.WindowX = layout.WindowX;
        table.WindowY = layout.WindowY;
        table.WindowWidth = layout.WindowWidth;
        table.WindowHeight = layout.WindowHeight;
    }
    table.PandPosition = layout.PandPosition;
    for (std::size_t i = 0; i < layout.ColumnSize.size() && i < table.ColumnSize.size(); ++i) {
        table.ColumnSize[i] = layout.ColumnSize[i];
    }
}

}  // namespace

const std::span<const Setting> kSettings = kSettingTable;

LiveLayout (*ReadLiveLayout)() = nullptr;

std::string GetSettingsPath()
{
    const std::string home = GetHomeDirectory();
    return home.empty() ? home : WithSlash(home) + kFileName;
}

void DefaultGTable()
{
    if (pGTable == nullptr) {
        return;
    }
    const GTable defaults;
    for (const Setting& setting : kSettings) {
        if (const auto* number = std::get_if<NumberSetting>(&setting.value)) {
            pGTable->*number->field = defaults.*number->field;
        } else if (const auto* flag = std::get_if<FlagSetting>(&setting.value)) {
            pGTable->*flag->field = defaults.*flag->field;
        } else if (const auto* text = std::get_if<TextSetting>(&setting.value)) {
            if (text->has_default) {
                pGTable->*text->field = defaults.*text->field;
            }
        }
    }
    pGTable->NameColumn = defaults.NameColumn;
    pGTable->ColumnPosition = defaults.ColumnPosition;
    pGTable->ColumnSize = defaults.ColumnSize;
    pGTable->Colors = defaults.Colors;
}

int GetGTable()
{
    if (pGTable == nullptr) {
        return FILE_NO_ARGUMENT;
    }
    DefaultGTable();
    const std::string path = GetSettingsPath();
    if (path.empty()) {
        return FILE_DONE;
    }
    std::string text;
    if (ReadFile(path, &text) != FILE_DONE) {
        SetGTable();
        return FILE_DONE;
    }
    for (const Setting& setting : kSettings) {
        std::visit(Reader{text.c_str(), setting, *pGTable}, setting.value);
    }
    return FILE_DONE;
}

FileResult SetGTable(const LiveLayout& layout)
{
    if (pGTable == nullptr) {
        return FILE_NO_ARGUMENT;
    }
    StoreLayout(*pGTable, layout);
    std::string text = FormatText(kHeader, kRights);
    for (const Setting& setting : kSettings) {
        if (!std::visit(Writer{text, setting, *pGTable}, setting.value)) {
            return FILE_NOT_BUILT;
        }
    }
    const std::string path = GetSettingsPath();
    return path.empty() ? FILE_DONE : WriteFile(path, text);
}

FileResult SetGTable()
{
    return SetGTable(ReadLiveLayout != nullptr ? ReadLiveLayout() : LiveLayout());
}
