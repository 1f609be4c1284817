// Hashing and random numbers.
#include "operations/steps.h"

using namespace operations;

STDMETHODIMP QUIVO::HashMem(VARIANT in, VARIANT* hash) {
  return TransformBytes(owner(), in, hash, [&](EngineSession session, const DataBlob_t* data, DataBlob_t* digest) {
    return QUIVO_HashMem(session, data, digest);
  });
}

STDMETHODIMP QUIVO::HashFile(BSTR file_name, VARIANT* hash) {
  if (isUntrusted()) return E_QUIVO_ACCESS_DENIED;
  AnsiArguments strings(Required{file_name});
  if (FAILED(strings.failure())) return strings.failure();
  return ProduceBytes(owner(), false, hash, [&](EngineSession session, DataBlob_t* digest) {
    return QUIVO_HashFile(session, strings.get<0>(), digest);
  });
}

STDMETHODIMP QUIVO::StrHashFile(BSTR algorithm, BSTR file_name, VARIANT* hash, VARIANT_BOOL bVBS) {
  if (isUntrusted()) return E_QUIVO_ACCESS_DENIED;
  AnsiArguments strings(Required{file_name}, Required{algorithm});
  if (FAILED(strings.failure())) return strings.failure();
  return ProduceBytes(owner(), bVBS != 0, hash, [&](EngineSession session, DataBlob_t* digest) {
    return QUIVO_StrHashFile(session, strings.get<1>(), strings.get<0>(), digest);
  });
}

STDMETHODIMP QUIVO::GenRandom(LONG len, VARIANT* random) {
  return ProduceBytes(owner(), false, random,
                      [&](EngineSession session, DataBlob_t* bytes) { return QUIVO_GenRandom(session, len, bytes); });
}
