#include "stub_engine/stub_engine.h"

#include "engine/functions.h"

namespace {

StubEngine stub;

}  // namespace

StubEngine* TavlStubEngine() { return &stub; }

extern "C" {

// Exported under the name of every function that is not below.
int32_t ReturnZero() { return 0; }  // NOLINT(misc-use-internal-linkage)

int32_t QUIVO_HashMem(EngineSession, const DataBlob_t*, DataBlob_t* hash) {
  *hash = stub.output;
  return 0;
}

int32_t QUIVO_GenRandom(EngineSession, int32_t, DataBlob_t* random) {
  *random = stub.output;
  return 0;
}

int32_t QUIVO_FindCert(EngineSession, const FindParamRecord*, FindResultRecord* result) {
  *result = stub.found;
  return 0;
}

int32_t QUIVO_VerifyMem(EngineSession, const VerifyParamRecord*, const DataBlob_t*, const DataBlob_t*, DataBlob_t*,
                        VerifyResultRecord* result) {
  *result = stub.verified;
  return 0;
}

}  // extern "C"
