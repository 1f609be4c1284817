#include "standin/certificates/cert_extensions.h"

#include "standin/base/asn1_text.h"

namespace standin {
namespace {

void AddQualifier(CertPolicy& policy, const POLICYQUALINFO* qualifier) {
  switch (OBJ_obj2nid(qualifier->pqualid)) {
    case NID_id_qt_cps:
      if (policy.text.empty()) policy.text = TextOf(qualifier->d.cpsuri);
      break;
    case NID_id_qt_unotice: {
      const USERNOTICE* notice = qualifier->d.usernotice;
      if (notice->exptext != nullptr) policy.text = TextOf(notice->exptext);
      if (notice->noticeref == nullptr) break;
      policy.organisation = TextOf(notice->noticeref->organization);
      if (sk_ASN1_INTEGER_num(notice->noticeref->noticenos) > 0) {
        policy.noticeNumber =
            static_cast<int32_t>(ASN1_INTEGER_get(sk_ASN1_INTEGER_value(notice->noticeref->noticenos, 0)));
      }
      break;
    }
    default:
      break;
  }
}

}  // namespace

std::string ObjectText(const ASN1_OBJECT* object, bool asNumber) {
  char text[256];
  const int length = OBJ_obj2txt(text, sizeof text, object, asNumber ? 1 : 0);
  if (length <= 0) return {};
  return text;
}

std::vector<std::string> ExtKeyUsageOf(const X509* certificate) {
  const ExtKeyUsagePtr usages(
      static_cast<EXTENDED_KEY_USAGE*>(X509_get_ext_d2i(certificate, NID_ext_key_usage, nullptr, nullptr)));
  std::vector<std::string> oids;
  for (int i = 0; usages != nullptr && i < sk_ASN1_OBJECT_num(usages.get()); ++i) {
    oids.push_back(ObjectText(sk_ASN1_OBJECT_value(usages.get(), i), true));
  }
  return oids;
}

std::vector<CertPolicy> PoliciesOf(const X509* certificate) {
  const Owned<CERTIFICATEPOLICIES_free> stated(
      static_cast<CERTIFICATEPOLICIES*>(X509_get_ext_d2i(certificate, NID_certificate_policies, nullptr, nullptr)));
  std::vector<CertPolicy> policies;
  for (int i = 0; stated != nullptr && i < sk_POLICYINFO_num(stated.get()); ++i) {
    const POLICYINFO* info = sk_POLICYINFO_value(stated.get(), i);
    CertPolicy policy;
    policy.oid = ObjectText(info->policyid, true);
    for (int q = 0; info->qualifiers != nullptr && q < sk_POLICYQUALINFO_num(info->qualifiers); ++q) {
      AddQualifier(policy, sk_POLICYQUALINFO_value(info->qualifiers, q));
    }
    policies.push_back(std::move(policy));
  }
  return policies;
}

std::vector<CertExtension> ExtensionsOf(const X509* certificate) {
  std::vector<CertExtension> extensions;
  for (int i = 0; i < X509_get_ext_count(certificate); ++i) {
    X509_EXTENSION* extension = X509_get_ext(certificate, i);
    const ASN1_OCTET_STRING* value = X509_EXTENSION_get_data(extension);
    extensions.push_back({ObjectText(X509_EXTENSION_get_object(extension), true),
                          X509_EXTENSION_get_critical(extension) != 0,
                          Bytes(value->data, value->data + value->length)});
  }
  return extensions;
}

}  // namespace standin
