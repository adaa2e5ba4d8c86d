#include "lumora/screen/screen_words.h"
#include "lumora/screen/user_formats.h"
#include "lumora/screen/word_editors.h"
#include "tests/fixtures.h"

#include <gtest/gtest.h>

using namespace lumora;
using namespace lumora::tests;

namespace {

TUserFormats German() {
    TUserFormats formats;
    formats.Dates.ShortDateFormat = "dd.mm.yyyy";
    formats.Dates.LongMonthNames[2] = "M\u00e4rz";
    formats.DecimalSeparator = ",";
    formats.GroupSeparator = ".";
    return formats;
}
TUserFormats American() {
    TUserFormats formats;
    formats.Dates.ShortDateFormat = "m/d/yyyy";
    formats.Dates.LongTimeFormat = "h:nn:ss ampm";
    formats.GroupSeparator = ",";
    return formats;
}
TUserFormats Egyptian() {
    TUserFormats formats;
    formats.Dates.ShortDateFormat = "d/m/yyyy";
    formats.DecimalSeparator = "\u066b";
    formats.GroupSeparator = "\u066c";
    formats.ZeroDigit = "\u0660";
    return formats;
}

std::string Stored(const TUserFormats& formats, TFieldType type, const char* typed) {
    return StoredValue(formats, type, typed).value_or("none");
}

} // namespace

TEST(UserFormats, AreHowDatesAreTypedAndShown) {
    EXPECT_EQ(Stored(American(), ftDate, "3/4/22"), "2022-03-04");
    EXPECT_EQ(Stored(German(), ftDate, "3.4.22"), "2022-04-03");
    EXPECT_EQ(Stored(Egyptian(), ftDate, "\u0663/\u0664/\u0662\u0660\u0662\u0662"), "2022-04-03");
    EXPECT_EQ(Stored(German(), ftDate, "5. M\u00e4rz 1949"), "1949-03-05");
    EXPECT_EQ(Stored(German(), ftDate, "1.1.49"), "2049-01-01"); // of 1950 to 2049
    EXPECT_EQ(Stored(German(), ftDate, "2022-04-03"), "2022-04-03");
    EXPECT_EQ(Stored(German(), ftDateTime, "3.4.2022 14:30"), "2022-04-03 14:30:00");
    EXPECT_EQ(Stored(American(), ftDateTime, "4/3/2022 2:30:15.25 pm"), "2022-04-03 14:30:15.250");
    EXPECT_EQ(Stored(American(), ftTime, "2:30 pm"), "14:30:00");
    for (const char* const none : {"31.4.2022", "14:30", "4/31/22", "3.4.2022 12:30:15.1234"})
        EXPECT_EQ(Stored(German(), ftDate, none), "none") << none;

    EXPECT_EQ(ShownValue(American(), ftDate, "2022-04-03"), "April 3, 2022");
    EXPECT_EQ(ShownValue(German(), ftDateTime, "2022-03-03 00:00:00"), "3 M\u00e4rz 2022 00:00:00");
    EXPECT_EQ(ShownValue(Egyptian(), ftDate, "2022-04-03"), "\u0663 April \u0662\u0660\u0662\u0662");
    EXPECT_EQ(ShownValue(German(), ftDate, "many"), "many");
    for (const TUserFormats& formats : {German(), American(), Egyptian()})
        for (const char* const moment : {"2022-03-04", "2022-03-04 00:00:00", "1949-12-31 14:30:15.250"})
            EXPECT_EQ(Stored(formats, ftDateTime, ShownValue(formats, ftDateTime, moment).c_str()), moment);
}

TEST(UserFormats, AreHowNumbersAreTypedAndShown) {
    EXPECT_EQ(Stored(German(), ftFloat, "1,5"), "1.5");
    EXPECT_EQ(Stored(German(), ftFloat, " -1.234.567,25 "), "-1234567.25");
    EXPECT_EQ(Stored(German(), ftFloat,
                     "\u2212"
                     "2e3"),
              "-2e3");
    EXPECT_EQ(Stored(American(), ftInteger, "1,234"), "1234");
    EXPECT_EQ(Stored(Egyptian(), ftFloat, "\u0661\u066c\u0662\u0663\u0664\u066b\u0665"), "1234.5");
    for (const char* const none : {"1.5", "1.23.456", "1,5,5", "1.2345", ".123", "1,2.345", "x"})
        EXPECT_EQ(Stored(German(), ftFloat, none), "none") << none;
    EXPECT_EQ(Stored(German(), ftInteger, "1,5"), "none");
    EXPECT_EQ(ShownValue(German(), ftFloat, "1.5"), "1,5");
    EXPECT_EQ(ShownValue(Egyptian(), ftFloat, "-12.5"), "-\u0661\u0662\u066b\u0665");
    EXPECT_EQ(ShownValue(German(), ftString, "1.5"), "1.5");
}

TEST(UserFormats, AreWhatAPersonSeesOfAQueryThatKeepsItsValues) {
    TShop shop;
    TQueryScreen& screen = shop.Panel.GetScreen();
    TSimpleCond& amount = *shop.Where("orders.amount", "Equal", "1.5");
    TSimpleCond& since = *shop.Where("customers.since", "Equal", "");
    TSimpleCond& list = *shop.Where("orders.amount", "InList", "1.5,2");
    const auto accept = [&](TSimpleCond& row, const char* text) {
        return TWordEditor(screen, row, wrValue, 1).AcceptText(text);
    };
    const auto offered = [&](TSimpleCond& row) { return TWordEditor(screen, row, wrValue, 1).GetContent(); };
    EXPECT_EQ(offered(amount).Text, "1.5"); // none are set: as it is kept
    screen.SetUserFormats(German());
    EXPECT_EQ(offered(amount).Text, "1,5");
    EXPECT_EQ(offered(amount).Check("2,5"), "");
    EXPECT_EQ(offered(amount).Check("2.5"), "Invalid value \"2.5\" for \"amount\"");
    EXPECT_EQ(accept(amount, "2.5"), "Invalid value \"2.5\" for \"amount\"");
    EXPECT_EQ(amount.GetValue(1), "1.5");
    EXPECT_EQ(accept(amount, "1.000,5"), "");
    EXPECT_EQ(amount.GetValue(1), "1000.5");
    EXPECT_EQ(accept(since, "3.4.22"), "");
    EXPECT_EQ(since.GetValue(1), "2022-04-03");
    EXPECT_EQ(offered(list).Text, "1,5; 2");
    EXPECT_EQ(accept(list, "1,5; 3"), "");
    EXPECT_EQ(list.GetValue(1), "1.5,3");
    EXPECT_EQ(RowText(screen, amount), " amount is equal to 1000,5");
    EXPECT_EQ(RowText(screen, since), " since is equal to 3 April 2022");
    EXPECT_EQ(accept(since, ""), "");
    EXPECT_EQ(since.GetValue(1), "");
}
