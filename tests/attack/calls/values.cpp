#include "attack/calls/values.h"

#include <oleauto.h>

#include <algorithm>
#include <cmath>
#include <cstring>
#include <iterator>
#include <limits>

#include "attack/calls/records.h"

namespace {

constexpr VARTYPE kKnown[]{VT_EMPTY, VT_NULL, VT_I2,    VT_I4,      VT_R4,       VT_R8,      VT_CY,    VT_DATE,
                           VT_BSTR,  VT_BOOL, VT_I1,    VT_UI1,     VT_UI2,      VT_UI4,     VT_I8,    VT_UI8,
                           VT_INT,   VT_UINT, VT_ERROR, VT_DECIMAL, VT_DISPATCH, VT_UNKNOWN, VT_RECORD};
constexpr VARTYPE kElements[]{VT_I2,  VT_I4,  VT_R8, VT_DATE, VT_BSTR,    VT_BOOL,     VT_VARIANT,
                              VT_UI1, VT_UI4, VT_I8, VT_CY,   VT_DECIMAL, VT_DISPATCH, VT_UNKNOWN};
constexpr uint8_t kPattern = 0xA5;
constexpr size_t kData = 8;  // where a VARIANT keeps its value

Variant largeBytes, largeVariants;

VARIANT Typed(VARTYPE type) {
  VARIANT made{};
  V_VT(&made) = type;
  return made;
}

bool IsKnown(VARTYPE type) {
  const VARTYPE base = type & VT_TYPEMASK;
  const VARTYPE flags = type & ~VT_TYPEMASK;
  return (flags & ~(VT_ARRAY | VT_BYREF)) == 0 &&
         (base == VT_VARIANT || std::ranges::find(kKnown, base) != std::end(kKnown));
}

}  // namespace

size_t SizeOfVariable(VARTYPE type) {
  switch (type) {
    case VT_I1:
    case VT_UI1:
      return 1;
    case VT_I2:
    case VT_UI2:
    case VT_BOOL:
      return 2;
    case VT_I4:
    case VT_UI4:
    case VT_INT:
    case VT_UINT:
    case VT_R4:
    case VT_ERROR:
      return 4;
    case VT_I8:
    case VT_UI8:
    case VT_R8:
    case VT_CY:
    case VT_DATE:
    case VT_BSTR:
    case VT_DISPATCH:
    case VT_UNKNOWN:
      return 8;
    default:
      return (type & VT_ARRAY) != 0 ? 8 : 0;
  }
}

void MakeLargeArrays() {
  constexpr size_t kLarge = 4 << 20;
  largeBytes = ByteArray(Bytes(kLarge, 7));
  largeVariants = VbsByteArray(Bytes(kLarge, 7));
}

void FreeLargeArrays() {
  largeBytes = Variant();
  largeVariants = Variant();
}

VARIANT* CallValues::keep(const VARIANT& value) {
  kept_.push_back({value, V_VT(&value), 0, nullptr});
  return &kept_.back().value;
}

IDispatch* CallValues::hold(Ptr<IDispatch> object) { return held_.emplace_back(std::move(object)).get(); }

BSTR CallValues::newText() {
  std::wstring text(random_.oneIn(2000) ? 1 << 20 : random_.below(30), L'a');
  for (wchar_t& character : text)
    character = random_.chance(80) ? L'a' : random_.of<wchar_t>({0, L'.', L':', L';', L'\\', 0x416, 0xFF3C, 0xD800, 1});
  const auto length = static_cast<UINT>(text.size());
  switch (random_.below(8)) {
    case 0:
      return nullptr;
    case 1: {
      BSTR odd = SysAllocStringByteLen(nullptr, 2 * length + 1);
      std::memset(odd, 'b', 2 * length + 1);
      return odd;
    }
    case 2:
    case 3:
      return SysAllocString(
          random_.of({actors_.file().c_str(), L"1.2.3.4", L"C:\\file", L"CN:Anna;HASH:00", L"SHA256", L"17"}));
    default:
      return SysAllocStringLen(text.data(), length);
  }
}

BSTR CallValues::text() {
  VARIANT made = Typed(VT_BSTR);
  V_BSTR(&made) = newText();
  return V_BSTR(keep(made));
}

VARIANT CallValues::number(VARTYPE type) {
  VARIANT made = Typed(type);
  if (type == VT_R8 || type == VT_DATE) {
    const double huge = 1e300;
    V_R8(&made) = random_.of({0.0, 39000.5, -1.0, 25569.0, -657435.0, 2958466.0, huge, -huge,
                              std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity()});
    return made;
  }
  V_I8(&made) = random_.chance(70) ? static_cast<int64_t>(random_.below(16))
                                   : random_.of<int64_t>({-1, INT32_MAX, INT32_MIN, 0x4007FFFF, INT64_MIN, 1 << 20});
  return made;
}

VARIANT CallValues::bytes() {
  if (random_.chance(10)) return VARIANT{};
  if (random_.oneIn(3000)) return random_.chance(50) ? largeBytes.get() : largeVariants.get();
  Bytes content(random_.below(64), 9);
  Variant made = random_.chance(50) ? ByteArray(content) : VbsByteArray(content);
  VARIANT* kept = keep(std::exchange(*made.out(), VARIANT{}));
  if (random_.chance(60)) return *kept;
  VARIANT reference = Typed(VT_BYREF | VT_VARIANT);
  V_VARIANTREF(&reference) = kept;
  if (random_.chance(50)) {
    V_VT(&reference) = VT_BYREF | V_VT(kept);
    V_ARRAYREF(&reference) = &V_ARRAY(kept);
  }
  return reference;
}

VARIANT CallValues::object(IDispatch* object) {
  VARIANT made = Typed(VT_DISPATCH);
  V_DISPATCH(&made) = object;
  if (object != nullptr) object->AddRef();
  return *keep(made);
}

void* CallValues::variable(VARTYPE type) {
  if (type == VT_VARIANT) return keep(VARIANT{});
  const size_t size = SizeOfVariable(type);
  if (size == 0) return scratch();
  auto* data = reinterpret_cast<uint8_t*>(keep(Typed(type))) + kData;
  std::memset(data + size, kPattern, sizeof(VARIANT) - kData - size);
  kept_.back().guardedFrom = kData + size;
  return data;
}

VARIANT CallValues::reference(VARTYPE type) {
  VARIANT made = Typed(VT_BYREF | type);
  V_BYREF(&made) = variable(type);
  return made;
}

VARIANT* CallValues::output(bool mayOwn) {
  if (random_.chance(5)) return nullptr;
  if (random_.chance(60)) return keep(VARIANT{});
  if (!mayOwn) return keep(number(random_.of<VARTYPE>({VT_I4, VT_R8, VT_UI1, VT_NULL})));
  return keep(hostile(0));
}

SAFEARRAY* CallValues::arrayOf(VARTYPE element, int depth) {
  SAFEARRAYBOUND bounds[3];
  const UINT dimensions = random_.chance(75) ? 1 : random_.of<UINT>({2, 3});
  for (SAFEARRAYBOUND& bound : bounds)
    bound = {random_.chance(15) ? 0 : 1 + random_.below(5),
             random_.chance(70) ? 0 : random_.of<LONG>({1, -1, 7, LONG_MAX - 10, LONG_MIN})};
  SAFEARRAY* array = element == VT_RECORD ? SafeArrayCreateEx(element, dimensions, bounds, AnyRecord())
                                          : SafeArrayCreate(element, dimensions, bounds);
  if (array == nullptr) return nullptr;
  ULONG count = 1;
  for (UINT i = 0; i < dimensions; ++i) count *= bounds[i].cElements;
  for (ULONG i = 0; i < count; ++i) {
    if (element == VT_VARIANT) {
      auto& slot = static_cast<VARIANT*>(array->pvData)[i];
      slot = random_.chance(60) ? number(VT_UI1) : hostile(depth + 1);
    } else if (element == VT_BSTR) {
      VARIANT made = Typed(VT_BSTR);
      if (random_.chance(80)) V_BSTR(&made) = SysAllocString(L"1.2.3");
      static_cast<BSTR*>(array->pvData)[i] = V_BSTR(&made);
    } else if (element == VT_DISPATCH || element == VT_UNKNOWN) {
      Ptr<IDispatch> object = actors_.any();
      if (object.get() != nullptr) object->AddRef();
      static_cast<IUnknown**>(array->pvData)[i] = object.get();
    }
  }
  // An array of no dimension owns nothing that its destruction could find.
  if (element == VT_UI1 && random_.chance(5)) {
    SafeArrayDestroyData(array);
    array->cDims = 0;
  }
  return array;
}

VARIANT CallValues::array(int depth) {
  const VARTYPE element = random_.chance(60) ? random_.of<VARTYPE>({VT_UI1, VT_VARIANT, VT_DISPATCH, VT_BSTR})
                                             : kElements[random_.below(std::size(kElements))];
  // Some callers say of an array what it is not.
  const VARTYPE label = random_.chance(90) ? element : random_.of<VARTYPE>({VT_UI1, VT_VARIANT, VT_BSTR, VT_DISPATCH});
  VARIANT made = Typed(VT_ARRAY | label);
  V_ARRAY(&made) = random_.chance(5) ? nullptr : arrayOf(element, depth);
  return made;
}

VARIANT CallValues::unknownType() {
  VARIANT made = Typed(static_cast<VARTYPE>(random_.next()));
  if (random_.chance(50)) V_VT(&made) &= 0x40FF;
  if (IsKnown(V_VT(&made))) V_VT(&made) |= VT_VECTOR;
  V_BYREF(&made) = (V_VT(&made) & VT_ARRAY) != 0 ? nullptr : scratch();
  return made;
}

VARIANT CallValues::hostileReference(int depth) {
  const VARTYPE type = kKnown[random_.below(std::size(kKnown))];
  VARIANT made = Typed(VT_BYREF | type);
  switch (random_.below(6)) {
    case 0:
      V_VT(&made) = random_.of<VARTYPE>({V_VT(&made), VT_BYREF | VT_VARIANT, VT_BYREF | VT_ARRAY | VT_UI1});
      return made;
    case 3: {
      VARIANT* itself = keep(Typed(VT_BYREF | VT_VARIANT));
      V_VARIANTREF(itself) = itself;
      return *itself;
    }
    case 1:
      V_BYREF(&made) = variable(type);
      return made;
    case 2: {
      VARIANT* kept = keep(array(depth));
      V_VT(&made) = VT_BYREF | V_VT(kept);
      V_ARRAYREF(&made) = &V_ARRAY(kept);
      return made;
    }
    default:
      V_VT(&made) = VT_BYREF | VT_VARIANT;
      V_VARIANTREF(&made) = keep(hostile(depth + 1));
      return made;
  }
}

VARIANT CallValues::hostile(int depth) {
  if (depth > 2) return number(VT_UI1);
  VARIANT made = Typed(kKnown[random_.below(std::size(kKnown))]);
  switch (random_.below(6)) {
    case 0:
      return array(depth);
    case 1:
      return hostileReference(depth);
    case 2:
      // An array could not clear it.
      return depth == 0 ? unknownType() : made;
    case 3:
      V_VT(&made) = random_.of<VARTYPE>({VT_BSTR, VT_DISPATCH, VT_UNKNOWN});
      break;
    default:
      break;
  }
  switch (V_VT(&made)) {
    case VT_BSTR:
      V_BSTR(&made) = newText();
      return made;
    case VT_DISPATCH:
    case VT_UNKNOWN: {
      Ptr<IDispatch> object = actors_.any();
      if (object.get() != nullptr) object->AddRef();
      V_DISPATCH(&made) = object.get();
      return made;
    }
    case VT_RECORD:
      V_RECORDINFO(&made) = AnyRecord();
      V_RECORD(&made) = scratch();
      return made;
    default:
      return number(V_VT(&made));
  }
}

VARIANT CallValues::any() {
  VARIANT* kept = keep(hostile(0));
  if ((V_VT(kept) & (VT_ARRAY | VT_BYREF)) == VT_ARRAY && V_ARRAY(kept) != nullptr && random_.chance(10)) {
    kept_.back().locked = V_ARRAY(kept);
    SafeArrayLock(V_ARRAY(kept));
  }
  return *kept;
}

void* CallValues::scratch() { return scratch_.emplace_back(64).data(); }

bool CallValues::release(Kept& kept, std::string& problem) {
  VARIANT& value = kept.value;
  const auto* raw = reinterpret_cast<const uint8_t*>(&value);
  for (size_t i = kept.guardedFrom; kept.guardedFrom != 0 && i < sizeof value; ++i) {
    if (raw[i] != kPattern) problem = "a write behind the end of a variable";
  }
  const bool isArray = (V_VT(&value) & (VT_ARRAY | VT_BYREF)) == VT_ARRAY;
  if (kept.locked != nullptr) {
    if (kept.locked->cLocks != 1) problem = "the lock of the caller is gone";
    SafeArrayUnlock(kept.locked);
    if (!isArray || V_ARRAY(&value) != kept.locked) SafeArrayDestroy(kept.locked);
  }
  if (isArray && V_ARRAY(&value) != nullptr && V_ARRAY(&value)->cLocks != 0) problem = "an array is left locked";
  const bool isUnclearable = !IsKnown(kept.madeAs) || kept.madeAs == VT_RECORD || (kept.madeAs & VT_BYREF) != 0;
  if (V_VT(&value) == kept.madeAs && isUnclearable) return problem.empty();
  const VARTYPE type = V_VT(&value);
  if (FAILED(VariantClear(&value)) && problem.empty())
    problem = "VariantClear refuses the type " + std::to_string(type);
  return problem.empty();
}

std::vector<std::string> CallValues::finish() {
  std::vector<std::string> problems;
  for (Kept& kept : kept_) {
    std::string problem;
    if (!release(kept, problem)) problems.push_back(problem);
  }
  kept_.clear();
  scratch_.clear();
  held_.clear();
  return problems;
}
