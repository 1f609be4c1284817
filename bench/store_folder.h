// Certificate stores of any size, made with libcrypto: a certificate that is looked for, many others, and revocation
// lists.
#pragma once

#include <string>

namespace bench {

/// Makes `folder` a store of `count` certificates by the authority of `pki`, with `lists` revocation lists, of which
/// the authority's own names `revoked` others. Anna's certificate is one of `pki`'s store, which is in it too. One that
/// stands is left as it is.
void MakeStore(const std::string& pki, const std::string& folder, int count, int lists, int revoked);

/// Adds one more certificate, of a number that no other has.
void AddToStore(const std::string& pki, const std::string& folder, int number);

}  // namespace bench
