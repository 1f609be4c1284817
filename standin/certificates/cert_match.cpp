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

/// True for a name whose stated texts are all empty.
bool IsEmptied(const AltNameRecord& name) {
  bool any = false;
  ForEachMember([&](const char* text) { any = any || text != nullptr; }, name);
  return any && !IsSet(name);
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

  bool holds(bool partialSubject) const {
    return agrees(kFieldSerial, wanted_.serialNumber,
                  [&](const char* text) { return IsSameHex(text, SerialText(certificate_)); }) &&
           agrees(kFieldKeyID, wanted_.keyId,
                  [&](const char* text) { return IsSameHex(text, HexOf(KeyIdOf(certificate_))); }) &&
           agrees(kFieldCertHash, wanted_.certHash,
                  [&](const DataBlob_t& hash) { return IsHashOf(certificate_, hash); }) &&
           agrees(kFieldCertEncoded, wanted_.certEncoded,
                  [&](const DataBlob_t& der) { return Equal(ViewOf(&der), DerOf(certificate_)); }) &&
           agrees(
               kFieldIssuer, wanted_.issuer,
               [&](const char* text) { return IsNameText(X509_get_issuer_name(certificate_), Utf8FromAnsi(text)); }) &&
           agrees(kFieldSubject, wanted_.subject,
                  [&](const char* text) {
                    const X509_NAME* subject = X509_get_subject_name(certificate_);
                    return partialSubject ? NameContains(subject, Utf8FromAnsi(text))
                                          : IsNameText(subject, Utf8FromAnsi(text));
                  }) &&
           hasUses() && hasAltName(kFieldSubjectAltName, wanted_.subjectAltName, NID_subject_alt_name) &&
           hasAltName(kFieldIssuerAltName, wanted_.issuerAltName, NID_issuer_alt_name);
  }

 private:
  template <typename Member, typename Test>
  bool agrees(uint32_t field, const Member& member, Test test) const {
    return !Counts(wanted_, field) || !IsSet(member) || test(member);
  }

  bool hasUses() const {
    if (Counts(wanted_, kFieldKeyUsage) && !AllowsKeyUsage(certificate_, wanted_.keyUsage)) return false;
    if (Counts(wanted_, kFieldExtKeyUsage)) {
      const std::vector<std::string> stated = ExtKeyUsageOf(certificate_);
      for (const char* oid : ListOf(wanted_.extKeyUsage, wanted_.extKeyUsageCount)) {
        if (std::ranges::find(stated, TextOrEmpty(oid)) == stated.end()) return false;
      }
    }
    if (!Counts(wanted_, kFieldPolicy)) return true;
    const std::vector<CertPolicy> stated = PoliciesOf(certificate_);
    return std::ranges::all_of(ListOf(wanted_.policies, wanted_.policyCount), [&](const PolicyRecord& policy) {
      return std::ranges::find(stated, TextOrEmpty(policy.oid), &CertPolicy::oid) != stated.end();
    });
  }

  bool hasAltName(uint32_t field, const AltNameRecord& wanted, int extensionNid) const {
    if (!Counts(wanted_, field)) return true;
    // Otherwise an address that was left empty would fit everybody.
    if ((wanted_.fields & field) != 0 && IsEmptied(wanted)) return false;
    Buffers buffers;
    AltNameRecord stated{};
    FillAltName(stated, certificate_, extensionNid, buffers);
    bool agrees = true;
    ForEachMember(
        [&](char* const& text, const char* here) {
          if (!IsSet(text) || (here != nullptr && SameText(here, text))) return;
          // Older certificates have the e-mail address in the subject.
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
  return Comparison(certificate, wanted).holds(partialSubject);
}

std::optional<Term> TermOf(const CertificateRecord& wanted) {
  const auto states = [&](uint32_t field, const auto& member) { return Counts(wanted, field) && IsSet(member); };
  if (states(kFieldSerial, wanted.serialNumber)) return SerialTerm(wanted.serialNumber);
  if (states(kFieldKeyID, wanted.keyId)) return KeyIdTerm(wanted.keyId);
  if (states(kFieldCertHash, wanted.certHash)) return TermOfHash(wanted.certHash);
  return std::nullopt;
}

bool StatesAnything(const CertificateRecord& wanted) {
  const auto states = [&](uint32_t field, const auto& member) { return Counts(wanted, field) && IsSet(member); };
  return states(kFieldSubjectAltName, wanted.subjectAltName) || states(kFieldSubject, wanted.subject) ||
         states(kFieldSerial, wanted.serialNumber) || states(kFieldKeyID, wanted.keyId) ||
         states(kFieldCertHash, wanted.certHash) || states(kFieldCertEncoded, wanted.certEncoded);
}

}  // namespace standin
