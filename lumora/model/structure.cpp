#include "lumora/model/structure.h"

#include "lumora/model/indexes.h"
#include "lumora/platform/form_text.h"
#include "lumora/platform/properties.h"
#include "lumora/support/string_helpers.h"

#include <algorithm>
#include <limits>
#include <unordered_set>

namespace lumora {

TVCustomDBStructure::TVCustomDBStructure(TComponent* owner)
    : TComponent(owner),
      sqlFormats_([this] { TableKeysChanged(); }),
      path_(this),
      indexes_(std::make_unique<TModelIndexes>()) {
    unrecognizedField_ = std::make_unique<TDSField>(*this, 0, vfkData);
    unrecognizedField_->text_ = UnrecognizedFieldName;
    unrecognizedField_->displayName_ = UnrecognizedFieldName;
    unrecognizedOperator_ = std::make_unique<TDSOperator>();
    InitOperator(*unrecognizedOperator_, UnrecognizedOperatorName, UnrecognizedOperatorName, "", "",
                 LmUsedTypes);
    LoadDefsOpertors();
    AddDefOperators(false);
}

TVCustomDBStructure::~TVCustomDBStructure() {
    BeginUpdate();
    BeginDestruction();
    listeners_.ForEach([](TModelListener& listener) { listener.ModelDestroyed(); });
    ClearItems();
}

int TVCustomDBStructure::GetTableCount() const {
    return static_cast<int>(tables_.size());
}

int TVCustomDBStructure::GetFieldCount() const {
    return static_cast<int>(fields_.size());
}

int TVCustomDBStructure::GetLinkCount() const {
    return static_cast<int>(links_.size());
}

int TVCustomDBStructure::GetOperatCount() const {
    return static_cast<int>(operators_.size());
}

int TVCustomDBStructure::GetConditionCount() const {
    return static_cast<int>(conditions_.size());
}

TDSOperator* TVCustomDBStructure::GetUnrecognizedOperator() const {
    return unrecognizedOperator_.get();
}

void TVCustomDBStructure::SetDefOperators(const TStringList& lines) {
    defOperators_ = lines;
}

void TVCustomDBStructure::TableKeysChanged() {
    for (auto& lookup : indexes_->TablesByName)
        lookup.Invalidate();
    FieldKeysChanged(); // a field's SQL expression and full name begin with its table's
}

void TVCustomDBStructure::FieldKeysChanged() {
    for (auto& lookup : indexes_->FieldsByName)
        lookup.Invalidate();
    indexes_->ForgetFieldWords();
}

void TVCustomDBStructure::OperatorKeysChanged() {
    indexes_->OperatorsByName.Invalidate();
}

void TVCustomDBStructure::ConditionKeysChanged() {
    indexes_->ConditionsByID.Invalidate();
}

void TVCustomDBStructure::LinksChanged() {
    indexes_->ForgetJoinGraph();
}

void TVCustomDBStructure::Changed() {
    if (updates_ == 0 && OnChange)
        OnChange(*this);
}

void TVCustomDBStructure::ChangeAsOne(const std::function<void()>& change) {
    BeginUpdate();
    try {
        change();
    } catch (...) {
        EndUpdate();
        Changed(); // of what was changed before
        throw;
    }
    EndUpdate();
    Changed();
}

// Panels of several threads come and go.
void TVCustomDBStructure::AddListener(TModelListener& listener) const {
    const TShortLock lock(&listeners_);
    listeners_.Add(listener);
}

void TVCustomDBStructure::RemoveListener(TModelListener& listener) const {
    const TShortLock lock(&listeners_);
    listeners_.Remove(listener);
}

// --- Tables.

TDSTable* TVCustomDBStructure::GetTable(int index) const {
    if (index < 0 || index >= GetTableCount())
        throw EVDBStructError(dseInvalidTableIndex, {std::to_string(index)});
    return tables_[static_cast<std::size_t>(index)].get();
}

int TVCustomDBStructure::IndexOfTable(const TDSTable* table) const {
    for (int i = 0; i < GetTableCount(); ++i)
        if (tables_[static_cast<std::size_t>(i)].get() == table)
            return i;
    return -1;
}

int TVCustomDBStructure::AddTable(std::string name, std::string caption) {
    tables_.push_back(std::make_unique<TDSTable>(*this, std::move(name), std::move(caption)));
    LinksChanged();
    Changed();
    return GetTableCount() - 1;
}

namespace {

// Items are taken out first and freed when everybody has been told, so that it does not matter what handlers
// do.
template <typename T>
std::unique_ptr<T> TakeOut(std::vector<std::unique_ptr<T>>& items, int index) {
    const auto place = items.begin() + index;
    std::unique_ptr<T> item = std::move(*place);
    items.erase(place);
    return item;
}

} // namespace

void TVCustomDBStructure::DelTable(int index) {
    TDSTable* const table = GetTable(index);
    for (std::size_t i = links_.size(); i-- > 0;)
        if (links_[i]->Table1 == table || links_[i]->Table2 == table)
            RemoveLink(i);
    for (const auto& field : fields_)
        std::erase(field->tables_, table);
    if (defaultMainTable_ == table)
        defaultMainTable_ = nullptr;
    path_ = TDSPath(this);
    const std::unique_ptr<TDSTable> removed = TakeOut(tables_, index);
    TableKeysChanged();
    LinksChanged();
    for (const auto& condition : conditions_)
        condition->UpdateTables();
    listeners_.ForEach([&](TModelListener& listener) { listener.TableRemoved(*removed); });
    Changed();
}

TDSTable* TVCustomDBStructure::TableByName(TTableNameMode mode, std::string_view text) const {
    return indexes_->TablesByName[mode].Find(tables_, text);
}

void TVCustomDBStructure::GetTableNames(TTableNameMode mode, TStringList& names) const {
    names.Clear();
    for (const auto& table : tables_)
        switch (mode) {
        case tnAlias:
            names.Add(table->GetAlias());
            break;
        case tnDisplayName:
            names.Add(table->GetDisplayName());
            break;
        case tnCompoundName:
            names.Add(table->GetCompoundName());
            break;
        case tnSQLText:
            names.Add(table->GetSQLExpr());
            break;
        case tnName:
            names.Add(table->GetName());
        }
}

// --- Fields.

// One more than the largest ID; where that is no number, one that is free.
int TVCustomDBStructure::NewFieldID() {
    if (largestFieldID_ < std::numeric_limits<int>::max())
        return largestFieldID_ + 1;
    while (FieldByID(freeFieldID_))
        ++freeFieldID_;
    return freeFieldID_;
}

void TVCustomDBStructure::FindLargestFieldID() {
    largestFieldID_ = 0;
    for (const auto& field : fields_)
        largestFieldID_ = std::max(largestFieldID_, field->GetID());
}

TDSField* TVCustomDBStructure::AppendField(int id, TVFieldKind kind) {
    largestFieldID_ = std::max(largestFieldID_, id);
    fields_.push_back(std::make_unique<TDSField>(*this, id, kind));
    indexes_->ForgetFieldWords();
    return fields_.back().get();
}

int TVCustomDBStructure::AddField(TVFieldKind kind, std::string text, std::string caption, TDSTable* table) {
    TVDBInfo& provider = CheckDatabaseInfo();
    if (kind == vfkData) {
        if (!table)
            throw EVDBStructError(dseNoTable, {""});
        const TDBFieldInfo* const info = provider.GetFieldList(table->GetName()).FindByName(text);
        if (!info)
            throw EVDBStructError(dseCantFindFieldInTbl, {text, table->GetName()});
        TDSField& field = AddDataField(NewFieldID(), *info, *table);
        field.text_ = std::move(text);
        field.displayName_ = std::move(caption);
    } else {
        TDSField* const field = AppendField(NewFieldID(), vfkVirtual);
        field->FieldSize = 100;
        field->displayName_ = std::move(caption);
        field->SetSQLExpr(std::move(text));
        field->AddAppliedOperators();
        rootGroup_.Fields.push_back(field);
    }
    Changed();
    return GetFieldCount() - 1;
}

// A field for a column, without telling of it.
TDSField& TVCustomDBStructure::AddDataField(int id, const TDBFieldInfo& info, TDSTable& table) {
    TDSField* const field = AppendField(id, vfkData);
    field->text_ = info.Name;
    field->displayName_ = info.Name;
    field->tables_ = {&table};
    field->FieldType = info.DataType;
    field->FieldSize = info.Size;
    field->AddAppliedOperators();
    rootGroup_.Fields.push_back(field);
    return *field;
}

TDSField* TVCustomDBStructure::GetField(int index) const {
    if (index < 0 || index >= GetFieldCount())
        throw EVDBStructError(dseInvalidFieldIndex, {std::to_string(index)});
    return fields_[static_cast<std::size_t>(index)].get();
}

void TVCustomDBStructure::DelField(int index) {
    RemoveFromGroup(*GetField(index));
    const std::unique_ptr<TDSField> removed = TakeOut(fields_, index);
    if (removed->GetID() == largestFieldID_)
        FindLargestFieldID();
    FieldKeysChanged();
    indexes_->FieldsByID.Invalidate();
    listeners_.ForEach([&](TModelListener& listener) { listener.FieldRemoved(*removed); });
    Changed();
}

// Searched from the end: a field that moves has mostly just been added.
void TVCustomDBStructure::RemoveFromGroup(TDSField& field) {
    TDSFieldList& fields = (field.group_ ? *field.group_ : rootGroup_).Fields;
    const auto found = std::find(fields.rbegin(), fields.rend(), &field);
    if (found != fields.rend())
        fields.erase(std::next(found).base());
    field.group_ = nullptr;
}

TDSField* TVCustomDBStructure::FieldByName(TFieldNameMode mode, std::string_view text) const {
    return indexes_->FieldsByName[mode].Find(fields_, text);
}

std::vector<TDSField*> TVCustomDBStructure::FieldsForFormula(TFieldNameMode mode, bool strict,
                                                             std::string_view formula) const {
    std::vector<TDSField*> fields;
    for (const int i : indexes_->FieldWords(*this, mode, strict).FieldsIn(formula))
        fields.push_back(GetField(i));
    return fields;
}

TDSField* TVCustomDBStructure::FieldByID(int id) const {
    return indexes_->FieldsByID.Find(fields_, id);
}

void TVCustomDBStructure::RenumberFields(const std::function<int(const TDSField&)>& idOf) {
    std::unordered_set<int> taken;
    for (const auto& field : fields_) {
        field->id_ = idOf(*field);
        while (!taken.insert(field->id_).second)
            field->id_ = field->id_ < std::numeric_limits<int>::max() ? field->id_ + 1 : 1;
    }
    FindLargestFieldID();
    indexes_->FieldsByID.Invalidate();
    Changed();
}

void TVCustomDBStructure::GetFieldNames(TFieldNameMode mode, TStringList& names) const {
    names.Clear();
    for (const auto& field : fields_)
        switch (mode) {
        case fnDisplayName:
            names.Add(field->GetDisplayName());
            break;
        case fnFullName:
            names.Add(field->GetFullName());
            break;
        case fnSQLExpr:
            names.Add(field->GetSQLExpr());
            break;
        case fnText:
            names.Add(field->GetFieldText());
        }
}

// --- Links.

TDSLink* TVCustomDBStructure::GetLink(int index) const {
    if (index < 0 || index >= GetLinkCount())
        throw EVDBStructError(dseInvalidLinkIndex, {std::to_string(index)});
    return links_[static_cast<std::size_t>(index)].get();
}

int TVCustomDBStructure::AddLinkByRef(std::unique_ptr<TDSLink> link) {
    if (link->Operators.Empty())
        link->ApplyDefOperator();
    link->Table1->links_.push_back(link.get());
    if (link->Table2 != link->Table1)
        link->Table2->links_.push_back(link.get());
    links_.push_back(std::move(link));
    LinksChanged();
    Changed();
    return GetLinkCount() - 1;
}

void TVCustomDBStructure::DelLink(int index) {
    GetLink(index);
    RemoveLink(static_cast<std::size_t>(index));
    LinksChanged();
    Changed();
}

void TVCustomDBStructure::RemoveLink(std::size_t index) {
    const TDSLink* const link = links_[index].get();
    std::erase(link->Table1->links_, link);
    std::erase(link->Table2->links_, link);
    links_.erase(links_.begin() + static_cast<std::ptrdiff_t>(index));
}

TDSLink* TVCustomDBStructure::FindLink(std::string_view name1, std::string_view name2) const {
    for (const auto& link : links_) {
        const std::string& first = link->Table1->GetName();
        const std::string& second = link->Table2->GetName();
        if ((first == name1 && second == name2) || (first == name2 && second == name1))
            return link.get();
    }
    return nullptr;
}

// --- Predefined conditions.

TDSCondition* TVCustomDBStructure::AddCondition(int id, std::string displayFormat, std::string sqlExpr) {
    conditions_.push_back(std::make_unique<TDSCondition>(*this));
    TDSCondition* const condition = conditions_.back().get();
    condition->SetID(id);
    condition->SetDisplayFormat(std::move(displayFormat));
    condition->SetSQLExpr(std::move(sqlExpr));
    Changed();
    return condition;
}

TDSCondition* TVCustomDBStructure::GetCondition(int index) const {
    if (index < 0 || index >= GetConditionCount())
        throw EVDBStructError(dseInvalidConditionIndex, {std::to_string(index)});
    return conditions_[static_cast<std::size_t>(index)].get();
}

void TVCustomDBStructure::DelCondition(int index) {
    GetCondition(index);
    const std::unique_ptr<TDSCondition> removed = TakeOut(conditions_, index);
    ConditionKeysChanged();
    listeners_.ForEach([&](TModelListener& listener) { listener.ConditionRemoved(*removed); });
    Changed();
}

TDSCondition* TVCustomDBStructure::ConditionByID(int id) const {
    return indexes_->ConditionsByID.Find(conditions_, id);
}

int TVCustomDBStructure::ConditionIndexByID(int id) const {
    const TDSCondition* const condition = ConditionByID(id);
    for (int i = 0; i < GetConditionCount(); ++i)
        if (conditions_[static_cast<std::size_t>(i)].get() == condition)
            return i;
    return -1;
}

void TVCustomDBStructure::GetConditionCaptions(TStringList& captions) const {
    captions.Clear();
    for (const auto& condition : conditions_)
        captions.Add(condition->GetCaption());
}

// --- The model as a whole.

// Tables with their links and fields.
void TVCustomDBStructure::ClearTableItems() {
    path_ = TDSPath(this);
    defaultMainTable_ = nullptr;
    rootGroup_.Fields.clear();
    for (int i = 0; i < fieldGroups_.Count(); ++i)
        fieldGroups_.GetGroup(i)->Fields.clear();
    links_.clear();
    fields_.clear();
    largestFieldID_ = 0;
    freeFieldID_ = 1;
    tables_.clear();
    TableKeysChanged();
    indexes_->FieldsByID.Invalidate();
    LinksChanged();
}

void TVCustomDBStructure::ClearItems() {
    ClearTableItems();
    fieldGroups_.Clear();
    conditions_.clear();
    ConditionKeysChanged();
}

void TVCustomDBStructure::AnnounceReplacing() {
    if (replacing_++ == 0)
        listeners_.ForEach([](TModelListener& listener) { listener.ModelReplacing(); });
}

void TVCustomDBStructure::AnnounceReplaced() {
    if (--replacing_ == 0)
        listeners_.ForEach([](TModelListener& listener) { listener.ModelReplaced(); });
}

void TVCustomDBStructure::ReplaceModel(const std::function<void()>& change) {
    AnnounceReplacing();
    try {
        change();
    } catch (...) {
        AnnounceReplaced();
        throw;
    }
    AnnounceReplaced();
}

void TVCustomDBStructure::ClearStructure() {
    ChangeAsOne([this] {
        ReplaceModel([this] {
            ClearItems();
            UpdateDefOperators();
        });
    });
}

void TVCustomDBStructure::ClearTables() {
    ReplaceModel([this] {
        ClearTableItems();
        for (const auto& condition : conditions_)
            condition->UpdateTables();
    });
    Changed();
}

// --- Metadata.

void TVCustomDBStructure::SetDatabaseInfo(TVDBInfo* provider) {
    if (provider == databaseInfo_)
        return;
    UnwatchRemovalOf(databaseInfo_);
    databaseInfo_ = provider;
    WatchRemovalOf(provider);
    if (provider && !IsLoading())
        UpdateDatabaseInfo();
}

void TVCustomDBStructure::UpdateDatabaseInfo() {
    if (!databaseInfo_ || dbSpecInfo_.Empty())
        return;
    TStringList lines = dbSpecInfo_; // a provider may empty what it is given
    databaseInfo_->LoadInfo(lines);
}

TVDBInfo& TVCustomDBStructure::CheckDatabaseInfo() const {
    if (!databaseInfo_)
        throw EVDBStructError(dseDbInfoNotSpecified);
    return *databaseInfo_;
}

void TVCustomDBStructure::RetriveDataModelInfo() {
    TVDBInfo& provider = CheckDatabaseInfo();
    TStringList lines;
    provider.GetTableNames(lines);
    BeginUpdate();
    AnnounceReplacing();
    const auto finish = [this] {
        EndUpdate();
        AnnounceReplaced();
    };
    try {
        ClearItems();
        UpdateDefOperators();
        for (const std::string_view name : lines)
            AddTable(std::string(name), std::string(name));
        lines.Clear();
        provider.GetLinksList(lines);
        for (const std::string_view line : lines)
            AddLinkByExpr(line);
        int id = 0;
        for (std::size_t i = 0; autoAddFields_ && i < tables_.size(); ++i) {
            const TDBFieldList& columns = provider.GetFieldList(tables_[i]->GetName());
            for (int column = 0; column < columns.Count(); ++column)
                AddDataField(++id, columns.GetItem(column), *tables_[i]);
        }
    } catch (...) {
        finish();
        throw;
    }
    finish();
    Changed();
}

void TVCustomDBStructure::EditStructure() {
    if (OnEditStructure)
        OnEditStructure(*this);
}

// --- As a component.

void TVCustomDBStructure::AssignTo(TPersistent& dest) const {
    auto* const structure = dynamic_cast<TVCustomDBStructure*>(&dest);
    if (!structure)
        return TComponent::AssignTo(dest);
    TStringList lines;
    WriteText(lines);
    structure->LoadFromStrings(lines);
}

void TVCustomDBStructure::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation == opRemove && component == databaseInfo_)
        SetDatabaseInfo(nullptr);
}

void TVCustomDBStructure::Loaded() {
    TComponent::Loaded();
    UpdateDatabaseInfo();
    UpdateExOperators();
    MergeDefOperators();
    UpdateDefOperators();
    if (!storedStruct_.Empty())
        LoadFromStrings(storedStruct_);
    storedStruct_.Clear();
    ++replacing_; // whoever waits for the model of a form can go on
    AnnounceReplaced();
}

void TVCustomDBStructure::DefineProperties(TFiler& filer) {
    TComponent::DefineProperties(filer);
    filer.DefineProperty(
        "Struct", [this](const TFormValue& value) { storedStruct_ = value.ToStrings(); },
        [this] {
            TStringList lines;
            SaveToStrings(lines);
            return TFormValue::FromStrings(lines);
        },
        storeStruct_);
}

std::string TVCustomDBStructure::DefaultCaptionLines() {
    std::string lines;
    for (const TDefaultOperator& op : DefaultOperators())
        lines.append(op.Name).append("=").append(op.Caption).append("\n");
    return lines;
}

TVDBStructure::TVDBStructure(TComponent* owner) : TVCustomDBStructure(owner) {}

TVDBStructure::~TVDBStructure() = default;

std::span<const TPropertyInfo> TVDBStructure::PublishedProperties() const {
    static const std::vector<TPropertyInfo> properties = [this] {
        using TThis = TVDBStructure;
        return ExtendProperties(
            TComponent::PublishedProperties(),
            {Property<TVCustomDBStructure>("StoreStruct", &TThis::GetStoreStruct, &TThis::SetStoreStruct,
                                           true),
             Property<TVCustomDBStructure>("AutoAddFields", &TThis::GetAutoAddFields,
                                           &TThis::SetAutoAddFields, true),
             ObjectProperty<TVCustomDBStructure, TSQLFormats>("SQLFormats", &TThis::GetSQLFormats),
             ComponentProperty<TVCustomDBStructure, TVDBInfo>("DatabaseInfo", &TThis::GetDatabaseInfo,
                                                              &TThis::SetDatabaseInfo),
             StringsProperty<TVCustomDBStructure>("DefOperators", &TThis::GetDefOperators,
                                                  &TThis::SetDefOperators, DefaultCaptionLines()),
             Property<TVCustomDBStructure>("ExOperators", &TThis::GetExOperators, &TThis::SetExOperators,
                                           AllExOperators),
             Property<TThis>("HelpFileName", &TThis::GetHelpFileName, &TThis::SetHelpFileName, ""),
             Property<TThis>("SEHelpContext", &TThis::GetSEHelpContext, &TThis::SetSEHelpContext, 0),
             Property<TThis>("InitialSEPath", &TThis::GetInitialSEPath, &TThis::SetInitialSEPath, ""),
             EventProperty("OnSEHelpClick"), EventProperty("OnChange")});
    }();
    return properties;
}

} // namespace lumora
