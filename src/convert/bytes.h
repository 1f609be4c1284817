// Byte VARIANTs: what callers pass as data, and what they get back.
//
// VBS form is an array of VARIANTs that hold one byte each: script languages can index no other array.
#pragma once

#include <memory>

#include "com/array.h"
#include "engine/owned.h"

namespace convert {

/// Bytes that a caller passed, readable for as long as this object lives.
class ByteInput {
 public:
  const DataBlob_t* blob() const { return &blob_; }
  /// True when the bytes came as an array of VARIANTs.
  bool isVbsForm() const { return isVbsForm_; }
  /// False for an empty VARIANT.
  bool isGiven() const { return isGiven_; }
  /// Unlocks the caller's array, or frees the copy; blob() is gone then. Returns the failure of the unlocking,
  /// else S_OK.
  HRESULT release() {
    copy_.reset();
    blob_ = {};
    return view_.unlock();
  }

 private:
  friend HRESULT ReadByteVariant(const VARIANT& in, ByteInput& out);
  HRESULT viewBytes(SAFEARRAY* array);
  HRESULT copyVariants(SAFEARRAY* array);

  com::ArrayView<uint8_t> view_;
  std::unique_ptr<uint8_t[]> copy_;
  DataBlob_t blob_{};
  bool isVbsForm_ = false;
  bool isGiven_ = false;
};

/// Reads VT_EMPTY (no bytes), an array of bytes (in place, locked) or an array of VT_UI1 VARIANTs (copied),
/// each also by reference. Any other type is E_INVALIDARG; a failing lock and E_OUTOFMEMORY are returned.
HRESULT ReadByteVariant(const VARIANT& in, ByteInput& out);

/// Builds `out` from what the engine has handed out, in VBS form or as a byte array, and gives the buffer back before
/// `out` is set. No bytes: `out` becomes VT_EMPTY. E_OUTOFMEMORY when the array cannot be made.
HRESULT WriteByteVariant(engine::Buffer& bytes, bool vbsForm, VARIANT* out);

/// Builds `out` as VT_ARRAY|VT_UI1 from bytes of the module; VT_EMPTY for none.
HRESULT CopyToByteArray(const DataBlob_t& bytes, VARIANT* out);

}  // namespace convert
