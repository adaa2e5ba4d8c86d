// A dataset in memory.
#pragma once

#include "lumora/platform/dataset.h"

#include <string>
#include <vector>

namespace lumora::tests {

class TMemoryDataSet : public TDataSet {
public:
    using TDataSet::TDataSet;
    ~TMemoryDataSet() override { BeginDestruction(); }

    std::string_view ClassName() const override { return "TMemoryDataSet"; }

    using TDataSet::AddField;
    using TDataSet::ClearFields;

    bool GetActive() const override { return Open; }
    void First() override {
        CheckActive();
        Row = 0;
    }
    void Next() override { ++Row; }
    bool Eof() const override { return Row >= Rows.size(); }
    TBookmark GetBookmark() const override {
        CheckActive();
        return Row;
    }
    void GotoBookmark(const TBookmark& bookmark) override { Row = std::any_cast<std::size_t>(bookmark); }
    std::string GetFieldText(const TField& field) const override {
        CheckActive();
        if (Row == BadRow)
            throw EDatabaseError("The row cannot be read");
        for (int i = 0; i < Columns(); ++i)
            if (const_cast<TMemoryDataSet*>(this)->GetField(i) == &field && !Eof())
                return Rows[Row].at(static_cast<std::size_t>(i));
        return {};
    }

    bool Open = true;
    std::vector<std::vector<std::string>> Rows;
    std::size_t Row = 0;
    std::size_t BadRow = static_cast<std::size_t>(-1);

private:
    int Columns() const { return const_cast<TMemoryDataSet*>(this)->GetFieldCount(); }
};

// Orders with a hidden field, a calculated one and a look-up field for the customer's number.
struct TOrders {
    TOrders() {
        Customers.AddField("custno", ftInteger);
        Customers.AddField("company", ftString, 40);
        Customers.Rows = {{"7", "Ada"}, {"9", "Bob"}};
        Customers.Row = 1;
        DataSet.AddField("orderno", ftInteger).DisplayLabel = "Number";
        DataSet.AddField("custno", ftLargeint).Visible = false;
        DataSet.AddField("Order Date", ftDate);
        DataSet.AddField("total", ftFloat).FieldKind = fkCalculated;
        TField& customer = DataSet.AddField("the customer", ftString, 40);
        customer.FieldKind = fkLookup;
        customer.KeyFields = "custno";
        customer.SetLookupDataSet(&Customers);
        customer.LookupKeyFields = "custno";
        customer.LookupResultField = "company";
        DataSet.AddField("picture", ftBlob);
        DataSet.AddField("note", ftString, 20);
    }

    TMemoryDataSet Customers;
    TMemoryDataSet DataSet;
};

} // namespace lumora::tests
