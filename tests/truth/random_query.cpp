#include "tests/truth/random_query.h"

#include "tests/truth/reference.h"

#include <algorithm>
#include <random>

namespace lumora::truth {

namespace {

bool fits(const TDSField& field, Operand kind) {
    switch (kind) {
    case Operand::text:
        return isTextType(field.FieldType);
    case Operand::number:
        return isNumberType(field.FieldType);
    case Operand::ordered:
        return field.FieldType != ftBoolean;
    case Operand::any:
        break;
    }
    return true;
}

class RandomQuery {
public:
    RandomQuery(TVQueryPanel& panel, const std::vector<Table>& tables, unsigned seed)
        : panel_(panel), model_(*panel.GetDbStruct()), tables_(tables), random_(seed) {}

    void make() {
        TSQLOptions options;
        for (int i = 0; i < EnumCount<TSQLOption>; ++i)
            if (oneIn(i == soQuoteAliases || i == soSortByNames ? 4 : 2))
                options.Include(static_cast<TSQLOption>(i));
        panel_.SetSQLOptions(options);
        panel_.SetSQLSyntax(oneIn(3) ? ssSQL1 : ssSQL2);
        turnLinks();
        chooseFields();
        if (oneIn(4))
            panel_.SetMainTableName(fields_.front()->GetTable()->GetName());
        addResultFields();
        fillBracket(*panel_.GetRootBracket(), 3);
    }

private:
    int number(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
    bool oneIn(int count) { return number(count) == 0; }
    template <typename List>
    const auto& pick(const List& list) {
        return list[static_cast<std::size_t>(number(static_cast<int>(std::size(list))))];
    }

    // The sample's links are inner and left ones; some queries see others.
    void turnLinks() {
        const bool turns = oneIn(4);
        for (int i = 0; i < model_.GetLinkCount(); ++i)
            if (turns && oneIn(2))
                model_.GetLink(i)->LinkType = static_cast<TDSLinkType>(number(4));
    }

    void chooseFields() {
        const TDSTable* tables[3];
        for (const TDSTable*& table : tables)
            table = model_.GetTable(number(model_.GetTableCount()));
        for (int i = 0; i < model_.GetFieldCount(); ++i) {
            const TDSTableList& own = model_.GetField(i)->GetTables();
            if (oneIn(60) || std::all_of(own.begin(), own.end(), [&](const TDSTable* table) {
                    return std::find(std::begin(tables), std::end(tables), table) != std::end(tables);
                }))
                fields_.push_back(model_.GetField(i));
        }
        std::shuffle(fields_.begin(), fields_.end(), random_);
    }

    // None when none of the kind is at hand; of any kind there always is one.
    TDSField* field(Operand kind) {
        const auto found = std::find_if(fields_.begin() + number(static_cast<int>(fields_.size())),
                                        fields_.end(), [kind](const TDSField* f) { return fits(*f, kind); });
        return found == fields_.end() ? nullptr : *found;
    }

    void addResultFields() {
        const bool justSorting = oneIn(12);
        for (int columns = 1 + number(4); columns > 0; --columns) {
            const Formula& formula = oneIn(2) ? formulas.front() : pick(formulas);
            if (!justSorting || (formula.operands > 0 && formula.ofRow)) // "*" has no groups and no constants
                addResultField(formula);
        }
        TRFieldList& fields = panel_.GetQResult().GetResultFields();
        if (fields.Count() == 0)
            addResultField(formulas.front());
        fields.JustSorting = justSorting;
    }

    void addResultField(const Formula& formula) {
        TDSFieldList operands;
        for (int i = 0; i < formula.operands; ++i)
            if (TDSField* const operand = field(formula.kind))
                operands.push_back(operand);
        const bool first = panel_.GetQResult().GetResultFields().Count() == 0; // it is to bring a table
        if (static_cast<int>(operands.size()) < formula.operands || (first && operands.empty()))
            return addResultField(formulas.front());
        static const std::string odd[] = {"Größe \"x\"", "order", "1st, 2nd", "E-mail"};
        static const std::string plain[] = {"Column", "Betrag_ß", "Order total"};
        const std::string own = operands.empty() ? "" : operands[0]->GetFieldText();
        const bool isColumn = own.find_first_not_of("abcdefghijklmnopqrstuvwxyz_") == own.npos;
        const std::string caption = oneIn(12) ? pick(odd) : oneIn(2) && isColumn ? own : pick(plain);
        TResultField& added = *panel_.GetQResult().GetResultFields().Add(formula.sql, operands, caption);
        if (oneIn(3))
            added.SetSorting(oneIn(2) ? stAscending : stDescending);
        if (added.GetSorting() != stNoSort && oneIn(4))
            added.SetSortOrder(number(3));
    }

    // --- Conditions.

    void fillBracket(TFilterBracket& bracket, int depth) {
        bracket.SetLinkType(static_cast<TFilterLinkType>(number(4)));
        for (int rows = number(4); rows > 0; --rows) {
            if (depth > 0 && oneIn(3))
                fillBracket(*bracket.AddNewBracket(), depth - 1);
            else if (oneIn(10))
                fillValues(*bracket.AddCustomCond(model_.GetCondition(number(model_.GetConditionCount()))),
                           nullptr);
            else
                addCondition(bracket);
            if (bracket.GetRowCount() > 0 && oneIn(8))
                bracket.GetRow(bracket.GetRowCount() - 1)->SetEnabled(false);
        }
    }

    void addCondition(TFilterBracket& bracket) {
        TDSField& chosen = *pick(fields_);
        TDSOperator& op = *pick(chosen.GetOperators());
        const bool swallows = op.ValueKind == vkList && !isTextType(chosen.FieldType);
        if (swallows && !panel_.GetStrict() && !oneIn(4))
            return;
        TSimpleCond& condition = *bracket.AddCond();
        condition.SetField(&chosen);
        condition.SetOperator(&op);
        fillValues(condition, &chosen);
    }

    void fillValues(TFilterCond& condition, const TDSField* field) {
        int k = 0;
        for (const ConditionValue& slot : valuesOf(condition)) {
            std::string text;
            if (slot.kind == vkSubQuery) {
                const SubQuery* query = &pick(subQueries);
                while ((query->kind == Operand::text) != isTextType(slot.type))
                    query = &pick(subQueries);
                text = query->sql;
            } else {
                text = slot.kind == vkList ? listValue(slot.type, field) : value(slot.type, field);
            }
            condition.SetValue(++k, text);
        }
    }

    std::string listValue(TFieldType type, const TDSField* field) {
        if (!panel_.GetStrict() && oneIn(5))
            return "";
        std::string list;
        for (int items = 1 + number(4); items > 0; --items) {
            const std::string item = value(type, field);
            const bool plain = item.find_first_of(",\"") == item.npos && !item.empty() &&
                               item.front() != ' ' && item.back() != ' ';
            list += list.empty() ? "" : oneIn(2) ? "," : " , ";
            if (plain && !oneIn(4)) {
                list += item;
                continue;
            }
            list += '"';
            for (const char c : item)
                list.append(c == '"' ? 2 : 1, c);
            list += '"';
        }
        return list;
    }

    // A value of the field's column; of a virtual field that of one of its columns. Empty for null.
    std::string sample(const TDSField& field) {
        if (field.GetKind() == vfkVirtual)
            return isTextType(field.FieldType) ? "O'Hara" : std::to_string(number(100));
        const Table& table = *std::find_if(tables_.begin(), tables_.end(), [&](const Table& data) {
            return data.name == field.GetTable()->GetName();
        });
        const Cell& cell = pick(table.rows)[table.columnIndex(field.GetFieldText())];
        return isNull(cell) ? "" : cell.index() == 1 ? show(cell) : text(cell);
    }

    std::string textValue(const TDSField* field) {
        static const std::string odd[] = {"",    "O'Hara",       "%", "_",     "50%",  "a_b", "\\",   "a\\b",
                                          " a ", "x' or '1'='1", "Å", "\"x\"", "a, b", "@1",  "NULL", ":p",
                                          "--"};
        const std::string known = field && !oneIn(4) ? sample(*field) : pick(odd);
        const std::size_t size = std::min<std::size_t>(known.size(), static_cast<std::size_t>(1 + number(4)));
        const std::size_t start = static_cast<std::size_t>(number(static_cast<int>(known.size() - size) + 1));
        const std::string piece = known.substr(start, size);
        const bool whole = std::any_of(piece.begin(), piece.end(), [](char c) { return c < 0; }) || oneIn(2);
        return whole ? known : piece;
    }

    std::string value(TFieldType type, const TDSField* field) {
        const bool own = field && field->FieldType == type && !oneIn(3);
        if (isTextType(type))
            return textValue(field);
        if (oneIn(panel_.GetStrict() ? 80 : 15)) {
            static const std::string odd[] = {"", "", "1 or 1=1", "maybe", "14:30"};
            const std::string& text =
                IsDateOrTime(type) && !panel_.GetStrict() ? odd[oneIn(2) ? 0 : 4] : pick(odd);
            return type == ftBoolean && !panel_.GetStrict() ? "" : text;
        }
        if (const std::string known = own ? sample(*field) : ""; !known.empty())
            return known;
        static const std::string booleans[] = {"0", "1", "true", "FALSE"};
        static const std::string dates[] = {"2021-01-08", "2021-02-28", "1899-12-30", " 2021-01-31 "};
        static const std::string times[] = {"9:00", "08:00:00", "2:30 pm", "16:00", "00:00:00"};
        static const std::string integers[] = {"0", "-7", "+3", " 5 ", "007", "2021", "3000000000"};
        static const std::string decimals[] = {"0.5", "-2.5", "1.25e1", "+3", "1e2"};
        switch (type) {
        case ftBoolean:
            return pick(booleans);
        case ftDate:
            return pick(dates);
        case ftTime:
            return pick(times);
        case ftDateTime:
            return dates[number(3)] + (oneIn(2) ? "" : " " + pick(times));
        case ftFloat:
        case ftCurrency:
        case ftBCD:
            return oneIn(2) ? pick(decimals) : pick(integers);
        default:
            return oneIn(2) ? pick(integers) : std::to_string(number(60));
        }
    }

    TVQueryPanel& panel_;
    TVCustomDBStructure& model_;
    const std::vector<Table>& tables_;
    std::mt19937 random_;
    std::vector<TDSField*> fields_; // those of a few tables, so that not every query joins them all
};

} // namespace

void makeRandomQuery(TVQueryPanel& panel, const std::vector<Table>& tables, unsigned seed) {
    RandomQuery(panel, tables, seed).make();
}

} // namespace lumora::truth
