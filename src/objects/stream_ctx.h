// StreamCtx: carries one engine stream between the calls of a streaming operation; opaque to scripts.
#pragma once

#include "com/object.h"
#include "engine/functions.h"
#include "quivocom.h"

class StreamCtx : public com::Object<IStreamCtx> {
 public:
  /// Fixes the form of the stream's bytes; it stays fixed for the life of the object.
  void fixForm(bool vbsForm) {
    vbsForm_ = vbsForm;
    formFixed_ = true;
  }
  /// Fixes the form by the first bytes; false when later bytes come in the other form.
  bool accepts(bool vbsForm) {
    if (!formFixed_) fixForm(vbsForm);
    return vbsForm_ == vbsForm;
  }
  bool isVbsForm() const { return vbsForm_; }
  /// Where the engine keeps its stream. A stream that is abandoned before its end is left to the engine.
  EngineStream* stream() { return &streamHandle_; }

 private:
  bool vbsForm_ = false;
  bool formFixed_ = false;
  EngineStream streamHandle_ = nullptr;
};
