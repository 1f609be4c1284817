// The one table of the members of the engine's records: where each lies, in the layout that both sides share. Whoever
// copies, frees or compares records walks it with ForEachMember, so that no member can be forgotten in one of these.
#pragma once

#include <tuple>
#include <utility>

#include "engine/records.h"

namespace engine {

/// A member by itself. Its type says what it holds: char* a text, DataBlob_t bytes, a 32-bit integer a number or a
/// time.
template <class Record, class Type>
struct Member {
  Type Record::*pointer;
  size_t start;
  static constexpr size_t kAlignment = alignof(Type);
  constexpr size_t end() const { return start + sizeof(Type); }

  template <class Visitor, class... Records>
  void visit(Visitor& visitor, Records&... records) const {
    visitor(records.*pointer...);
  }
};

template <class Record, class Type>
Member(Type Record::*, size_t) -> Member<Record, Type>;

/// A list: the number of its elements and the pointer to them. char* elements are texts, others are records.
template <class Record, class Element>
struct List {
  int32_t Record::*count;
  Element* Record::*elements;
  size_t start;
  size_t elementsStart;
  static constexpr size_t kAlignment = alignof(int32_t);
  constexpr size_t end() const { return elementsStart + sizeof(Element*); }

  template <class Visitor, class... Records>
  void visit(Visitor& visitor, Records&... records) const {
    visitor(std::pair<decltype((records.*elements)), decltype((records.*count))>(records.*elements, records.*count)...);
  }
};

template <class Record, class Element>
List(int32_t Record::*, Element* Record::*, size_t, size_t) -> List<Record, Element>;

/// The members of a record, in order.
template <class Record>
struct Layout;

/// Calls `visitor` with every member of a record; with those of several records of one type, side by side. A list is
/// visited as a pair of references: its elements and its count.
template <class Visitor, class Record, class... More>
void ForEachMember(Visitor&& visitor, Record& record, More&... more) {
  std::apply([&](const auto&... member) { (member.visit(visitor, record, more...), ...); },
             Layout<std::remove_const_t<Record>>::kMembers);
}

/// True if no member is left out: each starts where the one before it ends, but for alignment, and the last one ends
/// the record.
template <class... Members>
constexpr bool IsComplete(size_t size, const Members&... members) {
  auto aligned = [](size_t offset, size_t alignment) { return (offset + alignment - 1) / alignment * alignment; };
  size_t end = 0;
  bool isComplete = true;
  ((isComplete = isComplete && members.start == aligned(end, members.kAlignment), end = members.end()), ...);
  return isComplete && aligned(end, alignof(void*)) == size;
}

template <size_t stated, size_t actual>
constexpr size_t SharedOffset() {
  static_assert(stated == actual, "the engine expects the member elsewhere");
  return stated;
}

#define TAVL_LAYOUT(name, bytes, ...)                                                                        \
  template <>                                                                                                \
  struct Layout<name> {                                                                                      \
    using Record = name;                                                                                     \
    static constexpr auto kMembers = std::tuple(__VA_ARGS__);                                                \
    static_assert(sizeof(Record) == (bytes));                                                                \
    static_assert(std::apply([](const auto&... member) { return IsComplete(bytes, member...); }, kMembers)); \
  }
#define TAVL_OFFSET(offset, member) SharedOffset<offset, offsetof(Record, member)>()
#define TAVL_MEMBER(offset, member) \
  Member { &Record::member, TAVL_OFFSET(offset, member) }
#define TAVL_LIST(countOffset, count, offset, elements) \
  List { &Record::count, &Record::elements, TAVL_OFFSET(countOffset, count), TAVL_OFFSET(offset, elements) }

TAVL_LAYOUT(DataBlob_t, 16, TAVL_MEMBER(0, len), TAVL_MEMBER(8, data));
TAVL_LAYOUT(PolicyRecord, 32, TAVL_MEMBER(0, oid), TAVL_MEMBER(8, org_name), TAVL_MEMBER(16, not_num),
            TAVL_MEMBER(24, text));
TAVL_LAYOUT(ExtensionRecord, 32, TAVL_MEMBER(0, oid), TAVL_MEMBER(8, type), TAVL_MEMBER(12, critical),
            TAVL_MEMBER(16, data));
TAVL_LAYOUT(AltNameRecord, 120, TAVL_MEMBER(0, emailAddress), TAVL_MEMBER(8, DNS), TAVL_MEMBER(16, URI),
            TAVL_MEMBER(24, IP), TAVL_MEMBER(32, organizationName), TAVL_MEMBER(40, registredAddress),
            TAVL_MEMBER(48, surname), TAVL_MEMBER(56, businessCategory), TAVL_MEMBER(64, telephoneNumber),
            TAVL_MEMBER(72, description), TAVL_MEMBER(80, account_number), TAVL_MEMBER(88, bank_id),
            TAVL_MEMBER(96, physicalDelivery), TAVL_MEMBER(104, exchange_address), TAVL_MEMBER(112, extraName));
TAVL_LAYOUT(CertificateRecord, 408, TAVL_MEMBER(0, fields), TAVL_MEMBER(8, issuer), TAVL_MEMBER(16, serialNumber),
            TAVL_MEMBER(24, subject), TAVL_MEMBER(32, algorithm), TAVL_MEMBER(40, notBefore), TAVL_MEMBER(44, notAfter),
            TAVL_MEMBER(48, issuerUID), TAVL_MEMBER(56, subjectUID), TAVL_MEMBER(64, keyUsage),
            TAVL_MEMBER(68, notBeforePrivate), TAVL_MEMBER(72, notAfterPrivate), TAVL_MEMBER(80, issuerAltName),
            TAVL_MEMBER(200, subjectAltName), TAVL_MEMBER(320, keyId), TAVL_LIST(328, policyCount, 336, policies),
            TAVL_LIST(344, extKeyUsageCount, 352, extKeyUsage), TAVL_LIST(360, extensionCount, 368, extensions),
            TAVL_MEMBER(376, certEncoded), TAVL_MEMBER(392, certHash));
TAVL_LAYOUT(SignParamRecord, 16, TAVL_MEMBER(0, flag), TAVL_MEMBER(8, mycert));
TAVL_LAYOUT(DecryptParamRecord, 24, TAVL_MEMBER(0, flag), TAVL_MEMBER(8, mycert), TAVL_MEMBER(16, info));
TAVL_LAYOUT(EncryptParamRecord, 32, TAVL_MEMBER(0, flag), TAVL_MEMBER(8, mycert),
            TAVL_LIST(16, receiverCount, 24, receivers));
TAVL_LAYOUT(FindParamRecord, 432, TAVL_MEMBER(0, flag), TAVL_MEMBER(8, mycert), TAVL_MEMBER(16, certTemplate),
            TAVL_MEMBER(424, info));
TAVL_LAYOUT(VerifyParamRecord, 80, TAVL_MEMBER(0, flag), TAVL_MEMBER(8, mycert), TAVL_MEMBER(16, keyUsage),
            TAVL_LIST(20, policyCount, 24, policies), TAVL_LIST(32, extKeyUsageCount, 40, extKeyUsage),
            TAVL_LIST(48, extensionCount, 56, extensions), TAVL_MEMBER(64, nSignToDelete), TAVL_MEMBER(68, minsigns),
            TAVL_MEMBER(72, info));
TAVL_LAYOUT(LocalParamRecord, 48, TAVL_MEMBER(0, size), TAVL_MEMBER(8, flag), TAVL_MEMBER(16, pse),
            TAVL_MEMBER(24, localstore), TAVL_MEMBER(32, ldap), TAVL_MEMBER(40, pincode));
TAVL_LAYOUT(RSrvParamRecord, 32, TAVL_MEMBER(0, size), TAVL_MEMBER(8, flag), TAVL_MEMBER(12, timeout),
            TAVL_LIST(16, serverCount, 24, servers));
TAVL_LAYOUT(SignStatusEntry, 16, TAVL_MEMBER(0, status), TAVL_MEMBER(4, time), TAVL_MEMBER(8, cert));
TAVL_LAYOUT(VerifyResultRecord, 16, TAVL_LIST(0, count, 8, entries));
TAVL_LAYOUT(FindResultRecord, 16, TAVL_LIST(0, count, 8, certificates));
TAVL_LAYOUT(DecryptResultRecord, 416, TAVL_MEMBER(0, status), TAVL_MEMBER(8, cert));
TAVL_LAYOUT(SignedInfoResultRecord, 16, TAVL_MEMBER(0, reserved), TAVL_MEMBER(4, signatureCount),
            TAVL_MEMBER(8, reserved2));
TAVL_LAYOUT(VerifyCertParamRecord, 24, TAVL_MEMBER(0, mode), TAVL_MEMBER(8, mycert), TAVL_MEMBER(16, info));

// The one record with a choice: its members share their place.
static_assert(sizeof(CertIdRecord) == 24 && offsetof(CertIdRecord, type) == 0);
static_assert(offsetof(CertIdRecord, issuerAndSerial.issuer) == 8);
static_assert(offsetof(CertIdRecord, issuerAndSerial.serialNumber) == 16);
static_assert(offsetof(CertIdRecord, keyId) == 8 && offsetof(CertIdRecord, certHash) == 8);

#undef TAVL_LAYOUT
#undef TAVL_OFFSET
#undef TAVL_MEMBER
#undef TAVL_LIST

}  // namespace engine
