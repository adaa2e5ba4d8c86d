#include "tests/truth/named_cases.h"

#include <algorithm>

namespace lumora::truth {

namespace {

template <typename Holds>
bool anyValue(const TVQueryPanel& panel, Holds holds) {
    for (const LiveCondition& live : liveConditions(panel))
        for (const ConditionValue& value : valuesOf(*live.condition))
            if (value.kind != vkSubQuery && holds(value))
                return true;
    return false;
}

template <typename Holds>
bool anyField(const TVQueryPanel& panel, Holds holds) {
    const TRFieldList& fields = panel.GetQResult().GetResultFields();
    for (int i = 0; i < fields.Count(); ++i)
        if (holds(*fields.GetRField(i)))
            return true;
    return false;
}

bool isSortedByName(const TVQueryPanel& panel, const TResultField& field) {
    return field.GetSorting() != stNoSort && (panel.GetQResult().GetResultFields().JustSorting ||
                                              panel.GetSQLOptions().Contains(soSortByNames));
}

bool hasTableTwice(const TVQueryPanel& panel, const Engine&) {
    std::vector<std::string> names;
    for (const FromTable& entry : fromTables(panel))
        names.push_back(entry.table->GetName());
    std::sort(names.begin(), names.end());
    return std::adjacent_find(names.begin(), names.end()) != names.end();
}

bool hasBareOr(const TVQueryPanel& panel, const Engine&) {
    if (panel.GetSQLOptions().Contains(soBracketConditions))
        return false;
    for (const LiveCondition& live : liveConditions(panel)) {
        const TFilterLinkType link = live.bracket->GetLinkType();
        if (live.condition->GetSQLExpr().find(" or ") != std::string::npos &&
            live.bracket->GetRowCount() > 1 && (link == fltAll || link == fltNotAll))
            return true;
    }
    return false;
}

bool hasOddAlias(const TVQueryPanel& panel, const Engine&) {
    const bool quoted = panel.GetSQLOptions().Contains(soQuoteAliases);
    const bool ascii = panel.GetSQLOptions().Contains(soASCIIRFields);
    return !panel.GetQResult().GetResultFields().JustSorting &&
           anyField(panel, [=](const TResultField& field) {
               const std::string& alias = field.GetAlias();
               const bool replaced =
                   ascii && std::any_of(alias.begin(), alias.end(), [](char c) { return c < 0; });
               if (quoted || replaced || alias.empty())
                   return !replaced && alias.find('"') != std::string::npos;
               return alias[0] <= '9' || std::any_of(alias.begin(), alias.end(), [](char c) {
                          return c >= 0 && c != '_' && !std::isalnum(static_cast<unsigned char>(c));
                      });
           });
}

} // namespace

const std::vector<NamedCase> namedCases = {
    {"second alias of a table", "it counts as the first and is not joined", Effect::differs, Effect::differs,
     Effect::differs, hasTableTwice},
    {"list of a type without quotes", "it swallows the whole condition", Effect::differs, Effect::refused,
     Effect::differs,
     [](const TVQueryPanel& panel, const Engine& engine) {
         return anyValue(panel, [&](const ConditionValue& value) {
             return value.kind == vkList &&
                    (isNumberType(value.type) || (value.type == ftBoolean && !engine.quotesBooleans));
         });
     }},
    {"empty list of texts", "in () is no SQL; SQLite takes it for a list of nothing", Effect::none,
     Effect::refused, Effect::refused,
     [](const TVQueryPanel& panel, const Engine&) {
         return anyValue(panel, [](const ConditionValue& value) {
             return value.kind == vkList && isTextType(value.type) && value.texts.empty();
         });
     }},
    {"empty decimal", "nothing stands in its place", Effect::refused, Effect::refused, Effect::refused,
     [](const TVQueryPanel& panel, const Engine&) {
         return anyValue(panel, [](const ConditionValue& value) {
             return value.kind == vkScalar && value.type == ftBCD && value.texts[0].empty();
         });
     }},
    {"empty date or time", "00/00/00 is no date; SQLite compares texts", Effect::none, Effect::refused,
     Effect::differs,
     [](const TVQueryPanel& panel, const Engine&) {
         return anyValue(panel, [](const ConditionValue& value) {
             const bool empty =
                 value.texts.empty() || std::count(value.texts.begin(), value.texts.end(), "") > 0;
             return IsDateOrTime(value.type) && empty;
         });
     }},
    {"SQL for a number", "it goes in as it was typed", Effect::differs, Effect::differs, Effect::differs,
     [](const TVQueryPanel& panel, const Engine&) {
         return anyValue(panel, [](const ConditionValue& value) {
             return value.kind == vkScalar && !value.texts[0].empty() &&
                    !meaningOf(value.type, value.texts[0], false);
         });
     }},
    {"template with an or", "a joining AND binds closer", Effect::differs, Effect::differs, Effect::differs,
     hasBareOr},
    {"alias that is no name", "it goes in as it stands", Effect::refused, Effect::refused, Effect::refused,
     hasOddAlias},
    {"alias that is a reserved word", "PostgreSQL takes any word behind as", Effect::refused, Effect::none,
     Effect::refused,
     [](const TVQueryPanel& panel, const Engine& engine) {
         return !panel.GetQResult().GetResultFields().JustSorting &&
                !panel.GetSQLOptions().Contains(soQuoteAliases) &&
                anyField(panel, [&](const TResultField& field) {
                    return field.GetAlias() == "order" || (!engine.joinsFull && field.GetAlias() == "Column");
                });
     }},
    {"formula sorted by name", "its first field is what it is sorted by", Effect::differs, Effect::differs,
     Effect::differs,
     [](const TVQueryPanel& panel, const Engine&) {
         return anyField(panel, [&](const TResultField& field) {
             return isSortedByName(panel, field) && field.GetFormula() != "@1";
         });
     }},
    {"aggregate by its text", "\"sum(\" in a text counts, \"count (\" does not", Effect::differs,
     Effect::differs, Effect::differs,
     [](const TVQueryPanel& panel, const Engine&) {
         return anyField(panel, [](const TResultField& field) {
             return field.GetFormula().find("sum('") != std::string::npos ||
                    field.GetFormula().find("count (") != std::string::npos;
         });
     }},
    {"distinct rows sorted by an expression", "PostgreSQL wants it in the select list, and that is *",
     Effect::none, Effect::refused, Effect::refused, sortsDistinctByExpression},
};

bool sortsDistinctByExpression(const TVQueryPanel& panel, const Engine&) {
    return panel.GetQResult().GetResultFields().JustSorting &&
           panel.GetSQLOptions().Contains(soSelectDistinct) &&
           anyField(panel, [&](const TResultField& field) {
               const bool column = field.GetFields()[0]->GetKind() == vfkData;
               const bool whole = !panel.GetStrict() || field.GetFormula() == "@1";
               return field.GetSorting() != stNoSort && !(column && whole);
           });
}

bool hasRefusedValue(const TVQueryPanel& panel) {
    return anyValue(panel, [](const ConditionValue& value) {
        return value.texts.empty() ||
               std::any_of(value.texts.begin(), value.texts.end(),
                           [&](const std::string& text) { return !meaningOf(value.type, text, true); });
    });
}

} // namespace lumora::truth
