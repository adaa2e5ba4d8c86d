#pragma once

#ifndef HOST_INCLUDES_ITS_OWN
#error the library includes a file of its host
#endif

namespace host {

struct TComponent {
    int Base() const { return 10; }
};

} // namespace host
