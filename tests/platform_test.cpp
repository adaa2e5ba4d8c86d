#include "platform/component.h"
#include "platform/convert.h"
#include "platform/datetime.h"
#include "platform/errors.h"
#include "platform/form_text.h"
#include "platform/formats.h"
#include "platform/string_list.h"
#include "platform/text_file.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <filesystem>
#include <limits>
#include <random>

namespace lumora {
namespace {

// Runs `action` and gives the message of the exception of class E that it throws.
template <typename E, typename TAction>
std::string MessageOf(const TAction& action) {
    try {
        action();
    } catch (const E& error) {
        return error.what();
    }
    return "(nothing was thrown)";
}

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
    EXPECT_FALSE(TryEncodeTime(0, 60, 0, 0));
    EXPECT_FALSE(TryEncodeTime(0, 0, 60, 0));
    EXPECT_FALSE(TryEncodeTime(0, 0, 0, 1000));
    EXPECT_FALSE(TryEncodeTime(-1, 0, 0, 0));
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

// Components and form texts.

enum TShade : std::uint8_t { shLight, shMiddle, shDark };

} // namespace

template <>
struct TEnumNames<TShade> {
    static constexpr std::string_view Names[] = {"shLight", "shMiddle", "shDark"};
};

namespace {

class TFrame : public TPersistent {
public:
    std::string_view ClassName() const override { return "TFrame"; }
    std::span<const TPropertyInfo> PublishedProperties() const override {
        static const std::vector<TPropertyInfo> properties = {
            Property("Width", &TFrame::GetWidth, &TFrame::SetWidth, 1),
            StringsProperty("Notes", &TFrame::GetNotes, &TFrame::SetNotes)};
        return properties;
    }
    int GetWidth() const { return width_; }
    void SetWidth(int width) {
        if (width < 0)
            throw EConvertError("A frame cannot be that thin");
        width_ = width;
    }
    const TStringList& GetNotes() const { return notes_; }
    void SetNotes(const TStringList& notes) { notes_ = notes; }

private:
    int width_ = 1;
    TStringList notes_;
};

std::string loadedNames; // of the components whose Loaded was called

// Has a property of every kind, and stored ones that are not published.
class TGadget : public TComponent {
public:
    explicit TGadget(TComponent* owner = nullptr) : TComponent(owner) {}
    ~TGadget() override { BeginDestruction(); }

    std::string_view ClassName() const override { return "TGadget"; }
    std::span<const TPropertyInfo> PublishedProperties() const override {
        static const std::vector<TPropertyInfo> properties = ExtendProperties(
            TComponent::PublishedProperties(),
            {Property("Level", &TGadget::GetLevel, &TGadget::SetLevel, std::int16_t{7}),
             Property("Active", &TGadget::GetActive, &TGadget::SetActive, true),
             Property("Mark", &TGadget::GetMark, &TGadget::SetMark, '"'),
             Property("Color", &TGadget::GetColor, &TGadget::SetColor, clBlue),
             Property("Shade", &TGadget::GetShade, &TGadget::SetShade, shMiddle),
             Property("Shades", &TGadget::GetShades, &TGadget::SetShades, {shDark}),
             Property("Caption", &TGadget::GetCaption, &TGadget::SetCaption, "Gadget"),
             StringsProperty("Lines", &TGadget::GetLines, &TGadget::SetLines, "first\n"),
             ObjectProperty("Frame", &TGadget::GetFrame),
             ComponentProperty("Peer", &TGadget::GetPeer, &TGadget::SetPeer), EventProperty("OnChange")});
        return properties;
    }

    std::int16_t GetLevel() const { return Level; }
    void SetLevel(std::int16_t level) { Level = level; }
    bool GetActive() const { return Active; }
    void SetActive(bool active) { Active = active; }
    char GetMark() const { return Mark; }
    void SetMark(char mark) { Mark = mark; }
    TColor GetColor() const { return Color; }
    void SetColor(TColor color) { Color = color; }
    TShade GetShade() const { return Shade; }
    void SetShade(TShade shade) { Shade = shade; }
    TEnumSet<TShade> GetShades() const { return Shades; }
    void SetShades(TEnumSet<TShade> shades) { Shades = shades; }
    const std::string& GetCaption() const { return Caption; }
    void SetCaption(const std::string& caption) { Caption = caption; }
    const TStringList& GetLines() const { return Lines; }
    void SetLines(const TStringList& lines) { Lines = lines; }
    TFrame& GetFrame() { return Frame; }
    TGadget* GetPeer() const { return Peer; }
    void SetPeer(TGadget* peer) {
        Peer = peer;
        WatchRemovalOf(peer);
    }

    std::int16_t Level = 7;
    bool Active = true;
    char Mark = '"';
    TColor Color = clBlue;
    TShade Shade = shMiddle;
    TEnumSet<TShade> Shades = {shDark};
    std::string Caption = "Gadget";
    TStringList Lines{"first\n"};
    TFrame Frame;
    TGadget* Peer = nullptr;
    double Weight = 0;
    TStringList Struct;
    std::string Notices; // "+name" and "-name" as the notices came
    bool FailsToLoad = false;

protected:
    void Notification(TComponent* component, TOperation operation) override {
        TComponent::Notification(component, operation);
        Notices += (operation == opInsert ? '+' : '-') + component->GetName();
        if (operation == opRemove && component == Peer)
            Peer = nullptr;
    }
    void Loaded() override {
        EXPECT_TRUE(IsLoading());
        if (FailsToLoad)
            throw EConvertError("not today");
        TComponent::Loaded();
        loadedNames += GetName() + " ";
    }
    void DefineProperties(TFiler& filer) override {
        const auto weight = [this] {
            TFormValue value;
            value.Kind = fvFloat;
            value.Float = Weight;
            return value;
        };
        filer.DefineProperty(
            "Weight", [this](const TFormValue& value) { Weight = value.Float; }, weight, Weight != 0);
        filer.DefineProperty(
            "Struct", [this](const TFormValue& value) { Struct = value.ToStrings(); },
            [this] { return TFormValue::FromStrings(Struct); }, !Struct.Empty());
        filer.DefineProperty(
            "Fails", [this](const TFormValue&) { FailsToLoad = true; }, {}, true);
    }
};

TComponent* MakeGadget(TComponent* owner) {
    return new TGadget(owner);
}
TComponent* MakePlain(TComponent* owner) {
    return new TComponent(owner);
}

TGadget* Child(const TComponent& owner, std::string_view name) {
    return dynamic_cast<TGadget*>(owner.FindComponent(name));
}

TGadget* NewGadget(TComponent& owner, const std::string& name) {
    auto* const gadget = new TGadget(&owner);
    gadget->SetName(name);
    return gadget;
}

TEST(Component, OwnersFreeAndNamesAreUnique) {
    TGadget watcher;
    {
        TGadget owner;
        TGadget* const child = NewGadget(owner, "Child");
        watcher.SetPeer(child);
        EXPECT_EQ(owner.FindComponent("CHILD"), child);
        EXPECT_EQ(MessageOf<EComponentError>([&] { NewGadget(owner, "child"); }),
                  "A component named child already exists");
        for (const char* const name : {"1a", "a b", "a.b", "\xC3\xA4"})
            EXPECT_THROW(child->SetName(name), EComponentError) << name;
        child->SetName("child");
        EXPECT_EQ(child->GetName(), "child");
    }
    EXPECT_EQ(watcher.Peer, nullptr);
    EXPECT_EQ(watcher.Notices, "-child");
}

TEST(Component, NoticesReachOwnersSiblingsAndWatchers) {
    TGadget owner;
    TGadget* const one = NewGadget(owner, "One");
    TGadget* const two = NewGadget(owner, "Two");
    TGadget outside;
    outside.SetPeer(one);
    one->SetPeer(two);
    two->SetPeer(one); // in a circle
    delete one;
    EXPECT_EQ(two->Peer, nullptr);
    EXPECT_EQ(outside.Peer, nullptr);
    EXPECT_EQ(outside.Notices, "-One");
    EXPECT_EQ(owner.GetComponentCount(), 1);
    EXPECT_NE(owner.Notices.find("-One"), std::string::npos);
    outside.SetPeer(two);
    outside.UnwatchRemovalOf(two);
    outside.Peer = nullptr;
    delete two;
    EXPECT_EQ(outside.Notices, "-One");
}

class FormText : public testing::Test {
protected:
    void SetUp() override {
        RegisterComponentClass("TGadget", MakeGadget);
        RegisterComponentClass("TPlain", MakePlain);
        loadedNames.clear();
    }

    // The message of the error that reading a root with this body raises; nothing may be left loading.
    std::string ErrorOf(const std::string& body) {
        TGadget root;
        std::string message =
            MessageOf<EReadError>([&] { ReadFormText("object Root: TGadget\n" + body, root); });
        EXPECT_FALSE(root.IsLoading());
        for (int i = 0; i < root.GetComponentCount(); ++i)
            EXPECT_FALSE(root.GetComponent(i)->IsLoading());
        return message;
    }
};

// Two gadgets that are owned and refer to each other, the root and a third inside; everything set.
void Furnish(TGadget& root) {
    root.SetName("Root");
    TGadget* const one = NewGadget(root, "One");
    TGadget* const two = NewGadget(root, "Two");
    TGadget* const inner = NewGadget(*two, "One");
    NewGadget(root, ""); // private, not part of the form
    root.SetPeer(inner);
    one->SetPeer(two);
    two->SetPeer(&root);
    inner->SetPeer(one);
    root.SetTag(-5);
    root.Level = -32768;
    root.Active = false;
    root.Mark = '\'';
    root.Color = TColor{-2147483633};
    root.Shade = shDark;
    root.Shades = {shLight, shMiddle};
    root.Caption = "It's\r\n\x01 #9\x7F \xC3\xA4";
    root.Lines.SetText("a\n\n  'b'\n");
    root.Frame.SetWidth(12);
    root.Frame.SetNotes(TStringList("note"));
    root.Weight = 5;
    root.Struct.SetText("[Main]\nVersion=3.5\n");
    for (int i = 0; i < 60; ++i)
        one->Caption += "'\xE2\x82\xAC, ";
    one->Shades = {};
    one->Lines.Clear();
    one->Mark = '\xE4';
    two->Mark = '\0';
    two->Weight = -1.5e-7;
    two->Caption.clear();
}

TEST_F(FormText, WritesWhatDiffersFromTheDefault) {
    TGadget plain;
    EXPECT_EQ(WriteFormText(plain), "object TGadget\nend\n");
    TGadget root;
    Furnish(root);
    delete root.FindComponent("One");
    EXPECT_EQ(WriteFormText(root), R"(object Root: TGadget
  Tag = -5
  Level = -32768
  Active = False
  Mark = ''''
  Color = -2147483633
  Shade = shDark
  Shades = [shLight, shMiddle]
  Caption = 'It''s'#13#10#1' #9'#127' ä'
  Lines.Strings = (
    'a'
    ''
    '  ''b''')
  Frame.Width = 12
  Frame.Notes.Strings = (
    'note')
  Peer = Two.One
  Weight = 5.0
  Struct = (
    '[Main]'
    'Version=3.5')
  object Two: TGadget
    Mark = #0
    Caption = ''
    Peer = Root
    Weight = -1.5E-7
    object One: TGadget
    end
  end
end
)");
}

TEST_F(FormText, WritesNothingThatCannotBeRead) {
    TGadget root;
    TGadget outside;
    outside.SetName("Outside");
    root.SetPeer(&outside);
    EXPECT_EQ(WriteFormText(root), "object TGadget\nend\n");
    root.Weight = std::nan("");
    EXPECT_THROW(WriteFormText(root), EConvertError);
    root.Weight = 0;
    root.Shade = static_cast<TShade>(3);
    EXPECT_THROW(WriteFormText(root), EConvertError);
    root.Shade = shMiddle;
    TGadget* innermost = &root;
    for (int i = 0; i < MaxFormNesting; ++i)
        innermost = NewGadget(*innermost, "A");
    EXPECT_THROW(WriteFormText(root), EConvertError);
}

TEST_F(FormText, ReadingGivesTheSameTreeAgain) {
    TGadget root;
    Furnish(root);
    const std::string text = WriteFormText(root);
    for (std::size_t start = 0; start < text.size(); start = text.find('\n', start) + 1)
        EXPECT_LE(text.find('\n', start) - start, 100u); // long strings are broken
    TGadget again;
    ReadFormText(text, again);
    EXPECT_EQ(WriteFormText(again), text);
    TGadget* const one = Child(again, "One");
    TGadget* const two = Child(again, "Two");
    ASSERT_TRUE(one && two);
    EXPECT_EQ(one->Caption, Child(root, "One")->Caption);
    EXPECT_EQ(one->Peer, two);
    EXPECT_EQ(two->Peer, &again);
    EXPECT_EQ(again.Peer, Child(*two, "One"));
    EXPECT_EQ(again.Peer->Peer, one);
    EXPECT_EQ(again.Caption, root.Caption);
    EXPECT_EQ(again.Weight, 5);
    EXPECT_EQ(loadedNames, "One One Two Root ");
    EXPECT_FALSE(again.IsLoading() || one->IsLoading());
}

TEST_F(FormText, ReadsWhatPeopleWrite) {
    TGadget root;
    ReadFormText(
        "\xEF\xBB\xBFOBJECT root : tgadget\r\n"
        "object A: TGadget\r PEER = inner END\r\n"
        "  caption = 'a' +\r\n 'b'#228 + #8364'''' mark='x' color=$8000000F\r\n"
        "  shades=[] LINES.strings=() Frame.Notes.Strings = ('x' 'y' + 'z')\r\n"
        "  object B: TGadget peer = ROOT.a object Inner: TGadget end object TGadget peer = nil end end\r\n"
        "  Struct = ('late') Level = 9 level=-$7F\r\n"
        "end\r\n\r\n",
        root);
    TGadget* const b = Child(root, "B");
    ASSERT_TRUE(b);
    EXPECT_EQ(root.GetName(), "root");
    EXPECT_EQ(Child(root, "A")->Peer, Child(*b, "Inner"));
    EXPECT_EQ(b->Peer, Child(root, "A"));
    EXPECT_EQ(b->GetComponentCount(), 2);
    EXPECT_EQ(root.Caption, "ab\xC3\xA4\xE2\x82\xAC'");
    EXPECT_EQ(root.Mark, 'x');
    EXPECT_EQ(root.Level, -127);
    EXPECT_EQ(root.Color.Value, -2147483633);
    EXPECT_TRUE(root.Shades.Empty() && root.Lines.Empty());
    EXPECT_EQ(root.Frame.GetNotes().GetText(), "x\nyz\n");
    EXPECT_EQ(root.Struct.GetText(), "late\n");
}

TEST_F(FormText, ErrorsNameTheLineAndTheFault) {
    const std::pair<const char*, const char*> cases[] = {
        {"", "Line 2: Expected a property, \"object\" or \"end\", but the text ends"},
        {"end x", "Line 2: Expected the end of the text, but \"x\" stands here"},
        {"\r\n\rFoo = 1 end", "Line 4: A TGadget has no property \"Foo\""},
        {"Frame.Foo = 1 end", "Line 2: A TGadget has no property \"Frame.Foo\""},
        {"Caption.Foo = 'x' end", "Line 2: A TGadget has no property \"Caption.Foo\""},
        {"\nobject X: TNone end end", "Line 3: Class TNone is not known"},
        {"Level = 'x' end", "Line 2: Property Level takes an integer"},
        {"Level = 40000 end", "Line 2: The number 40000 is out of range"},
        {"Level = 99999999999999999999 end", "Line 2: This is not a number, or too large a one"},
        {"Active = 1 end", "Line 2: Property Active takes True or False"},
        {"Mark = 'xy' end", "Line 2: Property Mark takes a character"},
        {"Color = 4294967296 end", "Line 2: The number is no colour"},
        {"Shade = shPink end", "Line 2: Property Shade has no value \"shPink\""},
        {"Shades = [shDark, shPink] end", "Line 2: Property Shades has no value \"shPink\""},
        {"Shades = [shDark shLight] end", "Line 2: Expected \",\" or \"]\", but \"shLight\" stands here"},
        {"Caption = Foo end", "Line 2: Property Caption takes a string"},
        {"Caption = 'open\n' end", "Line 2: A string has no closing quote"},
        {"Caption = #1114112 end", "Line 2: \"#\" stands without the code of a character"},
        {"Caption = 'a' +\n\n 5 end", "Line 4: Expected a string, but a number stands here"},
        {"Lines = ('a') end", "Line 2: Property Lines takes a list of strings (as .Strings)"},
        {"Lines.Strings = (1) end", "Line 2: A list of strings holds something that is no string"},
        {"Frame = 1 end", "Line 2: Property Frame takes no value itself, its properties do"},
        {"OnChange = Handler end", "Line 2: Property OnChange takes no value from a form text"},
        {"\nFrame.Width = -3 end", "Line 3: A frame cannot be that thin"},
        {"\nStruct = 5\n end", "Line 3: A list of strings is expected here"},
        {"Peer = 'x' end", "Line 2: Property Peer takes a component's name"},
        {"\nPeer = Nobody\n end", "Line 3: There is no component \"Nobody\", or there are several"},
        {"object A: TGadget object X: TGadget end end object B: TGadget object X: TGadget end end Peer = X "
         "end",
         "Line 2: There is no component \"X\", or there are several"},
        {"object P: TPlain end\nPeer = P end", "Line 3: Property Peer cannot refer to a TComponent"},
        {"object A: TGadget end\nobject a: TGadget end end", "Line 3: A component named a already exists"},
        {"\nobject A: TGadget\n Fails = 1 end end", "Line 3: not today"},
        {"Level = \x01 ? end", "Line 2: A form text has no place for this character here"}};
    for (const auto& [body, message] : cases)
        EXPECT_EQ(ErrorOf(body), message) << body;
    TComponent other;
    EXPECT_EQ(MessageOf<EReadError>([&] { ReadFormText("object A: TGadget end", other); }),
              "Line 1: The text is of a TGadget, not of a TComponent");
    EXPECT_THROW(ReadFormText("", other), EReadError);
}

TEST_F(FormText, NestingAndNumbersAreBounded) {
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "object TGadget ";
    EXPECT_EQ(ErrorOf(deep), "Line 2: The components are nested too deeply");
    EXPECT_EQ(ErrorOf("Struct = " + std::string(1000000, '(')), "Line 2: The lists are nested too deeply");
    std::string wide;
    for (int i = 0; i < MaxFormComponents; ++i)
        wide += "object TPlain end ";
    EXPECT_EQ(ErrorOf(wide + "end"), "Line 2: The text holds too many components");
    std::string nested;
    for (int i = 1; i < MaxFormNesting; ++i)
        nested += "object A: TGadget\n";
    for (int i = 0; i < MaxFormNesting; ++i)
        nested += "end\n";
    TGadget root;
    ReadFormText("object Root: TGadget\n" + nested, root);
    TGadget again;
    ReadFormText(WriteFormText(root), again);
    EXPECT_EQ(WriteFormText(again), WriteFormText(root));
}

// Every damaged text gives a result or an EReadError, and leaves nothing loading.
TEST_F(FormText, DamagedTextsDoNoHarm) {
    TGadget furnished;
    Furnish(furnished);
    const std::string text = WriteFormText(furnished);
    const auto tryToRead = [](const std::string& damaged) {
        TGadget root;
        try {
            ReadFormText(damaged, root);
        } catch (const EReadError& error) {
            EXPECT_EQ(std::string_view(error.what()).substr(0, 5), "Line ");
        }
        EXPECT_FALSE(root.IsLoading());
    };
    for (std::size_t size = 0; size < text.size(); ++size)
        tryToRead(text.substr(0, size));
    std::mt19937 random(11);
    constexpr std::string_view bytes("\0\xFF'\"#()[]=.,+:$-e9 \n\r", 21);
    for (int i = 0; i < 3000; ++i) {
        std::string damaged = text;
        for (auto n = random() % 4 + 1; n > 0; --n)
            damaged[random() % damaged.size()] = bytes[random() % bytes.size()];
        if (i % 3 == 0)
            damaged.erase(random() % damaged.size(), random() % 40);
        tryToRead(damaged);
    }
}

} // namespace
} // namespace lumora
