#include "lumora/query/query.h"

#include "lumora/model/structure.h"
#include "lumora/query/date_values.h"
#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/one_change.h"
#include "lumora/query/query_builder.h"
#include "lumora/query/query_listener.h"
#include "lumora/query/query_result.h"
#include "lumora/query/query_state.h"
#include "lumora/query/value_text.h"

#include <utility>

namespace lumora {

namespace {

TQueryListener& NoListener() {
    static TQueryListener listener;
    return listener;
}

} // namespace

TVQuery::TVQuery() : listener_(&NoListener()), result_(std::make_unique<TQueryResult>(*this)) {}

TVQuery::TVQuery(const TVCustomDBStructure& model) : TVQuery() {
    SetDbStruct(&model);
}

TVQuery::~TVQuery() {
    destroying_ = true;
    listener_ = &NoListener();
    root_.reset();
    if (model_)
        model_->RemoveListener(*this);
}

void TVQuery::SetListener(TQueryListener* listener) {
    listener_ = listener ? listener : &NoListener();
}

// --- Data model and main table.

void TVQuery::SetDbStruct(const TVCustomDBStructure* model, bool isComplete) {
    if (model == model_)
        return;
    if (model_) {
        pendingRFields_.Clear();
        if (result_->GetResultFields().Count() > 0)
            result_->GetResultFields().SaveToStrings(pendingRFields_);
        result_->GetResultFields().Forget();
        result_->ClearParams();
        mainTable_ = nullptr;
        model_->RemoveListener(*this);
    }
    model_ = model;
    if (!model) {
        FreeRoot();
        result_->DbStructChanged(nullptr);
        return;
    }
    model->AddListener(*this);
    if (isComplete)
        ModelKnown();
    RecreateRootBracket();
}

void TVQuery::ModelKnown() {
    result_->DbStructChanged(model_);
    if (!pendingRFields_.Empty() && !model_->IsLoading()) {
        result_->GetResultFields().LoadFromStrings(pendingRFields_);
        pendingRFields_.Clear();
    }
    RefreshMainTable();
}

void TVQuery::SetPendingResultFields(const TStringList& lines) {
    result_->GetResultFields().Forget();
    pendingRFields_ = lines;
}

void TVQuery::CheckIfDBStructAssigned() const {
    if (!model_)
        throw EVQueryPanelError(qpeNoDBStruct);
}

TDSTable* TVQuery::GetMainTable() const {
    TDSTable* const own =
        model_ && !ownMainTable_.empty() ? model_->TableByName(tnAlias, ownMainTable_) : nullptr;
    return own ? own : mainTable_;
}

const std::string& TVQuery::GetMainTableName() const {
    return ownMainTable_.empty() || !GetMainTable() ? mainTableName_ : GetMainTable()->GetName();
}

void TVQuery::SetOwnMainTable(const std::string& alias) {
    if (alias == ownMainTable_)
        return;
    ownMainTable_ = alias;
    QueryChanged();
}

void TVQuery::SetShownTables(TShownTableList tables) {
    shownTables_ = std::move(tables);
    QueryChanged();
}

void TVQuery::SetMainTableName(const std::string& name) {
    ownMainTable_.clear();
    mainTableName_ = name;
    if (model_)
        mainTable_ = model_->TableByName(tnName, name);
}

void TVQuery::RefreshMainTable() {
    if (!model_)
        return;
    if (!mainTableName_.empty())
        mainTable_ = model_->TableByName(tnName, mainTableName_);
    if (!mainTable_ && model_->GetDefaultMainTable()) {
        mainTable_ = model_->GetDefaultMainTable();
        mainTableName_ = mainTable_->GetName();
    }
}

// --- What it says.

void TVQuery::FreeRoot() {
    std::vector<std::unique_ptr<TFilterRow>> gone;
    gone.push_back(std::move(root_));
    FreeRows(std::move(gone));
}

void TVQuery::RecreateRootBracket() {
    FreeRoot();
    root_ = std::make_unique<TFilterBracket>(*this);
    RowsChanged();
}

void TVQuery::SetQueryName(const std::string& name) {
    if (name == queryName_)
        return;
    queryName_ = name;
    QueryChanged();
}

void TVQuery::SetDescription(const TStringList& lines) {
    description_ = lines;
    QueryChanged();
}

void TVQuery::ClearRows() {
    if (root_)
        root_->ClearRows();
}

// Whoever hears that there are no parameters any more finds no rows either.
void TVQuery::ClearAll() {
    ownMainTable_.clear();
    shownTables_.clear();
    if (GetEmpty())
        result_->GetResultFields().Clear();
    else
        AsOneChange(*this, [this] {
            result_->GetResultFields().Forget();
            root_->ClearRows();
        });
    result_->ClearParams();
    modified_ = false;
}

bool TVQuery::GetEmpty() const {
    return !root_ || root_->GetRowCount() == 0;
}

// --- How it becomes SQL.

void TVQuery::SetSQLOptions(TSQLOptions options) {
    const bool changed = options != sqlOptions_;
    sqlOptions_ = options;
    result_->SetSQLOptions(options);
    result_->GetResultFields().QuoteAliases = options.Contains(soQuoteAliases);
    if (changed)
        QueryChanged();
}

void TVQuery::SetSQLSyntax(TSQLSyntax syntax) {
    const bool changed = syntax != sqlSyntax_;
    sqlSyntax_ = syntax;
    result_->SetSQLSyntax(syntax);
    if (changed)
        QueryChanged();
}

void TVQuery::SetDialect(TSQLDialect dialect) {
    if (dialect == dialect_)
        return;
    dialect_ = dialect;
    QueryChanged();
}

void TVQuery::SetStrict(bool strict) {
    if (strict == strict_)
        return;
    strict_ = strict;
    QueryChanged();
}

void TVQuery::BuildQuery(bool withConditions) {
    CheckIfDBStructAssigned();
    const TQueryStateGuard guard(*this, stBuilding);
    RefreshMainTable();
    if (!ownMainTable_.empty() && !model_->TableByName(tnAlias, ownMainTable_))
        throw EVQueryPanelError(qpeNoShownTable, {ownMainTable_});
    builtConditions_ = withConditions;
    TQueryBuilder(*this, *model_).Build(GetMainTable(), withConditions ? root_.get() : nullptr);
}

std::string TVQuery::ExtractValue(const TFilterCond& condition, int value) const {
    CheckIfDBStructAssigned();
    std::string text;
    const TDialect& dialect = EffectiveDialect(dialect_, sqlSyntax_, strict_);
    const TValueWriter writer(*model_, dialect, strict_);
    writer.Append(text, writer.ValueOf(condition, value), false);
    return text;
}

std::string TVQuery::ProcessDateValue(TFieldType type, std::string_view text, bool toSQL) const {
    CheckIfDBStructAssigned();
    const TSQLFormats& formats = model_->GetSQLFormats();
    if (!toSQL)
        return DateValueFromSQL(formats, type, text);
    std::string value;
    AppendDateValue(value, formats, type, text, EffectiveDialect(dialect_, sqlSyntax_, strict_));
    return value;
}

// --- Notices.

void TVQuery::QueryChanged() {
    result_->QueryChanged();
    if (!TellsChanges())
        return;
    modified_ = true;
    listener_->QueryChanged();
}

void TVQuery::ParametersListChanged() {
    if (paramNoticesHeld_ > 0)
        paramsChangedMeanwhile_ = true;
    else if (TellsChanges())
        listener_->ParametersListChanged();
}

void TVQuery::ReleaseParamNotices() {
    if (--paramNoticesHeld_ == 0 && std::exchange(paramsChangedMeanwhile_, false))
        ParametersListChanged();
}

void TVQuery::BeginUpdate() {
    updating_ = true;
    ++updateCount_;
}

void TVQuery::EndUpdate() {
    if (--updateCount_ > 0)
        return;
    updateCount_ = 0;
    updating_ = false;
    QueryChanged();
}

bool TVQuery::WantsConditionText() const {
    return listener_->WantsConditionText();
}

void TVQuery::ConditionText(TFilterCond& condition, std::string& text) {
    listener_->ConditionText(condition, text);
}

void TVQuery::ValueChanged(TFilterCond& condition, int value) {
    if (state_ != stIdle)
        return RowChanged(condition);
    const TRowRef<TFilterCond> row(&condition);
    listener_->ValueChanged(condition, value);
    if (row)
        ConditionChanged(condition, value == 1 ? ccValue1 : ccValue2);
}

void TVQuery::ConditionChanged(TFilterCond& condition, TConditionChange change) {
    RowChanged(condition);
    if (state_ != stIdle)
        return;
    listener_->ConditionChanged(condition, change);
    QueryChanged();
}

} // namespace lumora
