// The codes of the engine that its callers know by value.
#pragma once

#include <cstdint>

namespace engine {

/// A verification with a remark: good signatures, and something that the user should know.
constexpr int32_t kVerifiedWithRemarks = static_cast<int32_t>(0xE0700019);
/// The certificate is not valid now.
constexpr int32_t kOutsideValidity = static_cast<int32_t>(0xE0700036);
/// The user gave up a selection, or there was nothing to select from.
constexpr int32_t kSelectionCancelled = static_cast<int32_t>(0xE072008A);

/// The engine does not offer the operation: Windows' ERROR_NOT_SUPPORTED. The module reports it like any other failure.
constexpr int32_t kErrorNotSupported = 50;

}  // namespace engine
