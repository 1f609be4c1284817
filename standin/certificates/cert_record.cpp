#include "standin/certificates/cert_record.h"

#include "standin/base/ansi.h"
#include "standin/base/digest.h"
#include "standin/base/times.h"
#include "standin/certificates/alt_name.h"
#include "standin/certificates/cert_extensions.h"
#include "standin/certificates/der_objects.h"
#include "standin/certificates/names.h"

namespace standin {
namespace {

constexpr uint32_t kPersonFields = kFieldSubject | kFieldSubjectAltName | kFieldIssuer | kFieldSerial |
                                   kFieldNotBefore | kFieldNotAfter | kFieldCertEncoded;

class RecordFiller {
 public:
  RecordFiller(X509* certificate, uint32_t mask, Buffers& buffers)
      : certificate_(certificate), mask_(mask), buffers_(buffers) {}

  CertificateRecord fill() {
    fillNames();
    fillTimes();
    fillUniqueIds();
    fillExtensions();
    if (wants(kFieldKeyID)) putText(record_.keyId, kFieldKeyID, HexOf(KeyIdOf(certificate_)));
    if (wants(kFieldCertEncoded)) putBytes(record_.certEncoded, kFieldCertEncoded, DerOf(certificate_));
    if (wants(kFieldCertHash)) putBytes(record_.certHash, kFieldCertHash, HashOf(DerOf(certificate_), EVP_sha1()));
    return record_;
  }

 private:
  bool wants(uint32_t field) const { return (mask_ & field) != 0; }
  void putText(char*& place, uint32_t field, const std::string& ansi) {
    if (ansi.empty()) return;
    place = buffers_.copyText(ansi);
    record_.fields |= field;
  }
  void putBytes(DataBlob_t& place, uint32_t field, const Bytes& bytes) {
    place = buffers_.copyBytes(bytes);
    record_.fields |= field;
  }
  void putTime(uint32_t& place, uint32_t field, time_t seconds) {
    if (seconds == 0) return;
    place = RecordTime(seconds);
    record_.fields |= field;
  }

  void fillNames() {
    if (wants(kFieldSerial)) putText(record_.serialNumber, kFieldSerial, SerialText(certificate_));
    if (wants(kFieldIssuer)) {
      putText(record_.issuer, kFieldIssuer, AnsiFromUtf8(NameText(X509_get_issuer_name(certificate_))));
    }
    if (wants(kFieldSubject | kFieldSubjectQualified)) {
      const NameForm form = wants(kFieldSubjectQualified) ? NameForm::kQualified : NameForm::kShort;
      putText(record_.subject, kFieldSubject, AnsiFromUtf8(NameText(X509_get_subject_name(certificate_), form)));
    }
    if (wants(kFieldAlgorithm | kFieldAlgorithmOidFormat)) putText(record_.algorithm, kFieldAlgorithm, algorithmText());
  }

  std::string algorithmText() const {
    const X509_ALGOR* algorithm = X509_get0_tbs_sigalg(certificate_);
    const ASN1_OBJECT* object = nullptr;
    X509_ALGOR_get0(&object, nullptr, nullptr, algorithm);
    return ObjectText(object, wants(kFieldAlgorithmOidFormat));
  }

  void fillTimes() {
    if (wants(kFieldNotBefore)) {
      putTime(record_.notBefore, kFieldNotBefore, SecondsOf(X509_get0_notBefore(certificate_)));
    }
    if (wants(kFieldNotAfter)) putTime(record_.notAfter, kFieldNotAfter, SecondsOf(X509_get0_notAfter(certificate_)));
    if (!wants(kFieldNotBeforePrivate | kFieldNotAfterPrivate)) return;
    const KeyPeriod period = PrivateKeyPeriod(certificate_);
    if (wants(kFieldNotBeforePrivate)) putTime(record_.notBeforePrivate, kFieldNotBeforePrivate, period.notBefore);
    if (wants(kFieldNotAfterPrivate)) putTime(record_.notAfterPrivate, kFieldNotAfterPrivate, period.notAfter);
  }

  void fillUniqueIds() {
    const ASN1_BIT_STRING* issuer = nullptr;
    const ASN1_BIT_STRING* subject = nullptr;
    X509_get0_uids(certificate_, &issuer, &subject);
    if (wants(kFieldIssuerID)) putText(record_.issuerUID, kFieldIssuerID, bitsText(issuer));
    if (wants(kFieldSubjectID)) putText(record_.subjectUID, kFieldSubjectID, bitsText(subject));
  }

  static std::string bitsText(const ASN1_BIT_STRING* bits) {
    return bits == nullptr ? std::string() : HexOf({bits->data, static_cast<size_t>(bits->length)});
  }

  void fillExtensions() {
    if (wants(kFieldKeyUsage)) {
      record_.keyUsage = KeyUsageOf(certificate_);
      if (record_.keyUsage != 0) record_.fields |= kFieldKeyUsage;
    }
    if (wants(kFieldIssuerAltName) && FillAltName(record_.issuerAltName, certificate_, NID_issuer_alt_name, buffers_)) {
      record_.fields |= kFieldIssuerAltName;
    }
    if (wants(kFieldSubjectAltName) &&
        FillAltName(record_.subjectAltName, certificate_, NID_subject_alt_name, buffers_)) {
      record_.fields |= kFieldSubjectAltName;
    }
    if (wants(kFieldExtKeyUsage)) fillExtKeyUsage();
    if (wants(kFieldPolicy)) fillPolicies();
    if (wants(kFieldExtensions)) fillExtensionList();
  }

  void fillExtKeyUsage() {
    const std::vector<std::string> oids = ExtKeyUsageOf(certificate_);
    if (oids.empty()) return;
    record_.extKeyUsage = buffers_.allocateArray<char*>(oids.size());
    for (const std::string& oid : oids) {
      record_.extKeyUsage[record_.extKeyUsageCount++] = buffers_.copyText(oid);
    }
    record_.fields |= kFieldExtKeyUsage;
  }

  void fillPolicies() {
    const std::vector<CertPolicy> policies = PoliciesOf(certificate_);
    if (policies.empty()) return;
    record_.policies = buffers_.allocateArray<PolicyRecord>(policies.size());
    for (const CertPolicy& policy : policies) {
      PolicyRecord& target = record_.policies[record_.policyCount++];
      target.oid = buffers_.copyText(policy.oid);
      if (!policy.organisation.empty()) target.org_name = buffers_.copyText(AnsiFromUtf8(policy.organisation));
      target.not_num = policy.noticeNumber;
      if (!policy.text.empty()) target.text = buffers_.copyText(AnsiFromUtf8(policy.text));
    }
    record_.fields |= kFieldPolicy;
  }

  void fillExtensionList() {
    const std::vector<CertExtension> extensions = ExtensionsOf(certificate_);
    if (extensions.empty()) return;
    record_.extensions = buffers_.allocateArray<ExtensionRecord>(extensions.size());
    for (const CertExtension& extension : extensions) {
      ExtensionRecord& target = record_.extensions[record_.extensionCount++];
      target.oid = buffers_.copyText(extension.oid);
      target.type = extension.value.empty() ? 0 : extension.value[0];
      target.critical = extension.critical ? 1 : 0;
      target.data = buffers_.copyBytes(extension.value);
    }
    record_.fields |= kFieldExtensions;
  }

  CertificateRecord record_{};
  X509* certificate_;
  uint32_t mask_;
  Buffers& buffers_;
};

}  // namespace

CertificateRecord RecordOf(X509* certificate, uint32_t mask, Buffers& buffers) {
  return RecordFiller(certificate, mask, buffers).fill();
}

CertificateRecord PersonRecordOf(X509* certificate, uint32_t mask, Buffers& buffers) {
  return RecordOf(certificate, mask == 0 ? kPersonFields : mask, buffers);
}

uint32_t KeyUsageOf(X509* certificate) {
  if ((X509_get_extension_flags(certificate) & EXFLAG_KUSAGE) == 0) return 0;
  const uint32_t stated = X509_get_key_usage(certificate);
  uint32_t bits = (stated & KU_DECIPHER_ONLY) != 0 ? +kKeyUsageDecipherOnly : 0;
  // Both number the uses in the order of the extension: the record from the lowest bit, libcrypto from the highest.
  for (int bit = 0; bit < 8; ++bit) bits |= (stated >> (7 - bit) & 1) << bit;
  return bits;
}

bool AllowsKeyUsage(X509* certificate, uint32_t bits) {
  const bool stated = (X509_get_extension_flags(certificate) & EXFLAG_KUSAGE) != 0;
  return !stated || (KeyUsageOf(certificate) & bits) == bits;
}

}  // namespace standin
