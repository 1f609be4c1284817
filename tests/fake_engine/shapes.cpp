// The shapes of the engine's records, written down a second time on purpose: as offsets, not as structures.
#include "fake_engine/shapes.h"

#include <windows.h>

#include "fake_engine/state.h"

namespace fake {
namespace {

void noFollow(Snapshot&, size_t) {}

void followText(Snapshot& record, size_t at) {
  const auto text = record.read<const char*>(at);
  if (text != nullptr) record.pointees[at] = copyText(text);
}

void followBytes(Snapshot& record, size_t at) {
  const auto data = record.read<const uint8_t*>(at + 8);
  if (data != nullptr) record.pointees[at + 8] = copyBytes(data, record.u32(at));
}

void followArray(Snapshot& record, size_t countAt, size_t pointerAt, const Shape& element) {
  const auto array = record.read<const void*>(pointerAt);
  const int32_t count = record.i32(countAt);
  if (array == nullptr || count < 0) return;
  Snapshot copy = copyBytes(array, count * element.size);
  if (copy.bytes.size() == count * element.size) {
    for (int32_t i = 0; i < count; ++i) element.follow(copy, i * element.size);
  }
  record.pointees[pointerAt] = std::move(copy);
}

void followOne(Snapshot& record, size_t at, const Shape& target) {
  const auto address = record.read<const void*>(at);
  if (address != nullptr) record.pointees[at] = copyRecord(address, target);
}

const Shape kText{8, followText};

void followAltName(Snapshot& record, size_t at) {
  for (size_t i = 0; i < 15; ++i) followText(record, at + 8 * i);
}

const Shape kPolicy{32, [](Snapshot& record, size_t at) {
                      for (size_t field : {0, 8, 24}) followText(record, at + field);
                    }};

const Shape kExtension{32, [](Snapshot& record, size_t at) {
                         followText(record, at);
                         followBytes(record, at + 16);
                       }};

void followCertificate(Snapshot& record, size_t at) {
  for (size_t field : {8, 16, 24, 32, 48, 56, 320}) followText(record, at + field);
  followAltName(record, at + 80);
  followAltName(record, at + 200);
  followArray(record, at + 328, at + 336, kPolicy);
  followArray(record, at + 344, at + 352, kText);
  followArray(record, at + 360, at + 368, kExtension);
  followBytes(record, at + 376);
  followBytes(record, at + 392);
}

void followCertId(Snapshot& record, size_t at) {
  switch (record.i32(at)) {
    case 0:
      followText(record, at + 8);
      followText(record, at + 16);
      break;
    case 1:
      followText(record, at + 8);
      break;
    case 2:
      followBytes(record, at + 8);
      break;
  }
}

void followMycert(Snapshot& record, size_t at) { followOne(record, at + 8, kCertId); }

const Shape kSignature{16, [](Snapshot& record, size_t at) { followOne(record, at + 8, kCertificate); }};

}  // namespace

const Shape kBlob{16, followBytes};
const Shape kPlainInteger{4, noFollow};
const Shape kPointer{8, noFollow};
const Shape kCertId{24, followCertId};
const Shape kCertificate{408, followCertificate};
const Shape kSignParam{16, followMycert};
const Shape kDecryptParam{24, followMycert};
const Shape kEncryptParam{32, [](Snapshot& record, size_t at) {
                            followMycert(record, at);
                            followArray(record, at + 16, at + 24, kCertificate);
                          }};
const Shape kFindParam{432, [](Snapshot& record, size_t at) {
                         followMycert(record, at);
                         followCertificate(record, at + 16);
                       }};
const Shape kVerifyParam{80, [](Snapshot& record, size_t at) {
                           followMycert(record, at);
                           followArray(record, at + 20, at + 24, kPolicy);
                           followArray(record, at + 32, at + 40, kText);
                           followArray(record, at + 48, at + 56, kExtension);
                         }};
const Shape kVerifyCertParam{24, followMycert};
const Shape kLocalParam{48, [](Snapshot& record, size_t at) {
                          for (size_t field : {16, 24, 32, 40}) followText(record, at + field);
                        }};
const Shape kRSrvParam{32, [](Snapshot& record, size_t at) { followArray(record, at + 16, at + 24, kText); }};
const Shape kFindResult{16, [](Snapshot& record, size_t at) { followArray(record, at, at + 8, kCertificate); }};
const Shape kVerifyResult{16, [](Snapshot& record, size_t at) { followArray(record, at, at + 8, kSignature); }};
const Shape kDecryptResult{416, [](Snapshot& record, size_t at) { followCertificate(record, at + 8); }};
const Shape kSignedInfoResult{16, noFollow};

Snapshot copyBytes(const void* address, size_t size) {
  Snapshot copy;
  copy.address = reinterpret_cast<uintptr_t>(address);
  if (size == 0) return copy;
  if (IsBadReadPtr(address, size)) {
    state().violate("unreadable memory of " + std::to_string(size) + " bytes");
    return copy;
  }
  const auto first = static_cast<const uint8_t*>(address);
  copy.bytes.assign(first, first + size);
  return copy;
}

Snapshot copyText(const char* text) {
  if (IsBadReadPtr(text, 1)) return copyBytes(text, 1);
  return copyBytes(text, std::strlen(text) + 1);
}

Snapshot copyRecord(const void* address, const Shape& shape) {
  Snapshot record = copyBytes(address, shape.size);
  if (record.bytes.size() == shape.size) shape.follow(record, 0);
  return record;
}

void collectPointers(const Snapshot& record, std::vector<uintptr_t>& pointers) {
  for (const auto& [offset, pointee] : record.pointees) {
    collectPointers(pointee, pointers);
    pointers.push_back(pointee.address);
  }
}

}  // namespace fake
