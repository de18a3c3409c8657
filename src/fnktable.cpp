#include "fnktable.h"

#include <algorithm>

#include "fnkfiles-settings.h"

GTable* pGTable = nullptr;

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

int FindNameColumn(const GTable& table)
{
    const auto begin = table.ColumnPosition.begin();
    const auto end = begin + table.ColumnCount;
    const auto name = std::find(begin, end, COLUMN_NAME);
    return name == end ? 1 : static_cast<int>(name - begin) + 1;
}
