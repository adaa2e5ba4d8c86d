// Lumora: people ask a database without SQL.
//
// A host describes a data model once. A person makes a query on it: rows of conditions, a list of columns.
// The query becomes SQL, words, or text that is kept; SQL and text become queries again. This header is where
// to start: it includes what a host of the core needs, without a database and without Qt. A host that wants
// less to compile includes the headers below one by one.
//
//
// A model, a query, SQL, back again
//
//     using namespace lumora;
//
//     TVDBStructure model;
//     model.LoadFromFile("shop.model");         // or filled from a database: lumora/qtsql/modelfiller.h
//
//     TVQuery query(model);
//     query.SetStrict(true);                    // SQL that means what the rows say, or a refusal
//     TRFieldList& columns = query.GetQResult().GetResultFields();
//     columns.JustSorting = false;              // these columns, and not whole records
//     columns.AddByExpression("Company", "{Company}", stAscending, 1);
//     query.ManualAddCond(*query.GetRootBracket(), model.FieldByID(6),
//                         model.OperatorByName("GreaterThan"), "100");
//
//     query.BuildQuery();
//     std::string sql = query.GetQResult().GetSQL().GetText();
//
//     TStringList text;
//     WriteQueryText(query, text);              // the query as text that is kept
//     ReadQueryText(query, text);
//     ReadSQL(query, TStringList(sql));         // the statement as a query
//
// A panel holds a query for a screen:
//
//     TVQueryPanel panel;
//     panel.SetDbStruct(&model);
//     panel.Activate();
//     panel.ParseSQL(TStringList(sql));
//     std::string words = panel.GetQueryText(); // "Choose records where all of the following apply", ...
//
// lumora/widgets/ has the screen for Qt; lumora/screen/ says what stands where, and view.h there what another
// screen has to do.
//
//
// Who owns what
//
// A model owns its tables, fields, links, operators and conditions; a query owns its rows and columns; a
// panel owns a query. Pointers that they give out are references: they hold until the item goes, and whoever
// keeps one listens (TModelListener, TQueryListener) or asks anew. The host owns models, queries, panels,
// providers and views; a component with an owner is freed by it. A component that is freed is forgotten by
// all that refer to it, in whatever order they go.
//
//
// What throws what
//
// Everything that is raised derives from lumora::Exception, a std::runtime_error, and what() says in a
// sentence what is wrong. EVDBStructError: the data model. EVQueryPanelError: a query that can't be built,
// read or kept. ESQLParserError: a statement that can't be read, with its line. These three have codes
// (EVLumoraError). EConvertError: a text that is no number or date. EFileError: a file. A model whose text is
// refused is as it was before; a query holds what was read so far, and nobody is told of it.
//
//
// Which threads may do what
//
// A query or panel, and whatever hangs on it, belongs to one thread at a time. A model is shared: what is
// const may run in many threads at once while none changes it. Settings of the program (FormatSettings) are
// set before threads start.
//
//
// What is not promised
//
// What a host may name stands in docs/public-names.txt; all else may change any day, and so may the layout of
// any class. SQL that is not strict takes what people enter as it comes: it is for people who may write SQL
// themselves. Texts of models and queries are read by all later versions, but not by earlier ones.
#pragma once

#include "lumora/model/Vdbstruc.h"
#include "lumora/panel/Vquerdlg.h"
#include "lumora/panel/Vquerpnl.h"
#include "lumora/panel/panel_links.h"
#include "lumora/panel/panel_view.h"
#include "lumora/query/errors.h"
#include "lumora/query/filter_rows.h"
#include "lumora/query/query.h"
#include "lumora/query/query_listener.h"
#include "lumora/query/query_result.h"
#include "lumora/querytext/query_text.h"
#include "lumora/reading/read_sql.h"
#include "lumora/screen/layout.h"
#include "lumora/screen/query_screen.h"
#include "lumora/screen/word_editors.h"
#include "lumora/sqlparse/Vsqlpars.h"
