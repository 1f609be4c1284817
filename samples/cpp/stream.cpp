// Signs a file in pieces, as a program does that gets its data from elsewhere, and shows how far it is.
//   stream PROFILE FILE SIGNATURE [/lang:en]
// A file on a disk needs no pieces: StrSignFile reads it as a stream by itself.
// Exit code: 0 signed, 1 not signed, 2 wrong arguments.
#include <windows.h>

#include <cstdio>
#include <cstring>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "com.h"
#include "console.h"
#include "quivocom.h"

namespace {

/// A signature of data that comes in pieces.
class Signer {
 public:
  HRESULT open(const std::wstring& profile) {
    HRESULT hr = quivo_.create<QUIVO>();
    if (SUCCEEDED(hr)) hr = quivo_->Initialize(Bstr(profile).get(), static_cast<Init_Flag_t>(0));
    if (SUCCEEDED(hr)) hr = param_.create<SignParam>();
    if (SUCCEEDED(hr)) hr = context_.create<StreamCtx>();
    if (FAILED(hr)) return hr;
    param_->put_flag(static_cast<SignParamFlag_t>(Flag_Sign_Pkcs7 | Flag_Sign_Detached | Flag_Sign_SendSert));
    VARIANT none;
    VariantInit(&none);
    return quivo_->StrSignInitMem(param_.get(), none, context_.get());
  }

  HRESULT add(const char* bytes, size_t size) {
    Variant piece;
    VARIANT* value = piece.receive();
    value->parray = SafeArrayCreateVector(VT_UI1, 0, static_cast<ULONG>(size));
    if (!value->parray) return E_OUTOFMEMORY;
    value->vt = VT_ARRAY | VT_UI1;
    std::memcpy(value->parray->pvData, bytes, size);
    return quivo_->StrSignUpdateMem(param_.get(), context_.get(), *value);
  }

  /// The signature has the form of the pieces: an array of bytes.
  HRESULT finish(std::ofstream& file) {
    Variant signature;
    const HRESULT hr = quivo_->StrSignFinalMem(param_.get(), context_.get(), signature.receive());
    if (FAILED(hr)) return hr;
    const SAFEARRAY* array = signature.receive()->parray;
    file.write(static_cast<const char*>(array->pvData), array->rgsabound[0].cElements);
    return file.flush() ? S_OK : HRESULT_FROM_WIN32(ERROR_WRITE_FAULT);
  }

  std::wstring textOf(HRESULT code) const {
    Bstr text;
    if (quivo_) quivo_->GetPKIErrorText(code, text.receive());
    wchar_t number[16];
    std::swprintf(number, std::size(number), L"0x%08lX", static_cast<unsigned long>(code));
    return text.str() + L" (" + number + L")";
  }

 private:
  ComPtr<IQUIVO> quivo_;
  ComPtr<ISignParam> param_;
  ComPtr<IStreamCtx> context_;
};

int SignInPieces(const Arguments& arguments) {
  const Language language = arguments.language;
  std::ifstream in(arguments.given[1].c_str(), std::ios::binary | std::ios::ate);
  if (!in) {
    Print(Choose(language, L"Файл не прочитан: ", L"The file cannot be read: ") + arguments.given[1]);
    return 1;
  }
  const auto size = static_cast<unsigned long long>(in.tellg());
  in.seekg(0);
  Signer signer;
  HRESULT hr = signer.open(arguments.given[0]);
  std::vector<char> piece(1 << 20);
  unsigned long long done = 0;
  while (SUCCEEDED(hr) && in.read(piece.data(), static_cast<std::streamsize>(piece.size())).gcount() > 0) {
    hr = signer.add(piece.data(), static_cast<size_t>(in.gcount()));
    done += static_cast<unsigned long long>(in.gcount());
    Write(L"\r" + std::to_wstring(100 * done / size) + L"%  ");
  }
  Print(L"");
  // A signature is not begun before all has been signed: nothing is left of one that fails.
  if (SUCCEEDED(hr)) {
    std::ofstream out(arguments.given[2].c_str(), std::ios::binary | std::ios::trunc);
    hr = out ? signer.finish(out) : HRESULT_FROM_WIN32(ERROR_CANNOT_MAKE);
  }
  if (FAILED(hr)) {
    Print(Choose(language, L"Не подписан: ", L"Not signed: ") + signer.textOf(hr));
    return 1;
  }
  Print(Choose(language, L"Подписано байт: ", L"Bytes signed: ") + std::to_wstring(done));
  return 0;
}

}  // namespace

int wmain(int count, wchar_t** values) {
  Arguments arguments;
  if (!ReadArguments(count, values, 3, &arguments)) {
    Print(Choose(arguments.language, L"Подписывает файл по частям:", L"Signs a file in pieces:"));
    Print(Choose(arguments.language, L"  stream ПРОФИЛЬ ФАЙЛ ПОДПИСЬ [/lang:en]",
                 L"  stream PROFILE FILE SIGNATURE [/lang:en]"));
    return 2;
  }
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  const int result = SignInPieces(arguments);
  CoUninitialize();
  return result;
}
