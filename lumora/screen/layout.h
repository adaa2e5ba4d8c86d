// Where the panel's lines and words stand, in pixels from the top left corner of the whole screen. All lines
// are of one height, so asking for those in view touches no others.
#pragma once

#include "lumora/platform/rect.h"
#include "lumora/platform/text_metrics.h"
#include "lumora/query/row_moves.h"
#include "lumora/screen/screen_words.h"

#include <vector>

namespace lumora {

struct TPlacedWord {
    TScreenWord Word;
    TRect Bounds;
};

struct TPlacedLine {
    int Line = -1;
    TFilterRow* Row = nullptr; // none: the line that adds a condition
    bool IsCurrent = false;    // of the current row
    TRect Bounds;              // as far as its words reach
    std::vector<TPlacedWord> Words;
};

// A line from a bracket down to its last row, clipped to what was asked for.
struct TGuideLine {
    const TFilterBracket* Bracket = nullptr;
    int X = 0;
    int Top = 0;
    int Bottom = 0;
};

struct TWordPlace {
    int Line = -1; // -1: no line
    int Word = -1; // -1: no word
};

struct TDropTarget {
    TRowTarget Target; // no bracket: the row cannot be dropped there
    TRect Mark;        // where it would stand
};

class TScreenLayout {
public:
    // The screen and the measurer outlive the layout.
    TScreenLayout(TQueryScreen& screen, const TTextMeasurer& measurer, TFont font = {});

    const TFont& GetFont() const { return font_; }
    void SetFont(const TFont& font);
    // Measures anew, after the screen's font or resolution changed.
    void Remeasure();

    // Lines: the header, the rows that are not hidden in display order, the line that adds a condition. An
    // inactive screen has none.
    int GetLineCount();
    int GetLineHeight() const { return lineHeight_; }
    int GetLineTop(int line) const;
    // The line at y, the space below it included; -1 when there is none.
    int LineAt(int y);
    // None for the line that adds a condition and for a number that is no line.
    TFilterRow* RowOfLine(int line);
    int LineOfRow(const TFilterRow* row); // -1 when it has none
    bool IsAddLine(int line);

    // A line with its words. An empty one when there is none of that number.
    TPlacedLine PlaceLine(int line);
    // The lines that touch the stretch from `top` up to, not including, `bottom`.
    std::vector<TPlacedLine> PlaceLines(int top, int bottom);
    std::vector<TGuideLine> GuideLines(int top, int bottom);

    TWordPlace WordAt(int x, int y);
    TRect WordBounds(int line, int word); // empty when there is no such word
    // The height of all lines, and the width of those that have been placed so far.
    TSize GetContentSize();

    // Where a dragged row would go if it were dropped at a point; MoveRow takes it there. Between two lines
    // the height decides; where brackets end, x decides how far out.
    TDropTarget DropTargetAt(TFilterRow& dragged, int x, int y);

private:
    void EnsureLines();
    int RowLineCount();
    bool HasAddLine() const;
    int Stride() const; // from line to line
    int LineOfNumber(int number);
    int XOfLevel(int level) const;
    int LevelAt(int x) const;
    int WordWidth(const TScreenWord& word) const;
    void AddGuideLine(std::vector<TGuideLine>& guides, const TFilterBracket& bracket, int top, int bottom);

    TQueryScreen& screen_;
    const TTextMeasurer& measurer_;
    TFont font_;
    int lineHeight_ = 0;
    int contentWidth_ = 0;
    std::vector<TFilterRow*> rows_; // of the lines, as long as the version is the query's
    unsigned version_ = 0;
    bool active_ = false;
    bool hasHeader_ = false;
};

} // namespace lumora
