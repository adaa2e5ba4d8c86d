// From a panel over a TVDatasetStructure to the filter of a model.
#pragma once

#include "lumora/metadata/Vdsstruc.h"
#include "lumora/platform/filter_value.h"

#include <QString>

class QSqlTableModel;

namespace lumora {

class TVQueryPanel;

// Builds the panel's query and gives its conditions as the text of a filter, empty when there are none.
// Whatever TVQueryPanel::BuildQuery raises.
QString filterText(TVQueryPanel& panel);
// The options with which a filter reads dates as the model writes them.
TFilterOptions filterOptions(const TVCustomDBStructure& structure);

// Runs the table model's query with this filter, which is SQL (the filter syntax fsSQLLike). DatabaseError
// when the database refuses it, and when there are changes that are not submitted, for they would be lost;
// the old filter then stands.
void applyFilter(QSqlTableModel& model, const QString& filter);
// Lets the structure write columns as table.column, which a model with relations needs where another table
// has columns of the same name. The next fill forgets it. DatabaseError for a table whose name needs quotes.
void qualifyColumns(TVDatasetStructure& structure, const QSqlTableModel& model);

} // namespace lumora
