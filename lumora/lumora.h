// Everything that a host of the core needs.
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
