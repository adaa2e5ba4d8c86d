#include "lumora/platform/component.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/form_text.h"
#include "lumora/platform/properties.h"
#include "tests/message_of.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>

#include <limits>
#include <random>

namespace lumora {
namespace {

enum TShade : std::uint8_t { shLight, shMiddle, shDark };

} // namespace

template <>
struct TEnumNames<TShade> {
    static constexpr std::string_view Names[] = {"shLight", "shMiddle", "shDark"};
};

namespace {

using tests::MessageOf;

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
    std::function<void()> OnNotice;
    bool FailsToLoad = false;

protected:
    void Notification(TComponent* component, TOperation operation) override {
        TComponent::Notification(component, operation);
        Notices += (operation == opInsert ? '+' : '-') + component->GetName();
        if (operation == opRemove && component == Peer)
            Peer = nullptr;
        if (const auto act = std::exchange(OnNotice, nullptr))
            act();
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
        for (const char* const name : {"_", "a_1", "Z9", "child"})
            child->SetName(name);
        EXPECT_EQ(child->GetName(), "child");
    }
    EXPECT_EQ(watcher.Peer, nullptr);
    EXPECT_EQ(watcher.Notices, "-child");
}

TEST(Component, OthersMayGoInANotice) {
    TGadget owner;
    auto* const first = new TGadget(&owner);
    auto* const second = new TGadget(&owner);
    auto* const third = new TGadget(&owner);
    auto leaving = std::make_unique<TGadget>();
    for (TGadget* const gadget : {first, second, third})
        gadget->Notices.clear();
    leaving->SetName("Leaving");
    for (TGadget* const gadget : {first, second, third})
        gadget->SetPeer(leaving.get());
    third->OnNotice = [&] { delete second; }; // watchers are told last first
    leaving.reset();
    EXPECT_EQ(first->Notices, "--Leaving"); // second has no name
    EXPECT_EQ(first->Peer, nullptr);
    EXPECT_EQ(owner.GetComponentCount(), 2);

    auto* const fourth = new TGadget(&owner);
    auto* const fifth = new TGadget(&owner);
    first->OnNotice = [&] { delete fourth; }; // siblings are told first to last
    fifth->Notices.clear();
    delete third;
    EXPECT_EQ(fifth->Notices, "--") << "of both";
    EXPECT_EQ(owner.GetComponent(1), fifth);
    EXPECT_THROW(owner.GetComponent(2), EListError);
    EXPECT_THROW(owner.GetComponent(-1), EListError);
    EXPECT_THROW(owner.FindProperty("Tag")->Write(owner, std::string("1")), EConvertError);
    EXPECT_THROW(owner.FindProperty("Shade")->Write(owner, std::int64_t{3}), EConvertError);
    EXPECT_THROW(owner.FindProperty("Lines")->Write(owner, std::int64_t{3}), EConvertError);
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
        "  Struct = ('late') Level = 9 level=-$7F Weight = 2E3 Weight = 25e-1\r\n"
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
    EXPECT_EQ(root.Weight, 2.5);
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
        {"Level = 5x end", "Line 2: This is not a number, or too large a one"},
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
    EXPECT_EQ(MessageOf<EReadError>([&] { ReadFormText("item A: TComponent end", other); }),
              "Line 1: Expected \"object\", but \"item\" stands here");
    EXPECT_THROW(ReadFormText("", other), EReadError);
}

TEST_F(FormText, NestingAndNumbersAreBounded) {
    std::string deep;
    for (int i = 0; i < 100000; ++i)
        deep += "object TGadget ";
    EXPECT_EQ(ErrorOf(deep), "Line 2: The components are nested too deeply");
    EXPECT_EQ(ErrorOf("Struct = " + std::string(1000000, '(')), "Line 2: The lists are nested too deeply");
    EXPECT_EQ(ErrorOf("Struct = " + std::string(MaxFormNesting, '(') + std::string(MaxFormNesting, ')')),
              "Line 2: A list of strings holds something that is no string");
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
