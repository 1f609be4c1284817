// The legacy object's operations on files: one engine call each, with its messages.
#include "engine/owned.h"
#include "legacy/messages.h"
#include "legacy/pkiobj.h"
#include "legacy/results_sheet.h"
#include "legacy/thread_ansi.h"

using namespace legacy;

namespace {

constexpr char kVerifyFailed[] = "Ошибка проверки ЭП файла %s.";

/// The names of an operation's files.
struct Files {
  Files(BSTR fname_in, BSTR fname_out) : in(fname_in), out(fname_out) {}
  explicit operator bool() const { return in && out; }

  ThreadAnsi in;
  ThreadAnsi out;
};

SignParamRecord SigningParam(bool detached) {
  SignParamRecord param{};
  param.flag = Flag_Sign_Pkcs7 | (detached ? Flag_Sign_Detached : 0);
  return param;
}

EncryptParamRecord EncryptionParam(const RecipientUse& recipients) {
  EncryptParamRecord param{};
  param.flag = Flag_Encrypt_Pkcs7;
  param.receiverCount = recipients.count();
  param.receivers = recipients.records();
  return param;
}

DecryptParamRecord DecryptionParam(uint32_t info) {
  DecryptParamRecord param{};
  param.flag = Flag_Decrypt_Pkcs7;
  param.info = info;
  return param;
}

/// A verification that writes the content without its signatures.
VerifyParamRecord RemovalParam(uint32_t info) {
  VerifyParamRecord param{};
  param.flag = Flag_Verify_Pkcs7 | Flag_Verify_DelSign;
  param.nSignToDelete = Delete_All_Signs;
  param.info = info;
  return param;
}

constexpr uint32_t kNames = Field_Subject | Field_SubjectAltName | Field_CertEncoded;

bool IsVerified(int32_t code) { return code == 0 || code == engine::kVerifiedWithRemarks; }

bool IsSignedFile(EngineSession session, const char* file) {
  engine::SignedInfoResult info(session);
  return QUIVO_SignedInfoFile(session, file, info.receive()) == 0;
}

/// What an operation that produces a file returns for the engine's code: a failure is always negative, on purpose:
/// "The forced top bit" in docs/behaviour.md.
HRESULT Produced(int32_t code, const char* message, const char* file) {
  if (code == 0) return S_OK;
  ShowFailure(code, message, file);
  return static_cast<HRESULT>(static_cast<uint32_t>(code) | 0x80000000u);
}

/// Shows the signatures that a file already has, before it gets a further one. 0 when the user accepts them;
/// otherwise what the operation returns instead of signing.
HRESULT AcceptSignatures(EngineSession session, const char* file) {
  VerifyParamRecord param{};
  param.flag = Flag_Verify_Pkcs7;
  param.info = Field_Subject | Field_CertEncoded;
  engine::VerifyResult verified(session);
  int32_t code = QUIVO_VerifyFile(session, &param, nullptr, file, nullptr, verified.receive());
  if (!IsVerified(code)) {
    ShowFailure(code, kVerifyFailed, file);
    return code;
  }
  return ShowResults({session, nullptr, &verified.get(), code}) ? code : S_FALSE;
}

/// Makes the input of a decryption ready: a file that can be read and is not read-only. False after a message.
bool PrepareInput(const char* file) {
  constexpr char kNoAccess[] = "Ошибка доступа к файлу %s.";
  DWORD attributes = GetFileAttributesA(file);
  bool isReady = attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
  if (isReady && (attributes & FILE_ATTRIBUTE_READONLY))
    isReady = SetFileAttributesA(file, attributes & ~static_cast<DWORD>(FILE_ATTRIBUTE_READONLY));
  if (!isReady) ShowFailure(static_cast<int32_t>(GetLastError()), kNoAccess, file);
  return isReady;
}

}  // namespace

STDMETHODIMP pkiobj::Sign(BSTR fname_in, BSTR fname_out, LONG bDetached) {
  Call call(*this);
  Files files(fname_in, fname_out);
  if (!files) return E_OUTOFMEMORY;
  const char* in = files.in.get();
  HRESULT accepted = IsSignedFile(call.session(), in) ? AcceptSignatures(call.session(), in) : S_OK;
  if (accepted != S_OK) return accepted;
  SignParamRecord param = SigningParam(bDetached != 0);
  return Produced(QUIVO_SignFile(call.session(), &param, in, nullptr, files.out.get()),
                  "Ошибка выполнения ЭП файла %s.", in);
}

STDMETHODIMP pkiobj::Verify(BSTR fname_in, BSTR fname_out) {
  Call call(*this);
  Files files(fname_in, fname_out);
  if (!files) return E_OUTOFMEMORY;
  VerifyParamRecord param = RemovalParam(kNames);
  engine::VerifyResult verified(call.session());
  int32_t code = QUIVO_VerifyFile(call.session(), &param, nullptr, files.in.get(), files.out.get(), verified.receive());
  if (!IsVerified(code)) {
    ShowFailure(code, kVerifyFailed, files.in.get());
    return code;
  }
  return ShowResults({call.session(), nullptr, &verified.get(), code}) ? code : S_FALSE;
}

STDMETHODIMP pkiobj::Encrypt(BSTR fname_in, BSTR fname_out) {
  Call call(*this);
  RecipientUse recipients(recipients_);
  Files files(fname_in, fname_out);
  if (!files) return E_OUTOFMEMORY;
  EncryptParamRecord param = EncryptionParam(recipients);
  return Produced(QUIVO_EncryptFile(call.session(), &param, files.in.get(), files.out.get()),
                  "Ошибка выполнения шифрования файла %s.", files.in.get());
}

STDMETHODIMP pkiobj::Unencrypt(BSTR fname_in, BSTR fname_out, LONG bShowResult) {
  Call call(*this);
  Files files(fname_in, fname_out);
  if (!files) return E_OUTOFMEMORY;
  if (!PrepareInput(files.in.get())) return S_FALSE;
  DecryptParamRecord param = DecryptionParam(kNames);
  engine::DecryptResult decrypted(call.session());
  int32_t code = QUIVO_DecryptFile(call.session(), &param, files.in.get(), files.out.get(), decrypted.receive());
  if (bShowResult && !ShowResults({call.session(), &decrypted.get(), nullptr, 0})) return S_FALSE;
  return code;
}

STDMETHODIMP pkiobj::SignAndEncrypt(BSTR fname_in, BSTR fname_out) {
  Call call(*this);
  RecipientUse recipients(recipients_);
  Files files(fname_in, fname_out);
  if (!files) return E_OUTOFMEMORY;
  const char* in = files.in.get();
  HRESULT accepted = IsSignedFile(call.session(), in) ? AcceptSignatures(call.session(), in) : S_OK;
  if (accepted != S_OK) return accepted;
  SignParamRecord sign = SigningParam(false);
  EncryptParamRecord encrypt = EncryptionParam(recipients);
  return Produced(QUIVO_SignAndEncryptFile(call.session(), &sign, &encrypt, in, files.out.get()),
                  "Ошибка выполнения ЭП и шифрования файла %s.", in);
}

STDMETHODIMP pkiobj::VerifyAndUnencrypt(BSTR fname_in, BSTR fname_out) {
  Call call(*this);
  Files files(fname_in, fname_out);
  if (!files) return E_OUTOFMEMORY;
  if (!PrepareInput(files.in.get())) return S_FALSE;
  // No certificate fields are asked for, unlike in the two single operations: the sheet shows
  // what the engine reports of the signers unasked.
  DecryptParamRecord decrypt = DecryptionParam(0);
  VerifyParamRecord verify = RemovalParam(0);
  engine::DecryptResult decrypted(call.session());
  engine::VerifyResult verified(call.session());
  int32_t code = QUIVO_DecryptAndVerifyFile(call.session(), &decrypt, &verify, files.in.get(), files.out.get(),
                                            decrypted.receive(), verified.receive());
  if (!IsVerified(code)) {
    ShowFailure(code, "Ошибка расшифрования/проверки ЭП файла %s.", files.in.get());
    return code;
  }
  return ShowResults({call.session(), &decrypted.get(), &verified.get(), code}) ? code : S_FALSE;
}
