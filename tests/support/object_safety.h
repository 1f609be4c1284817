// IObjectSafety with the identifier that the compiler's headers leave out.
#pragma once

#include <windows.h>

#include <objsafe.h>

__CRT_UUID_DECL(IObjectSafety, 0xcb5bdc81, 0x93c1, 0x11cf, 0x8f, 0x20, 0x00, 0x80, 0x5f, 0x2c, 0xd0, 0x64)
