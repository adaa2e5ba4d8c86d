// A CSV file that is written row by row.
#pragma once

#include "apps/lumora-desk/resultrows.h"

#include <QSaveFile>

#include <string>

namespace lumora::desk {

// RFC 4180 in UTF-8, with the mark by which spreadsheets know that. The file appears when finish() has
// succeeded; until then, and when anything fails, what was there before stays.
class CsvFile {
public:
    // Each raises EFileError, with the reason, when the file cannot be written.
    explicit CsvFile(const QString& fileName);
    void header(const QList<ResultColumn>& columns);
    void row(const ResultRow& row);
    void finish();

private:
    void flush();
    [[noreturn]] void fail() const;

    QSaveFile file_;
    std::string buffer_;
};

} // namespace lumora::desk
