// The host's own. The library has a file of this name too, as of those beside it.
#pragma once

#ifndef HOST_INCLUDES_ITS_OWN
#error the library includes a file of its host
#endif

#include "platform/component.h"

namespace host {

struct TVDBStructure : TComponent {
    int Number() const { return 1; }
};

} // namespace host
