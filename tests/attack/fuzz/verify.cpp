// Messages through the engine: verified whole and as a stream, with the same verdict, and decrypted.
#include "attack/fuzz/session.h"

using namespace fuzz;

namespace {

/// A code, and what the engine returned with it.
struct Answer {
  int32_t code = 0;
  DataBlob_t content{};
  VerifyResultRecord result{};

  Answer() = default;
  Answer(const Answer&) = delete;
  Answer& operator=(const Answer&) = delete;
  ~Answer() {
    if (content.data != nullptr) QUIVO_FreeMem(Session(), content.data);
    QUIVO_FreeVerifyResult(Session(), &result);
  }
  Input bytes() const { return {content.data, content.len}; }
};

void Decrypt(const DataBlob_t& message) {
  const DecryptParamRecord param{};
  DataBlob_t content{};
  DecryptResultRecord result{};
  RequireKnown(QUIVO_DecryptMem(Session(), &param, &message, &content, &result));
  if (content.data != nullptr) QUIVO_FreeMem(Session(), content.data);
  QUIVO_FreeDecryptResult(Session(), &result);
}

}  // namespace

void fuzz::Run(Input bytes) {
  const DataBlob_t message = BlobOf(bytes), none{};
  const VerifyParamRecord param{};
  Answer whole;
  whole.code = QUIVO_VerifyMem(Session(), &param, &none, &message, &whole.content, &whole.result);
  RequireKnown(whole.code);

  Answer streamed;
  EngineStream stream = nullptr;
  Require(QUIVO_StrVerifyInitMem(Session(), &param, &none, &stream) == 0);
  const int32_t fed = QUIVO_StrVerifyUpdateMem(Session(), &param, &stream, &message);
  streamed.code = QUIVO_StrVerifyFinalMem(Session(), &param, &stream, &streamed.content, &streamed.result);
  RequireKnown(fed);
  RequireKnown(streamed.code);
  Require((whole.code == 0) == (fed == 0 && streamed.code == 0));

  Decrypt(message);
}
