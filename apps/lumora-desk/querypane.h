// The query itself: its conditions and the columns that it shows.
#pragma once

#include "apps/lumora-desk/deskdocument.h"
#include "lumora/widgets/querypanelwidget.h"
#include "lumora/widgets/resultcolumnswidget.h"

#include <QSplitter>

namespace lumora::desk {

class QueryPane : public QSplitter {
    Q_OBJECT

public:
    explicit QueryPane(DeskDocument& document, QWidget* parent = nullptr);
    ~QueryPane() override;

    QueryPanelWidget& conditions() { return *conditions_; }
    ResultColumnsWidget& columns() { return *columns_; }

private:
    QueryPanelWidget* const conditions_;
    ResultColumnsWidget* const columns_;
};

} // namespace lumora::desk
