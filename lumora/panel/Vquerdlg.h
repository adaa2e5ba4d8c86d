// The sub-query dialog without its window: what it shows and what its controls do.
#pragma once

#include "lumora/panel/Vquerpnl.h"

#include <string>

namespace lumora {

struct TDropDownContent;
struct TDropDownItem;

class TdlgSubQuery {
public:
    // The window, in pixels.
    static constexpr int Width = 450;
    static constexpr int Height = 293;
    static constexpr int TopStripHeight = 25;
    static constexpr int BottomStripHeight = 35;
    static constexpr int LabelGap = 4; // between the label and ddlResultField

    TdlgSubQuery();

    // The panel in which the sub-query is edited.
    TVQueryPanel QPanel;
    // What the window's controls show.
    std::string Caption;
    std::string ResultFieldLabel;
    std::string ddlResultField; // the result fields' captions
    bool cbDistinct = false;
    std::string DistinctCaption = "Distinct";
    std::string btOK = "OK";
    std::string btCancel = "Cancel";

    // The panel that owns the condition; QPanel takes over its handlers, model, titles, looks and options.
    void SetParentQPanel(TVQueryPanel& panel);
    TVQueryPanel* GetParentQPanel() const { return parent_; }
    // When the window appears.
    void FormShow();
    // The query text of a sub-query; it gets a result field when it has none.
    void LoadQuery(const TStringList& lines);
    // The query text and its SQL. Raises what building the query raises.
    void SaveQuery(TStringList& lines, std::string& sql);
    // The result field's word was clicked: opens the result fields editor.
    void ddlResultFieldCustomDropDown();
    // What the result field's word drops down where there is no such editor: the model's fields.
    TDropDownContent ResultFieldContent() const;
    // One of those was chosen, and becomes the only result field.
    void AcceptResultField(const TDropDownItem& item);
    // The check box was clicked; `checked` is what it is now.
    void cbDistinctClick(bool checked);
    // The reason why the query cannot be built, for the OK button to show instead of closing the window;
    // empty when it can.
    std::string CheckQuery();

private:
    void SetResultField(TDSField& field);
    void ShowResultFields();

    TVQueryPanel* parent_ = nullptr;
};

} // namespace lumora
