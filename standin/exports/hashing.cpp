// Exported functions: hashing and random numbers.
#include <openssl/rand.h>

#include "standin/base/digest.h"
#include "standin/base/files.h"
#include "standin/exports/guard.h"

using namespace standin;

namespace {

constexpr int32_t kMostRandomBytes = 64 * 1024 * 1024;

struct HashStream : Stream, Digest {
  using Digest::Digest;
};

Bytes HashFile(const char* algorithm, const char* path) {
  Digest digest(DigestByName(algorithm));
  InputFile(path).forEachPiece([&](ByteView piece) { digest.update(piece); });
  return digest.finish();
}

}  // namespace

int32_t QUIVO_HashMem(EngineSession session, const DataBlob_t* in, DataBlob_t* hash) {
  return InSession(session, hash, [&](Session& s) { return s.buffers.copyBytes(HashOf(ViewOf(in), DefaultDigest())); });
}

int32_t QUIVO_HashFile(EngineSession session, const char* file, DataBlob_t* hash) {
  return QUIVO_StrHashFile(session, nullptr, file, hash);
}

int32_t QUIVO_StrHashFile(EngineSession session, const char* algorithm, const char* file, DataBlob_t* hash) {
  return InSession(session, hash, [&](Session& s) { return s.buffers.copyBytes(HashFile(algorithm, file)); });
}

int32_t QUIVO_StrHashInitMem(EngineSession session, const char* algorithm, EngineStream* stream) {
  return InSession(session, stream,
                   [&](Session& s) { return s.addStream(std::make_unique<HashStream>(DigestByName(algorithm))); });
}

int32_t QUIVO_StrHashUpdateMem(EngineSession session, EngineStream* stream, const DataBlob_t* data) {
  return InSession(session, [&](Session& s) { s.stream<HashStream>(stream).update(ViewOf(data)); });
}

int32_t QUIVO_StrHashFinalMem(EngineSession session, EngineStream* stream, DataBlob_t* hash) {
  return InSession(session, hash,
                   [&](Session& s) { return s.buffers.copyBytes(s.endStream<HashStream>(stream)->finish()); });
}

int32_t QUIVO_GenRandom(EngineSession session, int32_t length, DataBlob_t* random) {
  return InSession(session, random, [&](Session& s) {
    if (length < 0 || length > kMostRandomBytes) Fail(kLengthRefused);
    Bytes bytes(static_cast<size_t>(length));
    if (RAND_bytes(bytes.data(), length) != 1) Fail(kRandomFailed);
    return s.buffers.copyBytes(bytes);
  });
}
