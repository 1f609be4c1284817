#include "standin/certificates/crl_scope.h"

namespace standin {
namespace {

using Number = Owned<ASN1_INTEGER_free>;
using Scope = Owned<ISSUING_DIST_POINT_free>;

template <typename Owner>
Owner Extension(const X509_CRL* crl, int nid) {
  return Owner(static_cast<typename Owner::pointer>(X509_CRL_get_ext_d2i(crl, nid, nullptr, nullptr)));
}

bool Has(const X509_CRL* crl, int nid) { return X509_CRL_get_ext_by_NID(crl, nid, -1) >= 0; }

bool HaveSame(const X509_CRL* left, const X509_CRL* right, int nid) {
  if (!Has(left, nid) || !Has(right, nid)) return Has(left, nid) == Has(right, nid);
  const auto value = [&](const X509_CRL* crl) {
    return X509_EXTENSION_get_data(X509_CRL_get_ext(crl, X509_CRL_get_ext_by_NID(crl, nid, -1)));
  };
  return ASN1_OCTET_STRING_cmp(value(left), value(right)) == 0;
}

bool HaveSameScope(const X509_CRL* left, const X509_CRL* right) {
  return X509_NAME_cmp(X509_CRL_get_issuer(left), X509_CRL_get_issuer(right)) == 0 &&
         HaveSame(left, right, NID_authority_key_identifier) && HaveSame(left, right, NID_issuing_distribution_point);
}

}  // namespace

bool IsComplete(const X509_CRL* crl) {
  return !Has(crl, NID_delta_crl) && (!Has(crl, NID_issuing_distribution_point) ||
                                      Extension<Scope>(crl, NID_issuing_distribution_point) != nullptr);
}

void ForEachListIssuer(const X509* certificate, const std::function<void(const X509_NAME*)>& take) {
  take(X509_get_issuer_name(certificate));
  const Owned<CRL_DIST_POINTS_free> points(
      static_cast<CRL_DIST_POINTS*>(X509_get_ext_d2i(certificate, NID_crl_distribution_points, nullptr, nullptr)));
  for (int i = 0; i < sk_DIST_POINT_num(points.get()); ++i) {
    const GENERAL_NAMES* issuers = sk_DIST_POINT_value(points.get(), i)->CRLissuer;
    for (int j = 0; j < sk_GENERAL_NAME_num(issuers); ++j) {
      const GENERAL_NAME* issuer = sk_GENERAL_NAME_value(issuers, j);
      if (issuer->type == GEN_DIRNAME) take(issuer->d.directoryName);
    }
  }
}

bool BearsOn(const X509_CRL* crl, const X509* certificate) {
  bool bears = false;
  ForEachListIssuer(certificate, [&](const X509_NAME* issuer) {
    bears = bears || X509_NAME_cmp(issuer, X509_CRL_get_issuer(crl)) == 0;
  });
  return bears;
}

bool ConcernsKindOf(const X509_CRL* crl, X509* certificate) {
  const Scope scope = Extension<Scope>(crl, NID_issuing_distribution_point);
  if (scope == nullptr) return true;
  const bool isAuthority = (X509_get_extension_flags(certificate) & EXFLAG_CA) != 0;
  return scope->onlyattr <= 0 && (isAuthority ? scope->onlyuser : scope->onlyCA) <= 0;
}

bool AreOfOneKind(const X509_CRL* left, const X509_CRL* right) {
  return Has(left, NID_delta_crl) == Has(right, NID_delta_crl) && HaveSameScope(left, right);
}

bool IsDeltaAfter(const X509_CRL* delta, const X509_CRL* complete) {
  if (!Has(delta, NID_delta_crl) || !HaveSameScope(delta, complete)) return false;
  const Number number = Extension<Number>(delta, NID_crl_number);
  const Number before = Extension<Number>(complete, NID_crl_number);
  return number == nullptr || before == nullptr || ASN1_INTEGER_cmp(number.get(), before.get()) > 0;
}

bool Continues(const X509_CRL* delta, const X509_CRL* complete) {
  const Number base = Extension<Number>(delta, NID_delta_crl);
  const Number number = Extension<Number>(complete, NID_crl_number);
  return base != nullptr && number != nullptr && ASN1_INTEGER_cmp(base.get(), number.get()) <= 0;
}

}  // namespace standin
