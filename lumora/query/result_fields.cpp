#include "lumora/query/result_fields.h"

#include "lumora/model/field_words.h"
#include "lumora/model/structure.h"
#include "lumora/query/errors.h"
#include "lumora/query/field_by_sql.h"
#include "lumora/query/strict_checks.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <unordered_set>

namespace lumora {

namespace {

std::string Placeholder(int number) {
    return "@" + std::to_string(number);
}

bool IsStrict(const TVQuery* panel) {
    return panel && panel->GetStrict();
}

const TDialect& DialectOf(const TVQuery* panel) {
    return panel ? EffectiveDialect(panel->GetDialect(), panel->GetSQLSyntax(), panel->GetStrict())
                 : StandardDialect;
}

TNameQuoting QuotingFor(const TVQuery* panel) {
    return QuotingOf(DialectOf(panel), IsStrict(panel));
}

std::string LowerOutsideLiterals(std::string_view sql) {
    std::string text(sql);
    bool inLiteral = false;
    for (char& c : text) {
        if (c == '\'')
            inLiteral = !inLiteral;
        if (!inLiteral)
            c = LowerAscii(c);
    }
    return text;
}

} // namespace

TResultField::TResultField(TRFieldList& owner) : owner_(owner) {}

TResultField::~TResultField() = default;

TRFieldList::TRFieldList(const TVCustomDBStructure* structure, TVQuery* panel)
    : structure_(structure), panel_(panel) {}

int TRFieldList::Count() const {
    return static_cast<int>(fields_.size());
}

TRFieldList::~TRFieldList() = default;

TVQuery* TResultField::GetQueryPanel() const {
    return owner_.GetQueryPanel();
}
const TVCustomDBStructure* TResultField::GetDBStruct() const {
    return owner_.GetDBStruct();
}

void TResultField::Changed() const {
    owner_.Changed();
}

void TRFieldList::Changed() {
    ++version_;
    if (panel_)
        panel_->QueryChanged();
}

// --- The formula.

void TResultField::AddDSField(TDSField* field) {
    fields_.push_back(field);
    ++owner_.version_;
}

void TResultField::SetDSField(int index, TDSField* field) {
    fields_[CheckedIndex(index, fields_.size())] = field;
    ++owner_.version_;
}

void TResultField::DelDSField(int index) {
    TakeOutField(CheckedIndex(index, fields_.size()));
    ++owner_.version_;
}

void TResultField::TakeOutField(std::size_t index) {
    const int number = static_cast<int>(index) + 1;
    std::string formula = GetFormula();
    if (const std::size_t at = formula.find(Placeholder(number)); at != std::string::npos)
        formula.erase(at, 2);
    for (int i = number; i < static_cast<int>(fields_.size()); ++i)
        formula = ReplaceText(formula, Placeholder(i + 1), Placeholder(i));
    formula_.SetText(std::move(formula));
    fields_.erase(fields_.begin() + static_cast<std::ptrdiff_t>(index));
}

void TResultField::SetFormula(const std::string& formula) {
    if (formula == GetFormula())
        return;
    formula_.SetText(formula);
    for (std::size_t i = fields_.size(); i-- > 0;)
        if (GetFormula().find(Placeholder(static_cast<int>(i) + 1)) == std::string::npos)
            TakeOutField(i);
    Changed();
}

template <typename TAppendField>
void TResultField::FillFormula(std::string& text, TAppendField appendField) const {
    TPlanRequest request;
    request.ValueCount = static_cast<int>(fields_.size());
    TTemplatePlan spare;
    for (const TTemplatePiece& piece : formula_.Plan(request, spare).Pieces) {
        if (piece.Kind == tpLiteral)
            text += piece.Text;
        else
            appendField(text, *fields_[static_cast<std::size_t>(piece.Value - 1)]);
    }
}

void TResultField::AppendSQLExpr(std::string& out) const {
    const TNameQuoting quoting = QuotingFor(GetQueryPanel());
    FillFormula(out,
                [quoting](std::string& text, const TDSField& field) { field.AppendSQLExpr(text, quoting); });
}

std::string TResultField::GetSQLExpr() const {
    std::string text;
    AppendSQLExpr(text);
    return text;
}

std::string TResultField::GetExpression() const {
    std::string expression;
    FillFormula(expression, [](std::string& text, const TDSField& field) {
        text.append("{").append(field.GetDisplayName()) += '}';
    });
    return expression;
}

std::string TResultField::GetSelectExpr() const {
    std::string text;
    AppendSelectExpr(text);
    return text;
}

void TResultField::AppendSelectExpr(std::string& out) const {
    AppendSQLExpr(out);
    if (!alias_.empty())
        out.append(" as ").append(GetSQLAlias());
}

std::string TResultField::GetSQLAlias() const {
    const bool strict = IsStrict(GetQueryPanel());
    if (!owner_.QuoteAliases && !(strict && !IsPlainName(alias_)))
        return alias_;
    const TQuoteSymbols quotes = GetDBStruct() ? GetDBStruct()->GetSQLFormats().Quotes() : TQuoteSymbols();
    std::string text;
    quotes.Append(text, alias_, QuotingFor(GetQueryPanel()));
    return text;
}

std::string TResultField::GetOrderName() const {
    return alias_.empty() ? std::to_string(number_) : alias_;
}

bool TResultField::GetAgregate() const {
    std::string sql = GetSQLExpr();
    if (sql.find('(') == std::string::npos)
        return false; // nothing is called
    sql = LowerAscii(sql);
    if (const TVQuery* const panel = GetQueryPanel(); IsStrict(panel))
        return CallsAggregate(sql, DialectOf(panel));
    for (const char* const function : {"sum(", "count(", "max(", "min(", "avg("})
        if (sql.find(function) != std::string::npos)
            return true;
    return false;
}

void TResultField::ProcessExpression(std::string_view expression) {
    ++owner_.version_;
    std::string formula;
    std::unordered_map<std::string_view, std::size_t> numbers;
    std::size_t start = 0;
    while (true) {
        const std::size_t open = expression.find('{', start);
        const std::size_t close = open == std::string_view::npos ? open : expression.find('}', open);
        if (close == std::string_view::npos)
            break;
        const std::string_view name = expression.substr(open + 1, close - open - 1);
        const auto [known, isNew] = numbers.try_emplace(name, fields_.size() + 1);
        if (isNew) {
            TDSField* const field = GetDBStruct() ? GetDBStruct()->FieldByName(fnDisplayName, name) : nullptr;
            if (!field && !GetDBStruct())
                break;
            fields_.push_back(field ? field : GetDBStruct()->GetUnrecognizedField());
        }
        formula.append(expression, start, open - start).append(Placeholder(static_cast<int>(known->second)));
        start = close + 1;
    }
    formula_.SetText(formula.append(expression, start));
}

void TResultField::ProcessSQLExpr(std::string_view sql) {
    ++owner_.version_;
    formula_.SetText(IsStrict(GetQueryPanel()) ? LowerOutsideLiterals(sql) : LowerAscii(sql));
    const TVCustomDBStructure* const structure = GetDBStruct();
    if (!structure)
        return;
    if (TDSField* const field = FieldBySQL(*structure, sql, IsStrict(GetQueryPanel()))) {
        fields_ = {field};
        formula_.SetText("@1");
        return;
    }
    if (!TakeWholeWords(fnSQLExpr) && !TakeWholeWords(fnFullName)) {
        fields_ = {structure->GetUnrecognizedField()};
        formula_.SetText("@1");
    }
}

// Puts placeholders for the fields whose lower-cased name stands in the formula as a whole word; false when
// none does.
bool TResultField::TakeWholeWords(TFieldNameMode mode) {
    const bool strict = IsStrict(GetQueryPanel());
    std::string formula = GetFormula();
    const TVCustomDBStructure& structure = *GetDBStruct();
    for (TDSField* const field : structure.FieldsForFormula(mode, strict, formula)) {
        const std::string name = NameInFormulas(*field, mode, strict);
        std::size_t at = FindWholeWord(formula, name);
        if (at == std::string::npos)
            continue;
        fields_.push_back(field);
        const std::string placeholder = Placeholder(static_cast<int>(fields_.size()));
        for (; at != std::string::npos; at = FindWholeWord(formula, name, at + placeholder.size()))
            formula.replace(at, name.size(), placeholder);
    }
    formula_.SetText(std::move(formula));
    return !fields_.empty();
}

// --- Caption, alias and sorting.

void TResultField::SetCaption(const std::string& caption) {
    if (caption == caption_)
        return;
    TakeCaption(caption);
    Changed();
}

void TResultField::TakeCaption(const std::string& caption) {
    if (caption == caption_)
        return;
    caption_ = caption;
    MakeAlias();
}

void TResultField::SetAlias(const std::string& alias) {
    const std::string old = alias_;
    SetUniqueAlias(alias);
    if (alias_ != old)
        Changed();
}

void TResultField::SetUniqueAlias(const std::string& alias) {
    if (alias != alias_)
        alias_ = alias.empty() ? alias : owner_.GetUniqAlias(alias);
}

void TResultField::GenerateAlias() {
    const std::string old = alias_;
    MakeAlias();
    if (alias_ != old)
        Changed();
}

void TResultField::MakeAlias() {
    if (!owner_.AutoAliases || (fields_.size() == 1 && fields_[0]->GetFieldText() == caption_)) {
        alias_.clear();
        return;
    }
    std::string alias = caption_;
    if (owner_.QuoteAliases) {
        // as it is
    } else if (owner_.ASCIIAliases) {
        alias.clear();
        for (std::size_t i = 0; i < caption_.size(); ++i) {
            const char c = caption_[i];
            const char lower = LowerAscii(c);
            if ((lower >= 'a' && lower <= 'z') || c == '_' || (i > 0 && IsDigit(c)))
                alias += c;
        }
    } else {
        std::replace(alias.begin(), alias.end(), ' ', '_');
    }
    SetUniqueAlias(alias);
}

void TResultField::ReplaceForeignAlias() {
    if (std::all_of(alias_.begin(), alias_.end(), [](char c) { return static_cast<unsigned char>(c) < 128; }))
        return;
    SetUniqueAlias("C" + std::to_string(owner_.IndexOf(this) + 1));
}

std::string TResultField::GenerateCaption() const {
    std::string caption;
    for (const TDSField* const field : fields_)
        caption += field->GetDisplayName();
    return caption.empty() ? std::to_string(owner_.IndexOf(this) + 1) : caption;
}

void TResultField::SetSorting(TSortingType sorting) {
    if (sorting == sorting_)
        return;
    if (sorting != stNoSort && sortOrder_ == 0)
        sortOrder_ = owner_.NextSortOrder();
    sorting_ = sorting;
    Changed();
}

void TResultField::SetHidden(bool hidden) {
    if (hidden == hidden_)
        return;
    hidden_ = hidden;
    Changed();
}

void TResultField::SetGrouping(TColumnGrouping grouping) {
    if (grouping == grouping_)
        return;
    grouping_ = grouping;
    Changed();
}

void TResultField::SetSortOrder(int order) {
    if (order == sortOrder_)
        return;
    sortOrder_ = order;
    Changed();
}

void TResultField::Assign(const TResultField& source) {
    TVQuery* const panel = GetQueryPanel();
    if (panel)
        panel->BeginUpdate();
    fields_ = source.fields_;
    formula_.SetText(source.GetFormula());
    caption_ = source.caption_;
    alias_ = source.alias_;
    sorting_ = source.sorting_;
    sortOrder_ = source.sortOrder_;
    hidden_ = source.hidden_;
    grouping_ = source.grouping_;
    ++owner_.version_;
    if (panel)
        panel->EndUpdate();
}

// --- The list.

int TRFieldList::IndexOf(const TResultField* field) const {
    for (int i = 0; i < Count(); ++i)
        if (GetRField(i) == field)
            return i;
    return -1;
}

TResultField* TRFieldList::GetRField(int index) const {
    return fields_[CheckedIndex(index, fields_.size())].get();
}

TResultField* TRFieldList::New(int index) {
    CheckedIndex(index, fields_.size() + 1);
    ++version_;
    return fields_.insert(fields_.begin() + index, std::make_unique<TResultField>(*this))->get();
}

TResultField* TRFieldList::CreateRField(int index, const std::string& formula, const TDSFieldList& fields,
                                        const std::string& caption) {
    TResultField* const field = New(index);
    field->formula_.SetText(formula); // before there are fields, so that none is dropped
    field->fields_ = fields;
    field->TakeCaption(caption);
    JustSorting = false;
    Changed();
    return field;
}

TResultField* TRFieldList::Add(const std::string& formula, const TDSFieldList& fields,
                               const std::string& caption) {
    return CreateRField(Count(), formula, fields, caption);
}

TResultField* TRFieldList::Insert(int index, const std::string& formula, const TDSFieldList& fields,
                                  const std::string& caption) {
    return CreateRField(index, formula, fields, caption);
}

TResultField* TRFieldList::InsertByExpression(int index, const std::string& caption,
                                              std::string_view expression, TSortingType sorting,
                                              int sortOrder) {
    TResultField* const field = New(index);
    field->TakeCaption(caption);
    field->ProcessExpression(expression);
    return FinishInsert(*field, sorting, sortOrder);
}

TResultField* TRFieldList::AddByExpression(const std::string& caption, std::string_view expression,
                                           TSortingType sorting, int sortOrder) {
    return InsertByExpression(Count(), caption, expression, sorting, sortOrder);
}

TResultField* TRFieldList::InsertBySQLExpr(int index, const std::string& caption, std::string_view sql,
                                           TSortingType sorting, int sortOrder) {
    TResultField* const field = New(index);
    field->TakeCaption(caption);
    field->ProcessSQLExpr(sql);
    return FinishInsert(*field, sorting, sortOrder);
}

TResultField* TRFieldList::AddBySQLExpr(const std::string& caption, std::string_view sql,
                                        TSortingType sorting, int sortOrder) {
    return InsertBySQLExpr(Count(), caption, sql, sorting, sortOrder);
}

TResultField* TRFieldList::FinishInsert(TResultField& field, TSortingType sorting, int sortOrder) {
    if (field.fields_.empty() && structure_)
        field.fields_.push_back(structure_->GetUnrecognizedField());
    field.sorting_ = sorting;
    field.sortOrder_ = sortOrder;
    JustSorting = false;
    Changed();
    return &field;
}

void TRFieldList::Delete(int index) {
    CheckedIndex(index, fields_.size());
    fields_.erase(fields_.begin() + index);
    Changed();
}

void TRFieldList::Move(int from, int to) {
    CheckedIndex(to, fields_.size());
    auto field = std::move(fields_[CheckedIndex(from, fields_.size())]);
    fields_.erase(fields_.begin() + from);
    fields_.insert(fields_.begin() + to, std::move(field));
    Changed();
}

void TRFieldList::Clear() {
    if (fields_.empty())
        return;
    Forget();
    Changed();
}

void TRFieldList::Forget() {
    fields_.clear();
    ++version_;
}

bool TRFieldList::CheckUniqAlias(std::string_view alias) const {
    return std::none_of(fields_.begin(), fields_.end(),
                        [&](const auto& field) { return SameText(field->GetAlias(), alias); });
}

bool TRFieldList::CheckUniqCaption(std::string_view caption) const {
    return std::none_of(fields_.begin(), fields_.end(),
                        [&](const auto& field) { return SameText(field->GetCaption(), caption); });
}

namespace {

template <typename TFields, typename TTextOf>
std::string UniqueText(const TFields& fields, const std::string& text, TTextOf textOf) {
    std::unordered_set<std::string> taken;
    for (const auto& field : fields)
        taken.insert(LowerAscii(textOf(*field)));
    const std::string lower = LowerAscii(text);
    if (taken.count(lower) == 0)
        return text;
    int number = 1;
    while (taken.count(lower + std::to_string(number)) != 0)
        ++number;
    return text + std::to_string(number);
}

} // namespace

std::string TRFieldList::GetUniqAlias(const std::string& alias) const {
    return UniqueText(fields_, alias,
                      [](const TResultField& field) -> const std::string& { return field.GetAlias(); });
}

std::string TRFieldList::GetUniqCaption(const std::string& caption) const {
    return UniqueText(fields_, caption,
                      [](const TResultField& field) -> const std::string& { return field.GetCaption(); });
}

void TRFieldList::GenerateNumbers() {
    int number = 0;
    for (const auto& field : fields_)
        field->SetNumber(field->GetHidden() ? 0 : ++number);
}

bool TRFieldList::HasHidden() const {
    return std::any_of(fields_.begin(), fields_.end(), [](const auto& field) { return field->GetHidden(); });
}

bool TRFieldList::HasGrouping() const {
    return std::any_of(fields_.begin(), fields_.end(),
                       [](const auto& field) { return field->GetGrouping() != cgAsNeeded; });
}

void TRFieldList::RegenerateAliases() {
    bool changed = false;
    for (const auto& field : fields_) {
        const std::string old = field->alias_;
        field->MakeAlias();
        changed = changed || field->alias_ != old;
    }
    if (changed)
        Changed();
}

int TRFieldList::GetSortCount() const {
    return static_cast<int>(std::count_if(fields_.begin(), fields_.end(),
                                          [](const auto& field) { return field->GetSorting() != stNoSort; }));
}

// Behind all that are sorted.
int TRFieldList::NextSortOrder() const {
    int greatest = 0;
    for (const auto& field : fields_)
        if (field->GetSorting() != stNoSort)
            greatest = std::max(greatest, field->GetSortOrder());
    return greatest + (greatest < std::numeric_limits<int>::max() ? 1 : 0);
}

void TRFieldList::Assign(const TRFieldList& source) {
    if (&source == this)
        return;
    if (panel_)
        panel_->BeginUpdate();
    Forget();
    JustSorting = source.JustSorting;
    for (const auto& field : source.fields_)
        New(Count())->Assign(*field);
    if (panel_)
        panel_->EndUpdate();
}

void TRFieldList::ReplaceDSField(const TDSField* field, TDSField* by) {
    for (const auto& resultField : fields_)
        for (TDSField*& entry : resultField->fields_)
            if (!field || entry == field)
                entry = by;
    ++version_;
}

} // namespace lumora
