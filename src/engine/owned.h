// Owners of what the engine hands out: it goes back when they end, with the session that it came from.
#pragma once

#include "engine/functions.h"

namespace engine {

/// A byte buffer. Where the engine has handed out none, nothing goes back.
class Buffer {
 public:
  explicit Buffer(EngineSession session) : session_(session) {}
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() { giveBack(); }

  /// For the call that fills it.
  DataBlob_t* receive() { return &blob_; }
  const DataBlob_t& get() const { return blob_; }
  void giveBack() {
    if (blob_.data) QUIVO_FreeMem(session_, blob_.data);
    leave();
  }
  /// Leaves the buffer to the engine: after a failed call there is nothing to give back.
  void leave() { blob_ = {}; }

 private:
  const EngineSession session_;
  DataBlob_t blob_{};
};

/// A result record, zeroed before the call that fills it; `free` takes back what it points to.
template <class Record, int32_t (*free)(EngineSession, Record*)>
class Result {
 public:
  explicit Result(EngineSession session) : session_(session) {}
  Result(const Result&) = delete;
  Result& operator=(const Result&) = delete;
  ~Result() { giveBack(); }

  /// For the call that fills it.
  Record* receive() { return &record_; }
  const Record& get() const { return record_; }
  void giveBack() {
    if (isOwned_) free(session_, &record_);
    leave();
  }
  /// Leaves the contents to the engine: some calls hand out none when they fail.
  void leave() { isOwned_ = false; }

 private:
  const EngineSession session_;
  Record record_{};
  bool isOwned_ = true;
};

using VerifyResult = Result<VerifyResultRecord, QUIVO_FreeVerifyResult>;
using DecryptResult = Result<DecryptResultRecord, QUIVO_FreeDecryptResult>;
using FindResult = Result<FindResultRecord, QUIVO_FreeFindResult>;
using SignedInfoResult = Result<SignedInfoResultRecord, QUIVO_FreeSignedInfoResult>;
using CertificateResult = Result<CertificateRecord, QUIVO_FreeCert>;

}  // namespace engine
