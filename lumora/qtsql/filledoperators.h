// The operators of a filled model, in words that people use.
#pragma once

#include "lumora/model/structure.h"
#include "lumora/qtsql/catalogue.h"
#include "lumora/statement/dialects/dialect.h"

namespace lumora {

// Puts the operators into the model, those of the same names replaced, their templates as the dialect has
// them. Captions that the host has set in DefOperators stay, and so do groups that ExOperators switches off.
void addFilledOperators(TVCustomDBStructure& model, const TDialect& dialect);

// Gives the field the operators that make sense for it, and behind them the host's own that apply to its
// type. One that refers to a record by a key (`isReference`) has no order that would mean something.
void chooseOperators(TDSField& field, Comparison comparison, bool isReference);

// Takes out those of the operators above that no field has; the default ones stay.
void dropUnusedOperators(TVCustomDBStructure& model);

} // namespace lumora
