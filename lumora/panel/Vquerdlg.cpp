#include "lumora/panel/Vquerdlg.h"

#include "lumora/model/structure.h"
#include "lumora/panel/panel_view.h"
#include "lumora/platform/drop_down.h"
#include "lumora/query/query_result.h"
#include "lumora/screen/appearance.h"

namespace lumora {

TdlgSubQuery::TdlgSubQuery() {
    // Those of a dialog without a parent; a parent's looks and events come with SetParentQPanel.
    QPanel.GetAppearance().SetOptions(AllAppearanceOptions - TQPAppearanceOptions{aoAllowParams});
    QPanel.SetSaveTitles(false);
}

void TdlgSubQuery::SetParentQPanel(TVQueryPanel& panel) {
    parent_ = &panel;
    QPanel.OnActive = panel.OnActive;
    QPanel.OnChange = panel.OnChange;
    QPanel.OnCustomEdit = panel.OnCustomEdit;
    QPanel.OnChangeValue = panel.OnChangeValue;
    QPanel.OnSetValue = panel.OnSetValue;
    QPanel.OnCustomValue = panel.OnCustomValue;
    QPanel.OnValueDblClick = panel.OnValueDblClick;
    QPanel.OnConditionChange = panel.OnConditionChange;
    QPanel.OnBuildSQL = panel.OnBuildSQL;
    QPanel.SetDbStruct(panel.GetDbStruct());
    QPanel.SetTitles(panel.GetTitles());
    QPanel.GetAppearance().Assign(panel.GetAppearance());
    QPanel.SetSQLOptions(panel.GetSQLOptions());
    // A sub-query is part of its parent's statement, so it is of the same syntax and as strict.
    QPanel.SetSQLSyntax(panel.GetSQLSyntax());
    QPanel.SetStrict(panel.GetStrict());
    QPanel.SetDialect(panel.GetDialect());
    QPanel.SetMaxPopupItemCount(panel.GetMaxPopupItemCount());
    QPanel.OnGetGroupImageIndex = panel.OnGetGroupImageIndex;
    QPanel.OnGetItemImageIndex = panel.OnGetItemImageIndex;
    QPanel.SetImages(panel.GetImages());
    QPanel.SetSaveTitles(false);
    Caption = panel.GetTitle("ttlSubQueryCaption");
    ResultFieldLabel = panel.GetTitle("ttlResultField") + ":";
    btCancel = panel.GetTitle("ttlCancelBtnCaption");
}

void TdlgSubQuery::FormShow() {
    cbDistinct = QPanel.GetSQLOptions().Contains(soSelectDistinct);
    QPanel.Activate();
}

void TdlgSubQuery::LoadQuery(const TStringList& lines) {
    QPanel.LoadFromStrings(lines);
    TRFieldList& fields = QPanel.GetQResult().GetResultFields();
    if (TVCustomDBStructure* const model = QPanel.GetDbStruct();
        fields.Count() == 0 && model->GetFieldCount() > 0)
        SetResultField(*model->GetField(0));
    ShowResultFields();
}

void TdlgSubQuery::SetResultField(TDSField& field) {
    TRFieldList& fields = QPanel.GetQResult().GetResultFields();
    fields.Clear();
    fields.Add("@1", {&field}, field.GetDisplayName())->SetAlias("");
}

void TdlgSubQuery::SaveQuery(TStringList& lines, std::string& sql) {
    QPanel.SaveToStrings(lines);
    QPanel.BuildQuery();
    sql = QPanel.GetQResult().GetSQL().GetText();
}

void TdlgSubQuery::ddlResultFieldCustomDropDown() {
    if (QPanel.EditQResult())
        if (TRFieldList& fields = QPanel.GetQResult().GetResultFields(); fields.Count() > 0)
            fields.GetRField(0)->SetAlias("");
    ShowResultFields();
}

TDropDownContent TdlgSubQuery::ResultFieldContent() const {
    TDropDownContent content;
    const TVCustomDBStructure* const model = QPanel.GetDbStruct();
    if (!model)
        return content;
    const TRFieldList& fields = QPanel.GetQResult().GetResultFields();
    const bool isPlain = fields.Count() == 1 && fields.GetRField(0)->GetFields().size() == 1;
    content.Kind = ddList;
    for (int i = 0; i < model->GetFieldCount(); ++i) {
        const TDSField& field = *model->GetField(i);
        const bool isCurrent = isPlain && fields.GetRField(0)->GetFields().front() == &field;
        if (!field.UIR && !isCurrent) // not to be chosen as a column
            continue;
        TDropDownItem& item = content.Items.emplace_back();
        item.Caption = field.GetDisplayName();
        item.Value = std::to_string(field.GetID());
        if (isCurrent)
            content.CurrentItem = static_cast<int>(content.Items.size()) - 1;
    }
    return content;
}

void TdlgSubQuery::AcceptResultField(const TDropDownItem& item) {
    const TVCustomDBStructure* const model = QPanel.GetDbStruct();
    for (int i = 0; model && i < model->GetFieldCount(); ++i)
        if (std::to_string(model->GetField(i)->GetID()) == item.Value)
            SetResultField(*model->GetField(i));
    ShowResultFields();
}

void TdlgSubQuery::cbDistinctClick(bool checked) {
    cbDistinct = checked;
    TSQLOptions options = QPanel.GetSQLOptions();
    if (checked)
        options.Include(soSelectDistinct);
    else
        options.Exclude(soSelectDistinct);
    QPanel.SetSQLOptions(options);
}

std::string TdlgSubQuery::CheckQuery() {
    try {
        QPanel.BuildQuery();
        QPanel.GetQResult().GetSQL();
    } catch (const Exception& error) {
        return error.what();
    }
    return {};
}

void TdlgSubQuery::ShowResultFields() {
    TStringList captions;
    QPanel.GetQResult().GetResFieldCaptions(captions);
    ddlResultField.clear();
    for (const std::string_view caption : captions)
        ddlResultField.append(ddlResultField.empty() ? "" : ", ").append(caption);
}

// --- The owning panel's side.

// The window shows the sub-query with its own options; a new one begins with the panel's.
bool TVQueryPanel::EditSubQuery(TStringList& lines, std::string& sql, TSQLOptions& options) {
    CheckIfDBStructAssigned();
    TdlgSubQuery dialog;
    dialog.SetParentQPanel(*this);
    TQPAppearance& looks = dialog.QPanel.GetAppearance();
    looks.SetOptions(looks.GetOptions() - TQPAppearanceOptions{aoAllowParams});
    if (!lines.Empty())
        dialog.QPanel.SetSQLOptions(options);
    dialog.LoadQuery(lines);
    dialog.FormShow();
    if (!view_->RunSubQueryDialog(dialog))
        return false;
    TStringList edited;
    std::string statement;
    dialog.SaveQuery(edited, statement);
    options = dialog.QPanel.GetSQLOptions();
    lines = edited;
    sql = statement;
    return true;
}

} // namespace lumora
