// Datasets: rows of named fields with a current row, as a host application has them open.
#pragma once

#include "lumora/platform/component.h"
#include "lumora/platform/errors.h"
#include "lumora/platform/field_types.h"

#include <any>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace lumora {

class TDataSet;

class EDatabaseError : public Exception { // a field that is not there, a dataset that is not open
public:
    using Exception::Exception;
};

enum TFieldKind : std::uint8_t { fkData, fkCalculated, fkLookup, fkInternalCalc, fkAggregate };
template <>
struct TEnumNames<TFieldKind> {
    static constexpr std::string_view Names[] = {"fkData", "fkCalculated", "fkLookup", "fkInternalCalc",
                                                 "fkAggregate"};
};

// A column of a dataset, which owns it.
class TField {
public:
    TField(TDataSet& dataSet, std::string name, TFieldType type, int size = 0);
    TField(const TField&) = delete;
    TField& operator=(const TField&) = delete;

    TDataSet& GetDataSet() const { return dataSet_; }
    // The label, or the name when there is none.
    const std::string& GetDisplayName() const { return DisplayLabel.empty() ? FieldName : DisplayLabel; }
    // The text of the field in the dataset's current row. EDatabaseError when the dataset is not open.
    std::string GetAsString() const;

    // Of a look-up field: the dataset that is looked in. It is forgotten when it goes away.
    TDataSet* GetLookupDataSet() const { return lookupDataSet_; }
    void SetLookupDataSet(TDataSet* dataSet);

    // A reference that ends with the field. Nobody else owns a field, so do not keep what lock() gives.
    std::weak_ptr<TField> Reference() const { return self_; }

    std::string FieldName;
    std::string DisplayLabel;
    TFieldType DataType;
    int Size; // of text: the characters it may have, 0 when there is no limit; 0 for other types
    bool Visible = true;
    TFieldKind FieldKind = fkData;
    std::string KeyFields;       // of a look-up field: the field of its own dataset whose value is looked up
    std::string LookupKeyFields; // the field of the look-up dataset in which it is found
    std::string LookupResultField; // the field of the look-up dataset whose value is shown

private:
    friend class TDataSet;

    TDataSet& dataSet_;
    TDataSet* lookupDataSet_ = nullptr;
    const std::shared_ptr<TField> self_; // owns nothing
};

// Where a dataset stood; only the dataset that gave it knows what is in it.
using TBookmark = std::any;

class TDataSet : public TComponent {
public:
    explicit TDataSet(TComponent* owner = nullptr) : TComponent(owner) {}
    ~TDataSet() override { BeginDestruction(); }

    std::string_view ClassName() const override { return "TDataSet"; }

    virtual bool GetActive() const = 0; // the dataset is open

    // Fields hold until the dataset gets other columns.
    int GetFieldCount();
    TField* GetField(int index);                // EListError for a bad index
    TField* FindField(std::string_view name);   // letter case ignored; null when there is none
    TField& FieldByName(std::string_view name); // EDatabaseError "Field 'X' not found"

    // The rows, from the first to the end. EDatabaseError when the dataset is not open.
    virtual void First() = 0;
    virtual void Next() = 0;
    virtual bool Eof() const = 0; // behind the last row
    virtual TBookmark GetBookmark() const = 0;
    // Does nothing when the row has gone.
    virtual void GotoBookmark(const TBookmark& bookmark) = 0;
    // Of a field of this dataset, in the current row; empty for a null and at the end. EDatabaseError when
    // the dataset is not open.
    virtual std::string GetFieldText(const TField& field) const = 0;

protected:
    // The fields are about to be looked at; a dataset whose columns come from elsewhere brings them up to
    // date here.
    virtual void UpdateFields() {}
    TField& AddField(std::string name, TFieldType type, int size = 0);
    void ClearFields() { fields_.clear(); }
    // EDatabaseError when the dataset is not open.
    void CheckActive() const;
    void Notification(TComponent* component, TOperation operation) override;

private:
    std::vector<std::unique_ptr<TField>> fields_;
};

} // namespace lumora
