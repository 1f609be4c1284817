// Streams: an Init, any number of Updates, a Final. The order of calls is the engine's to check.
#include "objects/certificate.h"
#include "objects/encrypt_param.h"
#include "objects/operation_params.h"
#include "objects/sign_status.h"
#include "objects/stream_ctx.h"
#include "objects/verify_param.h"
#include "operations/steps.h"

using namespace operations;
using objects::CertificateFromRecord;
using objects::SignStatusArrayFromResult;

namespace {

/// Init with data: bytes that are given fix the form of the stream. `call` receives the session and the bytes.
template <class EngineCall>
HRESULT BeginStream(engine::SessionOwner& owner, StreamCtx& stream, const VARIANT& in, EngineCall call) {
  convert::ByteInput input;
  HRESULT hr = ReadByteVariant(in, input);
  if (FAILED(hr)) return ToModuleHResult(hr);
  if (input.isGiven()) stream.fixForm(input.isVbsForm());
  SessionUse session(owner);
  int32_t code = call(session, input.blob());
  HRESULT released = input.release();
  return ToModuleHResult(code != 0 ? code : released);
}

/// Update: `call` receives the session and the bytes.
template <class EngineCall>
HRESULT FeedStream(engine::SessionOwner& owner, StreamCtx& stream, const VARIANT& in, EngineCall call) {
  convert::ByteInput input;
  HRESULT hr = ReadByteVariant(in, input);
  if (FAILED(hr)) return ToModuleHResult(hr);
  if (!stream.accepts(input.isVbsForm())) return E_QUIVO_INVALID_ARGUMENT;
  SessionUse session(owner);
  int32_t code = call(session, input.blob());
  HRESULT released = input.release();
  return ToModuleHResult(code != 0 ? code : released);
}

/// Update with output: `call` also fills a blob, which becomes `out` whatever the engine returned.
template <class EngineCall>
HRESULT FeedStream(engine::SessionOwner& owner, StreamCtx& stream, const VARIANT& in, VARIANT* out, EngineCall call) {
  convert::ByteInput input;
  HRESULT hr = ReadByteVariant(in, input);
  if (FAILED(hr)) return ToModuleHResult(hr);
  if (!stream.accepts(input.isVbsForm())) return E_QUIVO_INVALID_ARGUMENT;
  SessionUse session(owner);
  engine::Buffer bytes(session);
  int32_t code = call(session, input.blob(), bytes.receive());
  HRESULT released = input.release();
  hr = WriteByteVariant(bytes, stream.isVbsForm(), out);
  return ToModuleHResult(code != 0 ? code : FirstFailure(released, hr));
}

/// Where the engine's count of bytes left goes: into the VARIANT itself, or through its reference, whose
/// type is not examined, on purpose: "A count without a look" in docs/behaviour.md. A null reference is refused.
class LeftOutput {
 public:
  explicit LeftOutput(VARIANT* left) : left_(left) {
    if (left_ && V_VT(left_) == (VT_BYREF | VT_VARIANT)) left_ = V_VARIANTREF(left_);
    if (left_ && V_ISBYREF(left_) && !V_I4REF(left_)) left_ = nullptr;
  }
  explicit operator bool() const { return left_ != nullptr; }

  void write(int32_t count) {
    if (V_ISBYREF(left_)) {
      *V_I4REF(left_) = count;
      return;
    }
    V_VT(left_) = VT_I4;
    V_I4(left_) = count;
  }

 private:
  VARIANT* left_;
};

}  // namespace

STDMETHODIMP QUIVO::StrSignInitMem(ISignParam* param, VARIANT sign_in, IStreamCtx* hStr) {
  SignParam* options = com::Own<SignParam>(param);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream) return E_QUIVO_INVALID_ARGUMENT;
  return BeginStream(owner(), *stream, sign_in, [&](EngineSession session, const DataBlob_t* signature) {
    return QUIVO_StrSignInitMem(session, options->record(), signature, stream->stream());
  });
}

STDMETHODIMP QUIVO::StrSignUpdateMem(ISignParam* param, IStreamCtx* hStr, VARIANT data) {
  SignParam* options = com::Own<SignParam>(param);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream) return E_QUIVO_INVALID_ARGUMENT;
  return FeedStream(owner(), *stream, data, [&](EngineSession session, const DataBlob_t* bytes) {
    return QUIVO_StrSignUpdateMem(session, options->record(), stream->stream(), bytes);
  });
}

STDMETHODIMP QUIVO::StrSignFinalMem(ISignParam* param, IStreamCtx* hStr, VARIANT* sign_out) {
  SignParam* options = com::Own<SignParam>(param);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream) return E_QUIVO_INVALID_ARGUMENT;
  return ProduceBytes(owner(), stream->isVbsForm(), sign_out, [&](EngineSession session, DataBlob_t* out) {
    return QUIVO_StrSignFinalMem(session, options->record(), stream->stream(), out);
  });
}

STDMETHODIMP QUIVO::StrVerifyInitMem(IVerifyParam* param, VARIANT sign_in, IStreamCtx* hStr) {
  VerifyParam* options = com::Own<VerifyParam>(param);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream) return E_QUIVO_INVALID_ARGUMENT;
  return BeginStream(owner(), *stream, sign_in, [&](EngineSession session, const DataBlob_t* signature) {
    return QUIVO_StrVerifyInitMem(session, options->record(), signature, stream->stream());
  });
}

STDMETHODIMP QUIVO::StrVerifyUpdateMem(IVerifyParam* param, IStreamCtx* hStr, VARIANT data) {
  VerifyParam* options = com::Own<VerifyParam>(param);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream) return E_QUIVO_INVALID_ARGUMENT;
  return FeedStream(owner(), *stream, data, [&](EngineSession session, const DataBlob_t* bytes) {
    return QUIVO_StrVerifyUpdateMem(session, options->record(), stream->stream(), bytes);
  });
}

STDMETHODIMP QUIVO::StrVerifyFinalMem(IVerifyParam* param, IStreamCtx* hStr, VARIANT* sign_out,
                                      VARIANT* VerifyResults) {
  VerifyParam* options = com::Own<VerifyParam>(param);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream || !sign_out || !VerifyResults) return E_QUIVO_INVALID_ARGUMENT;
  SessionUse session(owner());
  engine::VerifyResult result(session);
  engine::Buffer out(session);
  int32_t code = QUIVO_StrVerifyFinalMem(session, options->record(), stream->stream(), out.receive(), result.receive());
  HRESULT hr = SignStatusArrayFromResult(&result, VerifyResults);
  if (code != 0) {
    out.leave();
    return ToModuleHResult(code);
  }
  if (hr == S_OK) hr = WriteByteVariant(out, stream->isVbsForm(), sign_out);
  return ToModuleHResult(hr);
}

STDMETHODIMP QUIVO::StrEncryptInitMem(IEncryptParam* param, IStreamCtx* hStr) {
  EncryptParam* options = com::Own<EncryptParam>(param);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream) return E_QUIVO_INVALID_ARGUMENT;
  SessionUse session(owner());
  return ToModuleHResult(QUIVO_StrEncryptInitMem(session, options->record(), stream->stream()));
}

STDMETHODIMP QUIVO::StrEncryptUpdateMem(IEncryptParam* param, IStreamCtx* hStr, VARIANT in, VARIANT* out) {
  EncryptParam* options = com::Own<EncryptParam>(param);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream || !out) return E_QUIVO_INVALID_ARGUMENT;
  return FeedStream(owner(), *stream, in, out,
                    [&](EngineSession session, const DataBlob_t* bytes, DataBlob_t* encrypted) {
                      return QUIVO_StrEncryptUpdateMem(session, options->record(), stream->stream(), bytes, encrypted);
                    });
}

STDMETHODIMP QUIVO::StrEncryptFinalMem(IEncryptParam* param, IStreamCtx* hStr, VARIANT* out) {
  EncryptParam* options = com::Own<EncryptParam>(param);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream) return E_QUIVO_INVALID_ARGUMENT;
  return ProduceBytes(owner(), stream->isVbsForm(), out, [&](EngineSession session, DataBlob_t* encrypted) {
    return QUIVO_StrEncryptFinalMem(session, options->record(), stream->stream(), encrypted);
  });
}

STDMETHODIMP QUIVO::StrDecryptInitMem(IDecryptParam* pIParam, VARIANT in, VARIANT* left, IStreamCtx* hStr) {
  DecryptParam* options = com::Own<DecryptParam>(pIParam);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  LeftOutput leftOut(left);
  if (!options || !stream || !leftOut) return E_QUIVO_INVALID_ARGUMENT;
  return BeginStream(owner(), *stream, in, [&](EngineSession session, const DataBlob_t* bytes) {
    int32_t count = 0;
    int32_t code = QUIVO_StrDecryptInitMem(session, options->record(), bytes, &count, stream->stream());
    leftOut.write(count);
    return code;
  });
}

STDMETHODIMP QUIVO::StrDecryptUpdateMem(IDecryptParam* pIParam, IStreamCtx* hStr, VARIANT in, VARIANT* left,
                                        VARIANT* out) {
  DecryptParam* options = com::Own<DecryptParam>(pIParam);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  LeftOutput leftOut(left);
  if (!options || !stream || !leftOut || !out) return E_QUIVO_INVALID_ARGUMENT;
  return FeedStream(
      owner(), *stream, in, out, [&](EngineSession session, const DataBlob_t* bytes, DataBlob_t* decrypted) {
        int32_t count = 0;
        int32_t code =
            QUIVO_StrDecryptUpdateMem(session, options->record(), stream->stream(), bytes, &count, decrypted);
        leftOut.write(count);
        return code;
      });
}

STDMETHODIMP QUIVO::StrDecryptFinalMem(IDecryptParam* pIParam, IStreamCtx* hStr, ICertificate** pICert) {
  DecryptParam* options = com::Own<DecryptParam>(pIParam);
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!options || !stream || !pICert) return E_QUIVO_INVALID_ARGUMENT;
  SessionUse session(owner());
  engine::DecryptResult result(session);
  int32_t code = QUIVO_StrDecryptFinalMem(session, options->record(), stream->stream(), result.receive());
  HRESULT hr = CertificateFromRecord(result.get().cert, pICert);
  return ToModuleHResult(code != 0 ? code : hr);
}

STDMETHODIMP QUIVO::StrHashInitMem(BSTR algorithm, IStreamCtx* hStr) {
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!stream) return E_QUIVO_INVALID_ARGUMENT;
  AnsiArguments strings(Required{algorithm});
  if (FAILED(strings.failure())) return strings.failure();
  SessionUse session(owner());
  return ToModuleHResult(QUIVO_StrHashInitMem(session, strings.get<0>(), stream->stream()));
}

STDMETHODIMP QUIVO::StrHashUpdateMem(IStreamCtx* hStr, VARIANT data) {
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!stream) return E_QUIVO_INVALID_ARGUMENT;
  return FeedStream(owner(), *stream, data, [&](EngineSession session, const DataBlob_t* bytes) {
    return QUIVO_StrHashUpdateMem(session, stream->stream(), bytes);
  });
}

STDMETHODIMP QUIVO::StrHashFinalMem(IStreamCtx* hStr, VARIANT* hash) {
  StreamCtx* stream = com::Own<StreamCtx>(hStr);
  if (!stream) return E_QUIVO_INVALID_ARGUMENT;
  return ProduceBytes(owner(), stream->isVbsForm(), hash, [&](EngineSession session, DataBlob_t* digest) {
    return QUIVO_StrHashFinalMem(session, stream->stream(), digest);
  });
}
