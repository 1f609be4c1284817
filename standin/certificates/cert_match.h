// Whether a certificate fits the template of a search or the description of a recipient.
#pragma once

#include "standin/base/contract.h"
#include "standin/base/openssl_owners.h"
#include "standin/certificates/index_terms.h"

namespace standin {

/// Compares the members that are set and, unless `fields` is 0, are in its mask. The case of texts does not count. With
/// `partialSubject` the certificate's subject need only contain the text.
bool Fits(X509* certificate, const CertificateRecord& wanted, bool partialSubject);

/// A term of every certificate that fits, if the record states one.
std::optional<Term> TermOf(const CertificateRecord& wanted);

/// Whether the record has a member that can identify a certificate.
bool StatesAnything(const CertificateRecord& wanted);

}  // namespace standin
