#include "lumora/qtsql/modelcolumns.h"

#include "lumora/platform/convert.h"
#include "lumora/platform/filter_expression.h"
#include "lumora/platform/formats.h"

#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlField>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QSqlRelationalTableModel>

#include <algorithm>
#include <limits>

namespace lumora {

bool ModelColumn::operator==(const ModelColumn& other) const {
    return name == other.name && label == other.label && type == other.type && size == other.size &&
           isRelation == other.isRelation;
}

namespace {

constexpr int sampledRows = 100;
constexpr qint64 firstDay = 2415019; // 1899-12-30

TFieldType fieldType(QMetaType type) {
    switch (type.id()) {
    case QMetaType::Bool:
        return ftBoolean;
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Short:
        return ftSmallint;
    case QMetaType::UShort:
        return ftWord;
    case QMetaType::Int:
        return ftInteger;
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
        return ftLargeint;
    case QMetaType::Float:
    case QMetaType::Double:
        return ftFloat;
    case QMetaType::QDate:
        return ftDate;
    case QMetaType::QTime:
        return ftTime;
    case QMetaType::QDateTime:
        return ftDateTime;
    case QMetaType::QByteArray:
        return ftBlob;
    case QMetaType::QUuid:
        return ftGuid;
    case QMetaType::QString:
    case QMetaType::QChar:
        return ftString;
    default:
        return ftUnknown;
    }
}

bool isWhole(TFieldType type) {
    return type == ftSmallint || type == ftWord || type == ftInteger || type == ftLargeint;
}

bool isNumber(TFieldType type) {
    return isWhole(type) || type == ftFloat;
}

// The type that holds values of both.
TFieldType commonType(TFieldType a, TFieldType b) {
    if (a == b || b == ftUnknown)
        return a;
    if (a == ftUnknown)
        return b;
    if (isNumber(a) && isNumber(b))
        return isWhole(a) && isWhole(b) ? ftLargeint : ftFloat;
    return (a == ftDate && b == ftDateTime) || (a == ftDateTime && b == ftDate) ? ftDateTime : ftString;
}

// The type of the values in the first rows; ftUnknown when there are none.
TFieldType sampledType(const QAbstractItemModel& model, int column) {
    TFieldType type = ftUnknown;
    const int rows = std::min(model.rowCount(), sampledRows);
    for (int row = 0; row < rows; ++row)
        if (const QVariant value = cellValue(model, row, column); !value.isNull())
            type = commonType(type, fieldType(value.metaType()));
    return type;
}

ModelColumn sqlColumn(const QSqlQueryModel& model, int column, const QSqlField& field) {
    ModelColumn result;
    result.name = field.name();
    result.label = model.headerData(column, Qt::Horizontal).toString();
    result.type = fieldType(field.metaType());
    if (result.type == ftUnknown || result.type == ftString) // SQLite says text of what it does not know
        if (const TFieldType sampled = sampledType(model, column); sampled != ftUnknown)
            result.type = sampled;
    if (result.type == ftString)
        result.size = std::max(field.length(), 0);
    if (isWhole(result.type) && field.isAutoValue())
        result.type = ftAutoInc;
    return result;
}

// A relational model's own record has the names and types of what it shows; the table has those of the keys.
ModelColumn relationColumn(const ModelColumn& shown, const QSqlField& key) {
    const bool hasOwnLabel = shown.label != shown.name;
    return {key.name(), hasOwnLabel ? shown.label : key.name(), fieldType(key.metaType()), 0, true};
}

QList<ModelColumn> sqlColumns(const QSqlQueryModel& model) {
    QList<ModelColumn> columns;
    const QSqlRecord record = model.record();
    const auto* const table = qobject_cast<const QSqlTableModel*>(&model);
    const QSqlRecord base = table ? table->database().record(table->tableName()) : QSqlRecord();
    const auto* const relational = qobject_cast<const QSqlRelationalTableModel*>(&model);
    for (int i = 0; i < model.columnCount(); ++i) {
        const bool isRelation = relational && relational->relation(i).isValid() && i < base.count();
        // The record of a query knows no automatic values.
        const int place = isRelation ? i : base.indexOf(record.fieldName(i));
        const QSqlField field = place >= 0 ? base.field(place) : record.field(i);
        columns.append(sqlColumn(model, i, record.field(i)));
        if (isRelation)
            columns.back() = relationColumn(columns.back(), field);
        else if (place >= 0 && field.isAutoValue() && isWhole(columns.back().type))
            columns.back().type = ftAutoInc;
    }
    return columns;
}

// A name that needs no quotes, but for blanks, which a model quotes.
QString headerName(const QString& header, int column) {
    const QString text = header.simplified();
    const bool isNumber = std::all_of(text.begin(), text.end(), [](QChar c) { return c.isDigit(); });
    if (isNumber) // none, or the number that Qt gives
        return QStringLiteral("Column%1").arg(column + 1);
    if (text.contains(u' '))
        return QString(text).replace(u'"', u'_');
    QString name;
    for (const QChar c : text) {
        const bool belongs = c.unicode() >= 128 || c.isLetterOrNumber() || c == u'_';
        name += belongs ? c : QChar(u'_');
    }
    if (name.front().isDigit())
        name.prepend(u'_');
    return IsFilterName(name.toStdString()) ? name : name + u'_';
}

void makeUnique(QList<ModelColumn>& columns) {
    QSet<QString> taken;
    for (ModelColumn& column : columns) {
        const QString name = column.name;
        for (int number = 2; taken.contains(column.name.toLower()); ++number)
            column.name = QStringLiteral("%1_%2").arg(name).arg(number);
        taken.insert(column.name.toLower());
    }
}

} // namespace

bool isSqlModel(const QAbstractItemModel& model) {
    return qobject_cast<const QSqlQueryModel*>(&model) != nullptr;
}

bool isModelOpen(const QAbstractItemModel& model) {
    const auto* const query = qobject_cast<const QSqlQueryModel*>(&model);
    return model.columnCount() > 0 && (!query || query->query().isActive());
}

QList<ModelColumn> modelColumns(const QAbstractItemModel& model) {
    QList<ModelColumn> columns;
    if (const auto* const query = qobject_cast<const QSqlQueryModel*>(&model)) {
        columns = sqlColumns(*query);
    } else {
        for (int i = 0; i < model.columnCount(); ++i) {
            const QString header = model.headerData(i, Qt::Horizontal).toString();
            columns.append({headerName(header, i), header, sampledType(model, i), 0, false});
        }
    }
    makeUnique(columns);
    return columns;
}

QVariant cellValue(const QAbstractItemModel& model, int row, int column, const QModelIndex& parent) {
    const QModelIndex index = model.index(row, column, parent);
    QVariant value = model.data(index, Qt::EditRole);
    return value.isValid() ? value : model.data(index, Qt::DisplayRole);
}

// --- Values.

std::string valueText(const QVariant& value) {
    if (value.isNull())
        return {};
    const auto dateOf = [](QDate date) { return static_cast<TDateTime>(date.toJulianDay() - firstDay); };
    const auto timeOf = [](QTime time) { return time.msecsSinceStartOfDay() / 86400000.0; };
    switch (fieldType(value.metaType())) {
    case ftBoolean:
        return value.toBool() ? "True" : "False";
    case ftFloat:
        return FloatToStr(value.toDouble());
    case ftDate:
        return DateToStr(dateOf(value.toDate()));
    case ftTime:
        return TimeToStr(timeOf(value.toTime()));
    case ftDateTime:
        return DateTimeToStr(
            JoinDateTime(dateOf(value.toDateTime().date()), timeOf(value.toDateTime().time())));
    default:
        return value.toString().toStdString();
    }
}

TFilterValue toFilterValue(const QVariant& value) {
    if (value.isNull())
        return {};
    switch (fieldType(value.metaType())) {
    case ftBoolean:
        return TFilterValue::OfBoolean(value.toBool());
    case ftSmallint:
    case ftWord:
    case ftInteger:
    case ftLargeint:
        if (value.metaType().id() == QMetaType::ULongLong &&
            value.toULongLong() > static_cast<qulonglong>(std::numeric_limits<qint64>::max()))
            return TFilterValue::OfNumber(value.toDouble());
        return TFilterValue::OfInteger(value.toLongLong());
    case ftFloat:
        return TFilterValue::OfNumber(value.toDouble());
    case ftDate:
        return TFilterValue::OfDate(value.toDate().toJulianDay() - firstDay);
    case ftTime:
        return TFilterValue::OfTime(value.toTime().msecsSinceStartOfDay());
    case ftDateTime: {
        const QDateTime moment = value.toDateTime();
        return TFilterValue::OfDateTime(moment.date().toJulianDay() - firstDay,
                                        moment.time().msecsSinceStartOfDay());
    }
    default:
        return TFilterValue::OfText(value.toString().toStdString());
    }
}

// --- Relations.

RelationKeys::RelationKeys(const QAbstractItemModel& model, int column) {
    const auto* const relational = qobject_cast<const QSqlRelationalTableModel*>(&model);
    QSqlTableModel* const related = relational ? relational->relationModel(column) : nullptr;
    if (!related)
        return;
    const QSqlRelation relation = relational->relation(column);
    const int key = related->fieldIndex(relation.indexColumn());
    const int shown = related->fieldIndex(relation.displayColumn());
    for (int row = 0;; ++row) {
        if (row >= related->rowCount() && related->canFetchMore())
            related->fetchMore();
        if (row >= related->rowCount())
            break;
        const QString text = cellValue(*related, row, shown).toString();
        unique_ = unique_ && !keys_.contains(text);
        keys_.insert(text, cellValue(*related, row, key));
    }
}

QVariant RelationKeys::keyOf(const QVariant& shown) const {
    return shown.isNull() ? QVariant() : keys_.value(shown.toString());
}

} // namespace lumora
