// What a query tells whoever follows it.
#pragma once

#include <string>

namespace lumora {

class TFilterCond;
class TFilterRow;

// What changed in a condition.
enum TConditionChange : int { ccField = 1, ccOperator = 2, ccValue1 = 3, ccValue2 = 4 };

// Everything does nothing here. A listener may change the query, whatever it is told.
class TQueryListener {
public:
    virtual ~TQueryListener() = default;

    // The query is another one now. Told once for each change, behind all other notices of it.
    virtual void QueryChanged() {}
    virtual void ParametersListChanged() {}
    // A value was entered, something in a condition is another now: for whoever follows single conditions.
    virtual void ValueChanged(TFilterCond&, int /*value*/) {}
    virtual void ConditionChanged(TFilterCond&, TConditionChange) {}
    // May change a condition's text before it becomes part of the statement; asked only when wanted.
    virtual bool WantsConditionText() const { return false; }
    virtual void ConditionText(TFilterCond&, std::string& /*text*/) {}

    // For a screen, while the query may be in the middle of a change: these must leave it alone.
    // Rows came, went, moved, were hidden or shown: they are to be placed anew.
    virtual void RowsChanged() {}
    // A row looks different now.
    virtual void RowChanged(TFilterRow&) {}
    // A row is about to be deleted, and still stands in the tree; it is being freed.
    virtual void RowDeleting(TFilterRow&) {}
    virtual void RowDestroyed(TFilterRow&) {}
    // The model has other items now, and the rows refer to them.
    virtual void ModelReplaced() {}
};

} // namespace lumora
