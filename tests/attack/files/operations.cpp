#include "caller.h"

namespace {

Ptr<ISignParam> Signing(const Caller& caller, long flags) {
  auto param = caller.make<ISignParam>(__uuidof(SignParam));
  param->put_flag(static_cast<SignParamFlag_t>(flags));
  return param;
}

Ptr<IVerifyParam> Verifying(const Caller& caller, long flags, long toDelete = 0) {
  auto param = caller.make<IVerifyParam>(__uuidof(VerifyParam));
  param->put_flag(static_cast<VerifyParamFlag_t>(flags));
  param->put_nSignToDelete(toDelete);
  return param;
}

Ptr<IEncryptParam> Encrypting(const Caller& caller, const Bytes& receiver) {
  auto param = caller.make<IEncryptParam>(__uuidof(EncryptParam));
  Variant encoded = ByteArray(receiver);
  Ptr<ICertificate> certificate;
  caller.quivo()->ParseCert(encoded, static_cast<Certinfo_t>(0x7FFFF), certificate.out());
  IDispatch* object = certificate.get();
  Variant receivers = ObjectArray({object});
  param->put_Receivers(receivers);
  param->put_flag(Flag_Encrypt_Pkcs7);
  return param;
}

Ptr<IDecryptParam> Decrypting(const Caller& caller) {
  auto param = caller.make<IDecryptParam>(__uuidof(DecryptParam));
  param->put_flag(Flag_Decrypt_Pkcs7);
  return param;
}

Outcome Of(HRESULT code) { return {code, SUCCEEDED(code)}; }

using VerifyMethod = HRESULT (STDMETHODCALLTYPE IQUIVO::*)(IVerifyParam*, BSTR, BSTR, BSTR, VARIANT*);

HRESULT Verify(const Caller& caller, VerifyMethod method, IVerifyParam* param, const wchar_t* data,
               const std::wstring& message, const std::wstring* out) {
  Variant results;
  return (caller.quivo()->*method)(param, Bstr(data), Bstr(message), out == nullptr ? Bstr() : Bstr(*out),
                                   results.out());
}

}  // namespace

std::vector<Operation> FileOperations(const Caller& first, const Folders& folders) {
  const Bytes receiver = ReadFileOf(folders.materialFile(L"alice.cer"));
  const std::wstring data = folders.file(L"data.bin");
  for (const wchar_t* name : {L"data.bin", L"messages\\attached.p7s", L"messages\\two.p7s", L"messages\\detached.p7s",
                              L"messages\\two.p7e", L"messages\\bundle.p7b"}) {
    const std::wstring leaf = wcsrchr(name, L'\\') == nullptr ? name : wcsrchr(name, L'\\') + 1;
    if (ReadFileOf(folders.file(leaf)).empty()) {
      WriteFileOf(folders.file(leaf), ReadFileOf(folders.materialFile(name)));
    }
  }
  const std::wstring both = folders.file(L"both.p7a");
  if (ReadFileOf(both).empty()) first.legacy()->SignAndEncrypt(Bstr(data), Bstr(both));
  const Bytes plain = ReadFileOf(data);

  const auto isPlain = [plain](const Caller&, const std::wstring& out) { return ReadFileOf(out) == plain; };
  const auto isSigned = [](const Caller& caller, const std::wstring& out) {
    return Verify(caller, &IQUIVO::VerifyFile, Verifying(caller, Flag_Verify_Pkcs7), nullptr, out, nullptr) == S_OK;
  };
  const auto isSignature = [data](const Caller& caller, const std::wstring& out) {
    return Verify(caller, &IQUIVO::VerifyFile, Verifying(caller, Flag_Verify_Pkcs7), data.c_str(), out, nullptr) ==
           S_OK;
  };
  const auto opens = [](const Caller& caller, const std::wstring& out, const std::wstring& opened) {
    Ptr<ICertificate> sender;
    return caller.quivo()->DecryptFile(Decrypting(caller), Bstr(out), Bstr(opened), sender.out()) == S_OK;
  };
  const std::wstring probe = folders.scratch + L".probe";
  const auto isSealed = [opens, probe, plain](const Caller& caller, const std::wstring& out) {
    const bool whole = opens(caller, out, probe) && ReadFileOf(probe) == plain;
    DeleteFileW(probe.c_str());
    return whole;
  };
  const auto isSealedMessage = [opens, probe, isSigned](const Caller& caller, const std::wstring& out) {
    const bool whole = opens(caller, out, probe) && isSigned(caller, probe);
    DeleteFileW(probe.c_str());
    return whole;
  };
  const auto isAny = [](const Caller&, const std::wstring&) { return true; };

  using Path = const std::wstring&;
  constexpr long kAttached = Flag_Sign_Pkcs7 | Flag_Sign_SendSert;
  std::vector<Operation> all{
      {"HashFile", L"data.bin", false, isAny,
       [](const Caller& c, Path in, Path) {
         Variant hash;
         return Of(c.quivo()->HashFile(Bstr(in), hash.out()));
       }},
      {"SignFile, attached", L"data.bin", true, isSigned,
       [](const Caller& c, Path in, Path out) {
         return Of(c.quivo()->SignFile(Signing(c, kAttached), Bstr(in), Bstr(), Bstr(out)));
       }},
      {"SignFile, detached", L"data.bin", true, isSignature,
       [](const Caller& c, Path in, Path out) {
         return Of(c.quivo()->SignFile(Signing(c, kAttached | Flag_Sign_Detached), Bstr(in), Bstr(), Bstr(out)));
       }},
      {"SignFile, added", L"attached.p7s", true, isSigned,
       [](const Caller& c, Path in, Path out) {
         return Of(c.quivo()->SignFile(Signing(c, kAttached), Bstr(), Bstr(in), Bstr(out)));
       }},
      {"StrSignFile", L"data.bin", true, isSigned,
       [](const Caller& c, Path in, Path out) {
         return Of(c.quivo()->StrSignFile(Signing(c, kAttached), Bstr(in), Bstr(), Bstr(out)));
       }},
      {"SignFile2B64Mem", L"data.bin", false, isAny,
       [](const Caller& c, Path in, Path) {
         Variant signature, text;
         const HRESULT code = c.quivo()->SignFile2B64Mem(Signing(c, kAttached), Bstr(in), signature.out(), text.out());
         return Outcome{code, signature.type() == VT_BSTR};
       }},
      {"VerifyFile, content", L"attached.p7s", true, isPlain,
       [](const Caller& c, Path in, Path out) {
         return Of(Verify(c, &IQUIVO::VerifyFile, Verifying(c, Flag_Verify_Pkcs7), nullptr, in, &out));
       }},
      {"VerifyFile, one removed", L"two.p7s", true, isSigned,
       [](const Caller& c, Path in, Path out) {
         return Of(
             Verify(c, &IQUIVO::VerifyFile, Verifying(c, Flag_Verify_Pkcs7 | Flag_Verify_DelSign), nullptr, in, &out));
       }},
      {"VerifyFile, the only one removed", L"attached.p7s", true, isPlain,
       [](const Caller& c, Path in, Path out) {
         return Of(
             Verify(c, &IQUIVO::VerifyFile, Verifying(c, Flag_Verify_Pkcs7 | Flag_Verify_DelSign), nullptr, in, &out));
       }},
      {"VerifyFile, detached signature", L"detached.p7s", false, isAny,
       [data](const Caller& c, Path in, Path) {
         return Of(Verify(c, &IQUIVO::VerifyFile, Verifying(c, Flag_Verify_Pkcs7), data.c_str(), in, nullptr));
       }},
      {"VerifyFile, detached data", L"data.bin", false, isAny,
       [message = folders.file(L"detached.p7s")](const Caller& c, Path in, Path) {
         return Of(Verify(c, &IQUIVO::VerifyFile, Verifying(c, Flag_Verify_Pkcs7), in.c_str(), message, nullptr));
       }},
      {"StrVerifyFile", L"attached.p7s", true, isPlain,
       [](const Caller& c, Path in, Path out) {
         return Of(Verify(c, &IQUIVO::StrVerifyFile, Verifying(c, Flag_Verify_Pkcs7), nullptr, in, &out));
       }},
      {"EncryptFile", L"data.bin", true, isSealed,
       [receiver](const Caller& c, Path in, Path out) {
         return Of(c.quivo()->EncryptFile(Encrypting(c, receiver), Bstr(in), Bstr(out)));
       }},
      {"StrEncryptFile", L"data.bin", true, isSealed,
       [receiver](const Caller& c, Path in, Path out) {
         return Of(c.quivo()->StrEncryptFile(Encrypting(c, receiver), Bstr(in), Bstr(out)));
       }},
      {"DecryptFile", L"two.p7e", true, isPlain,
       [](const Caller& c, Path in, Path out) {
         Ptr<ICertificate> sender;
         return Of(c.quivo()->DecryptFile(Decrypting(c), Bstr(in), Bstr(out), sender.out()));
       }},
      {"StrDecryptFile", L"two.p7e", true, isPlain,
       [](const Caller& c, Path in, Path out) {
         Ptr<ICertificate> sender;
         return Of(c.quivo()->StrDecryptFile(Decrypting(c), Bstr(in), Bstr(out), sender.out()));
       }},
      {"ExportFile", L"", true, isAny,
       [](const Caller& c, Path, Path out) {
         return Of(c.quivo()->ExportFile(c.make<IExportParam>(__uuidof(ExportParam)), Bstr(out)));
       }},
      {"ImportFile", L"bundle.p7b", false, isAny,
       [](const Caller& c, Path in, Path) {
         return Of(c.quivo()->ImportFile(c.make<IImportParam>(__uuidof(ImportParam)), Bstr(in)));
       }},
      {"pkiobj.Sign", L"data.bin", true, isSigned,
       [](const Caller& c, Path in, Path out) { return Of(c.legacy()->Sign(Bstr(in), Bstr(out), 0)); }},
      {"pkiobj.Sign, again", L"attached.p7s", true, isSigned,
       [](const Caller& c, Path in, Path out) { return Of(c.legacy()->Sign(Bstr(in), Bstr(out), 0)); }},
      {"pkiobj.Verify", L"attached.p7s", true, isPlain,
       [](const Caller& c, Path in, Path out) { return Of(c.legacy()->Verify(Bstr(in), Bstr(out))); }},
      {"pkiobj.Encrypt", L"data.bin", true, isSealed,
       [](const Caller& c, Path in, Path out) { return Of(c.legacy()->Encrypt(Bstr(in), Bstr(out))); }},
      {"pkiobj.Unencrypt", L"two.p7e", true, isPlain,
       [](const Caller& c, Path in, Path out) { return Of(c.legacy()->Unencrypt(Bstr(in), Bstr(out), 0)); }},
      {"pkiobj.SignAndEncrypt", L"data.bin", true, isSealedMessage,
       [](const Caller& c, Path in, Path out) { return Of(c.legacy()->SignAndEncrypt(Bstr(in), Bstr(out))); }},
      {"pkiobj.VerifyAndUnencrypt", L"both.p7a", true, isPlain,
       [](const Caller& c, Path in, Path out) { return Of(c.legacy()->VerifyAndUnencrypt(Bstr(in), Bstr(out))); }},
      {"pkiobj.IsSigned", L"attached.p7s", false, isAny,
       [](const Caller& c, Path in, Path) {
         const HRESULT code = c.legacy()->IsSigned(Bstr(in));
         return Outcome{code, code == S_OK};
       }},
  };
  // The legacy object answers S_FALSE where it refuses a file, and engine codes of which not all are failures.
  for (Operation& operation : all) {
    if (std::string(operation.name).rfind("pkiobj", 0) != 0) continue;
    operation.run = [run = operation.run](const Caller& caller, Path in, Path out) {
      Outcome outcome = run(caller, in, out);
      outcome.done = outcome.code == S_OK;
      return outcome;
    };
  }
  return all;
}
