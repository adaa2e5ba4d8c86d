// What puts a query back when a build, load or save ends, however it ends.
#pragma once

#include "lumora/query/query.h"

namespace lumora {

class TQueryStateGuard {
public:
    TQueryStateGuard(TVQuery& query, TVBuilderState during) : query_(query), before_(query.GetState()) {
        query_.SetState(during);
    }
    ~TQueryStateGuard() { query_.SetState(before_); }
    TQueryStateGuard(const TQueryStateGuard&) = delete;
    TQueryStateGuard& operator=(const TQueryStateGuard&) = delete;

private:
    TVQuery& query_;
    TVBuilderState before_;
};

} // namespace lumora
