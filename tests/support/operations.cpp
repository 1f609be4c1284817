#include "support/operations.h"

#include <algorithm>
#include <deque>
#include <set>

namespace {

/// Methods with tests of their own: of sessions and texts, and those that explain a failure in a text.
const std::set<std::string> kOthers{"Initialize",      "Uninitialize",       "GetPKIErrorText",
                                    "InitializeEx",    "GetPKIErrorTextVBS", "GetCurrentProfileNameVBS",
                                    "SignFile2B64Mem", "InitMinimal",        "CheckOID"};

std::string FunctionOf(const std::string& method) {
  if (method == "GetMyCertB64") return "QUIVO_FindCert";
  if (method == "UpdateCrl") return "QUIVO_Ctrl";
  return "QUIVO_" + method;
}

Variant Data(bool vbs) { return vbs ? VbsByteArray({1, 2}) : ByteArray({1, 2}); }

/// The arguments that a test does not give, which live as long as the call.
class Defaults {
 public:
  explicit Defaults(const Objects& objects) : objects_(objects) {}

  SlotValue of(const Argument& argument, bool isData) {
    if (argument.type == "VARIANT") return isData ? SlotValue(data_) : SlotValue(nothing_);
    if (argument.type == "VARIANT*") return variables_.emplace_back().out();
    if (argument.type == "BSTR") return path_;
    if (argument.type == "BSTR*") return text_.inOut();
    if (argument.type == "ICertificate**") return certificate_.out();
    if (argument.type == "VARIANT_BOOL") return VARIANT_FALSE;
    if (argument.type.ends_with("*")) return objects_.of(argument.type.substr(0, argument.type.size() - 1));
    return 4;
  }

 private:
  const Objects& objects_;
  const Variant data_ = Data(false), nothing_;
  std::deque<Variant> variables_;
  const Bstr path_{L"C:\\file"};
  Bstr text_;
  Ptr<ICertificate> certificate_;
};

template <class Condition>
std::vector<OperationArgument> ArgumentsWhere(Condition condition) {
  std::vector<OperationArgument> found;
  for (const Operation& operation : Operations()) {
    for (size_t i = 0; i < operation.member.arguments.size(); ++i) {
      if (condition(operation.member.arguments[i])) found.push_back({operation, i});
    }
  }
  return found;
}

}  // namespace

Objects::Objects(Ptr<IQUIVO> main) : quivo(std::move(main)) {}

IDispatch* Objects::of(const std::string& interfaceName) const {
  const CoClass& coclass = ClassOf(interfaceName);
  for (IDispatch* object : std::initializer_list<IDispatch*>{sign, verify, encrypt, decrypt, find, exporting, importing,
                                                             id, certificate, stream}) {
    Ptr<IUnknown> same;
    if (object != nullptr && object->QueryInterface(coclass.iid, same.voidOut()) == S_OK) return object;
  }
  Ptr<IDispatch>& other = others_[interfaceName];
  if (other.get() == nullptr) other = MakeUnknown(coclass.clsid, IID_IDispatch).as<IDispatch>();
  return other;
}

HRESULT Operation::call(const Objects& objects, const Given& given) const {
  Defaults defaults(objects);
  bool needsData =
      std::none_of(given.begin(), given.end(), [](const auto& one) { return one.second.type() == VT_VARIANT; });
  std::vector<SlotValue> values;
  for (size_t i = 0; i < member.arguments.size(); ++i) {
    const auto found = given.find(i);
    values.push_back(found != given.end() ? found->second : defaults.of(member.arguments[i], needsData));
    if (member.arguments[i].type == "VARIANT") needsData = false;
  }
  return CallSlot(objects.quivo, member, std::move(values));
}

size_t Operation::place(const std::string& type) const {
  const auto& all = member.arguments;
  const auto found =
      std::find_if(all.begin(), all.end(), [&](const Argument& argument) { return argument.type == type; });
  return static_cast<size_t>(found - all.begin());
}

const std::vector<Operation>& Operations() {
  static const std::vector<Operation> kOperations = [] {
    std::vector<Operation> found;
    for (const Member& member : MembersOf("IQUIVO")) {
      if (!kOthers.contains(member.name)) found.push_back({member.name, FunctionOf(member.name), member});
    }
    return found;
  }();
  return kOperations;
}

const Operation& OperationNamed(const std::string& name) {
  const auto& all = Operations();
  return *std::find_if(all.begin(), all.end(), [&](const Operation& operation) { return operation.name == name; });
}

std::vector<Operation> OperationsEnding(const std::string& end) {
  return Where(Operations(), [&](const Operation& operation) { return operation.name.ends_with(end); });
}

Output OutputOf(const Argument& argument) {
  static const std::map<std::string, Output> kOtherKinds{{"VerifyResults", Output::kObjects},
                                                         {"FindResult", Output::kObjects},
                                                         {"left", Output::kNumber},
                                                         {"err_text", Output::kText},
                                                         {"var_cert_str", Output::kText}};
  if (argument.type == "ICertificate**") return Output::kCertificate;
  if (argument.type == "BSTR*") return Output::kText;
  const auto found = kOtherKinds.find(argument.name);
  return found == kOtherKinds.end() ? Output::kBytes : found->second;
}

bool OperationArgument::isOptional() const {
  static const std::set<std::string> kOptional{"SignFile_data",       "SignFile_sign_in",      "VerifyFile_data",
                                               "VerifyFile_sign_out", "StrSignFile_data",      "StrSignFile_sign_in",
                                               "StrVerifyFile_data",  "StrVerifyFile_sign_out"};
  return kOptional.contains(name);
}

bool OperationArgument::isAlwaysWritten() const {
  if (OutputOf(declared()) == Output::kCertificate) return operation.hasFiles() || operation.has("IStreamCtx*");
  return operation.name.ends_with("UpdateMem");
}

bool OperationArgument::hasVbsForm() const {
  return operation.has("VARIANT") || operation.has("VARIANT_BOOL") || operation.has("IStreamCtx*");
}

HRESULT OperationArgument::callInForm(const Objects& objects, bool vbs, VARIANT* output) const {
  const Variant data = Data(vbs);
  Given given{{place, output}};
  if (operation.has("VARIANT")) {
    given.emplace(operation.place("VARIANT"), data);
  } else if (operation.has("IStreamCtx*") && vbs) {
    // The form of a stream is that of its first data.
    objects.quivo->StrHashUpdateMem(objects.stream, data);
  }
  if (operation.has("VARIANT_BOOL")) given.emplace(operation.place("VARIANT_BOOL"), vbs ? VARIANT_TRUE : VARIANT_FALSE);
  return operation.call(objects, given);
}

std::vector<OperationArgument> ByteInputs() {
  return ArgumentsWhere([](const Argument& argument) { return argument.type == "VARIANT"; });
}

std::vector<OperationArgument> StringInputs() {
  return ArgumentsWhere([](const Argument& argument) { return argument.type == "BSTR"; });
}

std::vector<OperationArgument> ObjectInputs(const std::string& type) {
  return ArgumentsWhere([&](const Argument& argument) {
    const bool isObject = !argument.isOutput() && argument.type.ends_with("*");
    return isObject && (type.empty() || argument.type == type);
  });
}

std::vector<OperationArgument> OutputsOf(Output kind) {
  return ArgumentsWhere([&](const Argument& argument) { return argument.isOutput() && OutputOf(argument) == kind; });
}
