#include "contract/com/late_methods.h"

#include <algorithm>

#include "support/certificates.h"

namespace {

Variant InputFor(const Argument& argument, const Objects& objects) {
  if (argument.type == "VARIANT") return argument.name == "sign_in" ? Variant() : ByteArray({1});
  if (argument.type == "BSTR") return Variant::text(L"C:\\file");
  if (argument.type.ends_with("*"))
    return Variant::object(objects.of(argument.type.substr(0, argument.type.size() - 1)));
  return Variant::number(4);
}

void Add(std::vector<LateMethod>& methods, const Member& member) {
  const auto isOutput = [](const Argument& argument) { return argument.isOutput(); };
  const auto first = std::find_if(member.arguments.begin(), member.arguments.end(), isOutput);
  if (first == member.arguments.end() || !std::all_of(first, member.arguments.end(), isOutput)) return;
  methods.push_back({member.name, {member.arguments.begin(), first}, {first, member.arguments.end()}});
}

}  // namespace

std::vector<std::pair<std::wstring, Variant>> LateMethod::inputs(const Objects& objects) const {
  std::vector<std::pair<std::wstring, Variant>> made;
  for (const Argument& argument : given) made.emplace_back(Widen(argument.name), InputFor(argument, objects));
  return made;
}

std::vector<LateMethod> LateMethods() {
  std::vector<LateMethod> methods;
  for (const Operation& operation : Operations()) Add(methods, operation.member);
  for (const Member& member : MembersOf("IQUIVO")) {
    if (member.name.starts_with("GetPKIErrorText")) Add(methods, member);
  }
  return methods;
}

void AnswerLateMethods(fake::FakeEngine& engine) {
  for (const Operation& operation : Operations()) {
    fake::Reply& reply = engine.on(operation.function);
    reply.text = "text";
    reply.left = 7;
    reply.output = {9, 8};
    reply.signatures = {{0, 0, {}}};
    reply.certificate = CertificateOf("CN=x");
    reply.certificates = {CertificateOf("CN=x")};
  }
  for (const char* function : {"QUIVO_GetErrorText", "QUIVO_EncodeMem"}) engine.on(function).text = "text";
}

LateCall LateMethodTest::listed() {
  LateCall call{Widen(GetParam().name), DISPATCH_METHOD, {}, {}, false};
  for (const auto& [name, value] : given_) call.positional.push_back(value);
  return call;
}

LateCall LateMethodTest::listedButLast() {
  LateCall call = listed();
  for (size_t i = 0; i + 1 < outputs(); ++i) call.positional.push_back(ByRef(variables[i]));
  return call;
}

LateCall LateMethodTest::byName() {
  LateCall call{Widen(GetParam().name), DISPATCH_METHOD, {}, {}, false};
  for (const auto& [name, value] : given_) call.named.emplace_back(name, value);
  return call;
}

void LateMethodTest::addVariables(LateCall& call, bool named) {
  for (size_t i = 0; i < outputs(); ++i) {
    if (named) {
      call.named.emplace_back(Widen(GetParam().outputs[i].name), ByRef(variables[i]));
    } else {
      call.positional.push_back(ByRef(variables[i]));
    }
  }
}

void LateMethodTest::expectOutput(size_t index, const Variant& value) {
  switch (OutputOf(GetParam().outputs[index])) {
    case Output::kBytes:
      EXPECT_EQ((Bytes{9, 8}), PlainBytesOf(value));
      break;
    case Output::kText:
      EXPECT_EQ(L"text", TextOf(value));
      break;
    case Output::kNumber:
      EXPECT_EQ(VT_I4, value.type());
      EXPECT_EQ(7, V_I4(&value.get()));
      break;
    case Output::kObjects:
      EXPECT_EQ(1u, ObjectsOf(value).size());
      break;
    case Output::kCertificate: {
      ASSERT_EQ(VT_DISPATCH, value.type());
      Ptr<ICertificate> certificate = Ptr<IDispatch>::share(V_DISPATCH(&value.get())).as<ICertificate>();
      ASSERT_NE(nullptr, certificate.get());
      EXPECT_EQ(L"CN=x", SubjectOf(certificate));
      break;
    }
  }
}

void LateMethodTest::expectVariables() {
  for (size_t i = 0; i < outputs(); ++i) expectOutput(i, variables[i]);
}

void LateMethodTest::expectVariablesButLast() {
  for (size_t i = 0; i + 1 < outputs(); ++i) expectOutput(i, variables[i]);
}
