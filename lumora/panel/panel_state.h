// What puts a panel back when a build, load or save ends, however it ends.
#pragma once

#include "lumora/panel/Vquerpnl.h"

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

// Lets `read` fill the panel while it is inactive, cleared and loading; then it is as active as it was
// before.
template <typename TRead>
void TVQueryPanel::ReadWhileInactive(TRead read) {
    const bool wasActive = active_;
    try {
        const TPanelStateGuard guard(state_, stLoading);
        SetActive(false);
        ClearAll();
        read();
    } catch (...) {
        try {
            SetActive(wasActive);
        } catch (const EVQueryPanelError&) {
            // The titles read so far cannot head an active panel; the error that is on its way matters more.
        }
        modified_ = false;
        throw;
    }
    SetActive(wasActive);
}

} // namespace lumora
