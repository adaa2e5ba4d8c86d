// SQL in colours.
#pragma once

#include "lumora/sqlparse/Vscanner.h"

#include <QSyntaxHighlighter>

#include <vector>

namespace lumora::desk {

// A stretch of a text that is painted alike.
struct SqlStretch {
    enum class Kind { Keyword, Name, Text, Number, Comment, Parameter };

    qsizetype start = 0; // in UTF-16 units, as Qt counts
    qsizetype length = 0;
    Kind kind = Kind::Keyword;

    bool operator==(const SqlStretch&) const = default;
};

// In their order. What is not closed (a quote, a comment) reaches to the end of the text.
std::vector<SqlStretch> sqlStretches(const QString& sql);

class SqlHighlighter : public QSyntaxHighlighter {
public:
    explicit SqlHighlighter(QTextDocument* document) : QSyntaxHighlighter(document) {}

protected:
    void highlightBlock(const QString& text) override;

private:
    const std::vector<SqlStretch>& stretches();

    std::vector<SqlStretch> stretches_;
    QString text_; // in which they were found
};

} // namespace lumora::desk
