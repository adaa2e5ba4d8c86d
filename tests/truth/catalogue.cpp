#include "tests/truth/catalogue.h"

#include <algorithm>
#include <chrono>
#include <set>

namespace lumora::truth {

namespace {

bool anyNull(const Cells& cells) {
    return std::any_of(cells.begin(), cells.end(), isNull);
}

Cell joinNames(const Cells& c) {
    return anyNull(c) ? Cell() : Cell(text(c[0]) + " " + text(c[1]));
}

int dayNumber(const Cell& date) {
    using namespace std::chrono;
    const auto part = [&](std::size_t at, std::size_t size) {
        return std::stoi(text(date).substr(at, size));
    };
    const year_month_day day{year(part(0, 4)), month(static_cast<unsigned>(part(5, 2))),
                             std::chrono::day(static_cast<unsigned>(part(8, 2)))};
    return static_cast<int>(sys_days(day).time_since_epoch().count());
}

// The first operands of a group's rows that are not null.
Cells present(const std::vector<Cells>& rows) {
    Cells cells;
    for (const Cells& row : rows)
        if (!isNull(row[0]))
            cells.push_back(row[0]);
    return cells;
}

Cell sum(const std::vector<Cells>& rows) {
    const Cells cells = present(rows);
    double total = 0;
    for (const Cell& cell : cells)
        total += number(cell);
    return cells.empty() ? Cell() : total;
}

Cell count(const std::vector<Cells>& rows) {
    return static_cast<double>(present(rows).size());
}

Cell countDistinct(const std::vector<Cells>& rows) {
    const Cells cells = present(rows);
    return static_cast<double>(std::set<Cell>(cells.begin(), cells.end()).size());
}

Cell average(const std::vector<Cells>& rows) {
    const Cell total = sum(rows);
    return isNull(total) ? total : number(total) / number(count(rows));
}

Cell least(const std::vector<Cells>& rows) {
    const Cells cells = present(rows);
    return cells.empty() ? Cell() : *std::min_element(cells.begin(), cells.end());
}

Cell greatest(const std::vector<Cells>& rows) {
    const Cells cells = present(rows);
    return cells.empty() ? Cell() : *std::max_element(cells.begin(), cells.end());
}

Truth hasOrdered(const Cells& customer, const Table& orders, const Cell& since) {
    const std::size_t id = orders.columnIndex("customer_id");
    const std::size_t date = orders.columnIndex("order_date");
    return truthOf(std::any_of(orders.rows.begin(), orders.rows.end(), [&](const Cells& order) {
        return compare(order[id], "=", customer[0]) == Truth::yes &&
               (isNull(since) || compare(order[date], ">=", since) == Truth::yes);
    }));
}

} // namespace

const std::vector<VirtualField> virtualFields = {
    {"coalesce(customers.company, customers.first_name || ' ' || customers.last_name)",
     {"customers.company", "customers.first_name", "customers.last_name"},
     [](const Cells& c) {
         return isNull(c[0]) ? joinNames({c[1], c[2]}) : c[0];
     }},
    {"(customers.first_name || ' ' || customers.last_name)",
     {"customers.first_name", "customers.last_name"},
     joinNames},
    {"(employees.first_name || ' ' || employees.last_name)",
     {"employees.first_name", "employees.last_name"},
     joinNames},
    {"(bosses.first_name || ' ' || bosses.last_name)", {"bosses.first_name", "bosses.last_name"}, joinNames},
    {"round(items.quantity * items.unit_price * (1 - items.discount), 2)", // quarters at most: nothing is cut
     {"items.quantity", "items.unit_price", "items.discount"},
     [](const Cells& c) { return anyNull(c) ? Cell() : number(c[0]) * number(c[1]) * (1 - number(c[2])); }},
    {"round(products.list_price - items.unit_price, 2)",
     {"products.list_price", "items.unit_price"},
     [](const Cells& c) { return anyNull(c) ? Cell() : number(c[0]) - number(c[1]); }},
    {"cast(julianday(date(shipments.shipped_at)) - julianday(orders.order_date) as integer)",
     {"shipments.shipped_at", "orders.order_date"},
     [](const Cells& c) { return anyNull(c) ? Cell() : double(dayNumber(c[0]) - dayNumber(c[1])); }},
};

const std::vector<Predicate> predicates = {
    {"not exists (select * from orders o where o.customer_id = customers.customer_id)",
     {"customers.customer_id"},
     [](const Cells& c, const std::vector<Cells>&, const Table& orders) {
         return !hasOrdered(c, orders, {});
     }},
    {"julianday(orders.order_date) + '@1' < julianday(payments.paid_on)",
     {"orders.order_date", "payments.paid_on"},
     [](const Cells& c, const std::vector<Cells>& v, const Table&) {
         return anyNull(c) ? Truth::unknown : truthOf(dayNumber(c[0]) + number(v[0][0]) < dayNumber(c[1]));
     }},
    {"orders.total - orders.freight between '@1' and '@2'",
     {"orders.total", "orders.freight"},
     [](const Cells& c, const std::vector<Cells>& v, const Table&) {
         if (anyNull(c))
             return Truth::unknown;
         const double goods = number(c[0]) - number(c[1]);
         return truthOf(number(v[0][0]) <= goods && goods <= number(v[1][0]));
     }},
    {"exists (select * from orders o where o.customer_id = customers.customer_id and o.order_date >= '@1')",
     {"customers.customer_id"},
     [](const Cells& c, const std::vector<Cells>& v, const Table& orders) {
         return hasOrdered(c, orders, v[0][0]);
     }},
    {"orders.channel in (@1)",
     {"orders.channel"},
     [](const Cells& c, const std::vector<Cells>& v, const Table&) { return in(c[0], v[0]); }},
    {"orders.status = 'new' or orders.total > '@1'",
     {"orders.status", "orders.total"},
     [](const Cells& c, const std::vector<Cells>& v, const Table&) {
         return std::max(compare(c[0], "=", "new"), compare(c[1], ">", v[0][0]));
     }},
};

const std::vector<Formula> formulas = {
    {"@1", 1, Operand::any, [](const Cells& c) { return c[0]; }, nullptr},
    {"@1 || ' Ab, (c) ''' || @2", 2, Operand::text,
     [](const Cells& c) { return anyNull(c) ? Cell() : text(c[0]) + " Ab, (c) '" + text(c[1]); }, nullptr},
    {"coalesce(@1, 'O''Hara -- @2')", 1, Operand::text,
     [](const Cells& c) { return isNull(c[0]) ? "O'Hara -- @2" : c[0]; }, nullptr},
    {"@1 * 2 - @2", 2, Operand::number,
     [](const Cells& c) { return anyNull(c) ? Cell() : number(c[0]) * 2 - number(c[1]); }, nullptr},
    {"@1 || ' checksum('", 1, Operand::text,
     [](const Cells& c) { return isNull(c[0]) ? Cell() : text(c[0]) + " checksum("; }, nullptr},
    {"7", 0, Operand::any, [](const Cells&) -> Cell { return 7.0; }, nullptr},
    {"count(@1)", 1, Operand::any, nullptr, count},
    {"count (@1)", 1, Operand::any, nullptr, count},
    {"count(distinct @1)", 1, Operand::any, nullptr, countDistinct},
    {"sum(@1)", 1, Operand::number, nullptr, sum},
    {"round(sum(@1), 2)", 1, Operand::number, nullptr, sum},
    {"Avg(@1)", 1, Operand::number, nullptr, average},
    {"min(@1)", 1, Operand::ordered, nullptr, least},
    {"MAX(@1)", 1, Operand::ordered, nullptr, greatest},
};

const std::vector<SubQuery> subQueries = {
    {"SELECT boss_id FROM employees", Operand::number, "employees", "boss_id", "", {}}, // one is null
    {"select order_id from payments where method = 'invoice'", Operand::number, "payments", "order_id",
     "method", "invoice"},
    {"Select\ncity From customers", Operand::text, "customers", "city", "", {}},
    {"select phone from customers where last_name = 'O''Hara'", Operand::text, "customers", "phone",
     "last_name", "O'Hara"},
};

} // namespace lumora::truth
