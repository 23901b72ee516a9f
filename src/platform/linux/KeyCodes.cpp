#include "platform/linux/KeyCodes.h"

#include <algorithm>
#include <array>

namespace {

/// X numbers keys by the kernel's code plus this, the lowest key code the protocol knows.
constexpr quint32 x11Offset = 8;

/// Kernel key codes by virtual key code; 0 where there is none (no real key has the code 0).
// clang-format off
constexpr std::array<quint8, 128> evdevCodes = {
     30,  31,  32,  33,  35,  34,  44,  45, // 0
     46,  47,  86,  48,  16,  17,  18,  19, // 8
     21,  20,   2,   3,   4,   5,   7,   6, // 16
     13,  10,   8,  12,   9,  11,  27,  24, // 24
     22,  26,  23,  25,  28,  38,  36,  40, // 32
     37,  39,  43,  51,  53,  49,  50,  52, // 40
     15,  57,  41,  14,   0,   1,   0,   0, // 48
      0,   0,   0,   0,   0,   0,   0,   0, // 56
    187,  83,   0,  55,   0,  78,   0,  69, // 64
      0,   0,   0,  98,  96,   0,  74, 188, // 72
    189, 117,  82,  79,  80,  81,  75,  76, // 80
     77,  71, 190,  72,  73, 124,  89, 121, // 88
     63,  64,  65,  61,  66,  67,   0,  87, // 96
      0, 183, 186, 184,   0,  68, 127,  88, // 104
      0, 185, 110, 102, 104, 111,  62, 107, // 112
     60, 109,  59, 105, 106, 108, 103,   0, // 120
};
// clang-format on

} // namespace

std::optional<quint8> KeyCodes::x11FromVirtual(quint32 virtualKey) {
    if (virtualKey >= evdevCodes.size() || evdevCodes[virtualKey] == 0)
        return std::nullopt;
    return static_cast<quint8>(evdevCodes[virtualKey] + x11Offset);
}

std::optional<quint32> KeyCodes::virtualFromX11(quint32 x11KeyCode) {
    if (x11KeyCode <= x11Offset)
        return std::nullopt;
    const auto found = std::find(evdevCodes.begin(), evdevCodes.end(), x11KeyCode - x11Offset);
    if (found == evdevCodes.end())
        return std::nullopt;
    return static_cast<quint32>(found - evdevCodes.begin());
}
