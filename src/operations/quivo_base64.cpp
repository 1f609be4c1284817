// Signatures and the own certificate as Base64 text.
#include <cstdio>
#include <cstring>
#include <memory>
#include <new>

#include "objects/operation_params.h"
#include "operations/base64.h"
#include "operations/own_certificate.h"
#include "operations/steps.h"

using namespace operations;

namespace {

// What SignFile2B64Mem returns for any failure, on purpose: "The only failure of SignFile2B64Mem" in docs/behaviour.md.
constexpr HRESULT kFailed = static_cast<HRESULT>(0xFFFFFFFF);
constexpr wchar_t kNoMemory[] = L"Недостаточно памяти";

/// A buffer for the Base64 text of `length` bytes. Null without memory; lengths whose Base64 size exceeds 32 bits are
/// reported as out of memory.
convert::AnsiString NewBase64Buffer(uint32_t length) {
  uint32_t size = Base64Size(length);
  return convert::AnsiString(size == 0 ? nullptr : new (std::nothrow) char[size]());
}

/// Reads a whole file in one read. Returns the Win32 error, 0 on success.
DWORD ReadWholeFile(const wchar_t* path, std::unique_ptr<uint8_t[]>& bytes, DWORD* size) {
  HANDLE handle =
      CreateFileW(path, GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, FILE_FLAG_SEQUENTIAL_SCAN, nullptr);
  if (handle == INVALID_HANDLE_VALUE) return GetLastError();
  com::File file(handle);
  // A device or a pipe has no size; some platforms report one, and the reading would wait.
  if (GetFileType(handle) != FILE_TYPE_DISK) return ERROR_INVALID_FUNCTION;
  SetLastError(NO_ERROR);
  DWORD high = 0;
  *size = GetFileSize(handle, &high);
  if (*size == INVALID_FILE_SIZE && GetLastError() != NO_ERROR) return GetLastError();
  // The engine counts with 32 bits: what they leave out would not be signed.
  if (high != 0) return ERROR_FILE_TOO_LARGE;
  bytes.reset(new (std::nothrow) uint8_t[uint64_t{*size} + 1]);
  if (!bytes) return ERROR_NOT_ENOUGH_MEMORY;
  DWORD read = 0;
  if (!ReadFile(handle, bytes.get(), *size, &read, nullptr)) return GetLastError();
  return read < *size ? ERROR_BAD_LENGTH : NO_ERROR;
}

}  // namespace

STDMETHODIMP QUIVO::SignFile2B64Mem(ISignParam* param, BSTR FileName, VARIANT* Signature, VARIANT* var_err_text) {
  auto failWith = [&](const wchar_t* text) {
    ReturnText(text, var_err_text);
    return kFailed;
  };
  auto failBecauseOf = [&](int32_t code) {
    GetPKIErrorTextVBS(code, var_err_text);
    return kFailed;
  };
  SignParam* options = com::Own<SignParam>(param);
  if (!options || !Signature) return failBecauseOf(E_QUIVO_INVALID_ARGUMENT);
  std::unique_ptr<uint8_t[]> file;
  DWORD size = 0;
  if (DWORD error = ReadWholeFile(FileName, file, &size)) {
    wchar_t text[301] = {};
    _snwprintf(text, 300, L"Не удалось прочитать файл %ls. Ошибка %ld.", FileName ? FileName : L"",
               static_cast<long>(error));
    return failWith(text);
  }

  DataBlob_t data{size, file.get()};
  DataBlob_t noSignature{};
  SessionUse session(owner());
  engine::Buffer signature(session);
  int32_t code = QUIVO_SignMem(session, options->record(), &data, &noSignature, signature.receive());
  file.reset();
  if (code != 0) return failBecauseOf(code);

  convert::AnsiString text = NewBase64Buffer(signature.get().len);
  if (!text) return failWith(kNoMemory);
  code = QUIVO_EncodeMem(text.get(), signature.get().data, signature.get().len);
  if (code < 0) return failBecauseOf(code);

  UINT length = OverlongSize(static_cast<UINT>(std::strlen(text.get())));
  com::Bstr wide(SysAllocStringLen(nullptr, length));
  if (!wide) return failWith(kNoMemory);
  if (MultiByteToWideChar(CP_ACP, 0, text.get(), -1, wide.get(), static_cast<int>(length)) == 0)
    return failBecauseOf(ToModuleHResult(errors::LastErrorResult()));
  com::OverwriteWithText(Signature, std::move(wide));
  return S_OK;
}

STDMETHODIMP QUIVO::GetMyCertB64(VARIANT* var_cert_str) {
  convert::AnsiString text;
  {
    OwnCertificateSearch search(owner());
    if (int32_t code = search.run(Field_CertEncoded)) return ToModuleHResult(code);
    if (search.count() < 1) return E_FAIL;
    const DataBlob_t& encoded = search.first().certEncoded;
    text = NewBase64Buffer(encoded.len);
    if (!text) return E_OUTOFMEMORY;
    int32_t code = QUIVO_EncodeMem(text.get(), encoded.data, encoded.len);
    if (code < 0) return ToModuleHResult(code);
  }
  int size = 0;
  HRESULT hr = convert::MeasureWide(text.get(), &size);
  // On purpose: "Failures that are not re-based" in docs/behaviour.md.
  if (size == 0) return hr;
  com::Bstr wide;
  hr = convert::ReallocBstr(text.get(), size, wide.inOut());
  if (FAILED(hr)) return ToModuleHResult(hr);
  // On purpose: "The null pointer comes last" in docs/behaviour.md.
  if (!var_cert_str) return E_QUIVO_INVALID_ARGUMENT;
  com::OverwriteWithText(var_cert_str, std::move(wide));
  return S_OK;
}
