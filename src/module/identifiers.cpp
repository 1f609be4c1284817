// The identifiers that are named as data, defined once.
#include <windows.h>

#include <initguid.h>

#include "quivocom.h"
