// The steps that the methods of QUIVO are made of: refuse, convert, call, write, map.
#pragma once

#include "com/object.h"
#include "com/variant.h"
#include "convert/bytes.h"
#include "engine/session_owner.h"
#include "errors/result.h"
#include "operations/ansi_arguments.h"
#include "operations/quivo.h"

namespace operations {

using convert::ReadByteVariant;
using convert::WriteByteVariant;
using engine::SessionUse;
using errors::ToModuleHResult;

/// The first of two results that is a failure, else the second.
inline HRESULT FirstFailure(HRESULT first, HRESULT second) { return FAILED(first) ? first : second; }

/// Reads data and an existing signature; two given ones must have the same form. Failures are mapped.
HRESULT ReadDataAndSignature(const VARIANT& data, convert::ByteInput& dataIn, const VARIANT& signature,
                             convert::ByteInput& signatureIn);

/// Bytes out: `call` receives the session and fills a blob, which becomes `out`; after an engine failure `out` is
/// untouched and nothing goes back.
template <class EngineCall>
HRESULT ProduceBytes(engine::SessionOwner& owner, bool vbsForm, VARIANT* out, EngineCall call) {
  if (!out) return E_QUIVO_INVALID_ARGUMENT;
  SessionUse session(owner);
  engine::Buffer bytes(session);
  if (int32_t code = call(session, bytes.receive())) {
    bytes.leave();
    return ToModuleHResult(code);
  }
  return ToModuleHResult(WriteByteVariant(bytes, vbsForm, out));
}

/// Bytes in: `call` receives the session and a blob.
template <class EngineCall>
HRESULT ConsumeBytes(engine::SessionOwner& owner, const VARIANT& in, EngineCall call) {
  convert::ByteInput input;
  HRESULT hr = ReadByteVariant(in, input);
  if (FAILED(hr)) return ToModuleHResult(hr);
  SessionUse session(owner);
  int32_t code = call(session, input.blob());
  HRESULT released = input.release();
  return ToModuleHResult(code != 0 ? code : released);
}

/// Bytes in, bytes out in the same form: `call` receives the session, a blob, and another that it fills; `finish`
/// receives the result of the output (for what else the call returned). A failed release of the input wins at the end.
template <class EngineCall, class Finish>
HRESULT TransformBytes(engine::SessionOwner& owner, const VARIANT& in, VARIANT* out, EngineCall call, Finish finish) {
  convert::ByteInput input;
  HRESULT hr = ReadByteVariant(in, input);
  if (FAILED(hr)) return ToModuleHResult(hr);
  SessionUse session(owner);
  engine::Buffer bytes(session);
  int32_t code = call(session, input.blob(), bytes.receive());
  HRESULT released = input.release();
  if (code != 0) {
    bytes.leave();
    return ToModuleHResult(code);
  }
  hr = finish(WriteByteVariant(bytes, input.isVbsForm(), out));
  return ToModuleHResult(FirstFailure(released, hr));
}

template <class EngineCall>
HRESULT TransformBytes(engine::SessionOwner& owner, const VARIANT& in, VARIANT* out, EngineCall call) {
  if (!out) return E_QUIVO_INVALID_ARGUMENT;
  return TransformBytes(owner, in, out, call, [](HRESULT hr) { return hr; });
}

/// A text of the module's own into `out`, which may be null; its former contents are not cleared.
void ReturnText(const wchar_t* text, VARIANT* out);

}  // namespace operations
