#include "legacy/recipient_list.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace legacy {

bool RecipientList::reserve(int32_t more) {
  int32_t count = block_ ? block_->count : 0;
  int32_t capacity = block_ ? block_->capacity : 0;
  if (more <= capacity - count) return true;
  if (more > INT_MAX - count) return false;
  bool isInUse = block_ && block_->users > 1;
  size_t size = sizeof(Block) + static_cast<size_t>(count + more) * sizeof(CertificateRecord);
  auto* grown = static_cast<Block*>(std::realloc(isInUse ? nullptr : block_, size));
  if (!grown) return false;
  if (!block_) *grown = Block();
  if (isInUse) {
    std::memcpy(grown, block_, sizeof(Block) + static_cast<size_t>(count) * sizeof(CertificateRecord));
    grown->users = 2;
    --block_->users;
    block_->movedTo = grown;
  }
  grown->capacity = count + more;
  block_ = grown;
  return true;
}

void RecipientList::add(EngineSession session, const CertificateRecord* records, int32_t count) {
  if (count <= 0) return;
  std::memcpy(block_->records() + block_->count, records, static_cast<size_t>(count) * sizeof(*records));
  block_->count += count;
  block_->session = session;
}

void RecipientList::release() {
  if (!block_) return;
  isReleasing_ = true;
  drop(std::exchange(block_, nullptr));
  isReleasing_ = false;
}

void RecipientList::drop(Block* block) {
  while (block && --block->users == 0) {
    Block* movedTo = block->movedTo;
    int32_t owned = movedTo ? 0 : block->count;
    for (int32_t i = 0; i < owned; ++i) QUIVO_FreeCert(block->session, &block->records()[i]);
    std::free(block);
    block = movedTo;
  }
}

}  // namespace legacy
