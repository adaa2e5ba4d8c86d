#include "bench_query.h"

#include "bench_inputs.h"
#include "bench_model.h"

#include <algorithm>
#include <array>
#include <random>

namespace lumora::bench {

namespace {

constexpr int Depth = 4;
constexpr int TablesInQuery = 4;

class TQueryMaker {
    int Pick(int count) { return static_cast<int>(random_() % static_cast<unsigned>(count)); }

    template <typename TList>
    const auto& PickFrom(const TList& list) {
        return list[static_cast<std::size_t>(Pick(static_cast<int>(std::size(list))))];
    }

public:
    TQueryMaker(TVQuery& query, unsigned seed)
        : query_(query), model_(*query.GetDbStruct()), random_(20260702 + seed) {
        std::vector<TDSTable*> tables;
        for (int i = 0; i < std::min(TablesInQuery, model_.GetTableCount()); ++i)
            tables.push_back(model_.GetTable(i));
        for (int i = 0; i < model_.GetFieldCount(); ++i)
            if (TDSField* const field = model_.GetField(i);
                std::find(tables.begin(), tables.end(), field->GetTable()) != tables.end())
                fields_.push_back(field);
    }

    void AddResultFields() {
        TRFieldList& list = query_.GetQResult().GetResultFields();
        list.JustSorting = false;
        for (int i = 0; i < 3; ++i) {
            TDSField* const field = PickFrom(fields_);
            list.Add("@1", {field}, field->GetDisplayName());
        }
        list.GetRField(1)->SetSorting(stAscending);
    }

    // A bracket holds a few conditions of its own; the others are in the brackets below it.
    void FillBracket(TFilterBracket& bracket, int depth, int count) {
        bracket.SetLinkType(static_cast<TFilterLinkType>(Pick(8) < 6 ? Pick(2) : 2 + Pick(2)));
        const int own = depth == Depth ? count : std::min(2, count);
        for (int i = 0; i < own; ++i)
            AddCondition(bracket);
        int rest = count - own;
        for (int parts = std::clamp(rest / 8, 1, 8 << (depth == 1 ? 2 : 0)); rest > 0; --parts) {
            const int part = std::max(1, rest / std::max(parts, 1));
            FillBracket(*bracket.AddNewBracket(), depth + 1, part);
            rest -= part;
        }
    }

private:
    void AddCondition(TFilterBracket& bracket) {
        if (Pick(25) == 0) {
            TDSCondition* const target = model_.GetCondition(Pick(TablesInQuery));
            bracket.AddCustomCond(target)->SetValue(1, Value(ftString));
            return;
        }
        TSimpleCond& condition = *bracket.AddCond();
        TDSField* const field = PickFrom(fields_);
        condition.SetField(field);
        TDSOperator* const op = field->GetOperator(Pick(field->GetOperatCount()));
        const bool isNumberList =
            op->ValueKind == vkList && !model_.GetQuotedTypes().Contains(field->FieldType);
        if (Pick(10) >= 4 && !isNumberList) // else the first one: equal
            condition.SetOperator(op);
        const bool isList = condition.GetValueKind(1) == vkList;
        for (int value = 1; value <= condition.GetValueCount(); ++value)
            condition.SetValue(value, isList ? ListValue(field->FieldType) : Value(field->FieldType));
        if (!isList && condition.GetValueCount() == 1 && Pick(50) == 0)
            condition.SetValueIsParam(1, true);
    }

    std::string ListValue(TFieldType type) {
        std::string list = Value(type);
        for (int i = Pick(4); i >= 0; --i)
            list.append(",").append(Value(type));
        return list;
    }

    std::string Value(TFieldType type) {
        static constexpr std::array<const char*, 8> words = {"Lisboa",  "O'Neill", "Wholesale", "North-East",
                                                             "in work", "Hamburg", "A-1034",    "open"};
        static constexpr std::array<const char*, 4> dates = {"2024-03-17", "2025-12-01", "2023-07-30",
                                                             "2026-01-09"};
        switch (type) {
        case ftSmallint:
        case ftInteger:
        case ftAutoInc:
            return std::to_string(Pick(100000));
        case ftFloat:
        case ftCurrency:
            return std::to_string(Pick(10000)) + "." + std::to_string(10 + Pick(90));
        case ftBoolean:
            return Pick(2) == 0 ? "False" : "True";
        case ftDate:
            return PickFrom(dates);
        case ftDateTime:
            return std::string(PickFrom(dates)) + " 14:30:00";
        default:
            return PickFrom(words);
        }
    }

    TVQuery& query_;
    const TVCustomDBStructure& model_;
    std::vector<TDSField*> fields_;
    std::mt19937 random_;
};

} // namespace

void FillQuery(TVQuery& query, int conditions, unsigned seed) {
    TQueryMaker maker(query, seed);
    maker.AddResultFields();
    maker.FillBracket(*query.GetRootBracket(), 1, conditions);
}

namespace {

constexpr TModelShape ModelOfQueries = {12, 20, 16};
constexpr std::size_t BytesOfPanel = 20'000;
constexpr std::size_t BytesOfQuery = 4'000;
constexpr std::size_t BytesOfCondition = 450; // and its text in the statement

int QueryCount(std::size_t bytesBeside, int conditions) {
    return InputCount(bytesBeside + static_cast<std::size_t>(conditions) * BytesOfCondition);
}

} // namespace

TBenchQueries::TBenchQueries(int conditions) {
    FillModel(Model, ModelOfQueries);
    const int count = QueryCount(BytesOfQuery, conditions);
    for (int i = 0; i < count; ++i) {
        TVQuery& query = *Queries.emplace_back(std::make_unique<TVQuery>(Model));
        FillQuery(query, conditions, static_cast<unsigned>(i));
    }
}

TBenchPanels::TBenchPanels(int conditions) {
    FillModel(Model, ModelOfQueries);
    const int count = QueryCount(BytesOfPanel, conditions);
    for (int i = 0; i < count; ++i) {
        TVQueryPanel& panel = *Panels.emplace_back(std::make_unique<TVQueryPanel>());
        panel.SetDbStruct(&Model);
        panel.Activate();
        FillQuery(panel.GetQuery(), conditions, static_cast<unsigned>(i));
    }
}

const TBenchQueries& QueriesOf(int conditions) {
    static TKeptInputs<std::unique_ptr<TBenchQueries>> kept;
    return *kept.Of(conditions, [conditions] { return std::make_unique<TBenchQueries>(conditions); });
}

const TBenchPanels& PanelsOf(int conditions) {
    static TKeptInputs<std::unique_ptr<TBenchPanels>> kept;
    return *kept.Of(conditions, [conditions] { return std::make_unique<TBenchPanels>(conditions); });
}

// --- The plain query.

namespace {

// Cuts the line of a condition into the pieces that it was made of.
TPlainRow PlainCondition(const TVQuery& query, const TFilterCond& condition, std::string_view line) {
    TPlainRow row;
    const auto take = [&line](std::string_view piece, std::string& before, std::string& into) {
        const std::size_t at = line.find(piece);
        if (piece.empty() || at == std::string_view::npos)
            return;
        before = line.substr(0, at);
        into = piece;
        line.remove_prefix(at + piece.size());
    };
    if (condition.GetRowType() == frtSimpleCondition)
        take(static_cast<const TSimpleCond&>(condition).GetField()->GetSQLExpr(), row.Before, row.Field);
    if (condition.GetValueCount() > 0)
        take(query.ExtractValue(condition, 1), row.Operator, row.Value);
    row.After = line;
    return row;
}

TPlainRow PlainBracket(const TVQuery& query, const TFilterBracket& bracket, const TStringList& lines,
                       int& at) {
    TPlainRow plain;
    plain.IsBracket = true;
    plain.Negated = bracket.GetLinkType() == fltNone || bracket.GetLinkType() == fltNotAll;
    plain.IsAny = bracket.GetLinkType() == fltAny || bracket.GetLinkType() == fltNone;
    ++at; // the opening line
    for (int i = 0; i < bracket.GetRowCount(); ++i) {
        const TFilterRow& row = *bracket.GetRow(i);
        if (row.GetRowType() == frtBracket) {
            plain.Rows.push_back(PlainBracket(query, static_cast<const TFilterBracket&>(row), lines, at));
            continue;
        }
        std::string_view line = lines[at++];
        if (i + 1 < bracket.GetRowCount())
            line.remove_suffix(plain.IsAny ? 3 : 4); // the connective
        plain.Rows.push_back(PlainCondition(query, static_cast<const TFilterCond&>(row), line));
    }
    ++at; // the closing line
    return plain;
}

void AppendPlainRow(std::string& out, const TPlainRow& row) {
    if (!row.IsBracket) {
        out.append(row.Before).append(row.Field).append(row.Operator).append(row.Value).append(row.After);
        return;
    }
    out += row.Negated ? " NOT (\n" : " (\n";
    for (const TPlainRow& inner : row.Rows) {
        if (&inner != &row.Rows.front())
            out += row.IsAny ? " OR\n" : " AND\n";
        AppendPlainRow(out, inner);
    }
    out += "\n)";
}

} // namespace

TPlainQuery MakePlainQuery(TVQuery& query) {
    TPlainQuery plain;
    const TStringList& lines = query.GetQResult().GetSQL();
    int at = 0;
    while (lines[at] != "WHERE")
        plain.Head.append(lines[at++]).append("\n");
    plain.Head.append(lines[at++]).append("\n");
    plain.Root = PlainBracket(query, *query.GetRootBracket(), lines, at);
    return plain;
}

void AppendPlainQuery(std::string& out, const TPlainQuery& query) {
    out += query.Head;
    AppendPlainRow(out, query.Root);
}

} // namespace lumora::bench
