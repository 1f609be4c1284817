// Operations of two steps on a file: sign and encrypt, decrypt and verify.
#pragma once

#include "standin/operations/verification.h"
#include "standin/sessions/session.h"

namespace standin {

void SignAndEncryptFile(Session& session, const SignParamRecord& sign, const EncryptParamRecord& encrypt,
                        const char* in, const char* out);

/// Writes `out` as VerifyFiles does. Fails if the message cannot be decrypted; the code is also the status of
/// `decrypted`.
Verification DecryptAndVerifyFile(Session& session, const DecryptParamRecord& decrypt, const VerifyParamRecord& verify,
                                  const char* in, const char* out, DecryptResultRecord& decrypted);

}  // namespace standin
