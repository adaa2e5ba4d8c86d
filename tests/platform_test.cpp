#include "lumora/platform/convert.h"
#include "lumora/platform/datetime.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/formats.h"
#include "lumora/platform/string_list.h"
#include "lumora/platform/text_file.h"
#include "tests/message_of.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>

namespace lumora {
namespace {

using tests::MessageOf;

// String lists.

TEST(StringList, TextTakesEveryLineEndAndGivesLineFeeds) {
    const TStringList lines("\xEF\xBB\xBF"
                            "one\r\ntwo\rthree\n\nfive");
    EXPECT_EQ(lines.GetText(), "one\ntwo\nthree\n\nfive\n");
    EXPECT_EQ(TStringList("a\n").Count(), 1);
    EXPECT_EQ(TStringList("\r\n\r").GetText(), "\n\n");
    EXPECT_EQ(TStringList("").Count(), 0);
}

TEST(StringList, CommaTextKeepsEveryItem) {
    const std::vector<std::vector<std::string>> cases = {
        {}, {""}, {"", ""}, {"a", "", "b", ""}, {"two words", "a,b", "say \"so\"", "\""}, {"plain"}};
    for (const auto& items : cases) {
        TStringList lines;
        for (const std::string& item : items)
            lines.Add(item);
        TStringList again;
        again.SetCommaText(lines.GetCommaText());
        EXPECT_EQ(again, lines) << lines.GetCommaText();
    }
    TStringList lines;
    lines.SetCommaText(" a b ,\"c \"\"d\"\"\",, \"open");
    EXPECT_EQ(lines.GetText(), "a\nb\nc \"d\"\n\nopen\n");
}

TEST(StringList, NamesAndValues) {
    TStringList lines("Key=first\nkey=second\nno value\n=x\nK=y=z");
    EXPECT_EQ(lines.Value("KEY"), "first");
    EXPECT_EQ(lines.Value("k"), "y=z");
    EXPECT_EQ(lines.IndexOfName("no value"), -1);
    EXPECT_EQ(lines.Name(2), "");
    lines.SetValue("key", "");
    EXPECT_EQ(lines.Value("key"), "second");
    lines.SetValue("new", "n");
    EXPECT_EQ(lines.Last(), "new=n");
    lines.SetValue("KEY", "replaced, and longer");
    EXPECT_EQ(lines.Value("key"), "replaced, and longer");
    EXPECT_EQ(lines.ValueAt(lines.AddPair("pair", "=")), "=");
    EXPECT_EQ(lines.IndexOf("NO VALUE"), 1);
}

// The list hands out views of its own buffer; they must survive being given back to it.
TEST(StringList, TakesItsOwnLinesAsArguments) {
    TStringList lines("short\na line that is rather longer\nx");
    for (int i = 0; i < 50; ++i)
        lines.Add(lines[i % 3]);
    EXPECT_EQ(lines[3], "short");
    EXPECT_EQ(lines[52], "a line that is rather longer");
    lines.Put(0, lines[1]);
    lines.Insert(0, lines.Last());
    lines.AppendToLast(lines[1]);
    EXPECT_EQ(lines[1], "a line that is rather longer");
    EXPECT_EQ(lines.Last(), "a line that is rather longera line that is rather longer");
    lines.SetText(lines[1]);
    EXPECT_EQ(lines.GetText(), "a line that is rather longer\n");
    lines.SetCommaText(lines[0]);
    EXPECT_EQ(lines.GetText(), "a\nline\nthat\nis\nrather\nlonger\n");
    lines.AddStrings(lines);
    EXPECT_EQ(lines.Count(), 12);
}

TEST(StringList, StaysRightThroughManyChanges) {
    std::mt19937 random(7);
    TStringList lines;
    std::vector<std::string> plain;
    for (int step = 0; step < 4000; ++step) {
        const std::string text(random() % 300, static_cast<char>('a' + step % 26));
        const auto at = plain.empty() ? 0 : random() % plain.size();
        const unsigned kind = random() % 8;
        if (kind < 3 && !plain.empty()) {
            lines.Put(static_cast<int>(at), text);
            plain[at] = text;
        } else if (kind < 5 && plain.size() > 20) {
            lines.Delete(static_cast<int>(at));
            plain.erase(plain.begin() + static_cast<std::ptrdiff_t>(at));
        } else if (kind < 6 && !plain.empty()) {
            lines.AppendToLast("!");
            plain.back() += '!';
        } else {
            lines.Insert(static_cast<int>(at), text);
            plain.insert(plain.begin() + static_cast<std::ptrdiff_t>(at), text);
        }
    }
    ASSERT_EQ(lines.Count(), static_cast<int>(plain.size()));
    for (std::size_t i = 0; i < plain.size(); ++i)
        ASSERT_EQ(lines[static_cast<int>(i)], plain[i]);
    EXPECT_EQ(MessageOf<EListError>([&] { lines.Delete(-1); }), "List index out of bounds (-1)");
    EXPECT_THROW(lines[lines.Count()], EListError);
    EXPECT_THROW(TStringList().AppendToLast("x"), EListError);
}

// Files.

class TextFile : public testing::Test {
protected:
    void SetUp() override {
        folder_ = std::filesystem::temp_directory_path() /
                  ("lumora_platform_" + std::to_string(std::random_device()()));
        std::filesystem::create_directory(folder_);
    }
    void TearDown() override { std::filesystem::remove_all(folder_); }
    std::string Path(const std::string& name) const { return (folder_ / name).string(); }

    std::filesystem::path folder_;
};

TEST_F(TextFile, IsReplacedWholeAndLeavesNothingBeside) {
    WriteTextFile(Path("a.txt"), "old");
    std::filesystem::permissions(Path("a.txt"),
                                 std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    std::filesystem::create_symlink(Path("a.txt"), Path("link.txt"));
    const std::string bytes("new\r\n\0\xFF", 7);
    WriteTextFile(Path("link.txt"), bytes);
    EXPECT_EQ(ReadTextFile(Path("a.txt")), bytes);
    EXPECT_TRUE(std::filesystem::is_symlink(Path("link.txt")));
    EXPECT_EQ(std::filesystem::status(Path("a.txt")).permissions(),
              std::filesystem::perms::owner_read | std::filesystem::perms::owner_write);
    const std::filesystem::directory_iterator files(folder_);
    EXPECT_EQ(std::distance(begin(files), end(files)), 2);
}

TEST_F(TextFile, StringListsGoThroughFiles) {
    const TStringList lines("one\n\ntwo = 2");
    lines.SaveToFile(Path("lines"));
    EXPECT_EQ(ReadTextFile(Path("lines")), "one\n\ntwo = 2\n");
    TStringList again("old");
    again.LoadFromFile(Path("lines"));
    EXPECT_EQ(again, lines);
    EXPECT_FALSE(again == TStringList("one\n\ntwo = 3"));
}

TEST_F(TextFile, ErrorsNameTheFileAndAFailedSaveChangesNothing) {
    const auto names = [](const std::string& message, const std::string& file) {
        return message.find("\"" + file + "\"") != std::string::npos;
    };
    EXPECT_TRUE(names(MessageOf<EFileError>([&] { ReadTextFile(Path("none")); }), Path("none")));
    EXPECT_TRUE(names(MessageOf<EFileError>([&] { ReadTextFile(Path("")); }), Path("")));
    EXPECT_TRUE(names(MessageOf<EFileError>([&] { WriteTextFile(Path("no/file"), "x"); }), Path("no/file")));
    // Moving a file over a folder that is in use fails after the new file has been written.
    std::filesystem::create_directory(Path("folder"));
    WriteTextFile(Path("folder/inside"), "kept");
    EXPECT_TRUE(names(MessageOf<EFileError>([&] { WriteTextFile(Path("folder"), "x"); }), Path("folder")));
    EXPECT_EQ(ReadTextFile(Path("folder/inside")), "kept");
    const std::filesystem::directory_iterator files(folder_);
    EXPECT_EQ(std::distance(begin(files), end(files)), 1);
}

// Numbers.

TEST(Convert, Integers) {
    EXPECT_EQ(StrToInt("  -17"), -17);
    EXPECT_EQ(StrToInt("+2147483647"), 2147483647);
    EXPECT_EQ(StrToInt("$ff"), 255);
    EXPECT_EQ(TryStrToInt64("-9223372036854775808"), std::numeric_limits<std::int64_t>::min());
    EXPECT_EQ(TryStrToInt64("9223372036854775808"), std::nullopt);
    for (const char* const bad :
         {"", " ", "-", "$", "1 ", "1x", "--1", "+-1", "$-1", "0x1", "2147483648", "1.0"})
        EXPECT_EQ(MessageOf<EConvertError>([&] { StrToInt(bad); }),
                  "\"" + std::string(bad) + "\" is not a valid integer value");
}

TEST(Convert, FloatsAreReadExactlyAndStrictly) {
    const std::pair<const char*, double> good[] = {
        {" 36955.604166666664 ", 36955.604166666664},
        {"-.5e-1", -0.05},
        {"5.", 5},
        {"+1E+3", 1000},
        {"0.1", 0.1},
        {"123456789012345678901234567890", 123456789012345678901234567890.0},
        {"9007199254740993", 9007199254740992.0},
        {"9007199254740993e1", 90071992547409930.0},
        {"2.2250738585072011e-308", 2.2250738585072011e-308},
        {"1e-99999999999", 0},
        {"0.000000000000000000000000000000000000000000001e45", 1}};
    for (const auto& [text, value] : good)
        EXPECT_EQ(TryStrToFloat(text), value) << text;
    EXPECT_EQ(TryStrToFloat("0." + std::string(100000, '0') + "1e100001"), 1.0);
    for (const char* const bad :
         {"", ".", "-", "e5", "1e", "1e+", "1.2.3", "1,5", "inf", "nan", "0x10", "1 2", "1e999"})
        EXPECT_EQ(TryStrToFloat(bad), std::nullopt) << bad;
}

TEST(Convert, FloatsAreWrittenShort) {
    const std::pair<double, const char*> cases[] = {{0, "0"},
                                                    {-0.0, "0"},
                                                    {0.1, "0.1"},
                                                    {1.0 / 3, "0.333333333333333"},
                                                    {-36955.25, "-36955.25"},
                                                    {1200, "1200"},
                                                    {999999999999999, "999999999999999"},
                                                    {1e15, "1E15"},
                                                    {-1.5e300, "-1.5E300"},
                                                    {0.0001, "0.0001"},
                                                    {0.00001, "1E-5"},
                                                    {0.99999999999999999, "1"}};
    for (const auto& [value, text] : cases)
        EXPECT_EQ(FloatToStr(value), text);
}

// Locales that separate decimals by a comma, should the machine have one.
TEST(Convert, TheProcessLocaleDoesNotMatter) {
    const std::string before = std::setlocale(LC_ALL, nullptr);
    bool found = false;
    for (const char* const name : {"de_DE.UTF-8", "de_DE.utf8", "fr_FR.UTF-8", "fr_FR.utf8", "ru_RU.UTF-8"})
        found = found || std::setlocale(LC_ALL, name);
    EXPECT_EQ(FloatToStr(1234.5), "1234.5");
    EXPECT_EQ(TryStrToFloat("1234.5"), 1234.5);
    EXPECT_EQ(TryStrToFloat("1234.56789012345678901234"), 1234.567890123456789);
    EXPECT_EQ(TryStrToFloat("1,5"), std::nullopt);
    std::setlocale(LC_ALL, before.c_str());
    if (!found)
        GTEST_SKIP() << "only the C locale was tried: no other is installed";
}

// Dates and times.

TDateTime Moment(int year, int month, int day, int hour = 0, int minute = 0, int second = 0, int ms = 0) {
    return JoinDateTime(*TryEncodeDate(year, month, day), *TryEncodeTime(hour, minute, second, ms));
}

TEST(DateTime, EveryDayOfTheCalendarFollowsTheOneBefore) {
    EXPECT_EQ(TryEncodeDate(1899, 12, 30), 0);
    EXPECT_EQ(TryEncodeDate(2001, 3, 5), 36955);
    EXPECT_EQ(TryEncodeDate(1, 1, 1), -693593);
    EXPECT_EQ(TryEncodeDate(9999, 12, 31), 2958465);
    TDateParts last{0, 12, 31};
    for (int day = -693593; day <= 2958465; ++day) {
        const TDateParts date = DecodeDate(day);
        ASSERT_EQ(TryEncodeDate(date.Year, date.Month, date.Day), day);
        const bool sameMonth = date.Day == last.Day + 1 && date.Month == last.Month && date.Year == last.Year;
        const bool newMonth =
            date.Day == 1 && last.Day >= 28 && date.Year * 12 + date.Month == last.Year * 12 + last.Month + 1;
        ASSERT_TRUE(sameMonth || newMonth) << day;
        last = date;
    }
    EXPECT_EQ(DayOfWeek(0), 7);
    EXPECT_EQ(DayOfWeek(36955.99), 2);
    EXPECT_EQ(DayOfWeek(-693593), 2);
}

TEST(DateTime, RefusesWhatNoCalendarHas) {
    for (const TDateParts& date : {TDateParts{2001, 2, 29},
                                   {1900, 2, 29},
                                   {0, 1, 1},
                                   {10000, 1, 1},
                                   {2001, 13, 1},
                                   {2001, 0, 1},
                                   {2001, 4, 31},
                                   {2001, 4, 0},
                                   {2147483647, 2147483647, -1}})
        EXPECT_FALSE(TryEncodeDate(date.Year, date.Month, date.Day)) << date.Year << '-' << date.Month;
    EXPECT_TRUE(TryEncodeDate(2000, 2, 29));
    EXPECT_FALSE(TryEncodeTime(24, 0, 0, 0));
    EXPECT_FALSE(TryEncodeTime(-1, 0, 0, 0) || TryEncodeTime(0, -1, 0, 0) || TryEncodeTime(0, 0, -1, 0) ||
                 TryEncodeTime(0, 0, 0, -1));
    EXPECT_FALSE(TryEncodeTime(0, 60, 0, 0) || TryEncodeTime(0, 0, 60, 0) || TryEncodeTime(0, 0, 0, 1000));
    EXPECT_TRUE(TryEncodeTime(23, 59, 59, 999));
}

TEST(DateTime, FractionsCountAwayFromZeroAndRoundToTheMillisecond) {
    const std::string mask = "yyyy-mm-dd hh:nn:ss.zzz";
    EXPECT_EQ(FormatDateTime(mask, -1.25), "1899-12-29 06:00:00.000");
    EXPECT_EQ(JoinDateTime(-1, 0.25), -1.25);
    EXPECT_EQ(JoinDateTime(1.75, 5.25), 1.25);
    EXPECT_EQ(FormatDateTime(mask, 0.9999999999), "1899-12-31 00:00:00.000");
    EXPECT_EQ(FormatDateTime(mask, -1.9999999999), "1899-12-30 00:00:00.000");
    EXPECT_FALSE(HasTime(36955.0000000001));
    EXPECT_TRUE(HasTime(Moment(2001, 3, 5, 0, 0, 0, 1)));
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(FormatDateTime(mask, infinity), "9999-12-31 00:00:00.000");
    EXPECT_EQ(FormatDateTime(mask, -1e300), "0001-01-01 00:00:00.000");
    EXPECT_EQ(FormatDateTime(mask, -693593.5), "0001-01-01 12:00:00.000");
    EXPECT_EQ(FormatDateTime(mask, std::nextafter(2958466.0, 0.0)), "9999-12-31 23:59:59.999");
    EXPECT_EQ(FormatDateTime(mask, std::nan("")), "1899-12-30 00:00:00.000");
}

TEST(Formats, EveryItemOfAMask) {
    const TDateTime value = Moment(2001, 3, 5, 14, 7, 9, 42);
    const std::pair<const char*, const char*> cases[] = {
        {"d dd ddd dddd", "5 05 Mon Monday"},
        {"m mm mmm mmmm", "3 03 Mar March"},
        {"y yy yyy yyyy", "01 01 2001 2001"},
        {"h hh n nn s ss z zzz", "14 14 7 07 9 09 42 042"},
        {"H:M D/M hh\"h\"mm MM", "14:7 5-3 14h07 03"},
        {"h am/pm, hh A/P, hh ampm", "2 pm, 02 P, 02 PM"},
        {"hh hh am/pm", "14 02 pm"},
        {"ddddd | dddddd | t | tt | c", "2001-03-05 | 2001-03-05 | 14:07 | 14:07:09 | 2001-03-05 14:07:09"},
        {"'it''s' \"dd\" #x@ \"open", "its dd #x@ open"},
        {"TO_DATE", "14:07O_5A14:07E"},
        {"", ""}};
    for (const auto& [mask, text] : cases)
        EXPECT_EQ(FormatDateTime(mask, value), text) << mask;
    EXPECT_EQ(FormatDateTime("h am/pm", 0), "12 am");
    EXPECT_EQ(FormatDateTime("hh ampm", 0.5), "12 PM");
    EXPECT_EQ(DateTimeToStr(36955), "2001-03-05");
    EXPECT_EQ(DateToStr(36955.5) + "T" + TimeToStr(36955.5), "2001-03-05T12:00:00");
    TFormatSettings loop;
    loop.ShortDateFormat = "c|ddddd";
    EXPECT_EQ(FormatDateTime("c", 36955, loop), "|");
}

TFormatSettings DayFirst() {
    TFormatSettings settings;
    settings.ShortDateFormat = "dd/mm/yyyy";
    settings.DateSeparator = "/";
    return settings;
}

TEST(Formats, FollowTheSettings) {
    TFormatSettings own = DayFirst();
    own.DateSeparator = "~";
    own.TimeSeparator = " h ";
    own.DecimalSeparator = "`";
    own.AMString = "vorm.";
    own.PMString = "nachm.";
    own.ShortTimeFormat = "h";
    own.LongDateFormat = "d. mmmm yyyy";
    own.LongMonthNames[2] = "M\xC3\xA4rz";
    own.ShortMonthNames[2] = "Mrz";
    own.LongDayNames[1] = "Montag";
    own.ShortDayNames[1] = "Mo";
    own.FirstTwoDigitYear = 1930;
    const TDateTime value = Moment(2001, 3, 5, 14, 7, 9, 42);
    for (const char* const mask : {"dddd, dddddd, hh:nn:ss'`'zzz ampm", "ddd d/mmm/yy hh:nn:ss'`'zzz ampm"}) {
        const std::string text = FormatDateTime(mask, value, own);
        EXPECT_EQ(text, *mask == 'd' && mask[3] == 'd'
                            ? "Montag, 5. M\xC3\xA4rz 2001, 02 h 07 h 09`042 nachm."
                            : "Mo 5~Mrz~01 02 h 07 h 09`042 nachm.");
        EXPECT_EQ(TryParseDateTime(text, mask, own), value) << text;
    }
    EXPECT_EQ(FormatDateTime("t", value, own), "14");
    EXPECT_EQ(TryStrToDateTime("5~3~30", own), Moment(1930, 3, 5));
    EXPECT_EQ(TryStrToDateTime("5~3~29 2 h 30 VORM.", own), Moment(2029, 3, 5, 2, 30));
    own.FirstTwoDigitYear = 2000;
    EXPECT_EQ(TryStrToDateTime("5~3~00", own), Moment(2000, 3, 5));
    EXPECT_EQ(TryStrToDateTime("5~3~99", own), Moment(2099, 3, 5));
}

TEST(Formats, ReadsDatesAndTimesAsAPersonWritesThem) {
    const TDateTime day = Moment(2001, 3, 5);
    const TDateTime seconds = Moment(2001, 3, 5, 14, 30, 5);
    const TDateTime time = *TryEncodeTime(14, 30, 0, 0);
    const std::pair<const char*, TDateTime> cases[] = {
        {"2001-03-05", day},
        {" 5/3/2001 ", day},
        {"5.3.01", day},
        {"5 - 3 - 2001", day},
        {"5 march 2001", day},
        {"Mar 5, 2001", day},
        {"2001 Mar 5", day},
        {"987 Mar 5", Moment(987, 3, 5)},
        {"Mar 5, 987", Moment(987, 3, 5)},
        {"Monday, 5 March 2001", day},
        {"2001-03-05 14:30:05", seconds},
        {"2001-03-05T14:30:05", seconds},
        {"5/3/2001, 2:30:05 pm", seconds},
        {"2001-03-05 14:30:05.25", Moment(2001, 3, 5, 14, 30, 5, 250)},
        {"5/3/2001 14:30:05,123456", Moment(2001, 3, 5, 14, 30, 5, 123)},
        {"14:30", time},
        {"2:30 PM", time},
        {"02:30:00p", time},
        {"12 am", 0},
        {"29/2/2000", Moment(2000, 2, 29)},
        {"1/1/49", Moment(2049, 1, 1)},
        {"1/1/50", Moment(1950, 1, 1)},
        {"1/1/0050", Moment(50, 1, 1)}};
    for (const auto& [text, value] : cases)
        EXPECT_EQ(TryStrToDateTime(text, DayFirst()), value) << text;
    EXPECT_EQ(TryStrToDateTime("01-03-05"), day); // the default order: year, month, day
    TFormatSettings monthFirst = DayFirst();
    monthFirst.ShortDateFormat = "m/d/yy";
    EXPECT_EQ(TryStrToDateTime("3/5/2001", monthFirst), day);
    EXPECT_EQ(TryStrToDate("3/5/2001 14:30", monthFirst), std::nullopt);
    EXPECT_EQ(TryStrToTime("3/5/2001", monthFirst), std::nullopt);
}

TEST(Formats, RefusesWhatIsNoDateOrTime) {
    for (const char* const text : {"",
                                   "00/00/00",
                                   "30/2/2001",
                                   "29/2/1900",
                                   "5/3",
                                   "5/13/2001",
                                   "5/3/2001x",
                                   "5/3/2001 x",
                                   "5//3/2001",
                                   "5/3-2001",
                                   "5/3/20011",
                                   "-5/3/2001",
                                   "05032001",
                                   "March March 2001",
                                   "March 2001",
                                   "5 Marchy 2001",
                                   "14",
                                   "25:00",
                                   "14:60",
                                   "14:30:60",
                                   "14:",
                                   "14:30:",
                                   "14:30:05.",
                                   "14:300",
                                   "14:30 PM",
                                   "0:30 AM",
                                   "pm",
                                   "14:30 rubbish",
                                   "5/3/2001 25:00",
                                   "5/3/2001T",
                                   "5/3/200114:30",
                                   "2001-03-05T14:30Z",
                                   "10000-01-01"})
        EXPECT_EQ(TryStrToDateTime(text, DayFirst()), std::nullopt) << text;
    EXPECT_EQ(MessageOf<EConvertError>([] { StrToDateTime("soon"); }),
              "\"soon\" is not a valid date and time");
    EXPECT_EQ(TryStrToDateTime(std::string(1000000, '1'), DayFirst()), std::nullopt);
    EXPECT_EQ(TryStrToDateTime("5/3/2001 1:1:1." + std::string(1000000, '1'), DayFirst()),
              Moment(2001, 3, 5, 1, 1, 1, 111));
}

TEST(Formats, MasksReadBackWhatTheyWrite) {
    const TDateTime value = Moment(1987, 11, 3, 0, 5, 9, 7);
    for (const char* const mask : {"yyyy-mm-dd hh:nn:ss.zzz", "dd.mm.yy h:n:s.z am/pm", "yyyymmddhhnnsszzz",
                                   "'#'mm/dd/yyyy# hh:mm:ss.zzz", "dddd, d mmmm yyyy \"at\" hh-nn-ss,zzz",
                                   "zzz ss nn hh A/P yy mmm d"})
        EXPECT_EQ(TryParseDateTime(FormatDateTime(mask, value), mask), value) << FormatDateTime(mask, value);
    EXPECT_EQ(TryParseDateTime("03/05/2001", "#mm-dd-yyyy#"), Moment(2001, 3, 5));
    EXPECT_EQ(TryParseDateTime("2001-03-05", "dd-mm-yyyy hh:nn:ss"), Moment(2001, 3, 5));
    EXPECT_EQ(TryParseDateTime("03/2001", "mm/yyyy"), Moment(2001, 3, 1));
    EXPECT_EQ(TryParseDateTime("2001-03-05", "c"), Moment(2001, 3, 5));
    EXPECT_EQ(TryParseDateTime("20010230", "yyyymmdd"), std::nullopt);
    EXPECT_EQ(TryParseDateTime("2001030", "yyyymmdd"), std::nullopt);
    EXPECT_EQ(TryParseDateTime("", ""), std::nullopt);
}

} // namespace
} // namespace lumora
