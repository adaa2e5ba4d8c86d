#pragma once

#ifndef HOST_INCLUDES_ITS_OWN
#error the library includes a file of its host
#endif

#include "model/structure.h"

namespace host {

inline int Shown() {
    return TVDBStructure().Number() + TVDBStructure().Base() + 100;
}

} // namespace host
