// The operations that do two things to a file: sign and encrypt, decrypt and verify.
#pragma once

#include "standin/operations/verification.h"
#include "standin/sessions/session.h"

namespace standin {

void SignAndEncryptFile(Session& session, const SignParamRecord& sign, const EncryptParamRecord& encrypt,
                        const char* in, const char* out);

/// `out` appears as VerifyFiles says; a message that cannot be decrypted is an exception, its code also the status of
/// `decrypted`.
Verification DecryptAndVerifyFile(Session& session, const DecryptParamRecord& decrypt, const VerifyParamRecord& verify,
                                  const char* in, const char* out, DecryptResultRecord& decrypted);

}  // namespace standin
