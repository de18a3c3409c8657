#include "core/fnktable.h"

#include <algorithm>

constinit thread_local GTable* pGTable = nullptr;

int FindNameColumn(const GTable& table)
{
    const auto begin = table.ColumnPosition.begin();
    const auto end = begin + table.ColumnCount;
    const auto name = std::find(begin, end, COLUMN_NAME);
    return name == end ? 1 : static_cast<int>(name - begin) + 1;
}
