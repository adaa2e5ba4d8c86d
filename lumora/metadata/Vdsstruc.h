// The data model that makes itself from the fields of one open dataset, for filtering that dataset. The one
// file of this folder that stands above model/.
#pragma once

#include "lumora/model/Vdbstruc.h"
#include "lumora/platform/dataset.h"

#include <memory>
#include <string>
#include <string_view>

namespace lumora {

enum TDatasetStructureErrorCode : int { dsseNoDataSet = 1, dsseDataSetNotOpened = 2 };

class EVDatasetStructureError : public EVLumoraError {
public:
    using EVLumoraError::EVLumoraError;
};

// What the pattern and range operators become.
enum TFilterSyntax : std::uint8_t {
    fsStandard, // the filter syntax of datasets: "*" as wildcard, compared with "="
    fsSQLLike   // LIKE and BETWEEN of SQL
};
template <>
struct TEnumNames<TFilterSyntax> {
    static constexpr std::string_view Names[] = {"fsStandard", "fsSQLLike"};
};

// The choices of a look-up field: the keys of its look-up dataset under the texts that it shows for them.
class TDSLookupFieldEditor : public TDSListEditor {
public:
    explicit TDSLookupFieldEditor(const TField& field) : field_(field.Reference()) {}

    // None when it has gone.
    TField* GetField() const { return field_.lock().get(); }
    // Reads the look-up dataset anew; its current row stays. The lists stay when the field has gone.
    // EDatabaseError when there is nothing to look in, and what reading raises.
    void Refresh() override;

private:
    std::weak_ptr<TField> field_;
};

class TVDatasetStructure : public TVCustomDBStructure {
public:
    explicit TVDatasetStructure(TComponent* owner = nullptr);
    ~TVDatasetStructure() override { BeginDestruction(); }

    std::string_view ClassName() const override { return "TVDatasetStructure"; }
    std::span<const TPropertyInfo> PublishedProperties() const override;

    // Filled from the dataset. Setting it fills or clears the model.
    bool GetActive() const { return active_; }
    void SetActive(bool active);
    TFilterSyntax GetFilterSyntax() const { return filterSyntax_; }
    void SetFilterSyntax(TFilterSyntax syntax);
    // Not owned; forgotten when it goes away. Another dataset is read by the next fill.
    TDataSet* GetDataSet() const { return dataSet_; }
    void SetDataSet(TDataSet* dataSet);
    // The name and the caption of the table that the next fill makes.
    const std::string& GetDataSetName() const { return dataSetName_; }
    void SetDataSetName(const std::string& name) { dataSetName_ = name; }

    // Makes the model anew from the dataset's visible data and look-up fields. Rows of panels find their
    // fields again by ID, which is the field's place in the dataset. EVDatasetStructureError without an open
    // dataset; Active is then false and the model as it was. When a look-up field names a key that is not
    // there (EDatabaseError), the model has the fields before it and its update has not ended.
    void FillStructure();
    // Clears the model and fills it again.
    void ReloadStructure();
    // Gives the pattern and range operators the templates of the filter syntax.
    void UpdateExOperators();

protected:
    void Notification(TComponent* component, TOperation operation) override;
    void Loaded() override;
    void ExOperatorsUpdated() override { UpdateExOperators(); }

private:
    void CheckDataSet();
    void Fill();
    void AddFieldOf(TField& field, int id, TDSTable& table);

    bool active_ = false;
    bool stoppedInFill_ = false; // the last fill has failed, and its update goes on
    TFilterSyntax filterSyntax_ = fsStandard;
    TDataSet* dataSet_ = nullptr;
    std::string dataSetName_ = "Dataset";
};

} // namespace lumora
