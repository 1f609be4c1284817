// The recipients of the legacy object: whole engine records in one array of the runtime's heap.
#pragma once

#include "engine/functions.h"

/// Owns the array; what the records point to is the engine's and goes back with `release`.
class RecipientList {
 public:
  RecipientList() = default;
  RecipientList(const RecipientList&) = delete;
  RecipientList& operator=(const RecipientList&) = delete;
  /// Frees the array alone: giving the records back needs the session.
  ~RecipientList();

  int32_t count() const { return count_; }
  CertificateRecord* records() const { return records_; }

  /// Zeroed room for `more` further records behind the last; null without memory. They count after `add`.
  CertificateRecord* reserve(int32_t more);
  void add(int32_t more) { count_ += more; }

  /// Gives every record back to the engine, in order, and frees the array.
  void release(EngineSession session);

 private:
  int32_t count_ = 0;
  CertificateRecord* records_ = nullptr;
};
