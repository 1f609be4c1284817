// The recipients of the legacy object: whole engine records in one array of the runtime's heap.
#pragma once

#include "engine/functions.h"

namespace legacy {

/// Owns the records until `release` gives them back to the engine. The engine reads the array in place while it
/// encrypts, and may call out: an array that an operation uses stays as it is until the operation ends.
class RecipientList {
 public:
  RecipientList() = default;
  RecipientList(const RecipientList&) = delete;
  RecipientList& operator=(const RecipientList&) = delete;
  ~RecipientList() { release(); }

  /// Makes room for `more` further records. False without memory.
  bool reserve(int32_t more);
  /// Takes over records of `session`, for which there must be room.
  void add(EngineSession session, const CertificateRecord* records, int32_t count);

  /// Gives every record back to the engine, in order and with its session, and frees the array. If operations still use
  /// the array, the last of them does so at its end.
  void release();
  /// True inside `release`: records must not be added to a list that is about to be empty.
  bool isReleasing() const { return isReleasing_; }

 private:
  friend class RecipientUse;

  /// The head of the array; the records lie behind it.
  struct Block {
    /// The list, the operations, and a smaller array whose records moved here.
    int32_t users = 1;
    int32_t count = 0;
    int32_t capacity = 0;
    EngineSession session = nullptr;
    /// The array that has taken the records over, if this one had to grow while an operation used it.
    Block* movedTo = nullptr;

    CertificateRecord* records() { return reinterpret_cast<CertificateRecord*>(this + 1); }
  };

  static void drop(Block* block);

  Block* block_ = nullptr;
  bool isReleasing_ = false;
};

/// The recipients of one operation, as they were when it began. Lives on the operation's stack, and ends before the
/// operation's use of its session.
class RecipientUse {
 public:
  explicit RecipientUse(const RecipientList& list) : block_(list.block_), count_(block_ ? block_->count : 0) {
    if (block_) ++block_->users;
  }
  RecipientUse(const RecipientUse&) = delete;
  RecipientUse& operator=(const RecipientUse&) = delete;
  ~RecipientUse() { RecipientList::drop(block_); }

  int32_t count() const { return count_; }
  CertificateRecord* records() const { return block_ ? block_->records() : nullptr; }

 private:
  RecipientList::Block* const block_;
  const int32_t count_;
};

}  // namespace legacy
