// What the programs that measure the registered module with the stand-in engine share.
#pragma once

#include <windows.h>

#include <objbase.h>
#include <quivocom.h>

#include <cstring>
#include <string>
#include <vector>

#include "measure.h"
#include "support/ptr.h"

namespace bench {

template <class Class, class Interface>
Ptr<Interface> New() {
  Ptr<Interface> made;
  Check(CoCreateInstance(__uuidof(Class), nullptr, CLSCTX_ALL, __uuidof(Interface), made.voidOut()),
        "CoCreateInstance");
  return made;
}

/// A BSTR of the caller's.
inline BSTR Text(const std::string& text) {
  int size = MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, nullptr, 0);
  BSTR made = SysAllocStringLen(nullptr, static_cast<UINT>(size - 1));
  MultiByteToWideChar(CP_ACP, 0, text.c_str(), -1, made, size);
  return made;
}

/// A string argument.
class Argument {
 public:
  explicit Argument(const std::string& text) : text_(Text(text)) {}
  Argument(const Argument&) = delete;
  Argument& operator=(const Argument&) = delete;
  ~Argument() { SysFreeString(text_); }
  operator BSTR() const { return text_; }

 private:
  BSTR text_;
};

inline VARIANT Bytes(const void* data, size_t size) {
  VARIANT bytes{};
  V_VT(&bytes) = VT_ARRAY | VT_UI1;
  V_ARRAY(&bytes) = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size));
  std::memcpy(V_ARRAY(&bytes)->pvData, data, size);
  return bytes;
}

/// A session with Anna's key of a folder that tools/make-pki made, and the certificates of `store`.
inline Ptr<IQUIVO> OpenSession(const std::string& pki, const std::string& store) {
  auto param = New<LocalParam, ILocalParam>();
  param->put_pse(Argument(pki + "\\anna.p12"));
  param->put_localstore(Argument(store));
  param->put_pincode(Argument("12345678"));
  auto quivo = New<QUIVO, IQUIVO>();
  Check(quivo->InitializeEx(param), "InitializeEx");
  return quivo;
}

inline Ptr<ISignParam> Signing(int flags) {
  auto param = New<SignParam, ISignParam>();
  param->put_flag(static_cast<SignParamFlag_t>(Flag_Sign_Pkcs7 | flags));
  return param;
}

inline Ptr<IVerifyParam> Verification(int flags) {
  auto param = New<VerifyParam, IVerifyParam>();
  param->put_flag(static_cast<VerifyParamFlag_t>(Flag_Verify_Pkcs7 | flags));
  return param;
}

/// Encryption to what FindCert returned, or to other certificates.
inline Ptr<IEncryptParam> Encryption(const VARIANT& receivers) {
  auto param = New<EncryptParam, IEncryptParam>();
  param->put_flag(Flag_Encrypt_Pkcs7);
  Check(param->put_Receivers(receivers), "Receivers");
  return param;
}

/// Encryption to the own certificate, so that the same session can decrypt.
inline Ptr<IEncryptParam> EncryptionToOwn(IQUIVO* quivo) {
  auto search = New<FindParam, IFindParam>();
  search->put_flag(Flag_Find_My);
  search->put_info(static_cast<Certinfo_t>(Field_All));
  VARIANT found{};
  Check(quivo->FindCert(search, &found), "FindCert");
  auto param = Encryption(found);
  VariantClear(&found);
  return param;
}

inline Ptr<IDecryptParam> Decryption() {
  auto param = New<DecryptParam, IDecryptParam>();
  param->put_flag(Flag_Decrypt_Pkcs7);
  return param;
}

}  // namespace bench
