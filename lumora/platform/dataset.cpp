#include "lumora/platform/dataset.h"

namespace lumora {

TField::TField(TDataSet& dataSet, std::string name, TFieldType type, int size)
    : FieldName(std::move(name)), DataType(type), Size(size), dataSet_(dataSet), self_(this, [](TField*) {
      }) {}

std::string TField::GetAsString() const {
    return dataSet_.GetFieldText(*this);
}

void TField::SetLookupDataSet(TDataSet* dataSet) {
    lookupDataSet_ = dataSet;
    dataSet_.WatchRemovalOf(dataSet);
}

int TDataSet::GetFieldCount() {
    UpdateFields();
    return static_cast<int>(fields_.size());
}

TField* TDataSet::GetField(int index) {
    if (index < 0 || index >= GetFieldCount())
        throw EListError("Field index out of bounds (" + std::to_string(index) + ")");
    return fields_[static_cast<std::size_t>(index)].get();
}

TField* TDataSet::FindField(std::string_view name) {
    UpdateFields();
    for (const auto& field : fields_)
        if (SameText(field->FieldName, name))
            return field.get();
    return nullptr;
}

TField& TDataSet::FieldByName(std::string_view name) {
    TField* const field = FindField(name);
    if (!field)
        throw EDatabaseError("Field '" + std::string(name) + "' not found");
    return *field;
}

TField& TDataSet::AddField(std::string name, TFieldType type, int size) {
    fields_.push_back(std::make_unique<TField>(*this, std::move(name), type, size));
    return *fields_.back();
}

void TDataSet::CheckActive() const {
    if (!GetActive())
        throw EDatabaseError((GetName().empty() ? "The dataset" : "The dataset " + GetName()) +
                             " is not open");
}

void TDataSet::Notification(TComponent* component, TOperation operation) {
    TComponent::Notification(component, operation);
    if (operation != opRemove)
        return;
    for (const auto& field : fields_)
        if (field->lookupDataSet_ == component)
            field->lookupDataSet_ = nullptr;
}

} // namespace lumora
