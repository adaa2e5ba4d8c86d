// How a query looks on the screen and what is offered for it.
#pragma once

#include "lumora/platform/color.h"
#include "lumora/platform/persistent.h"
#include "lumora/query/row_types.h"

#include <functional>
#include <utility>

namespace lumora {

enum TQPAppearanceOption : std::uint8_t {
    aoFlatButtons,
    aoRoundButtons,
    aoNonEmptyBrackets, // a bracket left empty is removed
    aoPopupField,       // fields are chosen from popup menus
    aoPopupValue,       // values too
    aoShowGroupName,    // field lists show their groups
    aoAllowKeyboard,
    aoSortListData,
    aoShowAddRow,
    aoShowCheckBoxes, // each row can be switched off
    aoAllowParams     // a value may be made a parameter
};
template <>
struct TEnumNames<TQPAppearanceOption> {
    static constexpr std::string_view Names[] = {"aoFlatButtons",    "aoRoundButtons", "aoNonEmptyBrackets",
                                                 "aoPopupField",     "aoPopupValue",   "aoShowGroupName",
                                                 "aoAllowKeyboard",  "aoSortListData", "aoShowAddRow",
                                                 "aoShowCheckBoxes", "aoAllowParams"};
};
using TQPAppearanceOptions = TEnumSet<TQPAppearanceOption>;
inline constexpr TQPAppearanceOptions DefaultAppearanceOptions = {aoShowGroupName, aoAllowKeyboard,
                                                                  aoShowAddRow, aoAllowParams};
inline constexpr TQPAppearanceOptions AllAppearanceOptions = {
    aoFlatButtons,   aoRoundButtons, aoNonEmptyBrackets, aoPopupField,     aoPopupValue, aoShowGroupName,
    aoAllowKeyboard, aoSortListData, aoShowAddRow,       aoShowCheckBoxes, aoAllowParams};
inline constexpr TFilterLinkTypes AllLinkTypes = {fltAll, fltAny, fltNone, fltNotAll};

enum TQPStyle : std::uint8_t {
    psGroups, // a bracket says how its rows are joined
    psAndOr   // "and" and "or" stand between the rows
};
template <>
struct TEnumNames<TQPStyle> {
    static constexpr std::string_view Names[] = {"psGroups", "psAndOr"};
};

// A change of a property calls OnChange, unless an update is under way.
class TQPAppearance : public TPersistent {
public:
    std::string_view ClassName() const override { return "TQPAppearance"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    TColor GetActiveRowColor() const { return activeRowColor_; }
    void SetActiveRowColor(TColor color) { Set(activeRowColor_, color); }
    TColor GetControlBorderColor() const { return controlBorderColor_; }
    void SetControlBorderColor(TColor color) { Set(controlBorderColor_, color); }
    TColor GetFieldColor() const { return fieldColor_; }
    void SetFieldColor(TColor color) { Set(fieldColor_, color); }
    TColor GetOperatorColor() const { return operatorColor_; }
    void SetOperatorColor(TColor color) { Set(operatorColor_, color); }
    TColor GetValueColor() const { return valueColor_; }
    void SetValueColor(TColor color) { Set(valueColor_, color); }
    TColor GetBoolOpColor() const { return boolOpColor_; }
    void SetBoolOpColor(TColor color) { Set(boolOpColor_, color); }
    TColor GetAddRowColor() const { return addRowColor_; }
    void SetAddRowColor(TColor color) { Set(addRowColor_, color); }
    TFilterLinkTypes GetLinkTypes() const { return linkTypes_; } // offered in a bracket
    void SetLinkTypes(TFilterLinkTypes types) { Set(linkTypes_, types); }
    TQPAppearanceOptions GetOptions() const { return options_; }
    void SetOptions(TQPAppearanceOptions options) { Set(options_, options); }
    TQPStyle GetStyle() const { return style_; }
    void SetStyle(TQPStyle style) { Set(style_, style); }

    void BeginUpdate() { updating_ = true; }
    void EndUpdate();
    // The host's alone.
    std::function<void()> OnChange;
    // Who owns the looks hears of a change before the host does, and may refuse it by raising.
    void SetOwnersNotice(std::function<void()> notice) { tellOwner_ = std::move(notice); }

protected:
    void AssignTo(TPersistent& dest) const override;

private:
    void TellOwner() const {
        if (!updating_ && tellOwner_)
            tellOwner_();
    }
    void TellHost() const {
        if (!updating_ && OnChange)
            OnChange();
    }
    template <typename T>
    void Set(T& member, T value) {
        if (member == value)
            return;
        const T before = std::exchange(member, value);
        try {
            TellOwner();
        } catch (...) {
            member = before;
            throw;
        }
        TellHost();
    }

    TColor activeRowColor_ = clNone;
    TColor controlBorderColor_ = clNone;
    TColor fieldColor_ = clBlue;
    TColor operatorColor_ = clBlue;
    TColor valueColor_ = clBlue;
    TColor boolOpColor_ = clBlue;
    TColor addRowColor_ = clBlue;
    TFilterLinkTypes linkTypes_ = AllLinkTypes;
    TQPAppearanceOptions options_ = DefaultAppearanceOptions;
    TQPStyle style_ = psGroups;
    bool updating_ = false;
    std::function<void()> tellOwner_;
};

} // namespace lumora
