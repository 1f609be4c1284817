// One SignerInfo of a signed message: what it states, whose it is, and whether its signature is genuine.
#pragma once

#include <ctime>

#include "standin/certificates/index_terms.h"
#include "standin/messages/content_digests.h"

namespace standin {

/// 0 if the signature states no time.
time_t SigningTimeOf(const CMS_SignerInfo* signer);

/// The term of the certificate that the SignerInfo names.
Term TermOfSigner(CMS_SignerInfo* signer);
/// Whether the SignerInfo names this certificate; if a signed attribute names the signer's certificate, it decides too.
bool NamesSigner(CMS_SignerInfo* signer, X509* certificate);

/// Verifies the signature with the certificate that was set as its signer's: kOk, kBadSignature, kAlgorithmUnknown, or
/// kCertificateDamaged if the certificate's key cannot be read.
int32_t VerifySignature(CMS_ContentInfo* message, CMS_SignerInfo* signer, const ContentDigests& content);

}  // namespace standin
