// Comparison of certificates with templates.
#include "standin/certificates/cert_match.h"

#include <algorithm>
#include <string>

#include "standin/base/ansi.h"
#include "standin/base/asn1_text.h"
#include "standin/certificates/alt_name.h"
#include "standin/certificates/cert_extensions.h"
#include "standin/certificates/cert_id.h"
#include "standin/certificates/cert_record.h"
#include "standin/certificates/der_objects.h"
#include "standin/certificates/names.h"

namespace standin {
namespace {

bool IsSet(const char* text) { return text != nullptr && *text != 0; }
bool IsSet(const DataBlob_t& bytes) { return bytes.len != 0; }
bool IsSet(const AltNameRecord& name) {
  bool any = false;
  ForEachMember([&](const char* text) { any = any || IsSet(text); }, name);
  return any;
}

bool Counts(const CertificateRecord& wanted, uint32_t field) {
  return wanted.fields == 0 || (wanted.fields & field) != 0;
}

bool SameText(const std::string& leftAnsi, const std::string& rightAnsi) {
  return FoldCase(Utf8FromAnsi(leftAnsi)) == FoldCase(Utf8FromAnsi(rightAnsi));
}

bool SubjectHasAddress(const X509* certificate, const char* address) {
  const X509_NAME* subject = X509_get_subject_name(certificate);
  for (int i = X509_NAME_get_index_by_NID(subject, NID_pkcs9_emailAddress, -1); i >= 0;
       i = X509_NAME_get_index_by_NID(subject, NID_pkcs9_emailAddress, i)) {
    const std::string text = TextOf(X509_NAME_ENTRY_get_data(X509_NAME_get_entry(subject, i)));
    if (SameText(AnsiFromUtf8(text), address)) return true;
  }
  return false;
}

class Comparison {
 public:
  Comparison(X509* certificate, const CertificateRecord& wanted) : certificate_(certificate), wanted_(wanted) {}

  bool counts(uint32_t field) const { return Counts(wanted_, field); }

  bool names(bool partialSubject) const {
    if (counts(kFieldIssuer) && IsSet(wanted_.issuer) &&
        !IsNameText(X509_get_issuer_name(certificate_), Utf8FromAnsi(wanted_.issuer))) {
      return false;
    }
    if (counts(kFieldSubject) && IsSet(wanted_.subject)) {
      const X509_NAME* subject = X509_get_subject_name(certificate_);
      const std::string text = Utf8FromAnsi(wanted_.subject);
      if (!(partialSubject ? NameContains(subject, text) : IsNameText(subject, text))) return false;
    }
    return altName(kFieldSubjectAltName, wanted_.subjectAltName, NID_subject_alt_name) &&
           altName(kFieldIssuerAltName, wanted_.issuerAltName, NID_issuer_alt_name);
  }

  bool numbers() const {
    if (counts(kFieldSerial) && IsSet(wanted_.serialNumber) &&
        !IsSameHex(wanted_.serialNumber, SerialText(certificate_))) {
      return false;
    }
    if (counts(kFieldKeyID) && IsSet(wanted_.keyId) && !IsSameHex(wanted_.keyId, HexOf(KeyIdOf(certificate_)))) {
      return false;
    }
    if (counts(kFieldCertHash) && IsSet(wanted_.certHash) && !IsHashOf(certificate_, wanted_.certHash)) return false;
    if (!counts(kFieldCertEncoded) || !IsSet(wanted_.certEncoded)) return true;
    const ByteView encoded = ViewOf(&wanted_.certEncoded);
    const Bytes der = DerOf(certificate_);
    return std::equal(encoded.begin(), encoded.end(), der.begin(), der.end());
  }

  bool uses() const {
    if (counts(kFieldKeyUsage) && !AllowsKeyUsage(certificate_, wanted_.keyUsage)) return false;
    if (counts(kFieldExtKeyUsage) && wanted_.extKeyUsage != nullptr) {
      const std::vector<std::string> stated = ExtKeyUsageOf(certificate_);
      for (int32_t i = 0; i < wanted_.extKeyUsageCount; ++i) {
        const std::string oid = TextOrEmpty(wanted_.extKeyUsage[i]);
        if (std::find(stated.begin(), stated.end(), oid) == stated.end()) return false;
      }
    }
    if (!counts(kFieldPolicy) || wanted_.policies == nullptr) return true;
    const std::vector<CertPolicy> stated = PoliciesOf(certificate_);
    for (int32_t i = 0; i < wanted_.policyCount; ++i) {
      const std::string oid = TextOrEmpty(wanted_.policies[i].oid);
      if (std::none_of(stated.begin(), stated.end(), [&](const CertPolicy& one) { return one.oid == oid; })) {
        return false;
      }
    }
    return true;
  }

 private:
  bool altName(uint32_t field, const AltNameRecord& wanted, int extensionNid) const {
    if (!counts(field)) return true;
    Buffers buffers;
    AltNameRecord stated{};
    FillAltName(stated, certificate_, extensionNid, buffers);
    bool agrees = true;
    ForEachMember(
        [&](char* const& text, const char* here) {
          if (!IsSet(text) || (here != nullptr && SameText(here, text))) return;
          // Older certificates have the e-mail address in the subject itself.
          agrees = agrees && &text == &wanted_.subjectAltName.emailAddress && SubjectHasAddress(certificate_, text);
        },
        wanted, stated);
    return agrees;
  }

  X509* certificate_;
  const CertificateRecord& wanted_;
};

}  // namespace

bool Fits(X509* certificate, const CertificateRecord& wanted, bool partialSubject) {
  const Comparison comparison(certificate, wanted);
  return comparison.numbers() && comparison.uses() && comparison.names(partialSubject);
}

bool StatesAnything(const CertificateRecord& wanted) {
  const auto states = [&](uint32_t field, const auto& member) { return Counts(wanted, field) && IsSet(member); };
  return states(kFieldSubjectAltName, wanted.subjectAltName) || states(kFieldSubject, wanted.subject) ||
         states(kFieldSerial, wanted.serialNumber) || states(kFieldKeyID, wanted.keyId) ||
         states(kFieldCertHash, wanted.certHash) || states(kFieldCertEncoded, wanted.certEncoded);
}

}  // namespace standin
