#include "lumora/widgets/localeformats.h"

#include <QString>

namespace lumora {

namespace {

// Day, month and year in the order of one of Qt's formats, with its first separator between them.
void setDateFormat(TFormatSettings& dates, const QString& format) {
    QString mask;
    QChar separator;
    for (const QChar c : format) {
        const QString part = c == u'd'   ? QStringLiteral("dd")
                             : c == u'M' ? QStringLiteral("mm")
                             : c == u'y' ? QStringLiteral("yyyy")
                                         : QString();
        if (separator.isNull() && (c == u'.' || c == u'/' || c == u'-'))
            separator = c;
        if (!part.isEmpty() && !mask.contains(part))
            mask += mask.isEmpty() ? part : QLatin1Char('/') + part;
    }
    dates.DateSeparator = separator.isNull() ? "-" : QString(separator).toStdString();
    dates.ShortDateFormat = mask.toStdString(); // "/" stands for the separator
}

bool isOfTwelve(const QString& format) {
    return format.contains(u'a', Qt::CaseInsensitive);
}

void setNames(TFormatSettings& dates, const QLocale& locale) {
    for (std::size_t month = 0; month < 12; ++month) {
        const int number = static_cast<int>(month) + 1;
        dates.LongMonthNames[month] = locale.monthName(number, QLocale::LongFormat).toStdString();
        dates.ShortMonthNames[month] = locale.monthName(number, QLocale::ShortFormat).toStdString();
    }
    for (std::size_t day = 0; day < 7; ++day) {
        const int number = day == 0 ? 7 : static_cast<int>(day);
        dates.LongDayNames[day] = locale.dayName(number, QLocale::LongFormat).toStdString();
        dates.ShortDayNames[day] = locale.dayName(number, QLocale::ShortFormat).toStdString();
    }
}

} // namespace

TUserFormats localeFormats(const QLocale& locale) {
    TUserFormats formats;
    TFormatSettings& dates = formats.Dates;
    setDateFormat(dates, locale.dateFormat(QLocale::ShortFormat));
    const bool twelve = isOfTwelve(locale.timeFormat(QLocale::ShortFormat));
    dates.ShortTimeFormat = twelve ? "h:nn ampm" : "hh:nn";
    dates.LongTimeFormat = twelve ? "h:nn:ss ampm" : "hh:nn:ss";
    dates.AMString = locale.amText().toStdString();
    dates.PMString = locale.pmText().toStdString();
    setNames(dates, locale);
    formats.DecimalSeparator = locale.decimalPoint().toStdString();
    formats.GroupSeparator = locale.groupSeparator().toStdString();
    formats.ZeroDigit = locale.zeroDigit().toStdString();
    return formats;
}

} // namespace lumora
