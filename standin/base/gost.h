// The Russian algorithms: GOST R 34.10 signs, GOST R 34.11 hashes, GOST R 34.12 and GOST 28147-89 encrypt.
#pragma once

#include "standin/base/openssl_owners.h"

namespace standin {

/// GOST R 34.10-2001, or GOST R 34.10-2012 of 256 or 512 bits.
bool IsGostKey(int type);
inline bool IsGostKey(const EVP_PKEY* key) { return IsGostKey(EVP_PKEY_get_base_id(key)); }

/// GOST R 34.11-94, or GOST R 34.11-2012 of 256 or 512 bits.
bool IsGostDigest(int type);

/// Whether the parameters of a GOST key begin with an identifier that libcrypto does not know.
bool NamesUnknownCurve(const X509_ALGOR* key);

/// The length of the code by which a GOST cipher proves its content; 0 for other ciphers.
size_t MacLengthOf(const X509_ALGOR* cipher);

/// After how many bytes of a message's content the cipher changes its key; 0 for a cipher that does not, or does it of
/// itself.
int SectionLengthOf(int cipherType);

/// False if the parameters of a GOST cipher are not those of its kind: the GOST algorithms read them unchecked. True
/// for all other ciphers.
bool HasSoundParameters(const X509_ALGOR* cipher);

}  // namespace standin
