// The queries that the pictures show.
#pragma once

#include "lumora/lumora.h"

#include <string_view>

namespace lumora {

// A model of orders, and a panel over it with one of the scenes' queries.
class Scene {
public:
    explicit Scene(const std::string& modelFile);

    TVQueryPanel& panel() { return panel_; }

    void addFew();      // a handful of conditions, all finished
    void addTwelve();   // twelve rows, brackets, a disabled row, one that is not finished
    void addNested();   // brackets four deep
    void addLong();     // captions longer than there is room for
    void addProblems(); // values that will not do

private:
    TSimpleCond* add(TFilterBracket& bracket, std::string_view field, std::string_view op,
                     const std::string& value = {}, const std::string& second = {});
    TFilterBracket& root() { return *panel_.GetRootBracket(); }
    TFilterBracket& addBracket(TFilterBracket& bracket, TFilterLinkType link);

    TVDBStructure model_;
    TVQueryPanel panel_;
};

} // namespace lumora
