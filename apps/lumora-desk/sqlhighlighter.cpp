#include "apps/lumora-desk/sqlhighlighter.h"

#include "lumora/platform/ascii.h"

#include <QGuiApplication>
#include <QPalette>
#include <QTextDocument>

#include <algorithm>
#include <array>

namespace lumora::desk {

namespace {

constexpr std::array<std::string_view, 50> keywords = {
    "all",   "and",   "any",   "as",       "asc",     "avg",   "between",   "by",     "case",  "cast",
    "count", "cross", "desc",  "distinct", "else",    "end",   "except",    "exists", "false", "fetch",
    "from",  "full",  "group", "having",   "in",      "inner", "intersect", "is",     "join",  "left",
    "like",  "limit", "max",   "min",      "natural", "not",   "null",      "offset", "on",    "or",
    "order", "outer", "right", "select",   "sum",     "then",  "union",     "using",  "when",  "where"};

bool isKeyword(std::string_view word) {
    return std::any_of(keywords.begin(), keywords.end(),
                       [&](std::string_view keyword) { return SameText(keyword, word); });
}

// Where a place in the UTF-8 text is in Qt's form of it; asked for from left to right.
class Utf16Places {
public:
    explicit Utf16Places(std::string_view text) : text_(text) {}

    qsizetype at(std::size_t place) {
        for (; utf8_ < place; ++utf8_) {
            const auto byte = static_cast<unsigned char>(text_[utf8_]);
            utf16_ += byte >= 0xF0 ? 2 : (byte & 0xC0) != 0x80 ? 1 : 0;
        }
        return utf16_;
    }

private:
    const std::string_view text_;
    std::size_t utf8_ = 0;
    qsizetype utf16_ = 0;
};

class StretchFinder {
public:
    explicit StretchFinder(std::string_view sql) : sql_(sql), places_(sql) {}

    std::vector<SqlStretch> find() {
        for (TVScanner scanner(sql_); !scanner.AtEnd(); scanner.Next())
            addToken(scanner.Token());
        addComments(sql_.size());
        return std::move(stretches_);
    }

private:
    using Kind = SqlStretch::Kind;

    void addToken(const TToken& token) {
        const auto start = static_cast<std::size_t>(token.Text.data() - sql_.data());
        addComments(start);
        done_ = start + token.Text.size();
        if (token.Kind == tkUnclosed)
            add(start, sql_.size() - start, token.Text.substr(0, 2) == "/*" ? Kind::Comment : Kind::Text);
        else if (token.Kind == tkString)
            add(start, token.Text.size(), Kind::Text);
        else if (token.Kind == tkNumber)
            add(start, token.Text.size(), Kind::Number);
        else if (token.Kind == tkQuotedIdentifier)
            add(start, token.Text.size(), Kind::Name);
        else if (token.Kind == tkIdentifier && start > 0 && sql_[start - 1] == ':')
            add(start, token.Text.size(), Kind::Parameter);
        else if (token.Kind == tkIdentifier && isKeyword(token.Text))
            add(start, token.Text.size(), Kind::Keyword);
    }

    // Between tokens are blanks and comments.
    void addComments(std::size_t end) {
        while (done_ < end) {
            const std::string_view gap = sql_.substr(done_, end - done_);
            const std::size_t start = std::min(gap.find("--"), gap.find("/*"));
            if (start == std::string_view::npos)
                break;
            const bool line = gap[start] == '-';
            const std::size_t close = gap.find(line ? "\n" : "*/", start + 2);
            const std::size_t stop = close == std::string_view::npos ? gap.size() : close + (line ? 0 : 2);
            add(done_ + start, stop - start, Kind::Comment);
            done_ += stop;
        }
        done_ = end;
    }

    void add(std::size_t start, std::size_t length, Kind kind) {
        const qsizetype first = places_.at(start);
        stretches_.push_back({first, places_.at(start + length) - first, kind});
    }

    const std::string_view sql_;
    Utf16Places places_;
    std::size_t done_ = 0;
    std::vector<SqlStretch> stretches_;
};

// Colours that can be read on the palette's background, light or dark.
QTextCharFormat formatOf(SqlStretch::Kind kind) {
    using Kind = SqlStretch::Kind;
    const bool dark = QGuiApplication::palette().color(QPalette::Base).lightness() < 128;
    QTextCharFormat format;
    switch (kind) {
    case Kind::Keyword:
        format.setForeground(dark ? QColor(0x8a, 0xb4, 0xf8) : QColor(0x1a, 0x4b, 0xa8));
        format.setFontWeight(QFont::DemiBold);
        break;
    case Kind::Name:
        format.setForeground(dark ? QColor(0xd7, 0xae, 0xfb) : QColor(0x6a, 0x3d, 0x9a));
        break;
    case Kind::Text:
        format.setForeground(dark ? QColor(0x81, 0xc9, 0x95) : QColor(0x1b, 0x6e, 0x37));
        break;
    case Kind::Number:
        format.setForeground(dark ? QColor(0xfd, 0xbe, 0x74) : QColor(0x9a, 0x4b, 0x00));
        break;
    case Kind::Parameter:
        format.setForeground(dark ? QColor(0xf2, 0x8b, 0xb4) : QColor(0xa6, 0x1c, 0x5c));
        format.setFontWeight(QFont::DemiBold);
        break;
    case Kind::Comment:
        format.setForeground(QGuiApplication::palette().brush(QPalette::PlaceholderText));
        format.setFontItalic(true);
        break;
    }
    return format;
}

} // namespace

std::vector<SqlStretch> sqlStretches(const QString& sql) {
    const std::string text = sql.toStdString();
    return StretchFinder(text).find();
}

const std::vector<SqlStretch>& SqlHighlighter::stretches() {
    if (const QString text = document()->toPlainText(); text != text_) {
        text_ = text;
        stretches_ = sqlStretches(text);
    }
    return stretches_;
}

void SqlHighlighter::highlightBlock(const QString& text) {
    const qsizetype start = currentBlock().position();
    const qsizetype end = start + text.size();
    int state = -1; // what the line's end is inside of; another one than before has the next line done again
    for (const SqlStretch& stretch : stretches()) {
        const qsizetype from = std::max(stretch.start, start);
        const qsizetype to = std::min(stretch.start + stretch.length, end);
        if (from < to)
            setFormat(static_cast<int>(from - start), static_cast<int>(to - from), formatOf(stretch.kind));
        if (stretch.start <= end && stretch.start + stretch.length > end)
            state = static_cast<int>(stretch.kind);
    }
    setCurrentBlockState(state);
}

} // namespace lumora::desk
