// Where in a text something stands that a message tells of.
#pragma once

namespace lumora {

struct TTextPlace {
    int Line = 0;      // from 1
    int Position = -1; // the first byte, from 0; -1: not known
    int Length = -1;   // in bytes; -1: not known
};

} // namespace lumora
