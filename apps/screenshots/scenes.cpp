#include "scenes.h"

#include "lumora/support/string_helpers.h"

namespace lumora {

Scene::Scene(const std::string& modelFile) {
    model_.LoadFromFile(modelFile);
    panel_.SetDbStruct(&model_);
    panel_.Activate();
}

TSimpleCond* Scene::add(TFilterBracket& bracket, std::string_view field, std::string_view op,
                        const std::string& value, const std::string& second) {
    TDSField* found = nullptr;
    for (int i = 0; i < model_.GetFieldCount() && !found; ++i)
        if (SameText(model_.GetField(i)->GetDisplayName(), field))
            found = model_.GetField(i);
    if (!found)
        throw Exception("The model has no field " + std::string(field));
    TDSOperator* const named = model_.OperatorByName(op);
    if (!named)
        throw Exception("The model has no operator " + std::string(op));
    TSimpleCond* const condition = panel_.ManualAddCond(bracket, found, named, value);
    if (!second.empty())
        condition->SetValue(2, second);
    return condition;
}

TFilterBracket& Scene::addBracket(TFilterBracket& bracket, TFilterLinkType link) {
    TFilterBracket* const added = bracket.AddNewBracket();
    added->SetLinkType(link);
    return *added;
}

void Scene::addFew() {
    add(root(), "Country", "Equal", "Norway");
    add(root(), "Customer since", "GreaterThan", "2021-01-01");
    TFilterBracket& any = addBracket(root(), fltAny);
    add(any, "City", "StartsWith", "Ber");
    add(any, "Order date", "Between", "2024-01-01", "2024-06-30");
}

void Scene::addTwelve() {
    addFew();
    TFilterBracket& none = addBracket(root(), fltNone);
    add(none, "Customer", "Contains", "Ltd");
    add(none, "City", "InList", "Oslo,Bergen,Troms\xC3\xB8");
    add(root(), "Customer", "NotEqual", "Fjord Foods")->SetEnabled(false);
    add(root(), "List price", "LessThan", "9.50");
    add(root(), "Order date", "GreaterThan");
    add(root(), "Country", "IsNull");
    panel_.SetCurrentRowNum(3);
}

void Scene::addNested() {
    TFilterBracket* bracket = &root();
    constexpr TFilterLinkType links[] = {fltAny, fltAll, fltNone, fltNotAll};
    const char* const cities[] = {"Oslo", "Lund", "Turku", "Aarhus"};
    for (int i = 0; i < 4; ++i) {
        add(*bracket, "City", "Equal", cities[i]);
        bracket = &addBracket(*bracket, links[i]);
    }
    add(*bracket, "Customer", "StartsWith", "A");
    add(*bracket, "Customer", "StartsWith", "B");
    add(root(), "Country", "Equal", "Norway");
    panel_.SetCurrentRowNum(6);
}

void Scene::addLong() {
    const std::string words = "a sentence that goes on and on, well past the edge of any panel, and then a "
                              "good deal further than anybody would care to read";
    add(root(), "Customer", "Equal", words);
    add(root(), "City", "InList", "Oslo,Bergen,Trondheim,Stavanger,Drammen,Fredrikstad,Kristiansand,Sandnes");
    panel_.SetCurrentRowNum(1);
}

void Scene::addProblems() {
    add(root(), "List price", "LessThan", "cheap");
    add(root(), "Order date", "GreaterThan", "2024-13-45");
    add(root(), "Country", "Equal");
    add(root(), "City", "Equal", "Oslo");
    panel_.SetCurrentRowNum(4);
}

} // namespace lumora
