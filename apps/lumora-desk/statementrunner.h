// Running a statement on the thread of some background work.
#pragma once

#include "apps/lumora-desk/backgroundtask.h"
#include "apps/lumora-desk/resultrows.h"
#include "apps/lumora-desk/statement.h"

#include <functional>

namespace lumora::desk {

struct RowSink {
    std::function<void(const QList<ResultColumn>& columns)> columns; // once, before the first row
    std::function<bool(const ResultRow& row)> row;                   // false: no more
};

// Connects, runs, and returns when the rows are through, the sink has enough, or the work is cancelled.
// DatabaseError, or what the sink raises.
void runStatement(const Statement& statement, BackgroundTask::Control& control, const RowSink& sink);

} // namespace lumora::desk
