#include "bench_statements.h"

#include "bench_inputs.h"

#include <algorithm>
#include <iterator>

namespace lumora::bench {

const std::vector<std::string>& PlainNames() {
    static const std::vector<std::string> names = {"customers.company",
                                                   "customers.city",
                                                   "customers.credit",
                                                   "customers.since",
                                                   "customers.id",
                                                   "orders.amount",
                                                   "orders.placed_on",
                                                   "orders.no",
                                                   "orders.customer_id",
                                                   "products.name",
                                                   "products.price",
                                                   "products.category",
                                                   "order_lines.quantity",
                                                   "order_lines.price",
                                                   "order_lines.tax",
                                                   "people.last_name",
                                                   "people.email",
                                                   "people.postal_code",
                                                   "people.phone",
                                                   "payments.received",
                                                   "payments.currency",
                                                   "c.x",
                                                   "t.status",
                                                   "branches.\"Opening hours\""};
    return names;
}

std::string TStatementMaker::Make(int conditions) {
    sql_.clear();
    upper_ = Pick(4) == 0;
    ResultFields();
    Tables();
    Word("\nwhere ");
    Conditions(conditions, 8);
    OrderBy();
    return sql_;
}

void TStatementMaker::Word(std::string_view word) {
    for (const char c : word)
        sql_ += upper_ && c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

void TStatementMaker::ResultFields() {
    static constexpr const char* aliases[] = {"Name", "Total", "City", "HowMany", "\"Last order\""};
    static constexpr const char* functions[] = {"count(", "sum(", "max("};
    Word(Pick(8) == 0 ? "select distinct " : "select ");
    fields_ = 1 + Pick(3);
    for (int i = 0; i < fields_; ++i) {
        if (i > 0)
            sql_ += Pick(4) == 0 ? "," : ", ";
        const bool isTotal = Pick(6) == 0;
        sql_.append(isTotal ? PickFrom(functions) : "").append(PickFrom(names_)).append(isTotal ? ")" : "");
        if (Pick(3) == 0) {
            Word(" as ");
            sql_ += PickFrom(aliases);
        }
    }
}

void TStatementMaker::Tables() {
    const auto table = [this] {
        const std::string& name = PickFrom(names_);
        return name.substr(0, name.find('.'));
    };
    Word("\nfrom ");
    sql_ += table();
    if (Pick(3) == 0)
        sql_.append(" ").append(1, static_cast<char>('a' + Pick(26)));
    if (Pick(4) > 0)
        return;
    Word(Pick(2) == 0 ? " left join " : "\ninner join ");
    sql_.append(table()).append(" j");
    Word(" on ");
    sql_.append(PickFrom(names_)).append(" = ").append(PickFrom(names_));
}

void TStatementMaker::Conditions(int count, int depth) {
    bool isOr = Pick(3) == 0;
    while (count > 0) {
        const int inside = depth > 0 && count > 3 && Pick(2) == 0 ? std::max(2, count / (2 + Pick(3))) : 0;
        if (inside > 0) {
            sql_ += '(';
            Conditions(inside, depth - 1);
            sql_ += ')';
        } else {
            Condition();
        }
        count -= std::max(inside, 1);
        if (count > 0)
            Word(isOr ? " or " : Pick(3) == 0 ? " and " : "\n  and ");
        isOr = isOr != (Pick(20) == 0);
    }
}

// A condition on a field, as a person would write it.
void TStatementMaker::Condition() {
    static constexpr const char* comparisons[] = {" = ", " <> ", " > ", " >= ", " < ", " <= ", "="};
    if (Pick(20) == 0)
        Word("not ");
    sql_ += PickFrom(names_);
    switch (Pick(8)) {
    case 0:
    case 1:
        sql_ += PickFrom(comparisons);
        return Text("", "");
    case 2:
    case 3:
        sql_ += PickFrom(comparisons);
        return Number();
    case 4:
        Word(Pick(5) == 0 ? " not like " : " like ");
        return Text(Pick(2) == 0 ? "%" : "", "%");
    case 5:
        Word(" between ");
        Number();
        Word(" and ");
        return Number();
    case 6:
        Word(" in (");
        for (int i = Pick(6); i > 0; --i) {
            Number();
            sql_ += Pick(3) == 0 ? "," : ", ";
        }
        Number();
        sql_ += ')';
        return;
    default:
        return Word(Pick(2) == 0 ? " is null" : " is not null");
    }
}

void TStatementMaker::Text(std::string_view before, std::string_view after) {
    static constexpr const char* words[] = {"North", "Star", "Ltd",      "Lisboa", "O''Neill", "in work",
                                            "A-10",  "x",    "open end", "Street", "and",      "2024-03-17"};
    sql_.append("'").append(before);
    for (int i = Pick(3); i > 0; --i)
        sql_.append(PickFrom(words)).append(" ");
    sql_.append(PickFrom(words)).append(after).append("'");
}

void TStatementMaker::Number() {
    static constexpr int limits[] = {10, 100, 1000, 100000};
    sql_ += std::to_string(Pick(PickFrom(limits)));
    if (Pick(5) == 0)
        sql_.append(".").append(std::to_string(Pick(100)));
}

void TStatementMaker::OrderBy() {
    if (Pick(2) == 0)
        return;
    Word("\norder by ");
    sql_ += std::to_string(1 + Pick(fields_));
    if (Pick(2) == 0)
        Word(" desc");
}

std::vector<std::string> MakeStatements(const std::vector<std::string>& names, int conditions) {
    constexpr std::size_t bytesOfCondition = 45;
    TStatementMaker maker(names);
    std::vector<std::string> statements;
    for (int i = InputCount(static_cast<std::size_t>(conditions) * bytesOfCondition); i > 0; --i)
        statements.push_back(maker.Make(conditions));
    return statements;
}

} // namespace lumora::bench
