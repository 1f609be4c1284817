// What a revocation list is about, where libcrypto gives no answer.
#pragma once

#include <functional>

#include "standin/base/openssl_owners.h"

namespace standin {

/// False for a delta list, and for one whose scope cannot be decoded: libcrypto takes that for complete.
bool IsComplete(const X509_CRL* crl);
/// Calls `take` with the issuer of the certificate, and with other issuers of lists that the certificate names.
void ForEachListIssuer(const X509* certificate, const std::function<void(const X509_NAME*)>& take);
/// Whether the issuer of the certificate has issued the list, or the certificate names the list's issuer.
bool BearsOn(const X509_CRL* crl, const X509* certificate);
/// Whether the list is about the certificate's kind: users or authorities.
bool ConcernsKindOf(const X509_CRL* crl, X509* certificate);

/// Whether both lists are of one issuer and key, about the same certificates, and both complete or both deltas.
bool AreOfOneKind(const X509_CRL* left, const X509_CRL* right);
/// Whether the delta list states changes after the complete list of the same scope.
bool IsDeltaAfter(const X509_CRL* delta, const X509_CRL* complete);
/// Whether no changes between the complete list and the delta list are missing.
bool Continues(const X509_CRL* delta, const X509_CRL* complete);

}  // namespace standin
