#include "lumora/qtsql/foreignkeylines.h"

#include "lumora/support/string_helpers.h"

#include <algorithm>

namespace lumora {

namespace {

// What a link line holds names apart by.
bool fitsLinkLine(const std::string& column) {
    return column.find_first_of("=<>!,") == std::string::npos && Trim(column) == column;
}

} // namespace

bool fitsLinkLine(const ForeignKey& key) {
    const auto fits = [](const std::string& column) { return fitsLinkLine(column); };
    return std::all_of(key.columns.begin(), key.columns.end(), fits) &&
           std::all_of(key.referencedColumns.begin(), key.referencedColumns.end(), fits);
}

std::string linkLine(const ForeignKey& key) {
    std::string line = key.table + '-' + key.referencedTable + ':';
    for (std::size_t i = 0; i < key.columns.size(); ++i)
        line.append(i == 0 ? "" : ",").append(key.columns[i]).append("=").append(key.referencedColumns[i]);
    return line;
}

} // namespace lumora
