// What the head of lumora/lumora.h shows, with that header alone.
#include "lumora/lumora.h"

#include <gtest/gtest.h>

using namespace lumora;

TEST(PublicFace, DoesWhatItsHeadShows) {
    TVDBStructure model;
    model.LoadFromFile(LUMORA_FIXTURES "/shop/shop.model");

    TVQuery query(model);
    query.SetStrict(true);
    TRFieldList& columns = query.GetQResult().GetResultFields();
    columns.JustSorting = false;
    columns.AddByExpression("Company", "{Company}", stAscending, 1);
    query.ManualAddCond(*query.GetRootBracket(), model.FieldByID(6), model.OperatorByName("GreaterThan"),
                        "100");

    query.BuildQuery();
    const std::string sql = query.GetQResult().GetSQL().GetText();
    EXPECT_EQ(sql, "SELECT DISTINCT customers.company as Company\n"
                   "FROM customers\n"
                   "     LEFT OUTER JOIN orders ON (customers.custno=orders.custno)\n"
                   "WHERE\n (\norders.amount >100\n)\n"
                   "ORDER BY 1 ASC\n");

    TStringList text, again;
    WriteQueryText(query, text);
    query.ClearAll();
    ReadQueryText(query, text);
    WriteQueryText(query, again);
    EXPECT_EQ(again, text);
    ReadSQL(query, TStringList(sql));
    query.BuildQuery();
    EXPECT_EQ(query.GetQResult().GetSQL().GetText(), sql);

    TVQueryPanel panel;
    panel.SetDbStruct(&model);
    panel.Activate();
    panel.ParseSQL(TStringList(sql));
    EXPECT_EQ(panel.GetQueryText(),
              " Choose records where all of the following apply\n   Amount is greater than 100\n");
}
