// The parts of a certificate: how their records are freed and copied.
#include "objects/alt_name.h"
#include "objects/extension.h"
#include "objects/policy.h"

namespace {

/// The strings of an alternative name, by pointer to member, so that they are walked as one list.
constexpr char* AltNameRecord::*kAltNames[] = {
    &AltNameRecord::emailAddress,
    &AltNameRecord::DNS,
    &AltNameRecord::URI,
    &AltNameRecord::IP,
    &AltNameRecord::organizationName,
    &AltNameRecord::registredAddress,
    &AltNameRecord::surname,
    &AltNameRecord::businessCategory,
    &AltNameRecord::telephoneNumber,
    &AltNameRecord::description,
    &AltNameRecord::account_number,
    &AltNameRecord::bank_id,
    &AltNameRecord::physicalDelivery,
    &AltNameRecord::exchange_address,
    &AltNameRecord::extraName,
};
static_assert(sizeof(kAltNames) / sizeof(*kAltNames) * sizeof(char*) == sizeof(AltNameRecord));

/// Runs steps until one fails.
template <class... Steps>
HRESULT AllOf(Steps... steps) {
  HRESULT hr = S_OK;
  static_cast<void>((SUCCEEDED(hr = steps()) && ...));
  return hr;
}

}  // namespace

AltName::~AltName() {
  for (auto name : kAltNames) Reset(record_.*name);
}

HRESULT AltName::copyFrom(const AltNameRecord& from) {
  for (auto name : kAltNames) {
    HRESULT hr = Duplicate(from.*name, record_.*name);
    if (FAILED(hr)) return hr;
  }
  return S_OK;
}

Policy::~Policy() {
  Reset(record_.oid);
  Reset(record_.org_name);
  Reset(record_.text);
}

HRESULT Policy::copyFrom(const PolicyRecord& from) {
  record_.not_num = from.not_num;
  return AllOf([&] { return Duplicate(from.oid, record_.oid); },
               [&] { return Duplicate(from.org_name, record_.org_name); },
               [&] { return Duplicate(from.text, record_.text); });
}

Extension::~Extension() {
  Reset(record_.oid);
  Reset(record_.data);
}

HRESULT Extension::copyFrom(const ExtensionRecord& from) {
  record_.type = from.type;
  record_.critical = from.critical;
  return AllOf([&] { return Duplicate(from.oid, record_.oid); }, [&] { return Duplicate(from.data, record_.data); });
}
