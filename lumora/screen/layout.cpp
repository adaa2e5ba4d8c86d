#include "lumora/screen/layout.h"

#include "lumora/model/structure.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/screen/query_screen.h"

#include <algorithm>

namespace lumora {

namespace {

constexpr int LinePadding = 2;    // above and below the text
constexpr int MinLineHeight = 17; // there must be room for the button
constexpr int CheckBoxWidth = 13;
constexpr int MarkHeight = 2;
constexpr int MinMarkWidth = 100;

} // namespace

TScreenLayout::TScreenLayout(TQueryScreen& screen, const TTextMeasurer& measurer, TFont font)
    : screen_(screen), measurer_(measurer), font_(std::move(font)) {
    Remeasure();
}

void TScreenLayout::SetFont(const TFont& font) {
    font_ = font;
    Remeasure();
}

void TScreenLayout::Remeasure() {
    lineHeight_ = std::max(MinLineHeight, measurer_.TextExtent(font_, "Ag").Height + 2 * LinePadding);
    contentWidth_ = 0;
}

// --- Lines.

// All rows are looked at only after rows have come, gone or moved.
void TScreenLayout::EnsureLines() {
    const bool active = screen_.GetActive();
    const bool header = screen_.GetAppearance().GetStyle() != psAndOr;
    if (version_ == screen_.GetQuery().GetRowsVersion() && active == active_ && header == hasHeader_)
        return;
    version_ = screen_.GetQuery().GetRowsVersion();
    active_ = active;
    hasHeader_ = header;
    contentWidth_ = 0;
    rows_.clear();
    if (!active)
        return;
    int number = header ? 0 : 1;
    while (TFilterRow* const row = screen_.GetQuery().GetRowByNum(number)) {
        if (row->GetHidden() && row->GetParent()) {
            const bool isBracket = row->GetRowType() == frtBracket;
            number = isBracket ? static_cast<TFilterBracket*>(row)->GetLastRowNum() : number;
        } else {
            rows_.push_back(row);
        }
        ++number;
    }
}

bool TScreenLayout::HasAddLine() const {
    return screen_.GetActive() && screen_.GetAppearance().GetOptions().Contains(aoShowAddRow);
}

int TScreenLayout::RowLineCount() {
    EnsureLines();
    return static_cast<int>(rows_.size());
}

int TScreenLayout::GetLineCount() {
    return RowLineCount() + (HasAddLine() ? 1 : 0);
}

int TScreenLayout::Stride() const {
    return std::max(1, lineHeight_ + screen_.GetRowSpace());
}

int TScreenLayout::GetLineTop(int line) const {
    return screen_.GetHeaderTop() + line * Stride();
}

int TScreenLayout::LineAt(int y) {
    const int below = y - screen_.GetHeaderTop();
    return below >= 0 && below / Stride() < GetLineCount() ? below / Stride() : -1;
}

TFilterRow* TScreenLayout::RowOfLine(int line) {
    return line >= 0 && line < RowLineCount() ? rows_[static_cast<std::size_t>(line)] : nullptr;
}

bool TScreenLayout::IsAddLine(int line) {
    return HasAddLine() && line == RowLineCount();
}

// The first line of a row of at least that number.
int TScreenLayout::LineOfNumber(int number) {
    EnsureLines();
    const auto found =
        std::lower_bound(rows_.begin(), rows_.end(), number,
                         [](const TFilterRow* row, int sought) { return row->GetRowNum() < sought; });
    return static_cast<int>(found - rows_.begin());
}

int TScreenLayout::LineOfRow(const TFilterRow* row) {
    if (!row)
        return -1;
    const int line = LineOfNumber(row->GetRowNum());
    return RowOfLine(line) == row ? line : -1;
}

// --- Places.

int TScreenLayout::XOfLevel(int level) const {
    return screen_.GetHeaderLeft() + (hasHeader_ ? level : level - 1) * screen_.GetTabSpace();
}

int TScreenLayout::WordWidth(const TScreenWord& word) const {
    switch (word.Role) {
    case wrButton:
        return lineHeight_;
    case wrCheckBox:
        return CheckBoxWidth;
    default:
        return measurer_.TextExtent(font_, word.Caption).Width;
    }
}

TPlacedLine TScreenLayout::PlaceLine(int line) {
    TPlacedLine placed;
    if (line < 0 || line >= GetLineCount())
        return placed;
    placed.Line = line;
    placed.Row = RowOfLine(line);
    placed.IsCurrent = placed.Row && placed.Row == screen_.GetCurrentRow();
    const int top = GetLineTop(line);
    const int left = XOfLevel(placed.Row ? placed.Row->GetRowLevel() : 1);
    int x = left;
    for (TScreenWord& word : placed.Row ? ScreenWords(screen_, *placed.Row) : AddRowWords(screen_)) {
        const int right = x + WordWidth(word);
        placed.Words.push_back({std::move(word), {x, top, right, top + lineHeight_}});
        x = right + screen_.GetElemSpace();
    }
    const int right = placed.Words.empty() ? left : placed.Words.back().Bounds.Right;
    placed.Bounds = {left, top, right, top + lineHeight_};
    contentWidth_ = std::max(contentWidth_, right + screen_.GetHeaderLeft());
    return placed;
}

std::vector<TPlacedLine> TScreenLayout::PlaceLines(int top, int bottom) {
    std::vector<TPlacedLine> lines;
    const int count = GetLineCount();
    int line = std::max(0, top - screen_.GetHeaderTop()) / Stride();
    for (; line < count && GetLineTop(line) < bottom; ++line)
        lines.push_back(PlaceLine(line));
    return lines;
}

TWordPlace TScreenLayout::WordAt(int x, int y) {
    TWordPlace place;
    place.Line = LineAt(y);
    const TPlacedLine line = PlaceLine(place.Line);
    for (std::size_t i = 0; i < line.Words.size(); ++i) {
        const TRect& bounds = line.Words[i].Bounds;
        if (x >= bounds.Left && x < bounds.Right && y < bounds.Bottom)
            place.Word = static_cast<int>(i);
    }
    return place;
}

TRect TScreenLayout::WordBounds(int line, int word) {
    const TPlacedLine placed = PlaceLine(line);
    return word >= 0 && word < static_cast<int>(placed.Words.size())
               ? placed.Words[static_cast<std::size_t>(word)].Bounds
               : TRect{};
}

TSize TScreenLayout::GetContentSize() {
    const int count = GetLineCount();
    return {contentWidth_, count == 0 ? 0 : GetLineTop(count - 1) + lineHeight_ + screen_.GetHeaderTop()};
}

// --- Guide lines.

void TScreenLayout::AddGuideLine(std::vector<TGuideLine>& guides, const TFilterBracket& bracket, int top,
                                 int bottom) {
    const int line = LineOfRow(&bracket);
    int last = bracket.GetRowCount() - 1;
    while (last >= 0 && bracket.GetRow(last)->GetHidden())
        --last;
    if (line < 0 || last < 0)
        return;
    const int lastTop = GetLineTop(LineOfRow(bracket.GetRow(last)));
    TGuideLine guide;
    guide.Bracket = &bracket;
    guide.X = XOfLevel(bracket.GetRowLevel()) + lineHeight_ / 2;
    guide.Top = std::max(top, GetLineTop(line) + lineHeight_);
    guide.Bottom = std::min(bottom, lastTop + lineHeight_ / 2);
    if (guide.Top < guide.Bottom)
        guides.push_back(guide);
}

// Of the brackets in view, and of those around the first line in view.
std::vector<TGuideLine> TScreenLayout::GuideLines(int top, int bottom) {
    std::vector<TGuideLine> guides;
    const int count = RowLineCount();
    const int first = std::max(0, top - screen_.GetHeaderTop()) / Stride();
    if (first >= count)
        return guides;
    const TFilterRow* const firstRow = RowOfLine(first);
    for (const TFilterBracket* outer = firstRow->GetParent(); outer; outer = outer->GetParent())
        AddGuideLine(guides, *outer, top, bottom);
    for (int line = first; line < count && GetLineTop(line) < bottom; ++line)
        if (const TFilterRow* const row = RowOfLine(line); row->GetRowType() == frtBracket)
            AddGuideLine(guides, static_cast<const TFilterBracket&>(*row), top, bottom);
    return guides;
}

// --- Dragging.

namespace {

const TFilterRow& AncestorAt(const TFilterRow& row, int level) {
    const TFilterRow* ancestor = &row;
    while (ancestor->GetRowLevel() > level)
        ancestor = ancestor->GetParent();
    return *ancestor;
}

int DeepestLevelBehind(const TFilterRow& above, const TFilterRow& dragged) {
    if (IsWithin(&above, dragged))
        return dragged.GetRowLevel(); // not into itself
    return above.GetRowLevel() + (above.GetRowType() == frtBracket ? 1 : 0);
}

} // namespace

TDropTarget TScreenLayout::DropTargetAt(TFilterRow& dragged, int x, int y) {
    TDropTarget drop;
    const int count = RowLineCount();
    if (count == 0 || !dragged.GetParent())
        return drop;
    const int nearest = (std::max(0, y - screen_.GetHeaderTop()) + Stride() / 2) / Stride();
    const int line = std::clamp(nearest, hasHeader_ ? 1 : 0, count); // the one it would stand before
    TFilterRow* const above = line > 0 ? RowOfLine(line - 1) : screen_.GetQuery().GetRootBracket();
    const TFilterRow* below = RowOfLine(line);
    if (below && IsWithin(below, dragged)) {
        if (IsWithin(above, dragged))
            return drop;
        TFilterRow* const last = dragged.GetRowType() == frtBracket
                                     ? static_cast<TFilterBracket&>(dragged).GetLastRow()
                                     : &dragged;
        below = RowOfLine(LineOfNumber(last->GetRowNum() + 1));
    }
    const int deepest = DeepestLevelBehind(*above, dragged);
    const int shallowest = std::min(deepest, below ? below->GetRowLevel() : 1);
    const int level = std::clamp(LevelAt(x), shallowest, deepest);
    if (level > above->GetRowLevel()) {
        drop.Target = {static_cast<TFilterBracket*>(above), 0};
    } else {
        const TFilterRow& neighbour = AncestorAt(*above, level);
        drop.Target = {neighbour.GetParent(), neighbour.GetIndex() + 1};
    }
    const int left = XOfLevel(level);
    const int top = GetLineTop(line) - (screen_.GetRowSpace() + MarkHeight) / 2;
    drop.Mark = {left, top, std::max(contentWidth_, left + MinMarkWidth), top + MarkHeight};
    return drop;
}

int TScreenLayout::LevelAt(int x) const {
    const int tab = screen_.GetTabSpace();
    return tab > 0 ? std::max(0, x - XOfLevel(0)) / tab : MaxRowLevel;
}

} // namespace lumora
