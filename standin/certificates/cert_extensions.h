// The extensions of a certificate, apart from alternative names and key usage.
#pragma once

#include <string>
#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// The registered name of the object; its dotted number if it has no name or `asNumber` is set.
std::string ObjectText(const ASN1_OBJECT* object, bool asNumber);

/// The dotted numbers, in order; empty without the extension.
std::vector<std::string> ExtKeyUsageOf(const X509* certificate);

/// A policy with its user notice, in UTF-8. Without a notice, `text` is the address of the practice statement.
struct CertPolicy {
  std::string oid;
  std::string organisation;
  int32_t noticeNumber = 0;
  std::string text;
};
std::vector<CertPolicy> PoliciesOf(const X509* certificate);

struct CertExtension {
  std::string oid;
  bool critical;
  Bytes value;  ///< DER
};
std::vector<CertExtension> ExtensionsOf(const X509* certificate);

}  // namespace standin
