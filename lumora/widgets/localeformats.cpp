#include "lumora/widgets/localeformats.h"

#include <QString>

namespace lumora {

namespace {

// A mask of ours from one of Qt: months are "m", minutes "n", and the year is written in full.
std::string dateMask(const QString& format) {
    QString mask;
    for (const QChar c : format)
        if (c == u'y' && mask.endsWith(QStringLiteral("yyyy")))
            continue;
        else if (c == u'y')
            mask += mask.endsWith(u'y') ? QString() : QStringLiteral("yyyy");
        else if (c.toLower() == u'd' || c.toLower() == u'm' || !c.isLetter())
            mask += c.toLower();
    return mask.simplified().toStdString();
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
    dates.ShortDateFormat = dateMask(locale.dateFormat(QLocale::ShortFormat));
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
