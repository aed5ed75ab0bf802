#pragma once

#include <xcb/xcb.h>

// The header of the keyboard extension uses a C++ keyword as a member name.
#define explicit explicitParts
#include <xcb/xkb.h>
#undef explicit
