#include "apps/lumora-desk/querysentence.h"

#include <QCoreApplication>

#include <algorithm>
#include <vector>

namespace lumora::desk {

namespace {

QString translated(const char* text) {
    return QCoreApplication::translate("lumora::desk::QuerySentence", text);
}

int indentation(const QString& line) {
    const auto text = std::find_if(line.begin(), line.end(), [](QChar c) { return c != u' '; });
    return static_cast<int>(text - line.begin());
}

// The lines from `next` on that stand deeper than `indent`, those below a line in brackets behind it.
QString joinedBelow(const QStringList& lines, qsizetype& next, int indent) {
    QStringList parts;
    while (next < lines.size() && indentation(lines[next]) > indent) {
        const int own = indentation(lines[next]);
        QString part = lines[next++].trimmed();
        const QString below = joinedBelow(lines, next, own);
        parts.append(below.isEmpty() ? part : part + QStringLiteral(" (%1)").arg(below));
    }
    return parts.join(QStringLiteral("; "));
}

// "a", "a and b", "a, b and c".
QString enumeration(QStringList words) {
    if (words.size() < 2)
        return words.join(QString());
    const QString last = words.takeLast();
    return translated("%1 and %2").arg(words.join(QStringLiteral(", ")), last);
}

QString captionOf(const TResultField& field) {
    return QString::fromStdString(field.GetCaption());
}

QString columnSentence(const TRFieldList& fields) {
    QStringList shown;
    std::vector<const TResultField*> sorted;
    for (int i = 0; i < fields.Count(); ++i) {
        const TResultField& field = *fields.GetRField(i);
        shown.append(captionOf(field));
        if (field.GetSorting() != stNoSort)
            sorted.push_back(&field);
    }
    std::stable_sort(sorted.begin(), sorted.end(), [](const TResultField* a, const TResultField* b) {
        return a->GetSortOrder() < b->GetSortOrder();
    });
    QStringList order;
    for (const TResultField* const field : sorted)
        order.append(field->GetSorting() == stDescending ? translated("%1 descending").arg(captionOf(*field))
                                                         : captionOf(*field));
    const bool everything = fields.JustSorting || shown.isEmpty();
    QString text = everything ? translated("Show all fields") : translated("Show %1").arg(enumeration(shown));
    if (!order.isEmpty())
        text += translated(", sorted by %1").arg(enumeration(order));
    return text + u'.';
}

} // namespace

QString conditionSentence(const QStringList& lines) {
    qsizetype next = 1;
    const QString below = lines.isEmpty() ? QString() : joinedBelow(lines, next, indentation(lines[0]));
    return below.isEmpty() ? QString() : lines[0].trimmed() + QStringLiteral(": ") + below + u'.';
}

QString querySentence(TVQueryPanel& panel) {
    const QString text = QString::fromStdString(panel.GetQueryText());
    const QString conditions = conditionSentence(text.split(u'\n', Qt::SkipEmptyParts));
    if (conditions.isEmpty() && panel.GetQResult().GetResultFields().Count() == 0)
        return {};
    return columnSentence(panel.GetQResult().GetResultFields()) + u' ' +
           (conditions.isEmpty() ? translated("Choose all records.") : conditions);
}

} // namespace lumora::desk
