// Puts a panel's state back when a build, load or save ends, however it ends.
#pragma once

#include "panel/Vquerpnl.h"

namespace lumora {

class TPanelStateGuard {
public:
    TPanelStateGuard(TVBuilderState& state, TVBuilderState during) : state_(state) { state_ = during; }
    ~TPanelStateGuard() { state_ = stIdle; }
    TPanelStateGuard(const TPanelStateGuard&) = delete;
    TPanelStateGuard& operator=(const TPanelStateGuard&) = delete;

private:
    TVBuilderState& state_;
};

} // namespace lumora
