#include "legacy/recipient_list.h"

#include <climits>
#include <cstdlib>
#include <cstring>
#include <utility>

RecipientList::~RecipientList() { std::free(records_); }

CertificateRecord* RecipientList::reserve(int32_t more) {
  if (more > INT_MAX - count_) return nullptr;
  size_t total = static_cast<size_t>(count_) + static_cast<size_t>(more);
  void* grown = std::realloc(records_, total * sizeof(CertificateRecord));
  if (!grown) return nullptr;
  records_ = static_cast<CertificateRecord*>(grown);
  CertificateRecord* room = records_ + count_;
  std::memset(room, 0, static_cast<size_t>(more) * sizeof(CertificateRecord));
  return room;
}

void RecipientList::release(EngineSession session) {
  for (int32_t i = 0; i < count_; ++i) QUIVO_FreeCert(session, &records_[i]);
  count_ = 0;
  std::free(std::exchange(records_, nullptr));
}
