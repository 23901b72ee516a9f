#pragma once

// The C header has a member whose name is a keyword in C++.
#define explicit explicit_
#include <xcb/xkb.h>
#undef explicit
