#include "lumora/panel/Vquerpnl.h"

#include "lumora/model/structure.h"
#include "lumora/panel/panel_parts.h"
#include "lumora/panel/panel_view.h"
#include "lumora/query/errors.h"
#include "lumora/query/query_state.h"
#include "lumora/querytext/query_text.h"
#include "lumora/reading/read_sql.h"
#include "lumora/reading/sql_reader.h"

namespace lumora {

namespace {

TQueryPanelView& NoView() {
    static TQueryPanelView view;
    return view;
}

} // namespace

TVQueryPanel::TVQueryPanel(TComponent* owner)
    : TComponent(owner), parts_(std::make_unique<TParts>(*this)), view_(&NoView()) {}

TVQueryPanel::~TVQueryPanel() {
    BeginDestruction();
    parts_.reset();
}

TVQuery& TVQueryPanel::GetQuery() const {
    return parts_->Query;
}

TQueryScreen& TVQueryPanel::GetScreen() const {
    return parts_->Screen;
}

void TVQueryPanel::SetView(TQueryPanelView* view) {
    view_ = view ? view : &NoView();
    parts_->Screen.SetView(view_);
}

// --- Data model.

// An active panel still has its model while it goes to sleep.
void TVQueryPanel::SetDbStruct(TVCustomDBStructure* structure) {
    if (structure == dbStruct_)
        return;
    if (!structure)
        Deactivate();
    UnwatchRemovalOf(dbStruct_);
    dbStruct_ = structure;
    parts_->Query.SetDbStruct(structure, !IsLoading());
    WatchRemovalOf(structure);
}

// --- Activity.

void TVQueryPanel::RefreshPanel() {
    if (!GetActive())
        return;
    TStringList lines;
    SaveToStrings(lines);
    Deactivate();
    RecreateRootBracket();
    Activate();
    LoadFromStrings(lines);
}

// Lets `read` fill the query while the panel is inactive; then it is as active as it was before.
template <typename TRead>
void TVQueryPanel::ReadWhileInactive(TRead read) {
    CheckIfDBStructAssigned();
    const bool wasActive = GetActive();
    try {
        const TQueryStateGuard guard(parts_->Query, stLoading);
        SetActive(false);
        read();
    } catch (...) {
        try {
            SetActive(wasActive);
        } catch (const EVQueryPanelError&) {
            // The titles read so far cannot head an active panel; the error that is on its way matters more.
        }
        SetModified(false);
        throw;
    }
    SetActive(wasActive);
}

// --- SQL.

void TVQueryPanel::ParseSQL(const TStringList& lines) {
    ReadWhileInactive([&] { ReadSQL(parts_->Query, lines, saveTitles_ ? &DefaultPanelTitles() : nullptr); });
}

void TVQueryPanel::ProcessSQLBracket(TFilterBracket& bracket, const TSQLBracket& parsed) {
    CheckIfDBStructAssigned();
    TSQLReader(parts_->Query, saveTitles_ ? &DefaultPanelTitles() : nullptr).ReadBracket(bracket, parsed);
}

TDSOperator* TVQueryPanel::OperatorBySQLCond(const TSQLCondition& parsed, std::string& value1,
                                             std::string& value2, TStringList& subQuery) {
    CheckIfDBStructAssigned();
    return TSQLReader(parts_->Query, saveTitles_ ? &DefaultPanelTitles() : nullptr)
        .FindOperator(parsed, parsed.Negated, value1, value2, subQuery);
}

void TVQueryPanel::ProcessSubQuery(std::string_view sql, TStringList& lines) {
    CheckIfDBStructAssigned();
    TSQLReader(parts_->Query, saveTitles_ ? &DefaultPanelTitles() : nullptr).UnfoldSubQuery(sql, lines);
}

// --- Text.

void TVQueryPanel::SaveToStrings(TStringList& lines) {
    WriteQueryText(parts_->Query, lines, saveTitles_ ? &parts_->Screen.GetTitles() : nullptr);
}

void TVQueryPanel::LoadFromStrings(const TStringList& lines) {
    ReadWhileInactive(
        [&] { ReadQueryText(parts_->Query, lines, saveTitles_ ? &parts_->Screen.GetTitles() : nullptr); });
    SetModified(false);
    QueryChanged();
    ParametersListChanged();
}

void TVQueryPanel::SaveToFile(const std::string& fileName) {
    TStringList lines;
    SaveToStrings(lines);
    lines.SaveToFile(fileName);
}

void TVQueryPanel::LoadFromFile(const std::string& fileName) {
    TStringList lines;
    lines.LoadFromFile(fileName);
    LoadFromStrings(lines);
}

// --- Titles.

void TVQueryPanel::SetTitles(const TStringList& titles) {
    bool hasKeys = false;
    for (const std::string_view line : titles)
        hasKeys = hasKeys || line.find('=') != std::string_view::npos;
    if (IsLoading() && !titles.Empty() && !hasKeys)
        oldTitles_ = titles; // an old form keeps its titles by position
    else
        parts_->Screen.SetTitles(titles);
}

// --- Query base.

void TVQueryPanel::SetQueryBase(TVQueryBase* base) {
    UnwatchRemovalOf(GetQueryBase());
    parts_->BaseLink.SetQueryBase(base);
    WatchRemovalOf(base);
}

// A handler may do away with the stored query while its text is read.
void TVQueryPanel::LoadCurBaseQuery() {
    TVQueryItem* const query = GetQueryBase() ? GetQueryBase()->GetCurrentQuery() : nullptr;
    if (!query)
        return;
    TStringList content;
    query->LoadContent(content);
    const std::string name = query->GetQueryName();
    const TStringList description(query->GetDescription());
    BeginUpdate();
    try {
        LoadFromStrings(content);
        SetQueryName(name);
        SetDescription(description);
    } catch (...) {
        if (GetQueryBase() && GetQueryBase()->GetCurrentQuery() == query)
            query->ContentRefused();
        EndUpdate();
        throw;
    }
    EndUpdate();
    SetModified(false);
}

// --- Dialogs.

bool TVQueryPanel::ShowResultFieldsDlg(int helpContext, int options) {
    return view_->EditResultFields(*this, helpContext, options);
}

bool TVQueryPanel::EditTitles() {
    return view_->EditTitles(*this);
}

// --- As a component.

void TVQueryPanel::SetImages(TComponent* images) {
    UnwatchRemovalOf(images_);
    images_ = images;
    WatchRemovalOf(images);
}

void TVQueryPanel::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation != opRemove || !parts_)
        return;
    if (component == dbStruct_)
        SetDbStruct(nullptr);
    if (component == GetQueryBase())
        SetQueryBase(nullptr);
    if (component == images_)
        images_ = nullptr;
}

void TVQueryPanel::Loaded() {
    TComponent::Loaded();
    if (!oldTitles_.Empty())
        MergeDFMTitles(oldTitles_);
    oldTitles_.Clear();
    if (dbStruct_)
        parts_->Query.ModelKnown();
}

} // namespace lumora
