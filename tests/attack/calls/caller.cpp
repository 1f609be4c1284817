#include "attack/calls/caller.h"

#include <oleauto.h>

#include <cstdio>
#include <iostream>

#include "attack/calls/late_shape.h"
#include "attack/shared/guard.h"
#include "fake_engine/fake_engine.h"

namespace {

std::string Hex(HRESULT hr) {
  char text[16];
  std::snprintf(text, sizeof text, "0x%08lX", static_cast<unsigned long>(hr));
  return text;
}

VARTYPE PointedTo(const std::string& type) {
  if (type == "VARIANT*") return VT_VARIANT;
  if (type == "BSTR*") return VT_BSTR;
  if (type == "DATE*") return VT_DATE;
  if (type == "VARIANT_BOOL*") return VT_BOOL;
  return type.ends_with("**") ? VT_DISPATCH : VT_I4;
}

}  // namespace

bool Caller::isKnown(HRESULT hr) const {
  const auto code = static_cast<uint32_t>(hr);
  if (code <= 1 || code == 0xFFFFFFFF || kForeignCodes.contains(hr)) return true;
  for (const int32_t answered : engine_.codes()) {
    if (hr == answered || code == (static_cast<uint32_t>(answered) | 0x80000000)) return true;
  }
  switch (code >> 16) {
    case 0x8000:
      return true;
    case 0x8002:  // dispatch
    case 0x8004:  // COM
    case 0x8007:  // Win32
    case 0xE068:  // the module
    case 0xE069:
    case 0xE070:  // the legacy object
      return true;
    default:
      return false;
  }
}

void Caller::examine(const std::string& name, HRESULT hr, CallValues& values) {
  if (printsCalls_) std::cout << name << " = " << Hex(hr) << std::endl;
  if (!isKnown(hr)) complain_(name, "returns " + Hex(hr));
  for (const std::string& problem : values.finish()) complain_(name + " = " + Hex(hr), problem);
  for (const std::string& violation : TavlFakeEngine()->violations()) complain_(name + " = " + Hex(hr), violation);
}

IDispatch* Caller::objectFor(const std::string& interfaceName, CallValues& values) {
  if (random_.chance(20)) return values.hold(actors_.any());
  if (interfaceName != "IDispatch") return values.hold(actors_.own(interfaceName));
  return values.hold(actors_.own(random_.chance(50) ? "ILocalParam" : "IRSrvParam"));
}

SlotValue Caller::directArgument(const Argument& argument, bool overwrites, CallValues& values) {
  const std::string& type = argument.type;
  const std::string interfaceName = InterfaceOf(type);
  if (type == "BSTR") return values.text();
  if (type == "DATE") return V_DATE(&static_cast<const VARIANT&>(values.number(VT_DATE)));
  if (type == "VARIANT") return random_.chance(70) ? values.bytes() : values.any();
  if (type == "VARIANT*") return values.output(!overwrites && argument.flags == (PARAMFLAG_FIN | PARAMFLAG_FOUT));
  if (!interfaceName.empty() && !type.ends_with("**")) return objectFor(interfaceName, values);
  if (!type.ends_with("*")) return static_cast<int>(V_I8(&static_cast<const VARIANT&>(values.number(VT_I4))));
  if (random_.chance(5)) return nullptr;
  void* variable = values.variable(PointedTo(type));
  if (type == "BSTR*" && random_.chance(50)) *static_cast<BSTR*>(variable) = SysAllocString(L"before");
  return variable;
}

HRESULT Caller::direct(const Target& target, IDispatch* object, CallValues& values) {
  std::vector<SlotValue> arguments;
  for (const Argument& argument : target.member.arguments)
    arguments.push_back(directArgument(argument, target.overwrites, values));
  return CallSlot(object, target.member, arguments);
}

VARIANT Caller::lateOutput(const std::string& type, bool overwrites, CallValues& values) {
  if (random_.chance(20)) {
    const VARIANT odd = values.any();
    const bool mayOwn = V_VT(&odd) == (VT_BYREF | VT_VARIANT);
    return overwrites && mayOwn ? values.reference(VT_VARIANT) : odd;
  }
  switch (random_.below(4)) {
    case 0:
      return values.object(values.hold(actors_.any()));
    case 1:
      return values.reference(PointedTo(type));
    case 2:
      return values.reference(random_.of<VARTYPE>({VT_BSTR, VT_I4, VT_I1, VT_R8, VT_DISPATCH, VT_ARRAY | VT_UI1}));
    default:
      return values.reference(VT_VARIANT);
  }
}

VARIANT Caller::lateArgument(const Argument& argument, bool overwrites, CallValues& values) {
  const std::string& type = argument.type;
  const std::string interfaceName = InterfaceOf(type);
  if (argument.isOutput()) return lateOutput(type, overwrites, values);
  if (random_.chance(20)) {
    const VARIANT odd = values.any();
    if (!overwrites || V_VT(&odd) != (VT_BYREF | VT_VARIANT)) return odd;
  }
  if (!interfaceName.empty()) return values.object(objectFor(interfaceName, values));
  if (type == "VARIANT") return values.bytes();
  if (type != "BSTR") return values.number(type == "DATE" ? VT_DATE : type == "VARIANT_BOOL" ? VT_BOOL : VT_I4);
  VARIANT text{};
  V_VT(&text) = VT_BSTR;
  V_BSTR(&text) = values.text();
  return text;
}

HRESULT Caller::late(const Target& target, IDispatch* object, CallValues& values) {
  LateShape shape(target, random_);
  const size_t count = target.member.kind == INVOKE_PROPERTYGET ? 0 : target.member.arguments.size();
  for (size_t i = 0; i < count; ++i) shape.add(lateArgument(target.member.arguments[i], target.overwrites, values));
  if (random_.chance(35)) shape.distort([&] { return values.any(); });
  VARIANT result{};
  V_VT(&result) = VT_I4;
  V_I4(&result) = 99;
  EXCEPINFO exception{};
  const HRESULT hr =
      shape.invoke(object, random_.chance(80) ? &result : nullptr, random_.chance(80) ? &exception : nullptr);
  if (FAILED(VariantClear(&result))) complain_(target.name(), "the result cannot be cleared");
  return hr == DISP_E_EXCEPTION && exception.scode != S_OK ? exception.scode : hr;
}

/// The questions of IUnknown and IDispatch.
HRESULT Caller::ask(IDispatch* object, CallValues& values) {
  const IID iids[]{IID_IUnknown, IID_IDispatch, __uuidof(IDispatchEx), IID_IMarshal, random_.pick(Classes()).iid};
  if (random_.chance(50)) {
    Ptr<IUnknown> found;
    return object->QueryInterface(iids[random_.below(std::size(iids))], found.voidOut());
  }
  std::vector<LPOLESTR> names;
  std::vector<std::wstring> texts;
  const Target& target = random_.pick(Targets());
  texts.push_back(random_.chance(80) ? Widen(target.member.name) : L"");
  for (const Argument& argument : target.member.arguments) texts.push_back(Widen(argument.name));
  const BSTR odd = values.text();
  if (odd != nullptr) texts.emplace_back(odd);
  for (std::wstring& text : texts) names.push_back(text.data());
  std::vector<DISPID> ids(names.size());
  return object->GetIDsOfNames(IID_NULL, names.data(), 1 + random_.below(names.size()), LOCALE_USER_DEFAULT,
                               ids.data());
}

void Caller::call(const std::string& number) {
  const Target& target = random_.chance(40) ? random_.pick(Targets()) : *random_.pick(MethodTargets());
  const Ptr<IDispatch> object = actors_.own(target.coclass->interfaceName);
  CallValues values(random_, actors_);
  Reached& reached = coverage_[target.name() + "#" + std::to_string(target.member.kind)];
  const uint32_t way = random_.below(100);
  const std::string name = number + " " + target.name() + (way < 48 ? " late" : way < 96 ? " direct" : " asked");
  GuardCase(name);
  SetLastError(random_.oneIn(20) ? ERROR_ACCESS_DENIED : NO_ERROR);
  HRESULT hr = S_OK;
  if (way < 48) {
    ++reached.late;
    hr = late(target, object, values);
  } else if (way < 96) {
    ++reached.direct;
    hr = direct(target, object, values);
  } else {
    hr = ask(object, values);
  }
  if (way < 96 && hr == S_OK) ++reached.succeeded;
  examine(name, hr, values);
  GuardIdle();
}
