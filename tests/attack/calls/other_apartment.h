// An object of the module that lives in an apartment of its own, as this thread sees it.
#pragma once

#include <oaidl.h>

#include "support/ptr.h"

/// The apartment serves until it is stopped.
void StartOtherApartment();
void StopOtherApartment();
/// The proxy of its object; null if it cannot be made.
Ptr<IDispatch> ProxyOfOtherApartment();
