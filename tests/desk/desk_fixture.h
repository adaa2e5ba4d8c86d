// A small database of customers and their orders, and a folder for everything.
#pragma once

#include "apps/lumora-desk/deskdocument.h"
#include "lumora/qtsql/databaseconnection.h"
#include "tests/cli_process.h"

#include <gtest/gtest.h>

#include <QSqlQuery>
#include <QTest>

#include <string>

namespace lumora::tests {

class DeskTest : public testing::Test {
protected:
    DeskTest() {
        const DatabaseConnection connection(parseDatabase(databaseFile), DatabaseConnection::Access::Create);
        QSqlQuery query(connection.connection());
        for (const char* const statement :
             {"create table customers (id integer primary key, name varchar(30), city varchar(30), since "
              "date)",
              "create table orders (id integer primary key, customer_id integer references customers (id), "
              "total decimal(10,2))",
              "insert into customers values (1, 'Ann', 'Oslo', '2021-05-01'), (2, 'Bob', 'Bergen', null), "
              "(3, 'Eve', 'Oslo', '2020-01-31')",
              "insert into orders values (1, 1, 12.5), (2, 1, 7), (3, 3, 100)"})
            if (!query.exec(statement))
                throw std::runtime_error(statement);
    }

    desk::OpenRequest request() const {
        desk::OpenRequest request;
        request.database = parseDatabase(databaseFile);
        request.queries.name = QString::fromStdString(queryFolder);
        return request;
    }
    desk::Statement statement(const QString& sql) const { return {parseDatabase(databaseFile), sql, {}, {}}; }

    // A statement that runs for about as long as it is let.
    static QString endless() {
        return QStringLiteral(
            "with recursive n(i) as (select 1 union all select i + 1 from n) select %1 from n");
    }

    static TDSField& field(desk::DeskDocument& document, const char* caption) {
        return *document.model()->FieldByName(fnDisplayName, caption);
    }
    // "FIELD is equal to VALUE" as a new row.
    static void addCondition(desk::DeskDocument& document, const char* caption, const char* value) {
        TVQueryPanel& panel = document.panel();
        panel.ManualAddCond(*panel.GetRootBracket(), &field(document, caption),
                            document.model()->OperatorByName("Equal"), value);
    }

    TemporaryFolder folder;
    const std::string databaseFile = folder / "shop.sqlite";
    const std::string queryFolder = folder / "queries";
};

} // namespace lumora::tests
