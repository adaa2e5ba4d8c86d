// The rows of a query as text.
#pragma once

#include "apps/lumora/standard_streams.h"

#include <QList>
#include <QSqlRecord>
#include <QVariant>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

namespace lumora::cli {

enum class RowFormat : std::uint8_t { Table, Csv, Json };

// The value of the option --format; UsageError when there is no such format.
RowFormat parseRowFormat(std::string_view text);

class RowWriter {
public:
    virtual ~RowWriter() = default;
    virtual void columns(const QSqlRecord& columns) = 0;
    virtual void row(const QList<QVariant>& values) = 0;
    virtual void finish() = 0; // after the last row
};

// Table: aligned columns for people; the first rowsThatSetWidths rows are kept to know the widths and which
// columns hold numbers, the rest is written as it comes. CSV (RFC 4180 with LF) and JSON (an array, each row
// an object on a line of its own) write as rows come.
inline constexpr std::size_t rowsThatSetWidths = 1000;
std::unique_ptr<RowWriter> makeRowWriter(RowFormat format, Output& output);

} // namespace lumora::cli
