// Datasets over item models, and filters of models that a panel makes.
#include "lumora/lumora.h"
#include "lumora/qtsql/databaseerror.h"
#include "lumora/qtsql/datasetfilter.h"
#include "lumora/qtsql/datasetfilterproxymodel.h"
#include "lumora/qtsql/itemmodeldataset.h"
#include "tests/message_of.h"
#include "tests/test_application.h"

#include <gtest/gtest.h>

#include <QAbstractTableModel>
#include <QDateTime>
#include <QElapsedTimer>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlQuery>
#include <QSqlRelationalTableModel>

#include <memory>
#include <random>
#include <set>
#include <string>

using namespace lumora;
using namespace lumora::tests;

namespace {

// Rows of values that a test may change.
class ListModel : public QAbstractTableModel {
public:
    int rowCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(rows.size());
    }
    int columnCount(const QModelIndex& parent = {}) const override {
        return parent.isValid() ? 0 : static_cast<int>(headers.size());
    }
    QVariant data(const QModelIndex& index, int role) const override {
        return role == Qt::DisplayRole && index.isValid() ? rows[index.row()][index.column()] : QVariant();
    }
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override {
        return role == Qt::DisplayRole && orientation == Qt::Horizontal ? headers[section] : QVariant();
    }
    void reset(const QStringList& newHeaders, const QList<QList<QVariant>>& newRows) {
        beginResetModel();
        headers = newHeaders;
        rows = newRows;
        endResetModel();
    }

    QStringList headers;
    QList<QList<QVariant>> rows;
};

class QtDataSet : public testing::Test {
protected:
    QtDataSet() {
        database_ = QSqlDatabase::addDatabase(QStringLiteral("QSQLITE"), QStringLiteral("datasets"));
        database_.setDatabaseName(QStringLiteral(":memory:"));
        EXPECT_TRUE(database_.open());
        run("pragma case_sensitive_like = on");
        run("create table countries(code integer primary key, name varchar(30))");
        run("create table customers(id integer primary key, name varchar(40), country integer, "
            "\"Credit Limit\" decimal(8,2), active boolean, since date)");
        run("insert into countries values (47, 'Norway'), (46, 'Sweden')");
        run("insert into customers values (1, 'Ada', 47, 2.5, 1, '2001-03-05'), (2, 'Bob', 46, 10, 0, null), "
            "(3, 'Adam''s', 47, null, 1, '1999-12-31'), (4, null, 46, 7, 0, '2010-01-01')");
    }
    ~QtDataSet() override {
        database_ = {};
        QSqlDatabase::removeDatabase(QStringLiteral("datasets"));
    }

    void run(const char* sql) {
        QSqlQuery query(database_);
        ASSERT_TRUE(query.exec(QString::fromUtf8(sql))) << query.lastError().text().toStdString();
    }
    // The first column of what a model shows.
    static std::string shown(const QAbstractItemModel& model) {
        std::string text;
        for (int row = 0; row < model.rowCount(); ++row)
            text += model.index(row, 0).data().toString().toStdString() + ' ';
        return text;
    }
    static std::string describe(TDataSet& dataSet) {
        std::string text;
        for (int i = 0; i < dataSet.GetFieldCount(); ++i) {
            const TField& field = *dataSet.GetField(i);
            text += field.FieldName + '|' + field.GetDisplayName() + '|' +
                    std::string(EnumName(field.DataType)) + '|' + std::to_string(field.Size) +
                    (field.Visible ? "" : "|hidden") +
                    (field.FieldKind == fkLookup ? "|by " + field.KeyFields : "") + '\n';
        }
        return text;
    }

    const TestApplication application_;
    QSqlDatabase database_;
};

void setUp(TVDatasetStructure& structure, TVQueryPanel& panel, TDataSet& dataSet) {
    structure.SetDataSet(&dataSet);
    structure.SetActive(true);
    panel.SetDbStruct(&structure);
    panel.Activate();
}

TEST_F(QtDataSet, TellsATablesColumnsAndRows) {
    QSqlTableModel model(nullptr, database_);
    ItemModelDataSet dataSet(&model);
    EXPECT_FALSE(dataSet.GetActive());
    model.setTable(QStringLiteral("customers"));
    EXPECT_FALSE(dataSet.GetActive()) << "the query has not run";
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { dataSet.First(); }), "The dataset is not open");
    model.setHeaderData(1, Qt::Horizontal, QStringLiteral("Customer"));
    model.select();
    ASSERT_TRUE(dataSet.GetActive());
    EXPECT_EQ(describe(dataSet), "id|id|ftAutoInc|0\nname|Customer|ftString|0\ncountry|country|ftInteger|0\n"
                                 "Credit Limit|Credit Limit|ftFloat|0\nactive|active|ftBoolean|0\n"
                                 "since|since|ftString|0\n");
    dataSet.setColumnType(5, ftDate);
    EXPECT_EQ(dataSet.FieldByName("SINCE").DataType, ftDate);

    const TField* const name = &dataSet.FieldByName("name");
    std::string names;
    TBookmark second;
    for (dataSet.First(); !dataSet.Eof(); dataSet.Next()) {
        names += name->GetAsString() + ',';
        if (names == "Ada,Bob,")
            second = dataSet.GetBookmark();
    }
    EXPECT_EQ(names, "Ada,Bob,Adam's,,");
    EXPECT_EQ(name->GetAsString(), "");
    dataSet.GotoBookmark(second);
    EXPECT_EQ(name->GetAsString() + dataSet.FieldByName("Credit Limit").GetAsString() +
                  dataSet.FieldByName("active").GetAsString(),
              "Bob10False");
    model.select();
    EXPECT_EQ(&dataSet.FieldByName("name"), name) << "the same columns keep their fields";
}

TEST_F(QtDataSet, WalksAllRowsOfALargeQuery) {
    QSqlQueryModel model;
    model.setQuery(
        QStringLiteral("with recursive n(i) as (select 1 union all select i + 1 from n where i < 1000) "
                       "select i, i * 0.5 as half, i as i from n"),
        database_);
    ItemModelDataSet dataSet(&model);
    EXPECT_EQ(describe(dataSet), "i|i|ftInteger|0\nhalf|half|ftFloat|0\ni_2|i|ftInteger|0\n");
    int rows = 0;
    for (dataSet.First(); !dataSet.Eof(); dataSet.Next())
        ++rows;
    EXPECT_EQ(rows, 1000);
    model.setQuery(QStringLiteral("select nonsense"), database_);
    EXPECT_FALSE(dataSet.GetActive());
    EXPECT_TRUE(dataSet.Eof());
}

TEST_F(QtDataSet, OutlivesItsModel) {
    auto model = std::make_unique<ListModel>();
    model->reset({QStringLiteral("a")}, {{1}});
    ItemModelDataSet dataSet(model.get());
    TVDatasetStructure structure;
    structure.SetDataSet(&dataSet);
    structure.SetActive(true);
    TField& field = dataSet.FieldByName("a");
    DatasetFilterProxyModel proxy;
    proxy.setSourceModel(model.get());
    EXPECT_TRUE(proxy.setFilterExpression(QStringLiteral("a = 1")));
    model.reset();
    EXPECT_FALSE(dataSet.GetActive());
    EXPECT_EQ(MessageOf<EDatabaseError>([&] { field.GetAsString(); }), "The dataset is not open");
    EXPECT_EQ(MessageOf<EVDatasetStructureError>([&] { structure.FillStructure(); }),
              "DataSet is not opened");
    EXPECT_EQ(proxy.rowCount(), 0);
    EXPECT_TRUE(proxy.setFilterExpression(QStringLiteral("b = 1"))) << "nothing is there to be looked in";
}

TEST_F(QtDataSet, NamesTheColumnsOfAnyModel) {
    ListModel model;
    model.reset({QStringLiteral("Unit Price"), QStringLiteral("Größe(cm)"), QStringLiteral("3"),
                 QStringLiteral("in"), QStringLiteral("unit price"), QStringLiteral("day")},
                {{2.5, 1, QVariant(), true, QStringLiteral("x"), QDate(2001, 3, 5)},
                 {3, 7000000000LL, QVariant(), false, 1, QDateTime(QDate(2001, 3, 5), QTime(10, 30))}});
    ItemModelDataSet dataSet(&model);
    EXPECT_EQ(describe(dataSet),
              "Unit Price|Unit Price|ftFloat|0\nGröße_cm_|Größe(cm)|ftLargeint|0\nColumn3|3|ftString|0\n"
              "in_|in|ftBoolean|0\nunit price_2|unit price|ftString|0\nday|day|ftDateTime|0\n");
    dataSet.First();
    EXPECT_EQ(dataSet.FieldByName("day").GetAsString(), "2001-03-05");

    DatasetFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    const auto rows = [&](const char* filter) {
        EXPECT_TRUE(proxy.setFilterExpression(QString::fromUtf8(filter)))
            << proxy.errorString().toStdString();
        return shown(proxy);
    };
    EXPECT_EQ(rows("\"Unit Price\" > '2.7'"), "3 ");
    EXPECT_EQ(rows("day <= '2001-03-05'"), "2.5 ");
    EXPECT_EQ(rows("Größe_cm_ in ('1', 2) and in_ = 'True'"), "2.5 ");
    EXPECT_EQ(rows("Column3 is null"), "2.5 3 ");
}

TEST_F(QtDataSet, MakesRelationsIntoLookUpFields) {
    QSqlRelationalTableModel model(nullptr, database_);
    model.setTable(QStringLiteral("customers"));
    model.setRelation(
        2, QSqlRelation(QStringLiteral("countries"), QStringLiteral("code"), QStringLiteral("name")));
    model.select();
    ItemModelDataSet dataSet(&model);
    EXPECT_EQ(describe(dataSet),
              "id|id|ftAutoInc|0\nname|name|ftString|0\ncountry|country|ftInteger|0|hidden\n"
              "Credit Limit|Credit Limit|ftFloat|0\nactive|active|ftBoolean|0\nsince|since|ftString|0\n"
              "country_name|country|ftString|0|by country\n");
    dataSet.First();
    EXPECT_EQ(dataSet.FieldByName("country").GetAsString() +
                  dataSet.FieldByName("country_name").GetAsString(),
              "47Norway");

    TVDatasetStructure structure;
    TVQueryPanel panel;
    setUp(structure, panel, dataSet);
    TDSField& country = *structure.FieldByName(fnDisplayName, "country");
    EXPECT_EQ(country.GetID(), 7);
    EXPECT_EQ(country.FieldType, ftInteger);
    auto& editor = dynamic_cast<TDSListEditor&>(*country.GetValueEditor());
    editor.Refresh();
    EXPECT_EQ(editor.Items.GetText() + editor.Values.GetText(), "Sweden\nNorway\n46\n47\n");

    DatasetFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    panel.ManualAddCond(*panel.GetRootBracket(), &country, structure.OperatorByName("Equal"), "47");
    EXPECT_TRUE(proxy.setFilterExpression(filterText(panel)));
    EXPECT_EQ(shown(proxy), "1 3 ");

    // Both tables have a name.
    structure.SetFilterSyntax(fsSQLLike);
    panel.ManualAddCond(*panel.GetRootBracket(), structure.FieldByName(fnText, "name"),
                        structure.OperatorByName("StartsWith"), "Adam's");
    EXPECT_NE(MessageOf<DatabaseError>([&] { applyFilter(model, filterText(panel)); }).find("ambiguous"),
              std::string::npos);
    EXPECT_EQ(shown(model), "1 2 3 4 ");
    for (const bool strict : {false, true}) {
        panel.SetStrict(strict);
        applyFilter(model, {});
        qualifyColumns(structure, model);
        applyFilter(model, filterText(panel));
        EXPECT_EQ(shown(model), "3 ");
    }
    EXPECT_TRUE(proxy.setFilterExpression(QStringLiteral("customers.name = 'Ad*'")));

    run("insert into countries values (1, 'Norway')");
    applyFilter(model, {});
    model.relationModel(2)->select();
    EXPECT_FALSE(proxy.setFilterExpression(QStringLiteral("country = 47")));
    EXPECT_TRUE(proxy.errorString().contains(QStringLiteral("several keys")));
}

TEST_F(QtDataSet, KeepsTheFilterWhenAnotherIsBad) {
    QSqlTableModel model(nullptr, database_);
    model.setTable(QStringLiteral("customers"));
    model.select();
    applyFilter(model, QStringLiteral("id > 1"));
    EXPECT_NE(MessageOf<DatabaseError>([&] { applyFilter(model, QStringLiteral("id = ")); }), "");
    EXPECT_EQ(shown(model), "2 3 4 ");
    EXPECT_EQ(model.filter(), QStringLiteral("id > 1"));
    model.setEditStrategy(QSqlTableModel::OnManualSubmit);
    model.setData(model.index(0, 1), QStringLiteral("new"));
    EXPECT_EQ(MessageOf<DatabaseError>([&] { applyFilter(model, {}); }),
              "The table has changes that are not saved");
    EXPECT_EQ(model.index(0, 1).data().toString(), QStringLiteral("new"));
    model.revertAll();

    DatasetFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    EXPECT_TRUE(proxy.setFilterExpression(QStringLiteral("id > 2")));
    for (const char* const bad : {"id > ", "ident > 2", "id = 'x'"}) {
        EXPECT_FALSE(proxy.setFilterExpression(QString::fromUtf8(bad)));
        EXPECT_TRUE(proxy.errorString().contains(QStringLiteral("at position"))) << bad;
        EXPECT_EQ(shown(proxy), "3 4 ");
    }
    EXPECT_EQ(proxy.filterExpression(), QStringLiteral("id > 2"));

    model.setTable(QStringLiteral("countries"));
    model.select();
    EXPECT_EQ(shown(proxy), "") << "the filter no longer fits";
    EXPECT_EQ(proxy.errorString(), QStringLiteral("Unknown column \"id\" at position 1"));
    EXPECT_TRUE(proxy.setFilterExpression({}));
    EXPECT_EQ(shown(proxy), "46 47 ");
    EXPECT_EQ(proxy.errorString(), QString());
}

TEST_F(QtDataSet, FiltersManyRowsAtOnce) {
    run("create table many as with recursive n(i) as (select 1 union all select i + 1 from n where i < "
        "100000) "
        "select i, 'name ' || i as name from n");
    QSqlQueryModel model;
    model.setQuery(QStringLiteral("select i, name from many"), database_);
    DatasetFilterProxyModel proxy;
    proxy.setSourceModel(&model);
    QElapsedTimer timer;
    timer.start();
    EXPECT_TRUE(
        proxy.setFilterExpression(QStringLiteral("name = '*99*' and i > 1000 and not i in (1099, 1199)")));
    const int rows = proxy.rowCount();
    RecordProperty("milliseconds", static_cast<int>(timer.elapsed()));
    QSqlQuery count(database_);
    ASSERT_TRUE(count.exec(QStringLiteral("select count(*) from many where name like '%99%' and i > 1000")) &&
                count.next());
    EXPECT_EQ(rows, count.value(0).toInt() - 2);
}

// --- Both syntaxes mean the same.

class RandomConditions {
public:
    RandomConditions(TVQueryPanel& panel, unsigned seed) : panel_(panel), random_(seed) {}

    std::set<std::string> used; // the operators

    void fill(TFilterBracket& bracket, int depth) {
        bracket.SetLinkType(static_cast<TFilterLinkType>(number(4)));
        for (int rows = 1 + number(3); rows > 0; --rows)
            if (depth > 0 && number(3) == 0)
                fill(*bracket.AddNewBracket(), depth - 1);
            else
                add(bracket);
    }

private:
    int number(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }

    void add(TFilterBracket& bracket) {
        TVCustomDBStructure& structure = *panel_.GetDbStruct();
        TDSField& field = *structure.GetField(number(structure.GetFieldCount()));
        TDSOperator& op = *field.GetOperator(number(field.GetOperatCount()));
        if (!panel_.GetStrict() && op.ValueKind == vkList &&
            !structure.GetQuotedTypes().Contains(field.FieldType))
            return; // a plain template loses its field
        TSimpleCond& condition = *panel_.ManualAddCond(bracket, &field, &op, value(field.FieldType));
        condition.SetValue(2, value(field.FieldType));
        if (op.ValueKind == vkList)
            condition.SetValue(1, value(field.FieldType) + ", " + value(field.FieldType));
        used.insert(op.GetName());
    }

    std::string value(TFieldType type) {
        static const char* const texts[] = {"Ada", "Bob", "a", "d", "Adam's", "zz"};
        static const char* const dates[] = {"2001-03-05", "1999-12-31", "2005-06-07"};
        switch (type) {
        case ftString:
            return texts[number(6)];
        case ftDate:
            return dates[number(3)];
        case ftBoolean:
            return std::to_string(number(2));
        case ftFloat:
            return std::to_string(number(12)) + (number(2) ? ".5" : "");
        default:
            return std::to_string(number(6));
        }
    }

    TVQueryPanel& panel_;
    std::mt19937 random_;
};

TEST_F(QtDataSet, FindsTheSameRowsInBothSyntaxes) {
    QSqlTableModel all(nullptr, database_);
    all.setTable(QStringLiteral("customers"));
    all.select();
    QSqlTableModel table(nullptr, database_);
    table.setTable(QStringLiteral("customers"));
    table.select();
    ItemModelDataSet dataSet(&all);
    dataSet.setColumnType(5, ftDate);
    DatasetFilterProxyModel proxy;
    proxy.setSourceModel(&all);
    ASSERT_TRUE(proxy.setColumns(dataSet.columns()));
    TVDatasetStructure structure;
    TVQueryPanel panel;
    setUp(structure, panel, dataSet);
    ASSERT_TRUE(proxy.setFilterOptions(filterOptions(structure)));

    std::set<std::string> used;
    int partial = 0;
    for (unsigned seed = 0; seed < 2000; ++seed) {
        panel.SetStrict(seed % 2 == 0);
        panel.ClearRows();
        RandomConditions conditions(panel, seed);
        conditions.fill(*panel.GetRootBracket(), 2);
        structure.SetFilterSyntax(fsStandard);
        const QString standard = filterText(panel);
        ASSERT_TRUE(proxy.setFilterExpression(standard)) << proxy.errorString().toStdString() << '\n'
                                                         << standard.toStdString();
        structure.SetFilterSyntax(fsSQLLike);
        const QString sql = filterText(panel);
        applyFilter(table, sql);
        ASSERT_EQ(shown(proxy), shown(table)) << standard.toStdString() << '\n' << sql.toStdString();
        // The dialect of SQL is one that the proxy knows too.
        ASSERT_TRUE(proxy.setFilterExpression(sql)) << proxy.errorString().toStdString();
        ASSERT_EQ(shown(proxy), shown(table)) << sql.toStdString();
        partial += proxy.rowCount() > 0 && proxy.rowCount() < 4;
        used.insert(conditions.used.begin(), conditions.used.end());
    }
    EXPECT_EQ(used.size(), DefaultOperators().size());
    EXPECT_GT(partial, 500);
}

} // namespace
