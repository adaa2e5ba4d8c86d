#include "lumora/panel/panel_parts.h"

#include "lumora/query/filter_rows.h"

namespace lumora {

TVQueryPanel::TParts::TParts(TVQueryPanel& panel) : Panel(panel), BaseLink(panel) {
    Query.SetListener(this);
    Screen.SetHost(this);
}

TVQueryPanel::TParts::~TParts() {
    Query.SetListener(nullptr);
    Screen.SetView(nullptr);
    while (Links.Count() > 0)
        Links.GetItem(0)->SetQueryPanel(nullptr);
    BaseLink.SetQueryBase(nullptr);
}

namespace {

template <typename... TArgs>
void Fire(const TEvent<TArgs...>& event, std::type_identity_t<TArgs>... args) {
    if (event)
        event(args...);
}

} // namespace

void TVQueryPanel::TParts::ValueChanged(TFilterCond& condition, int value) {
    Fire(Panel.OnChangeValue, Panel, condition, value);
}

void TVQueryPanel::TParts::ConditionChanged(TFilterCond& condition, TConditionChange change) {
    Fire(Panel.OnConditionChange, Panel, condition, change);
}

void TVQueryPanel::TParts::ConditionText(TFilterCond& condition, std::string& text) {
    Fire(Panel.OnBuildSQL, Panel, condition, text);
}

void TVQueryPanel::TParts::ActiveChanged() {
    Fire(Panel.OnActive, Panel);
}

bool TVQueryPanel::TParts::HasEditor(const TFilterCond& condition) const {
    if (condition.GetRowType() == frtCustomCondition)
        return static_cast<bool>(Panel.OnCustomValue);
    return Panel.OnCustomEdit && static_cast<const TSimpleCond&>(condition).GetCustomData();
}

void TVQueryPanel::TParts::EditValue(TFilterCond& condition, int value) {
    if (condition.GetRowType() == frtCustomCondition)
        Fire(Panel.OnCustomValue, Panel, condition, value);
    else
        Fire(Panel.OnCustomEdit, Panel, condition);
}

void TVQueryPanel::TParts::ValueSet(TFilterCond& condition, int value) {
    Fire(Panel.OnSetValue, Panel, condition, value);
}

void TVQueryPanel::TParts::ValueDblClicked(TFilterCond& condition, int value) {
    Fire(Panel.OnValueDblClick, Panel, condition, value);
}

void TVQueryPanel::TParts::GroupImage(const TDSFieldGroup& group, int& index) {
    Fire(Panel.OnGetGroupImageIndex, Panel, group, index);
}

void TVQueryPanel::TParts::FieldImage(const TDSField& field, int& index) {
    Fire(Panel.OnGetItemImageIndex, Panel, field, index);
}

// --- The panel's own notices.

void TVQueryPanel::QueryChanged() {
    if (!parts_->Query.TellsChanges())
        return;
    parts_->Query.SetModified(true);
    parts_->Links.ForEach([](TVQueryPanelLink& link) { link.QueryPanelChanged(); });
    Fire(OnChange, *this);
}

void TVQueryPanel::ParametersListChanged() {
    if (!parts_->Query.TellsChanges())
        return;
    Fire(OnParamListChange, *this);
    parts_->Links.ForEach([](TVQueryPanelLink& link) { link.QueryParamsChanged(); });
}

} // namespace lumora
