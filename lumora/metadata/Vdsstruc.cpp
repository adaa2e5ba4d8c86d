#include "lumora/metadata/Vdsstruc.h"

#include "lumora/platform/properties.h"

namespace lumora {

// --- The editor of look-up fields.

void TDSLookupFieldEditor::Refresh() {
    const TField* const field = GetField();
    if (!field)
        return;
    ClearList();
    TDataSet* const source = field->GetLookupDataSet();
    if (!source)
        throw EDatabaseError("Field '" + field->FieldName + "' has no look-up dataset");
    const TBookmark place = source->GetBookmark();
    try {
        const TField& key = source->FieldByName(field->LookupKeyFields);
        const TField& result = source->FieldByName(field->LookupResultField);
        for (source->First(); !source->Eof(); source->Next()) {
            Values.Add(key.GetAsString());
            Items.Add(result.GetAsString());
        }
    } catch (...) {
        source->GotoBookmark(place);
        throw;
    }
    source->GotoBookmark(place);
}

// --- The model.

TVDatasetStructure::TVDatasetStructure(TComponent* owner) : TVCustomDBStructure(owner) {
    SetStoreStruct(false); // it is made from the dataset each time
}

std::span<const TPropertyInfo> TVDatasetStructure::PublishedProperties() const {
    using TThis = TVDatasetStructure;
    using TModel = TVCustomDBStructure;
    static const std::vector<TPropertyInfo> properties = ExtendProperties(
        TComponent::PublishedProperties(),
        {Property("Active", &TThis::GetActive, &TThis::SetActive, false),
         Property("FilterSyntax", &TThis::GetFilterSyntax, &TThis::SetFilterSyntax, fsStandard),
         ComponentProperty("DataSet", &TThis::GetDataSet, &TThis::SetDataSet),
         Property("DataSetName", &TThis::GetDataSetName, &TThis::SetDataSetName, "Dataset"),
         ObjectProperty<TModel, TSQLFormats>("SQLFormats", &TThis::GetSQLFormats),
         StringsProperty<TModel>("DefOperators", &TThis::GetDefOperators, &TThis::SetDefOperators,
                                 DefaultCaptionLines()),
         Property<TModel>("ExOperators", &TThis::GetExOperators, &TThis::SetExOperators, AllExOperators),
         EventProperty("OnChange")});
    return properties;
}

void TVDatasetStructure::SetActive(bool active) {
    if (active == active_)
        return;
    active_ = active;
    if (!active)
        ClearStructure();
    else if (!IsLoading())
        FillStructure();
}

void TVDatasetStructure::SetFilterSyntax(TFilterSyntax syntax) {
    if (syntax == filterSyntax_)
        return;
    filterSyntax_ = syntax;
    UpdateExOperators();
}

void TVDatasetStructure::SetDataSet(TDataSet* dataSet) {
    if (dataSet == dataSet_)
        return;
    UnwatchRemovalOf(dataSet_);
    dataSet_ = dataSet;
    WatchRemovalOf(dataSet);
}

void TVDatasetStructure::FillStructure() {
    CheckDataSet();
    Fill();
    Changed();
}

void TVDatasetStructure::ReloadStructure() {
    // One replacement, so that rows find their fields again.
    ChangeAsOne([this] {
        ReplaceModel([this] {
            if (active_)
                SetActive(false);
            active_ = true;
            if (IsLoading())
                return;
            CheckDataSet();
            Fill();
        });
    });
}

void TVDatasetStructure::CheckDataSet() {
    if (dataSet_ && dataSet_->GetActive())
        return;
    active_ = false;
    if (!dataSet_)
        throw EVDatasetStructureError(dsseNoDataSet, Message(msgNoDataSet));
    throw EVDatasetStructureError(dsseDataSetNotOpened, Message(msgDataSetNotOpened));
}

void TVDatasetStructure::Fill() {
    ReplaceModel([this] {
        if (!stoppedInFill_ || !IsUpdating())
            BeginUpdate();
        stoppedInFill_ = true;
        ClearStructure();
        TDSTable* const table = GetTable(AddTable(dataSetName_, dataSetName_));
        table->SetAlias("");
        SetDefaultMainTable(table);
        for (int i = 0; i < dataSet_->GetFieldCount(); ++i) {
            TField& field = *dataSet_->GetField(i);
            if (field.Visible && (field.FieldKind == fkData || field.FieldKind == fkLookup))
                AddFieldOf(field, i + 1, *table);
        }
        UpdateExOperators();
        stoppedInFill_ = false;
        EndUpdate();
    });
}

void TVDatasetStructure::AddFieldOf(TField& field, int id, TDSTable& table) {
    const bool isLookup = field.FieldKind == fkLookup;
    const TField& column = isLookup ? dataSet_->FieldByName(field.KeyFields) : field;
    const std::string& name = isLookup ? field.KeyFields : field.FieldName;
    TDSField& added = AddDataField(id, {name, column.Size, column.DataType}, table);
    if (isLookup)
        added.SetListEditor(std::make_unique<TDSLookupFieldEditor>(field));
    added.SetDisplayName(field.GetDisplayName());
    if (column.DataType == ftVarBytes || column.DataType == ftBlob || column.DataType == ftTypedBinary)
        added.UIR = false;
    if (field.FieldName.find(' ') != std::string::npos) // a look-up field's own name, not its key's
        added.SetQuoted(true);
}

void TVDatasetStructure::UpdateExOperators() {
    struct TTemplates {
        std::string_view Name;
        const char* Standard;
        const char* SQLLike;
    };
    static constexpr TTemplates templates[] = {
        {"StartsWith", "@f = '@1*'", "@f LIKE '@1%'"},
        {"NotStartsWith", "@f <> '@1*'", "@f NOT LIKE '@1%'"},
        {"Contains", "@f = '*@1*'", "@f LIKE '%@1%'"},
        {"NotContains", "@f <> '*@1*'", "@f NOT LIKE '%@1%'"},
        {"Between", "@f >= '@1' and @f <= '@2'", "@f BETWEEN '@1' and '@2'"},
    };
    for (const TTemplates& entry : templates)
        if (TDSOperator* const op = OperatorByName(entry.Name))
            op->SetSQLName(filterSyntax_ == fsStandard ? entry.Standard : entry.SQLLike);
}

void TVDatasetStructure::Notification(TComponent* component, TOperation operation) {
    TVCustomDBStructure::Notification(component, operation);
    if (operation == opRemove && component == dataSet_)
        dataSet_ = nullptr;
}

void TVDatasetStructure::Loaded() {
    ReplaceModel([this] {
        TVCustomDBStructure::Loaded();
        if (active_) {
            CheckDataSet();
            Fill();
        }
    });
    if (active_)
        Changed();
}

} // namespace lumora
