#include "apps/lumora/row_output.h"

#include "apps/lumora/arguments.h"
#include "apps/lumora/cell_text.h"
#include "apps/lumora/text_width.h"

#include <QSet>

#include <algorithm>
#include <string>
#include <vector>

namespace lumora::cli {

namespace {

class TableWriter : public RowWriter {
public:
    explicit TableWriter(Output& output) : output_(output) {}

    void columns(const QStringList& names) override {
        for (const QString& name : names)
            columns_.push_back({makeCell(name)});
        for (Column& column : columns_)
            column.width = column.header.width;
    }

    void row(const QList<QVariant>& values) override {
        std::vector<Cell>& cells = rows_.emplace_back();
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            const QVariant& value = values[static_cast<qsizetype>(i)];
            cells.push_back(makeCell(value.isNull() ? QStringLiteral("NULL") : cellText(value, false)));
            Column& column = columns_[i];
            column.width = std::max(column.width, cells.back().width);
            column.hasNumbers = column.hasNumbers || isNumber(value);
            column.hasText = column.hasText || !(value.isNull() || isNumber(value));
        }
    }

    void finish() override {
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
        std::string count(1, '(');
        count.append(std::to_string(rows_.size())).append(rows_.size() == 1 ? " row)\n" : " rows)\n");
        output_.write(count);
    }

private:
    struct Cell {
        std::string text;
        int width = 0;
    };
    struct Column {
        Cell header;
        int width = 0;
        bool hasNumbers = false;
        bool hasText = false;
    };

    static Cell makeCell(const QString& text) {
        const QString line = visibleLine(text);
        return {line.toStdString(), displayWidth(line)};
    }

    // Columns of numbers stand to the right. No blanks end a line.
    void writeLine(const std::vector<Cell>& cells, std::string_view separator) {
        std::string line;
        for (std::size_t i = 0; i < cells.size(); ++i) {
            const Column& column = columns_[i];
            const std::string fill(static_cast<std::size_t>(column.width - cells[i].width), ' ');
            const bool right = column.hasNumbers && !column.hasText;
            if (i > 0)
                line += separator;
            line += right ? fill + cells[i].text : cells[i].text + fill;
        }
        line.erase(line.find_last_not_of(' ') + 1);
        output_.write(line += '\n');
    }

    Output& output_;
    std::vector<Column> columns_;
    std::vector<std::vector<Cell>> rows_;
};

class CsvWriter : public RowWriter {
public:
    explicit CsvWriter(Output& output) : output_(output) {}

    void columns(const QStringList& names) override {
        std::string line;
        for (qsizetype i = 0; i < names.size(); ++i)
            append(line, names[i], i > 0);
        output_.write(line += '\n');
    }

    // NULL is an empty field, an empty text an empty field in quotes.
    void row(const QList<QVariant>& values) override {
        line_.clear();
        for (qsizetype i = 0; i < values.size(); ++i)
            if (!values[i].isNull())
                append(line_, cellText(values[i], true), i > 0);
            else if (i > 0)
                line_ += ',';
        output_.write(line_ += '\n');
    }

    void finish() override {}

private:
    static void append(std::string& line, const QString& text, bool comma) {
        if (comma)
            line += ',';
        const std::string field = text.toStdString();
        if (!field.empty() && field.find_first_of(",\"\r\n") == std::string::npos) {
            line += field;
            return;
        }
        line += '"';
        for (const char c : field)
            line.append(c == '"' ? 2 : 1, c);
        line += '"';
    }

    Output& output_;
    std::string line_;
};

class JsonWriter : public RowWriter {
public:
    explicit JsonWriter(Output& output) : output_(output) {}

    // An object keeps one value of a name only: the second column "a" becomes "a:2".
    void columns(const QStringList& names) override {
        QSet<QString> taken(names.begin(), names.end());
        QSet<QString> used;
        for (const QString& name : names) {
            QString key = name;
            for (int n = 2; used.contains(key) || (key != name && taken.contains(key)); ++n)
                key = name + QStringLiteral(":%1").arg(n);
            used.insert(key);
            keys_.push_back(jsonString(key) + ":");
        }
        output_.write("[");
    }

    void row(const QList<QVariant>& values) override {
        line_ = first_ ? "\n{" : ",\n{";
        first_ = false;
        for (std::size_t i = 0; i < keys_.size(); ++i)
            line_.append(i > 0 ? "," : "")
                .append(keys_[i])
                .append(jsonValue(values[static_cast<qsizetype>(i)]));
        output_.write(line_ += '}');
    }

    void finish() override { output_.write(first_ ? "]\n" : "\n]\n"); }

private:
    Output& output_;
    std::vector<std::string> keys_;
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
