// The terms under which a store finds its certificates and revocation lists, taken from the few elements of the encoded
// form that they need: to decode a certificate takes longer than to read its file.
#pragma once

#include <string>
#include <vector>

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// A hash: what is found under a term has to be looked at.
using Term = uint64_t;

/// The subject of a certificate, or the issuer of a list.
Term NameTerm(const X509_NAME* name);
/// Numbers in any form that IsSameHex takes.
Term SerialTerm(const std::string& hex);
Term KeyIdTerm(const std::string& hex);
/// Of a SubjectPublicKeyInfo; the same for every form of one key.
Term PublicKeyTerm(ByteView encodedKey);
/// Of a SHA-1 or SHA-256 of the whole encoded form.
Term HashTerm(ByteView hash);

/// All terms of an object but its hashes; none unless it is encoded as libcrypto would encode it again.
std::vector<Term> TermsOfCertificate(ByteView der);
std::vector<Term> TermsOfCrl(ByteView der);

}  // namespace standin
