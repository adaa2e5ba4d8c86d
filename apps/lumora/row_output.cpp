#include "apps/lumora/row_output.h"

#include "apps/lumora/arguments.h"
#include "apps/lumora/text_width.h"
#include "lumora/qtsql/celltext.h"

#include <QSet>
#include <QSqlField>

#include <algorithm>
#include <string>
#include <vector>

namespace lumora::cli {

namespace {

// Texts in columns of decimal numbers are such numbers.
std::vector<bool> decimalColumns(const QSqlRecord& columns) {
    std::vector<bool> decimal;
    for (int i = 0; i < columns.count(); ++i)
        decimal.push_back(columns.field(i).metaType().id() == QMetaType::Double);
    return decimal;
}

class TableWriter : public RowWriter {
public:
    explicit TableWriter(Output& output) : output_(output) {}

    void columns(const QSqlRecord& columns) override {
        const std::vector<bool> decimal = decimalColumns(columns);
        for (std::size_t i = 0; i < decimal.size(); ++i) {
            Column& column = columns_.emplace_back();
            column.header = makeCell(columns.fieldName(static_cast<int>(i)));
            column.width = column.header.width;
            column.decimal = decimal[i];
        }
    }

    void row(const QList<QVariant>& values) override {
        ++count_;
        std::vector<Cell>& cells = isSettled_ ? cells_ : rows_.emplace_back();
        cells.clear();
        for (const QVariant& value : values)
            cells.push_back(makeCell(value.isNull() ? QStringLiteral("NULL") : cellText(value)));
        if (isSettled_) {
            writeLine(cells, " | ");
            return;
        }
        for (std::size_t i = 0; i < columns_.size(); ++i)
            measure(columns_[i], cells[i], values[static_cast<qsizetype>(i)]);
        if (rows_.size() == rowsThatSetWidths)
            settle();
    }

    void finish() override {
        if (!isSettled_)
            settle();
        std::string count(1, '(');
        output_.write(count.append(std::to_string(count_)).append(count_ == 1 ? " row)\n" : " rows)\n"));
    }

private:
    struct Cell {
        std::string text;
        int width = 0;
    };
    struct Column {
        Cell header;
        int width = 0;
        bool decimal = false;
        bool hasNumbers = false;
        bool hasText = false;
    };

    static Cell makeCell(const QString& text) {
        const QString line = visibleLine(text);
        return {line.toStdString(), displayWidth(line)};
    }

    static void measure(Column& column, const Cell& cell, const QVariant& value) {
        const bool number = isNumber(value) || (column.decimal && isDecimal(value));
        column.width = std::max(column.width, cell.width);
        column.hasNumbers = column.hasNumbers || number;
        column.hasText = column.hasText || !(value.isNull() || number);
    }

    // Writes what was kept; from now on the widths stay.
    void settle() {
        isSettled_ = true;
        std::vector<Cell> headers;
        std::vector<Cell> rules;
        for (const Column& column : columns_) {
            headers.push_back(column.header);
            rules.push_back({std::string(static_cast<std::size_t>(column.width), '-'), column.width});
        }
        writeLine(headers, " | ");
        writeLine(rules, "-+-");
        for (const std::vector<Cell>& cells : rows_)
            writeLine(cells, " | ");
        rows_ = {};
    }

    // Columns of numbers stand to the right. What is too long sticks out. No blanks end a line.
    void writeLine(const std::vector<Cell>& cells, std::string_view separator) {
        line_.clear();
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const Column& column = columns_[i];
            const auto fill = static_cast<std::size_t>(std::max(column.width - cells[i].width, 0));
            const bool right = column.hasNumbers && !column.hasText;
            if (i > 0)
                line_ += separator;
            line_.append(right ? fill : 0, ' ').append(cells[i].text).append(right ? 0 : fill, ' ');
        }
        line_.erase(line_.find_last_not_of(' ') + 1);
        output_.write(line_ += '\n');
    }

    Output& output_;
    std::vector<Column> columns_;
    std::vector<std::vector<Cell>> rows_; // until the widths are settled
    std::vector<Cell> cells_;             // of one row, after that
    std::string line_;
    std::int64_t count_ = 0;
    bool isSettled_ = false;
};

class CsvWriter : public RowWriter {
public:
    explicit CsvWriter(Output& output) : output_(output) {}

    void columns(const QSqlRecord& columns) override {
        QList<QVariant> names;
        for (int i = 0; i < columns.count(); ++i)
            names.append(columns.fieldName(i));
        row(names);
    }

    void row(const QList<QVariant>& values) override {
        line_.clear();
        for (qsizetype i = 0; i < values.size(); ++i) {
            if (i > 0)
                line_ += ',';
            appendCsvField(line_, values[i]);
        }
        output_.write(line_ += '\n');
    }

    void finish() override {}

private:
    Output& output_;
    std::string line_;
};

class JsonWriter : public RowWriter {
public:
    explicit JsonWriter(Output& output) : output_(output) {}

    // An object keeps one value of a name only: the second column "a" becomes "a:2".
    void columns(const QSqlRecord& columns) override {
        decimal_ = decimalColumns(columns);
        QSet<QString> taken;
        for (int i = 0; i < columns.count(); ++i)
            taken.insert(columns.fieldName(i));
        QSet<QString> used;
        for (int i = 0; i < columns.count(); ++i) {
            const QString name = columns.fieldName(i);
            QString key = name;
            for (int n = 2; used.contains(key) || (key != name && taken.contains(key)); ++n)
                key = name + QStringLiteral(":%1").arg(n);
            used.insert(key);
            appendJsonString(keys_.emplace_back(i > 0 ? "," : ""), key.toStdString());
            keys_.back() += ':';
        }
        output_.write("[");
    }

    void row(const QList<QVariant>& values) override {
        line_ = first_ ? "\n{" : ",\n{";
        first_ = false;
        for (std::size_t i = 0; i < keys_.size(); ++i)
            appendJson(line_ += keys_[i], values[static_cast<qsizetype>(i)], decimal_[i]);
        output_.write(line_ += '}');
    }

    void finish() override { output_.write(first_ ? "]\n" : "\n]\n"); }

private:
    Output& output_;
    std::vector<std::string> keys_; // as they stand in a row, with what is before and behind
    std::vector<bool> decimal_;
    std::string line_;
    bool first_ = true;
};

} // namespace

RowFormat parseRowFormat(std::string_view text) {
    if (text == "table")
        return RowFormat::Table;
    if (text == "csv")
        return RowFormat::Csv;
    if (text == "json")
        return RowFormat::Json;
    throw UsageError("Option --format does not know \"" + std::string(text) + "\", only table, csv, json");
}

std::unique_ptr<RowWriter> makeRowWriter(RowFormat format, Output& output) {
    switch (format) {
    case RowFormat::Csv:
        return std::make_unique<CsvWriter>(output);
    case RowFormat::Json:
        return std::make_unique<JsonWriter>(output);
    case RowFormat::Table:
        break;
    }
    return std::make_unique<TableWriter>(output);
}

} // namespace lumora::cli
