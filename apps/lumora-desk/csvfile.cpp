#include "apps/lumora-desk/csvfile.h"

#include "lumora/platform/errors.h"
#include "lumora/qtsql/celltext.h"

#include <QDir>

namespace lumora::desk {

namespace {

constexpr std::size_t bufferSize = 256 << 10;

} // namespace

CsvFile::CsvFile(const QString& fileName) : file_(fileName), buffer_("\xEF\xBB\xBF") {
    if (!file_.open(QIODevice::WriteOnly))
        fail();
}

void CsvFile::header(const QList<ResultColumn>& columns) {
    ResultRow names;
    for (const ResultColumn& column : columns)
        names.append(column.name);
    row(names);
}

void CsvFile::row(const ResultRow& row) {
    for (qsizetype i = 0; i < row.size(); ++i) {
        if (i > 0)
            buffer_ += ',';
        appendCsvField(buffer_, row[i]);
    }
    buffer_ += "\r\n"; // as RFC 4180 says
    if (buffer_.size() > bufferSize)
        flush();
}

void CsvFile::flush() {
    const auto size = static_cast<qint64>(buffer_.size());
    if (file_.write(buffer_.data(), size) != size || !file_.flush())
        fail();
    buffer_.clear();
}

void CsvFile::finish() {
    flush();
    if (!file_.commit())
        fail();
}

void CsvFile::fail() const {
    throw EFileError("Cannot write " + QDir::toNativeSeparators(file_.fileName()).toStdString() + ": " +
                     file_.errorString().toStdString());
}

} // namespace lumora::desk
