// Makes a panel's query at random.
#pragma once

#include "panel/Vquerpnl.h"
#include "tests/truth/catalogue.h"

#include <random>
#include <string>
#include <vector>

namespace lumora::truth {

class RandomQuery {
public:
    // Values are mostly taken from the tables. One seed makes one query.
    RandomQuery(TVQueryPanel& panel, const std::vector<Table>& tables, unsigned seed)
        : panel_(panel), model_(*panel.GetDbStruct()), tables_(tables), random_(seed) {}

    void make();

private:
    int number(int below) { return static_cast<int>(random_() % static_cast<unsigned>(below)); }
    bool oneIn(int count) { return number(count) == 0; }
    template <typename List>
    const auto& pick(const List& list) {
        return list[static_cast<std::size_t>(number(static_cast<int>(std::size(list))))];
    }

    void turnLinks();
    void chooseFields();
    TDSField* field(Operand kind);
    void addResultFields();
    void addResultField(const Formula& formula);
    void fillBracket(TFilterBracket& bracket, int depth);
    void addCondition(TFilterBracket& bracket);
    void fillValues(TFilterCond& condition, const TDSField* field);
    std::string listValue(TFieldType type, const TDSField* field);
    std::string value(TFieldType type, const TDSField* field);
    std::string sample(const TDSField& field);
    std::string textValue(const TDSField* field);

    TVQueryPanel& panel_;
    TVCustomDBStructure& model_;
    const std::vector<Table>& tables_;
    std::mt19937 random_;
    std::vector<TDSField*> fields_; // those of a few tables, so that not every query joins them all
};

} // namespace lumora::truth
