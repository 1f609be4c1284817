// The stub engine: a tavl1.dll whose functions do nothing and return 0, but for those that hand out what it was given.
// It costs the measured calls nothing, unlike the fake engine of the tests, which records them.
#pragma once

#include "engine/records.h"

/// What the functions hand out: the caller's, never freed.
struct StubEngine {
  /// Of hashing and of random numbers; without data these hand out nothing.
  DataBlob_t output;
  FindResultRecord found;
  VerifyResultRecord verified;
};

extern "C" __declspec(dllexport) StubEngine* TavlStubEngine();
