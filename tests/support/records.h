// The records inside the module's objects, as the engine sees them when an operation hands them over.
#pragma once

#include "support/contract_test.h"

fake::Snapshot RecordOf(IDispatch* object);
