// The steps that the methods of QUIVO are made of: refuse, convert, call, write, map.
#pragma once

#include "com/object.h"
#include "com/variant.h"
#include "convert/bytes.h"
#include "convert/strings.h"
#include "engine/functions.h"
#include "errors/result.h"
#include "session/quivo.h"

/// The strings of one call in the system code page. All of them are converted before the call is decided,
/// and the failure of a later one wins.
class AnsiArguments {
 public:
  /// The converted string, valid as long as this object; null when the conversion failed.
  const char* required(BSTR text) {
    AnsiString& converted = strings_[count_++];
    HRESULT hr = BstrToAnsi(text, converted);
    if (FAILED(hr)) failure_ = hr;
    return converted.get();
  }
  /// As required; a null BSTR is passed on as a null pointer.
  const char* optional(BSTR text) { return text ? required(text) : nullptr; }

  /// The mapped failure of the conversions, S_OK when all succeeded.
  HRESULT failure() const { return ToModuleHResult(failure_); }

 private:
  // No method takes more than three.
  AnsiString strings_[3];
  int count_ = 0;
  HRESULT failure_ = S_OK;
};

/// The first of two results that is a failure, else the second.
inline HRESULT FirstFailure(HRESULT first, HRESULT second) { return FAILED(first) ? first : second; }

/// Reads data and an existing signature; two given ones must come in the same form. Failures are mapped.
HRESULT ReadDataAndSignature(const VARIANT& data, ByteInput& dataIn, const VARIANT& signature, ByteInput& signatureIn);

/// Bytes out: `call` receives the session and fills a blob, which becomes `out`; after an engine failure `out` is
/// untouched.
template <class EngineCall>
HRESULT ProduceBytes(SessionOwner& owner, bool vbsForm, VARIANT* out, EngineCall call) {
  if (!out) return E_QUIVO_INVALID_ARGUMENT;
  SessionUse session(owner);
  DataBlob_t bytes{};
  if (int32_t code = call(session, &bytes)) return ToModuleHResult(code);
  return ToModuleHResult(WriteByteVariant(session, bytes, vbsForm, out));
}

/// Bytes in: `call` receives the session and a blob.
template <class EngineCall>
HRESULT ConsumeBytes(SessionOwner& owner, const VARIANT& in, EngineCall call) {
  ByteInput input;
  HRESULT hr = ReadByteVariant(in, input);
  if (FAILED(hr)) return ToModuleHResult(hr);
  SessionUse session(owner);
  int32_t code = call(session, input.blob());
  HRESULT released = input.release();
  return ToModuleHResult(code != 0 ? code : released);
}

/// Bytes in, bytes out in the same form: `call` receives the session, a blob, and another that it fills; `finish`
/// receives the session and the result of the output (for what else the call returned). A failed release of the input
/// wins at the end.
template <class EngineCall, class Finish>
HRESULT TransformBytes(SessionOwner& owner, const VARIANT& in, VARIANT* out, EngineCall call, Finish finish) {
  ByteInput input;
  HRESULT hr = ReadByteVariant(in, input);
  if (FAILED(hr)) return ToModuleHResult(hr);
  SessionUse session(owner);
  DataBlob_t bytes{};
  int32_t code = call(session, input.blob(), &bytes);
  HRESULT released = input.release();
  if (code != 0) return ToModuleHResult(code);
  hr = finish(session, WriteByteVariant(session, bytes, input.isVbsForm(), out));
  return ToModuleHResult(FirstFailure(released, hr));
}

template <class EngineCall>
HRESULT TransformBytes(SessionOwner& owner, const VARIANT& in, VARIANT* out, EngineCall call) {
  if (!out) return E_QUIVO_INVALID_ARGUMENT;
  return TransformBytes(owner, in, out, call, [](EngineSession, HRESULT hr) { return hr; });
}

/// The message of an accepted verification into `out`, given that its signatures could be told (`told` is S_OK);
/// else the message goes back to the engine unread and `told` is returned.
HRESULT WriteVerified(EngineSession session, HRESULT told, const DataBlob_t& message, bool vbsForm, VARIANT* out);

/// The text of the engine's failure `code` into `text`, for the methods that answer with a text.
inline void TellFailure(QUIVO& quivo, int32_t code, VARIANT* text) { quivo.GetPKIErrorTextVBS(code, text); }

/// A text of the module's own into `out`, which may be null; its former contents are not cleared.
void TellText(const wchar_t* text, VARIANT* out);

/// A search for the caller's own certificate that asks for `info`; the result goes back when this dies,
/// unless the search failed: the engine then has handed out nothing.
class OwnCertificateSearch {
 public:
  explicit OwnCertificateSearch(SessionOwner& owner) : session_(owner) {}
  OwnCertificateSearch(const OwnCertificateSearch&) = delete;
  OwnCertificateSearch& operator=(const OwnCertificateSearch&) = delete;
  ~OwnCertificateSearch() {
    if (isOwned_) QUIVO_FreeFindResult(session_, &result_);
  }

  int32_t run(Certinfo_t info) {
    FindParamRecord param{};
    param.flag = Flag_Find_My;
    param.info = info;
    int32_t code = QUIVO_FindCert(session_, &param, &result_);
    isOwned_ = code == 0;
    return code;
  }
  int32_t count() const { return result_.count; }
  const CertificateRecord& first() const { return result_.certificates[0]; }

 private:
  SessionUse session_;
  FindResultRecord result_{};
  bool isOwned_ = true;
};
