// The rows of a query as text.
#pragma once

#include "apps/lumora/standard_streams.h"

#include <QList>
#include <QStringList>
#include <QVariant>

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
    virtual void columns(const QStringList& names) = 0;
    virtual void row(const QList<QVariant>& values) = 0;
    virtual void finish() = 0; // after the last row
};

// Table: aligned columns for people; it needs all rows to know the widths, so it writes when it finishes.
// CSV (RFC 4180 with LF) and JSON (an array, each row an object on a line of its own) write as rows come.
std::unique_ptr<RowWriter> makeRowWriter(RowFormat format, Output& output);

} // namespace lumora::cli
