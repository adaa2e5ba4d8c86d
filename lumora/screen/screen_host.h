// What the screen of a query asks of whoever owns it: the host program's own editors, images and windows.
#pragma once

#include "lumora/query/sql_options.h"

#include <string>

namespace lumora {

class TDSField;
class TDSFieldGroup;
class TFilterCond;
class TStringList;

// Everything does nothing here. A handler behind it may do anything with the query.
class TScreenHost {
public:
    virtual ~TScreenHost() = default;

    // The screen has become active or inactive.
    virtual void ActiveChanged() {}
    // Whether the host program edits the condition's values in a window of its own, and that window.
    virtual bool HasEditor(const TFilterCond&) const { return false; }
    virtual void EditValue(TFilterCond&, int /*value*/) {}
    // A value was entered, or double-clicked.
    virtual void ValueSet(TFilterCond&, int /*value*/) {}
    virtual void ValueDblClicked(TFilterCond&, int /*value*/) {}
    // The images of field lists: set the index, or leave it at -1.
    virtual void GroupImage(const TDSFieldGroup&, int& /*index*/) {}
    virtual void FieldImage(const TDSField&, int& /*index*/) {}
    // True when the sub-query was confirmed; the arguments are then its query text, SQL and options.
    virtual bool EditSubQuery(TStringList& /*lines*/, std::string& /*sql*/, TSQLOptions&) { return false; }
};

} // namespace lumora
