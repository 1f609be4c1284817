// Whether a certificate fits the template of a search or the description of a recipient.
#pragma once

#include "standin/base/contract.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// Everything that the record states must hold; texts are compared without regard to case. When `fields` is 0, all
/// members that are set count, otherwise only those of its mask. `partialSubject`: the subject need only occur.
bool Fits(X509* certificate, const CertificateRecord& wanted, bool partialSubject);

/// Whether the record states anything at all that a certificate could be told by.
bool StatesAnything(const CertificateRecord& wanted);

}  // namespace standin
