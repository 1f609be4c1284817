#include "attack/calls/late_shape.h"

namespace {

constexpr WORD kPuts = DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF;

}  // namespace

LateShape::LateShape(const Target& target, Random& random)
    : target_(target), random_(random), id_(target.member.id), flags_(static_cast<WORD>(target.member.kind)) {
  if ((flags_ & kPuts) != 0) names_.push_back(DISPID_PROPERTYPUT);
  if (flags_ == DISPATCH_METHOD && random_.chance(50)) flags_ |= DISPATCH_PROPERTYGET;
}

/// Names arguments from the last on, as they are declared.
void LateShape::nameSome() {
  if ((flags_ & kPuts) != 0 || arguments_.empty()) return;
  const size_t count = random_.below(arguments_.size() + 1);
  for (size_t i = 0; i < count; ++i) names_.push_back(static_cast<DISPID>(arguments_.size() - 1 - i));
}

void LateShape::misname() {
  names_.clear();
  for (uint32_t i = random_.below(arguments_.size() + 4); i > 0; --i)
    names_.push_back(random_.of<DISPID>({0, 1, 2, 3, 7, 8, 100, DISPID_UNKNOWN, DISPID_PROPERTYPUT, DISPID_VALUE,
                                         static_cast<DISPID>(0x80000000), 0x7FFFFFFF}));
}

void LateShape::distort(const std::function<VARIANT()>& any) {
  switch (random_.below(10)) {
    case 0:
      for (uint32_t i = random_.of({1u, 2u, 9u, 300u}); i > 0; --i) add(any());
      break;
    case 1:
    case 2:
      // Without the last argument the others keep their places.
      if (!arguments_.empty()) arguments_.erase(arguments_.begin());
      break;
    case 3:
      nameSome();
      break;
    case 4:
      if (!target_.overwrites) misname();
      break;
    case 5:
      flags_ = random_.of<WORD>({0, 1, 2, 3, 4, 8, 12, 15, 0xFFFF});
      break;
    case 6:
      id_ = random_.of<DISPID>({DISPID_VALUE, DISPID_UNKNOWN, DISPID_NEWENUM, DISPID_PROPERTYPUT, 9999, 0x7FFFFFFF});
      break;
    case 7:
      iid_ = random_.of({IID_IUnknown, IID_IDispatch});
      break;
    case 8:
      (random_.chance(50) ? hasNoArguments_ : hasNoParameters_) = true;
      break;
    default:
      hasNoNames_ = random_.chance(50);
      misname();
      if (!hasNoNames_ && target_.overwrites) names_.clear();
      break;
  }
}

HRESULT LateShape::invoke(IDispatch* object, VARIANT* result, EXCEPINFO* exception) {
  DISPPARAMS parameters{hasNoArguments_ ? nullptr : arguments_.data(), hasNoNames_ ? nullptr : names_.data(),
                        static_cast<UINT>(arguments_.size()), static_cast<UINT>(names_.size())};
  UINT badArgument = 0;
  return object->Invoke(id_, iid_, LOCALE_USER_DEFAULT, flags_, hasNoParameters_ ? nullptr : &parameters, result,
                        exception, random_.chance(80) ? &badArgument : nullptr);
}
