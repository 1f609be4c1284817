// The shapes of the engine's records, written down a second time on purpose: as offsets, not as structures.
#include "fake_engine/shapes.h"

#include <windows.h>

#include "fake_engine/state.h"

namespace fake {
namespace {

void NoFollow(Snapshot&, size_t) {}

void FollowText(Snapshot& record, size_t at) {
  const auto text = record.read<const char*>(at);
  if (text != nullptr) record.pointees[at] = CopyText(text);
}

void FollowBytes(Snapshot& record, size_t at) {
  const auto data = record.read<const uint8_t*>(at + 8);
  if (data != nullptr) record.pointees[at + 8] = CopyBytes(data, record.u32(at));
}

void FollowArray(Snapshot& record, size_t countAt, size_t pointerAt, const Shape& element) {
  const auto array = record.read<const void*>(pointerAt);
  const int32_t count = record.i32(countAt);
  if (array == nullptr || count < 0) return;
  Snapshot copy = CopyBytes(array, count * element.size);
  if (copy.bytes.size() == count * element.size) {
    for (int32_t i = 0; i < count; ++i) element.follow(copy, i * element.size);
  }
  record.pointees[pointerAt] = std::move(copy);
}

void FollowOne(Snapshot& record, size_t at, const Shape& target) {
  const auto address = record.read<const void*>(at);
  if (address != nullptr) record.pointees[at] = CopyRecord(address, target);
}

const Shape kText{8, FollowText};

void FollowAltName(Snapshot& record, size_t at) {
  for (size_t i = 0; i < 15; ++i) FollowText(record, at + 8 * i);
}

const Shape kPolicy{32, [](Snapshot& record, size_t at) {
                      for (size_t field : {0, 8, 24}) FollowText(record, at + field);
                    }};

const Shape kExtension{32, [](Snapshot& record, size_t at) {
                         FollowText(record, at);
                         FollowBytes(record, at + 16);
                       }};

void FollowCertificate(Snapshot& record, size_t at) {
  for (size_t field : {8, 16, 24, 32, 48, 56, 320}) FollowText(record, at + field);
  FollowAltName(record, at + 80);
  FollowAltName(record, at + 200);
  FollowArray(record, at + 328, at + 336, kPolicy);
  FollowArray(record, at + 344, at + 352, kText);
  FollowArray(record, at + 360, at + 368, kExtension);
  FollowBytes(record, at + 376);
  FollowBytes(record, at + 392);
}

void FollowCertId(Snapshot& record, size_t at) {
  switch (record.i32(at)) {
    case 0:
      FollowText(record, at + 8);
      FollowText(record, at + 16);
      break;
    case 1:
      FollowText(record, at + 8);
      break;
    case 2:
      FollowBytes(record, at + 8);
      break;
  }
}

void FollowMycert(Snapshot& record, size_t at) { FollowOne(record, at + 8, kCertId); }

const Shape kSignature{16, [](Snapshot& record, size_t at) { FollowOne(record, at + 8, kCertificate); }};

}  // namespace

const Shape kBlob{16, FollowBytes};
const Shape kPlainInteger{4, NoFollow};
const Shape kPointer{8, NoFollow};
const Shape kCertId{24, FollowCertId};
const Shape kCertificate{408, FollowCertificate};
const Shape kSignParam{16, FollowMycert};
const Shape kDecryptParam{24, FollowMycert};
const Shape kEncryptParam{32, [](Snapshot& record, size_t at) {
                            FollowMycert(record, at);
                            FollowArray(record, at + 16, at + 24, kCertificate);
                          }};
const Shape kFindParam{432, [](Snapshot& record, size_t at) {
                         FollowMycert(record, at);
                         FollowCertificate(record, at + 16);
                       }};
const Shape kVerifyParam{80, [](Snapshot& record, size_t at) {
                           FollowMycert(record, at);
                           FollowArray(record, at + 20, at + 24, kPolicy);
                           FollowArray(record, at + 32, at + 40, kText);
                           FollowArray(record, at + 48, at + 56, kExtension);
                         }};
const Shape kVerifyCertParam{24, FollowMycert};
const Shape kLocalParam{48, [](Snapshot& record, size_t at) {
                          for (size_t field : {16, 24, 32, 40}) FollowText(record, at + field);
                        }};
const Shape kRSrvParam{32, [](Snapshot& record, size_t at) { FollowArray(record, at + 16, at + 24, kText); }};
const Shape kFindResult{16, [](Snapshot& record, size_t at) { FollowArray(record, at, at + 8, kCertificate); }};
const Shape kVerifyResult{16, [](Snapshot& record, size_t at) { FollowArray(record, at, at + 8, kSignature); }};
const Shape kDecryptResult{416, [](Snapshot& record, size_t at) { FollowCertificate(record, at + 8); }};
const Shape kSignedInfoResult{16, NoFollow};

Snapshot CopyBytes(const void* address, size_t size) {
  Snapshot copy;
  copy.address = reinterpret_cast<uintptr_t>(address);
  if (size == 0) return copy;
  if (IsBadReadPtr(address, size)) {
    Engine().violate("unreadable memory of " + std::to_string(size) + " bytes");
    return copy;
  }
  const auto first = static_cast<const uint8_t*>(address);
  copy.bytes.assign(first, first + size);
  return copy;
}

Snapshot CopyText(const char* text) {
  if (IsBadReadPtr(text, 1)) return CopyBytes(text, 1);
  return CopyBytes(text, std::strlen(text) + 1);
}

Snapshot CopyRecord(const void* address, const Shape& shape) {
  Snapshot record = CopyBytes(address, shape.size);
  if (record.bytes.size() == shape.size) shape.follow(record, 0);
  return record;
}

void CollectPointers(const Snapshot& record, std::vector<uintptr_t>& pointers) {
  for (const auto& [offset, pointee] : record.pointees) {
    CollectPointers(pointee, pointers);
    pointers.push_back(pointee.address);
  }
}

}  // namespace fake
