// The content key as it comes to a GOST recipient: encrypted under a key that another key and the recipient's agree on.
#pragma once

#include "standin/base/bytes.h"
#include "standin/base/openssl_owners.h"

namespace standin {

/// Whether the RecipientInfo of a recipient by key transport can be decrypted with the GOST key `own`: libcrypto's GOST
/// algorithms read the lengths and the ephemeral key unchecked.
bool IsSoundTransport(ByteView recipientInfo, const EVP_PKEY* own);

/// The same of a recipient by key agreement. The sender's key, if the message has it, must be on the curve of `own`.
bool IsSoundAgreement(ByteView recipientInfo, const EVP_PKEY* own);

}  // namespace standin
