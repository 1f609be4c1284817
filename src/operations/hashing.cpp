// Hashing and random numbers.
#include "operations/steps.h"

STDMETHODIMP QUIVO::HashMem(VARIANT in, VARIANT* hash) {
  return TransformBytes(session_, in, hash, [&](EngineSession session, const DataBlob_t* data, DataBlob_t* digest) {
    return QUIVO_HashMem(session, data, digest);
  });
}

STDMETHODIMP QUIVO::HashFile(BSTR file_name, VARIANT* hash) {
  if (isUntrusted_) return E_QUIVO_ACCESS_DENIED;
  AnsiArguments strings;
  const char* path = strings.required(file_name);
  if (FAILED(strings.failure())) return strings.failure();
  return ProduceBytes(session_, false, hash,
                      [&](EngineSession session, DataBlob_t* digest) { return QUIVO_HashFile(session, path, digest); });
}

STDMETHODIMP QUIVO::StrHashFile(BSTR algorithm, BSTR file_name, VARIANT* hash, VARIANT_BOOL bVBS) {
  if (isUntrusted_) return E_QUIVO_ACCESS_DENIED;
  AnsiArguments strings;
  const char* path = strings.required(file_name);
  const char* name = strings.required(algorithm);
  if (FAILED(strings.failure())) return strings.failure();
  return ProduceBytes(session_, bVBS != 0, hash, [&](EngineSession session, DataBlob_t* digest) {
    return QUIVO_StrHashFile(session, name, path, digest);
  });
}

STDMETHODIMP QUIVO::GenRandom(LONG len, VARIANT* random) {
  return ProduceBytes(session_, false, random,
                      [&](EngineSession session, DataBlob_t* bytes) { return QUIVO_GenRandom(session, len, bytes); });
}
