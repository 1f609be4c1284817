#include "support/records.h"

#include "support/operations.h"

namespace {

/// The record that the engine received last, when `call` made it with a main object of its own.
template <class Call>
fake::Snapshot Received(const std::string& function, size_t argument, Call call) {
  EXPECT_OK(call(Make<IQUIVO>()));
  const auto& calls = TavlFakeEngine()->calls();
  for (size_t i = calls.size(); i-- > 0;) {
    if (calls[i].function == function) return calls[i].record(argument);
  }
  throw std::logic_error("no call of " + function);
}

}  // namespace

fake::Snapshot RecordOf(IDispatch* object) {
  if (Ptr<IAltName> name = Ptr<IDispatch>::share(object).as<IAltName>()) {
    Ptr<ICertificate> certificate = Make<ICertificate>();
    EXPECT_OK(certificate->putref_issuerAltName(name));
    return RecordOf(certificate).part(80, 120);
  }
  const std::string type = InterfaceNameOf(object);
  if (type == "IPolicy" || type == "IExtension") {
    Ptr<IVerifyParam> param = Make<IVerifyParam>();
    EXPECT_OK(type == "IPolicy" ? param->put_policies(ObjectArray({object}))
                                : param->put_extensions(ObjectArray({object})));
    return RecordOf(param).at(type == "IPolicy" ? 24 : 56);
  }
  if (type == "ILocalParam" || type == "IRSrvParam") {
    return Received("QUIVO_InitializeEx", 1, [&](Ptr<IQUIVO> quivo) { return quivo->InitializeEx(object); });
  }
  const OperationArgument argument = ObjectInputs(type + "*").at(0);
  const fake::Snapshot record = Received(argument.function, argument.argument,
                                         [&](Ptr<IQUIVO> quivo) { return argument.call(Objects(quivo), object); });
  // Stores receive an identifier in a record of its own.
  return type == "ICertId" ? record.at(8) : record;
}

fake::Snapshot CertificateAt(const fake::Snapshot& list, size_t index) {
  return list.element(index, TavlFakeEngine()->certificateSize());
}

fake::Snapshot TemplateIn(const fake::Snapshot& search) { return search.part(16, TavlFakeEngine()->certificateSize()); }

uint32_t MaskIn(const fake::Snapshot& search) { return search.u32(16 + TavlFakeEngine()->certificateSize()); }
