#include "lumora/controls/Vrndbtn.h"
#include "lumora/platform/form_text.h"

#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <memory>

using namespace lumora;

namespace {

// Writes down what is drawn. Each character is 6 wide and 14 high.
class TRecordingCanvas : public TCanvas {
public:
    void SetPenStyle(TPenStyle style) override { pen_ = style == psClear ? "none" : ""; }
    void SetPenColor(TColor color) override { penColor_ = NameOf(color); }
    void SetBrushStyle(TBrushStyle style) override { isFilled_ = style == bsSolid; }
    void SetBrushColor(TColor color) override { brushColor_ = NameOf(color); }
    void SetFontColor(TColor color) override { fontColor_ = NameOf(color); }
    void RoundRect(int left, int top, int right, int bottom, int ellipseWidth, int ellipseHeight) override {
        Add("rect", {left, top, right, bottom, ellipseWidth, ellipseHeight});
        Log += " pen " + (pen_.empty() ? penColor_ : pen_) + " fill " + (isFilled_ ? brushColor_ : "none") +
               "\n";
    }
    void TextOut(int x, int y, std::string_view text, int underlined) override {
        Add("text", {x, y, underlined});
        Log += " " + std::string(text) + " " + fontColor_ + "\n";
    }
    TSize TextExtent(std::string_view text) const override { return {6 * static_cast<int>(text.size()), 14}; }
    void OffsetClipRegion(int dx, int dy) override {
        Add("clip", {dx, dy});
        Log += "\n";
    }

    std::string Log;

private:
    static std::string NameOf(TColor color) {
        return color == clBlack    ? "black"
               : color == clWhite  ? "white"
               : color == clGray   ? "grey"
               : color == clSilver ? "silver"
               : color.Value < 0   ? "own"
                                   : std::to_string(color.Value);
    }
    void Add(const char* what, std::initializer_list<int> numbers) {
        Log += what;
        for (const int number : numbers)
            Log += " " + std::to_string(number);
    }

    std::string pen_, penColor_, brushColor_, fontColor_;
    bool isFilled_ = true;
};

class TSurface : public TRndBtnHost {
public:
    void Invalidate(TVRndBtn&) override { ++Repaints; }
    bool IsUnderPointer(const TVRndBtn&) const override { return UnderPointer; }
    TSize TextExtent(const TFont& font, std::string_view text) const override {
        return {font.PointSize * static_cast<int>(text.size()), font.PointSize + 5};
    }

    int Repaints = 0;
    bool UnderPointer = false;
};

class RoundButton : public testing::Test {
protected:
    RoundButton() {
        button.SetHost(&surface);
        button.OnClick = [this](TVRndBtn&) { ++clicks; };
        surface.Repaints = 0;
    }
    std::string Painted() {
        TRecordingCanvas canvas;
        button.Paint(canvas);
        return canvas.Log;
    }
    void PressAndRelease(int x, int y) {
        button.MouseDown(mbLeft, 1, 1);
        button.MouseUp(mbLeft, x, y);
    }

    TSurface surface;
    TVRndBtn button;
    int clicks = 0;
};

} // namespace

TEST_F(RoundButton, IsPaintedByItsState) {
    button.SetCaption("&OK");
    EXPECT_EQ(Painted(), "rect 0 0 25 18 13 13 pen none fill own\n"
                         "text 6 2 0 OK own\n"
                         "rect 0 0 25 18 13 13 pen grey fill none\n");
    button.MouseEnter();
    button.MouseDown(mbLeft, 1, 1);
    EXPECT_EQ(Painted(), "rect 0 0 25 18 13 13 pen none fill black\n"
                         "text 6 2 0 OK white\n"
                         "rect 0 0 25 18 13 13 pen grey fill none\n");
    button.SetAllowPress(true);
    EXPECT_EQ(Painted(), "rect 0 0 25 18 13 13 pen none fill black\n"
                         "text 7 3 0 OK own\n"
                         "clip -1 -1\n"
                         "rect 0 0 25 18 13 13 pen black fill none\n"
                         "clip 3 4\n"
                         "rect 0 0 25 18 13 13 pen white fill none\n"
                         "clip -2 -3\n");
}

TEST_F(RoundButton, ShowsItsReliefOnlyUnderThePointerWhenFlat) {
    button.SetAllowPress(true);
    button.SetRounded(false);
    const std::string plain = "rect 0 0 25 18 0 0 pen none fill own\n"
                              "text 12 2 -1  own\n"
                              "rect 0 0 25 18 0 0 pen grey fill none\n";
    const std::string relief = "clip -1 -1\n"
                               "rect 0 0 25 18 0 0 pen white fill none\n"
                               "clip 2 2\n"
                               "rect 0 0 25 18 0 0 pen black fill none\n"
                               "clip -1 -1\n";
    EXPECT_EQ(Painted(), plain);
    button.MouseEnter();
    EXPECT_EQ(Painted(), "rect 0 0 25 18 0 0 pen none fill silver\ntext 12 2 -1  own\n" + relief);
    button.MouseLeave();
    EXPECT_EQ(Painted(), plain);
    EXPECT_TRUE(button.GetControlStyle().Contains(csOpaque)); // although it is flat, until Flat is set
    button.SetFlat(false);
    EXPECT_EQ(Painted(), "rect 0 0 25 18 0 0 pen none fill own\ntext 12 2 -1  own\n" + relief);
    button.SetFlat(true);
    EXPECT_FALSE(button.GetControlStyle().Contains(csOpaque));
}

TEST_F(RoundButton, CentresACaptionThatIsTooWide) {
    button.SetCaption("wider"); // 30 in 25: half of -5 is cut towards zero
    EXPECT_NE(Painted().find("text -2 2 -1 wider"), std::string::npos);
    button.SetCaption("R&&D");
    EXPECT_NE(Painted().find("text 3 2 -1 R&D"), std::string::npos);
    button.SetCaption("a&b&c&"); // the first one counts
    EXPECT_NE(Painted().find("text 3 2 1 abc "), std::string::npos);
}

TEST_F(RoundButton, ClicksInsideWithTheRowBelowItsBottom) {
    PressAndRelease(0, 18);
    PressAndRelease(24, 0);
    EXPECT_EQ(clicks, 2);
    PressAndRelease(25, 5);
    PressAndRelease(5, 19);
    PressAndRelease(-1, 5);
    EXPECT_EQ(clicks, 2);
    button.MouseDown(mbRight, 1, 1);
    button.MouseUp(mbRight, 1, 1);
    button.MouseUp(mbLeft, 1, 1); // pressed elsewhere
    EXPECT_EQ(clicks, 2);
    EXPECT_EQ(button.GetState(), rbsUp);
}

TEST_F(RoundButton, FollowsThePointerWhileItIsHeld) {
    button.MouseEnter();
    button.MouseDown(mbLeft, 1, 1);
    button.MouseLeave(); // keeps the hovered look
    button.MouseMove(25, 1);
    EXPECT_EQ(button.GetState(), rbsUp);
    EXPECT_TRUE(button.IsMouseInControl());
    const int repaints = surface.Repaints;
    button.MouseMove(26, 1);
    EXPECT_EQ(surface.Repaints, repaints);
    button.MouseMove(24, 18);
    EXPECT_EQ(button.GetState(), rbsDown);
    surface.UnderPointer = true;
    button.MouseUp(mbLeft, 24, 18);
    EXPECT_TRUE(button.IsMouseInControl());
    surface.UnderPointer = false;
    button.UpdateTracking();
    EXPECT_FALSE(button.IsMouseInControl());
}

TEST_F(RoundButton, DoesNothingWhileDisabled) {
    button.SetCaption("&Go");
    EXPECT_TRUE(button.DialogChar("g"));
    EXPECT_FALSE(button.DialogChar("o"));
    button.MouseDown(mbLeft, 1, 1);
    button.SetEnabled(false);
    button.MouseUp(mbLeft, 1, 1);
    button.MouseDown(mbLeft, 1, 1);
    button.MouseEnter();
    EXPECT_FALSE(button.DialogChar("g"));
    EXPECT_EQ(clicks, 1);
    EXPECT_FALSE(button.IsMouseInControl());
    EXPECT_FALSE(button.IsTracking());
}

TEST_F(RoundButton, MayBeFreedByItsClick) {
    auto freed = std::make_unique<TVRndBtn>();
    freed->SetHost(&surface);
    freed->OnClick = [&](TVRndBtn&) { freed.reset(); };
    freed->MouseDown(mbLeft, 1, 1);
    freed->MouseUp(mbLeft, 1, 1);
    EXPECT_EQ(freed, nullptr);
}

TEST_F(RoundButton, FitsItsCaption) {
    button.SetAutoSize(true);
    button.SetCaption("OK");
    EXPECT_EQ(button.GetWidth(), 2 * 9 + 10);
    EXPECT_EQ(button.GetHeight(), 9 + 5 + 1);
    button.GetFont().SetSize(20);
    EXPECT_EQ(button.GetWidth(), 2 * 20 + 10);
    EXPECT_FALSE(button.GetParentFont());
    button.SetParentFont(true);
    EXPECT_EQ(button.GetWidth(), 2 * 9 + 10);
    button.SetHost(nullptr); // nobody measures
    EXPECT_EQ(button.GetWidth(), 10);
    button.SetHost(&surface);
    EXPECT_EQ(button.GetWidth(), 2 * 9 + 10);
}

TEST_F(RoundButton, RepaintsOnceForAChange) {
    const std::function<void()> changes[] = {
        [&] { button.SetMargin(7); },
        [&] { button.SetCaption("a"); },
        [&] { button.SetBounds(1, 1, 25, 18); },
        [&] { button.SetRounded(false); },
        [&] { button.SetAllowPress(true); },
        [&] { button.SetOverColor(clWhite); },
        [&] { button.SetPressedColor(clWhite); },
        [&] { button.SetColor(clWhite); },
        [&] { button.SetFlat(false); },
        [&] { button.GetFont().SetSize(20); },
        [&] { button.GetFont().SetColor(clWhite); },
        [&] { button.MouseEnter(); },
        [&] { button.MouseLeave(); },
        [&] { button.SetEnabled(false); },
    };
    for (std::size_t i = 0; i < std::size(changes); ++i) {
        surface.Repaints = 0;
        changes[i]();
        changes[i]();
        EXPECT_EQ(surface.Repaints, 1) << i;
    }
    button.SetMargin(-5); // no margin
    EXPECT_EQ(button.GetMargin(), 7);
    button.SetMargin(-1); // centred again
    EXPECT_EQ(button.GetMargin(), -1);
    button.SetEnabled(true);
    surface.Repaints = 0;
    button.MouseDown(mbLeft, 1, 1);
    EXPECT_EQ(surface.Repaints, 1);
}

TEST_F(RoundButton, IsKeptInAForm) {
    button.SetName("Button1");
    button.SetBounds(3, 4, 25, 18);
    EXPECT_EQ(WriteFormText(button), "object Button1: TVRndBtn\n"
                                     "  Left = 3\n"
                                     "  Top = 4\n"
                                     "  Width = 25\n"
                                     "  Height = 18\n"
                                     "  Rounded = True\n"
                                     "end\n");
    button.GetFont().SetStyle({fsBold});
    button.SetEnabled(false);
    button.SetShowHint(true);
    button.SetAllowPress(true);
    button.SetCaption("&Go");
    button.SetFlat(false);
    button.SetRounded(false);
    button.SetOverColor(clWhite);
    button.SetPressedColor(clGray);
    button.SetHint("Starts");
    button.SetMargin(3);
    button.SetVisible(false);
    TVRndBtn copy;
    ReadFormText(WriteFormText(button), copy);
    EXPECT_EQ(WriteFormText(copy), WriteFormText(button));
    EXPECT_TRUE(copy.GetFont().GetFont().Bold);
    EXPECT_EQ(copy.GetState(), rbsDisabled);
    EXPECT_EQ(copy.GetCaption() + copy.GetHint(), "&GoStarts");
    EXPECT_FALSE(copy.GetFlat() || copy.GetRounded() || copy.GetVisible() || copy.GetParentShowHint());
}
