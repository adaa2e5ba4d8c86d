#include "lumora/panel/Vquerpnl.h"

#include "lumora/panel/default_titles.h"
#include "lumora/panel/panel_state.h"
#include "lumora/panel/row_words.h"
#include "lumora/platform/form_text.h"
#include "lumora/query/date_values.h"
#include "lumora/query/query_builder.h"
#include "lumora/query/value_text.h"

namespace lumora {

namespace {

TQueryPanelView& NoView() {
    static TQueryPanelView view;
    return view;
}

} // namespace

TVQueryPanel::TVQueryPanel(TComponent* owner)
    : TComponent(owner), result_(static_cast<TQueryHost&>(*this)), baseLink_(*this), view_(&NoView()) {
    LoadDefTitles();
    titles_ = defTitles_;
    appearance_.OnChange = [this] { AppearanceChanged(); };
}

TVQueryPanel::~TVQueryPanel() {
    BeginDestruction();
    view_ = &NoView();
    while (links_.Count() > 0)
        links_.GetItem(0)->SetQueryPanel(nullptr);
    baseLink_.SetQueryBase(nullptr);
    currentRow_ = nullptr;
    root_.reset();
    if (dbStruct_)
        dbStruct_->RemoveListener(*this);
}

void TVQueryPanel::SetView(TQueryPanelView* view) {
    view_ = view ? view : &NoView();
}

// --- Data model and main table.

void TVQueryPanel::SetDbStruct(TVCustomDBStructure* structure) {
    if (structure == dbStruct_)
        return;
    if (dbStruct_) {
        // Result fields of the old model wait for the next one.
        pendingRFields_.Clear();
        if (result_.GetResultFields().Count() > 0)
            result_.GetResultFields().SaveToStrings(pendingRFields_);
        result_.GetResultFields().Forget();
        result_.ClearParams();
        mainTable_ = nullptr;
        dbStruct_->RemoveListener(*this);
        UnwatchRemovalOf(dbStruct_);
    }
    TVCustomDBStructure* const old = dbStruct_;
    dbStruct_ = structure;
    if (!structure) {
        dbStruct_ = old; // an active panel still has its model while it goes to sleep
        Deactivate();
        dbStruct_ = nullptr;
        currentRow_ = nullptr;
        root_.reset();
        rowNumbersStale_ = true;
        ++rowsVersion_;
        result_.DbStructChanged(nullptr);
        return;
    }
    structure->AddListener(*this);
    WatchRemovalOf(structure);
    if (!IsLoading())
        InitStructureRelatedProperties();
    RecreateRootBracket();
}

void TVQueryPanel::InitStructureRelatedProperties() {
    result_.DbStructChanged(dbStruct_);
    if (!pendingRFields_.Empty() && !dbStruct_->IsLoading()) {
        result_.GetResultFields().LoadFromStrings(pendingRFields_);
        pendingRFields_.Clear();
    }
    RefreshMainTable();
}

void TVQueryPanel::SetMainTableName(const std::string& name) {
    mainTableName_ = name;
    if (dbStruct_)
        mainTable_ = dbStruct_->TableByName(0, name);
}

void TVQueryPanel::RefreshMainTable() {
    if (!dbStruct_)
        return;
    if (!mainTableName_.empty())
        mainTable_ = dbStruct_->TableByName(0, mainTableName_);
    if (!mainTable_ && dbStruct_->GetDefaultMainTable()) {
        mainTable_ = dbStruct_->GetDefaultMainTable();
        mainTableName_ = mainTable_->GetName();
    }
}

void TVQueryPanel::CheckIfDBStructAssigned() const {
    if (!dbStruct_)
        throw EVQueryPanelError(qpeNoDBStruct);
}

void TVQueryPanel::RecreateRootBracket() {
    currentRow_ = nullptr;
    root_.reset();
    root_ = std::make_unique<TFilterBracket>(static_cast<TQueryHost&>(*this));
    PlaceRowsAnew();
}

// --- The query.

void TVQueryPanel::SetQueryName(const std::string& name) {
    if (name == queryName_)
        return;
    queryName_ = name;
    QueryChanged();
}

void TVQueryPanel::SetDescription(const TStringList& lines) {
    description_ = lines;
    QueryChanged();
}

void TVQueryPanel::SetSQLOptions(TSQLOptions options) {
    const bool changed = options != sqlOptions_;
    sqlOptions_ = options;
    result_.SetSQLOptions(options);
    result_.GetResultFields().QuoteAliases = options.Contains(soQuoteAliases);
    if (changed)
        SQLOptionsChanged();
}

void TVQueryPanel::SetSQLSyntax(TSQLSyntax syntax) {
    const bool changed = syntax != sqlSyntax_;
    sqlSyntax_ = syntax;
    result_.SetSQLSyntax(syntax);
    if (changed)
        SQLOptionsChanged();
}

void TVQueryPanel::SetDialect(TSQLDialect dialect) {
    if (dialect == dialect_)
        return;
    dialect_ = dialect;
    SQLOptionsChanged();
}

void TVQueryPanel::SetStrict(bool strict) {
    if (strict == strict_)
        return;
    strict_ = strict;
    SQLOptionsChanged();
}

void TVQueryPanel::SQLOptionsChanged() {
    QueryChanged();
}

// --- Activity.

void TVQueryPanel::CheckHeaderTitle() const {
    if (appearance_.GetStyle() != psAndOr && GetTitle("ttlFilter").find('@') == std::string::npos)
        throw EVQueryPanelError(qpeInvalidFltrTitle);
}

void TVQueryPanel::SetActive(bool active) {
    if (active == active_)
        return;
    CheckIfDBStructAssigned();
    if (active)
        CheckHeaderTitle();
    active_ = active;
    if (active) {
        UpdateMenus();
        view_->ShowHeader(appearance_.GetStyle() != psAndOr);
        SetCurrentRow(GetRowByNum(root_->GetRowCount() > 0 ? 1 : 0));
        view_->PlaceAllRows();
    } else {
        view_->ShowHeader(false);
        SetCurrentRow(nullptr);
    }
    if (OnActive)
        OnActive(*this);
    view_->Repaint();
}

void TVQueryPanel::RefreshPanel() {
    if (!active_)
        return;
    TStringList lines;
    SaveToStrings(lines);
    Deactivate();
    RecreateRootBracket();
    Activate();
    LoadFromStrings(lines);
}

// The words and their colours may be others now; what the query says is not.
void TVQueryPanel::AppearanceChanged() {
    if (active_)
        view_->ShowHeader(appearance_.GetStyle() != psAndOr);
    view_->PlaceAllRows();
    view_->Repaint();
}

void TVQueryPanel::SetLayout(int& member, int value) {
    if (member == value)
        return;
    member = value;
    view_->PlaceAllRows();
}

void TVQueryPanel::SetImages(TComponent* images) {
    UnwatchRemovalOf(images_);
    images_ = images;
    WatchRemovalOf(images);
}

// --- SQL and words.

void TVQueryPanel::BuildQuery() {
    CheckIfDBStructAssigned();
    const TPanelStateGuard guard(state_, stBuilding);
    RefreshMainTable();
    TQueryBuilder(*this, *dbStruct_).Build(mainTable_, active_ ? root_.get() : nullptr);
}

std::string TVQueryPanel::ExtractValue(const TFilterCond& condition, int value) const {
    CheckIfDBStructAssigned();
    std::string text;
    const TDialect& dialect = EffectiveDialect(dialect_, sqlSyntax_, strict_);
    TValueWriter(*dbStruct_, dialect, strict_).Append(text, TValueWriter::ValueOf(condition, value), false);
    return text;
}

std::string TVQueryPanel::ProcessDateValue(TFieldType type, std::string_view text, bool toSQL) const {
    CheckIfDBStructAssigned();
    const TSQLFormats& formats = dbStruct_->GetSQLFormats();
    if (!toSQL)
        return DateValueFromSQL(formats, type, text);
    std::string value;
    AppendDateValue(value, formats, type, text, EffectiveDialect(dialect_, sqlSyntax_, strict_));
    return value;
}

std::string TVQueryPanel::GetQueryText() {
    queryText_.Clear();
    if (root_)
        AppendQueryText(*root_, "");
    return queryText_.GetText();
}

// A bracket has a line of its own only where brackets say how their rows are joined.
void TVQueryPanel::AppendQueryText(const TFilterRow& row, const std::string& indent) {
    const bool isBracket = row.GetRowType() == frtBracket;
    if (!isBracket || appearance_.GetStyle() == psGroups)
        queryText_.Add(indent + RowText(*this, row));
    if (!isBracket)
        return;
    const auto& bracket = static_cast<const TFilterBracket&>(row);
    const std::string deeper = indent + "  ";
    for (int i = 0; i < bracket.GetRowCount(); ++i)
        if (const TFilterRow& member = *bracket.GetRow(i); member.GetEnabled())
            AppendQueryText(member, deeper);
}

// --- Dialogs.

bool TVQueryPanel::ShowResultFieldsDlg(int helpContext, int options) {
    return view_->EditResultFields(*this, helpContext, options);
}

bool TVQueryPanel::EditTitles() {
    return view_->EditTitles(*this);
}

// --- Notices.

void TVQueryPanel::QueryChanged() {
    result_.QueryChanged();
    if (state_ != stIdle || updating_ || IsDestroying())
        return;
    modified_ = true;
    for (int i = 0; i < links_.Count(); ++i)
        links_.GetItem(i)->QueryPanelChanged();
    if (OnChange)
        OnChange(*this);
}

void TVQueryPanel::ParametersListChanged() {
    if (state_ != stIdle || updating_ || IsDestroying())
        return;
    if (OnParamListChange)
        OnParamListChange(*this);
    for (int i = 0; i < links_.Count(); ++i)
        links_.GetItem(i)->QueryParamsChanged();
}

void TVQueryPanel::BeginUpdate() {
    updating_ = true;
    ++updateCount_;
}

void TVQueryPanel::EndUpdate() {
    if (--updateCount_ > 0)
        return;
    updateCount_ = 0;
    updating_ = false;
    QueryChanged();
}

// --- Query base.

void TVQueryPanel::SetQueryBase(TVQueryBase* base) {
    UnwatchRemovalOf(GetQueryBase());
    baseLink_.SetQueryBase(base);
    WatchRemovalOf(base);
}

void TVQueryPanel::LoadCurBaseQuery() {
    TVQueryItem* const query = GetQueryBase() ? GetQueryBase()->GetCurrentQuery() : nullptr;
    if (!query)
        return;
    TStringList content;
    query->LoadContent(content);
    BeginUpdate();
    try {
        LoadFromStrings(content);
        SetQueryName(query->GetQueryName());
        SetDescription(TStringList(query->GetDescription()));
    } catch (...) {
        query->ContentRefused();
        EndUpdate();
        throw;
    }
    EndUpdate();
    modified_ = false;
}

// --- As a component.

void TVQueryPanel::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation != opRemove)
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
        InitStructureRelatedProperties();
}

} // namespace lumora
