// What the engine's records point to. Where the members lie is read from the one table of them; the tests read the
// copies by offsets of their own, so that the table is checked.
#include "fake_engine/shapes.h"

#include <windows.h>

#include "engine/layout.h"
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

template <class Record>
void FollowRecord(Snapshot& record, size_t at);

template <class Record>
constexpr Shape kShapeOf{sizeof(Record), FollowRecord<Record>};
template <>
constexpr Shape kShapeOf<char*>{sizeof(char*), FollowText};
template <>
constexpr Shape kShapeOf<DataBlob_t>{sizeof(DataBlob_t), FollowBytes};
template <>
constexpr Shape kShapeOf<CertIdRecord>{sizeof(CertIdRecord), FollowCertId};

template <class Record, class Type>
void FollowMember(Snapshot& record, size_t at, const engine::Member<Record, Type>& member) {
  if constexpr (std::is_pointer_v<Type> && !std::is_same_v<Type, char*>) {
    FollowOne(record, at + member.start, kShapeOf<std::remove_cv_t<std::remove_pointer_t<Type>>>);
  } else if constexpr (!std::is_arithmetic_v<Type>) {
    kShapeOf<Type>.follow(record, at + member.start);
  }
}

template <class Record, class Element>
void FollowMember(Snapshot& record, size_t at, const engine::List<Record, Element>& list) {
  FollowArray(record, at + list.start, at + list.elementsStart, kShapeOf<Element>);
}

template <class Record>
void FollowRecord(Snapshot& record, size_t at) {
  std::apply([&](const auto&... member) { (FollowMember(record, at, member), ...); }, engine::Layout<Record>::kMembers);
}

}  // namespace

const Shape kBlob = kShapeOf<DataBlob_t>;
const Shape kPlainInteger{4, NoFollow};
const Shape kPointer{8, NoFollow};
const Shape kCertId = kShapeOf<CertIdRecord>;
const Shape kCertificate = kShapeOf<CertificateRecord>;
const Shape kSignParam = kShapeOf<SignParamRecord>;
const Shape kDecryptParam = kShapeOf<DecryptParamRecord>;
const Shape kEncryptParam = kShapeOf<EncryptParamRecord>;
const Shape kFindParam = kShapeOf<FindParamRecord>;
const Shape kVerifyParam = kShapeOf<VerifyParamRecord>;
const Shape kVerifyCertParam = kShapeOf<VerifyCertParamRecord>;
const Shape kLocalParam = kShapeOf<LocalParamRecord>;
const Shape kRSrvParam = kShapeOf<RSrvParamRecord>;
const Shape kFindResult = kShapeOf<FindResultRecord>;
const Shape kVerifyResult = kShapeOf<VerifyResultRecord>;
const Shape kDecryptResult = kShapeOf<DecryptResultRecord>;
const Shape kSignedInfoResult = kShapeOf<SignedInfoResultRecord>;

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
