#include "apps/lumora-desk/sortkey.h"

#include "lumora/qtsql/celltext.h"

#include <QDateTime>

#include <cmath>

namespace lumora::desk {

namespace {

// Not-a-number has no place among numbers.
std::optional<long double> numberOf(const QVariant& value, bool decimal) {
    switch (value.typeId()) {
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::LongLong:
        return static_cast<long double>(value.toLongLong());
    case QMetaType::ULongLong:
        return static_cast<long double>(value.toULongLong());
    case QMetaType::QDate:
        return static_cast<long double>(value.toDate().toJulianDay());
    case QMetaType::QTime:
        return static_cast<long double>(value.toTime().msecsSinceStartOfDay());
    case QMetaType::QDateTime:
        return static_cast<long double>(value.toDateTime().toMSecsSinceEpoch());
    case QMetaType::QString:
        if (!decimal)
            return {};
        [[fallthrough]];
    case QMetaType::Double:
    case QMetaType::Float: {
        bool isNumber = false;
        const double number = value.toDouble(&isNumber);
        if (!isNumber || std::isnan(number))
            return {};
        return number;
    }
    default:
        return {};
    }
}

} // namespace

SortKeyMaker::SortKeyMaker(bool decimal) : decimal_(decimal) {
    collator_.setCaseSensitivity(Qt::CaseInsensitive);
}

SortKey SortKeyMaker::operator()(const QVariant& value) const {
    if (value.isNull())
        return {};
    if (const std::optional<long double> number = numberOf(value, decimal_))
        return {SortKey::Kind::Number, *number};
    return {SortKey::Kind::Text, 0, collator_.sortKey(cellText(value))};
}

bool isBefore(const SortKey& a, const SortKey& b, bool descending) {
    if (a.kind == SortKey::Kind::None || b.kind == SortKey::Kind::None)
        return a.kind != SortKey::Kind::None && b.kind == SortKey::Kind::None;
    const SortKey& first = descending ? b : a;
    const SortKey& second = descending ? a : b;
    if (first.kind != second.kind)
        return first.kind < second.kind;
    return first.kind == SortKey::Kind::Number ? first.number < second.number
                                               : first.text->compare(*second.text) < 0;
}

} // namespace lumora::desk
