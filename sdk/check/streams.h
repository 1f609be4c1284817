// The engine's streams over whole data: what comes out when the bytes are handed over in pieces of one size.
#pragma once

#include <algorithm>

#include "kit.h"

namespace check {

/// Calls `take` with every piece of the bytes, none of them copied.
template <class Take>
void InPieces(InBytes& bytes, size_t size, Take take) {
  for (size_t start = 0; start < bytes.size(); start += size) {
    const size_t count = std::min(size, bytes.size() - start);
    take(DataBlob_t{static_cast<uint32_t>(count), bytes.data() + start});
  }
}

/// A stream's pointer, null until Init.
class Stream {
 public:
  EngineStream* get() { return pointer_.get(); }
  /// After Init, and after Final.
  void isOpen(const std::string& function) { Expect(*pointer_ != nullptr, function + " has not set the stream"); }
  void isEnded(const std::string& function) { Expect(*pointer_ == nullptr, function + " has not cleared the stream"); }

 private:
  Out<EngineStream> pointer_;
};

/// `message` is the one to which the signature is added, if there is one.
Bytes SignInPieces(Kit& kit, EngineSession session, uint32_t flags, const Bytes& data, size_t size,
                   const Bytes* message = nullptr);
/// `start` goes to Init, the rest to the Updates.
Verified VerifyInPieces(Kit& kit, EngineSession session, const Bytes& start, const Bytes& rest, size_t size);
Bytes EncryptInPieces(Kit& kit, EngineSession session, const Bytes& data, size_t size);
/// The first `start` bytes go to Init.
Bytes DecryptInPieces(Kit& kit, EngineSession session, const Bytes& message, size_t size, size_t start = 0);
Bytes HashInPieces(Kit& kit, EngineSession session, const Bytes& data, size_t size);

}  // namespace check
