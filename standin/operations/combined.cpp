#include "standin/operations/combined.h"

#include <windows.h>

#include "standin/base/codes.h"
#include "standin/base/files.h"
#include "standin/operations/decryption.h"
#include "standin/operations/encryption.h"
#include "standin/operations/recipients.h"
#include "standin/operations/signing.h"

namespace standin {
namespace {

/// A file between two steps, in the folder of `beside`.
class IntermediateFile {
 public:
  explicit IntermediateFile(const char* beside) : path_(FreeNameBeside(beside)) {}
  ~IntermediateFile() { DeleteFileA(path_.c_str()); }
  IntermediateFile(const IntermediateFile&) = delete;
  IntermediateFile& operator=(const IntermediateFile&) = delete;

  const char* path() const { return path_.c_str(); }

 private:
  std::string path_;
};

}  // namespace

void SignAndEncryptFile(Session& session, const SignParamRecord& sign, const EncryptParamRecord& encrypt,
                        const char* in, const char* out) {
  if (in == nullptr || out == nullptr) Fail(kWinInvalidParameter);
  // Fail before the file is signed.
  ResolveRecipients(session, encrypt);
  const IntermediateFile signedFile(out);
  // A detached signature would leave the recipients without the content.
  SignParamRecord attached = sign;
  attached.flag &= ~kSignDetached;
  SignFiles(session, &attached, in, nullptr, signedFile.path());
  EncryptFiles(session, encrypt, signedFile.path(), out);
}

Verification DecryptAndVerifyFile(Session& session, const DecryptParamRecord& decrypt, const VerifyParamRecord& verify,
                                  const char* in, const char* out, DecryptResultRecord& decrypted) {
  if (in == nullptr || out == nullptr) Fail(kWinInvalidParameter);
  const IntermediateFile signedFile(out);
  try {
    DecryptFiles(session, decrypt, in, signedFile.path(), decrypted);
  } catch (const EngineError& error) {
    decrypted = {};
    decrypted.status = error.code;
    throw;
  }
  return VerifyFiles(session, verify, nullptr, signedFile.path(), out);
}

}  // namespace standin
