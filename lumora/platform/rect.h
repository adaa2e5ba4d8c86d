// A rectangle; right and bottom lie outside.
#pragma once

namespace lumora {

struct TRect {
    int Left = 0;
    int Top = 0;
    int Right = 0;
    int Bottom = 0;
};

} // namespace lumora
