#include "lumora/qtsql/captions.h"

#include <QString>
#include <QStringList>

namespace lumora {

namespace {

using namespace Qt::StringLiterals;

// A word begins behind a separator, at a capital that follows a small letter, and at the last of several
// capitals before a small letter ("HTMLPage").
QStringList splitWords(const QString& name) {
    QStringList words;
    QString word;
    const auto endWord = [&] {
        if (!word.isEmpty())
            words.append(std::exchange(word, {}));
    };
    for (qsizetype i = 0; i < name.size(); ++i) {
        const QChar c = name[i];
        if (c == u'_' || c == u'-' || c == u'.' || c.isSpace()) {
            endWord();
            continue;
        }
        const bool afterSmall = i > 0 && (name[i - 1].isLower() || name[i - 1].isDigit());
        const bool beforeSmall =
            i > 0 && name[i - 1].isUpper() && i + 1 < name.size() && name[i + 1].isLower();
        if (c.isUpper() && (afterSmall || beforeSmall))
            endWord();
        word += c;
    }
    endWord();
    return words;
}

QString spelled(const QString& word) {
    static const QStringList abbreviations = {u"id"_s,  u"url"_s,  u"uri"_s, u"uuid"_s,
                                              u"vat"_s, u"iban"_s, u"ip"_s};
    return abbreviations.contains(word.toLower()) ? word.toUpper() : word.toLower();
}

} // namespace

std::string readableCaption(std::string_view text) {
    const QString name = QString::fromUtf8(text.data(), static_cast<qsizetype>(text.size()));
    QStringList words = splitWords(name);
    if (words.isEmpty())
        return std::string(text);
    for (QString& word : words)
        word = spelled(word);
    words.front().front() = words.front().front().toUpper();
    return words.join(u' ').toStdString();
}

} // namespace lumora
