// What a query panel asks of the screen: what its rows ask, and dialogs.
#pragma once

#include "lumora/screen/view.h"

namespace lumora {

class TdlgSubQuery;
class TVQueryPanel;

class TQueryPanelView : public TScreenView {
public:
    // Dialogs; true when they were confirmed.
    virtual bool EditResultFields(TVQueryPanel&, int /*helpContext*/, int /*options*/) { return false; }
    virtual bool EditTitles(TVQueryPanel&) { return false; }
    virtual bool RunSubQueryDialog(TdlgSubQuery&) { return false; }
};

} // namespace lumora
