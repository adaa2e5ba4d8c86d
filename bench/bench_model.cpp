#include "bench_model.h"

#include <algorithm>
#include <iterator>
#include <random>
#include <string>

namespace lumora::bench {

namespace {

struct TColumn {
    const char* Name;
    TFieldType Type;
    int Size;
    const char* Caption;
};

constexpr TColumn Columns[] = {
    {"Id", ftAutoInc, 0, "Number"},
    {"Code", ftString, 12, "Code"},
    {"Name", ftString, 60, "Name"},
    {"City", ftString, 40, "City"},
    {"CreatedOn", ftDate, 0, "Created on"},
    {"Amount", ftCurrency, 0, "Amount"},
    {"Quantity", ftInteger, 0, "Quantity"},
    {"Discount", ftFloat, 0, "Discount (per cent)"},
    {"Active", ftBoolean, 0, "Active"},
    {"OwnerId", ftInteger, 0, "Owner"},
    {"ChangedAt", ftDateTime, 0, "Changed at"},
    {"Street", ftString, 60, "Street and number"},
    {"PostalCode", ftString, 10, "Postal code"},
    {"Country", ftString, 2, "Country"},
    {"Phone", ftString, 30, "Telephone"},
    {"Email", ftString, 80, "E-mail address"},
    {"Weight", ftFloat, 0, "Weight in kilograms"},
    {"Priority", ftSmallint, 0, "Priority"},
    {"Status", ftString, 20, "Status"},
    {"Notes", ftMemo, 0, "Notes"},
};
constexpr int ColumnCount = static_cast<int>(std::size(Columns));

// The names of a small model are as long as those of a large one.
std::string TableName(int index) {
    static constexpr const char* words[] = {"Customers", "Orders",    "OrderLines", "Products",
                                            "People",    "Employees", "Payments",   "Categories",
                                            "Suppliers", "Shipments", "Contracts",  "Branches"};
    return words[static_cast<std::size_t>(index) % std::size(words)] + std::to_string(1000 + index);
}

class TBenchProvider : public TVDBInfo {
public:
    explicit TBenchProvider(const TModelShape& shape) : shape_(shape) {}

    void TablesByDatabase(TStringList& tables) override {
        for (int i = 0; i < shape_.Tables; ++i)
            tables.Add(TableName(i));
    }

    void LinksByDatabase(TStringList& links) override {
        std::mt19937 random(20260701u + static_cast<unsigned>(shape_.Seed));
        const int mainland = shape_.Tables - shape_.IslandTables;
        for (int i = 0; i < shape_.Links; ++i) {
            const bool onIsland = i % shape_.Tables >= mainland;
            const int first = onIsland ? mainland : 0;
            const auto count = static_cast<unsigned>(onIsland ? shape_.IslandTables : mainland);
            // The first links make a tree, so that every table of a part can be reached from every other.
            const int from = i < shape_.Tables ? i : first + static_cast<int>(random() % count);
            const int to = i < shape_.Tables
                               ? first + static_cast<int>(random() % static_cast<unsigned>(from - first + 1))
                               : first + static_cast<int>(random() % count);
            if (from != to)
                links.Add(TableName(from) + "-" + TableName(to) + ":OwnerId=Id");
        }
    }

    void FieldsByTable(const std::string&, TDBFieldList& fields) override {
        for (int i = 0; i < shape_.FieldsPerTable; ++i) {
            const TColumn& column = Columns[(i + shape_.Seed) % ColumnCount];
            const std::string number = i < ColumnCount ? "" : std::to_string(i / ColumnCount);
            fields.Add({column.Name + number, column.Size, column.Type});
        }
    }

private:
    const TModelShape shape_;
};

void FillEditor(TDSField& field) {
    if (auto* const text = dynamic_cast<TDSTextEditor*>(field.GetValueEditor())) {
        text->DefValue = std::string(1, '0');
        text->EditMask = "!9999;1;_";
    } else if (auto* const sql = dynamic_cast<TDSSQLEditor*>(field.GetValueEditor())) {
        sql->SQL.Add("SELECT DISTINCT " + field.GetFieldText());
        sql->SQL.Add("FROM " + field.GetTable()->GetName());
    } else if (auto* const list = dynamic_cast<TDSListEditor*>(field.GetValueEditor())) {
        list->Items.SetText("New\nIn work\nDone\n");
        list->Values.SetText("N\nW\nD\n");
    } else if (auto* const custom = dynamic_cast<TDSCustomEditor*>(field.GetValueEditor())) {
        custom->CustomData.SetText("Editor=Calendar\nWeek=Monday\n");
    }
}

// Captions, the kinds of editors as a model mostly has them, and a group for some of the fields.
void DressField(TVDBStructure& model, TDSField& field, int index) {
    constexpr TDSEditType types[] = {etAuto, etEdit, etAuto, etList, etAuto, etAuto, etCustom,
                                     etAuto, etEdit, etAuto, etSQL,  etAuto, etAuto, etEdit};
    field.SetDisplayName(field.GetTable()->GetDisplayName() + ": " + Columns[index % ColumnCount].Caption);
    field.SetEditType(types[static_cast<std::size_t>(index) % std::size(types)]);
    field.SetQuoted(index % 5 == 0);
    FillEditor(field);
    if (index % 7 == 0)
        field.SetGroup(model.GetFieldGroups().GetGroup(index % model.GetFieldGroups().Count()));
}

} // namespace

void FillModel(TVDBStructure& model, const TModelShape& shape) {
    TBenchProvider provider(shape);
    model.SetDatabaseInfo(&provider);
    model.RetriveDataModelInfo();
    model.SetDatabaseInfo(nullptr);
    for (int i = 0; i < model.GetTableCount(); ++i)
        model.GetTable(i)->SetDisplayName(model.GetTable(i)->GetName());
    for (int i = 0; i < 10; ++i)
        model.GetFieldGroups().Add("Group " + std::to_string(i));
    for (int i = 0; i < model.GetFieldCount(); ++i)
        DressField(model, *model.GetField(i), i + shape.Seed);
    for (int i = 0; i < std::min(shape.Tables, 20); ++i)
        model.AddCondition(i + 1, "Lies in the city of @", TableName(i) + ".City = '@1'");
}

} // namespace lumora::bench
