// Hashing and random numbers.
#include "operations/steps.h"

STDMETHODIMP QUIVO::HashMem(VARIANT in, VARIANT* hash) {
  return TransformBytes(*this, in, hash, [&](const DataBlob_t* data, DataBlob_t* digest) {
    return QUIVO_HashMem(session_, data, digest);
  });
}

STDMETHODIMP QUIVO::HashFile(BSTR file_name, VARIANT* hash) {
  if (isUntrusted_) return E_QUIVO_ACCESS_DENIED;
  AnsiArguments strings;
  const char* path = strings.required(file_name);
  if (FAILED(strings.failure())) return strings.failure();
  return ProduceBytes(*this, false, hash, [&](DataBlob_t* digest) { return QUIVO_HashFile(session_, path, digest); });
}

STDMETHODIMP QUIVO::StrHashFile(BSTR algorithm, BSTR file_name, VARIANT* hash, VARIANT_BOOL bVBS) {
  if (isUntrusted_) return E_QUIVO_ACCESS_DENIED;
  AnsiArguments strings;
  const char* path = strings.required(file_name);
  const char* name = strings.required(algorithm);
  if (FAILED(strings.failure())) return strings.failure();
  return ProduceBytes(*this, bVBS != 0, hash,
                      [&](DataBlob_t* digest) { return QUIVO_StrHashFile(session_, name, path, digest); });
}

STDMETHODIMP QUIVO::GenRandom(LONG len, VARIANT* random) {
  return ProduceBytes(*this, false, random, [&](DataBlob_t* bytes) { return QUIVO_GenRandom(session_, len, bytes); });
}
