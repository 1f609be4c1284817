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

  bool counts(uint32_t field) const { return wanted_.fields == 0 || (wanted_.fields & field) != 0; }

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
    if (counts(kFieldCertHash) && wanted_.certHash.len != 0 && !IsHashOf(certificate_, wanted_.certHash)) return false;
    if (!counts(kFieldCertEncoded) || wanted_.certEncoded.len == 0) return true;
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
    for (const AltNameField& member : AltNameFields()) {
      const char* text = wanted.*member.text;
      if (!IsSet(text)) continue;
      const char* here = stated.*member.text;
      if (here != nullptr && SameText(here, text)) continue;
      // Older certificates have the e-mail address in the subject itself.
      const bool inSubject = extensionNid == NID_subject_alt_name && member.place == AltNameField::Place::kEmail;
      if (!inSubject || !SubjectHasAddress(certificate_, text)) return false;
    }
    return true;
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
  const auto counts = [&](uint32_t field) { return wanted.fields == 0 || (wanted.fields & field) != 0; };
  const bool hasAddress = counts(kFieldSubjectAltName) &&
                          std::any_of(AltNameFields().begin(), AltNameFields().end(), [&](const AltNameField& member) {
                            return IsSet(wanted.subjectAltName.*member.text);
                          });
  return hasAddress || (counts(kFieldSubject) && IsSet(wanted.subject)) ||
         (counts(kFieldSerial) && IsSet(wanted.serialNumber)) || (counts(kFieldKeyID) && IsSet(wanted.keyId)) ||
         (counts(kFieldCertHash) && wanted.certHash.len != 0) ||
         (counts(kFieldCertEncoded) && wanted.certEncoded.len != 0);
}

}  // namespace standin
