// The operations of the main object, found in the type library and called through their slots: what holds for all
// methods, or for all arguments of a kind, is tested once.
#pragma once

#include <map>
#include <ostream>
#include <vector>

#include "support/contract_test.h"

/// One object of each kind that operations take, all as they are created.
struct Objects {
  explicit Objects(Ptr<IQUIVO> main);

  /// The object of an interface; of a class without a member here, a new one.
  IDispatch* of(const std::string& interfaceName) const;

  Ptr<IQUIVO> quivo;
  Ptr<ISignParam> sign = Make<ISignParam>();
  Ptr<IVerifyParam> verify = Make<IVerifyParam>();
  Ptr<IEncryptParam> encrypt = Make<IEncryptParam>();
  Ptr<IDecryptParam> decrypt = Make<IDecryptParam>();
  Ptr<IFindParam> find = Make<IFindParam>();
  Ptr<IExportParam> exporting = Make<IExportParam>();
  Ptr<IImportParam> importing = Make<IImportParam>();
  Ptr<ICertId> id = Make<ICertId>();
  Ptr<ICertificate> certificate = Make<ICertificate>();
  Ptr<IStreamCtx> stream = Make<IStreamCtx>();

 private:
  mutable std::map<std::string, Ptr<IDispatch>> others_;
};

/// The arguments that a test gives, by their places.
using Given = std::map<size_t, SlotValue>;

/// A method.
struct Operation {
  std::string name;
  /// The engine's function, which receives the session and then the method's arguments in their order.
  std::string function;
  Member member;

  /// What is not given is made up from the declared types: objects, paths, variables; a few bytes as the first data,
  /// unless the test gives data of its own.
  HRESULT call(const Objects& objects, const Given& given = {}) const;
  bool hasFiles() const { return name.ends_with("File"); }
  /// The place of the first argument of a type; the number of arguments if there is none.
  size_t place(const std::string& type) const;
  bool has(const std::string& type) const { return place(type) < member.arguments.size(); }
};

/// The methods whose result is the engine's.
const std::vector<Operation>& Operations();
const Operation& OperationNamed(const std::string& name);

/// Those whose names end alike, such as SignFile and StrSignFile.
std::vector<Operation> OperationsEnding(const std::string& end);

/// What a method writes.
enum class Output { kBytes, kText, kNumber, kObjects, kCertificate };
Output OutputOf(const Argument& argument);

/// One argument of an operation.
struct OperationArgument {
  Operation operation;
  size_t place;
  std::string name = operation.name + "_" + declared().name;
  std::string function = operation.function;
  /// Its place in the call of the engine.
  size_t argument = place + 1;

  const Argument& declared() const { return operation.member.arguments[place]; }
  HRESULT call(const Objects& objects, SlotValue value) const { return operation.call(objects, {{place, value}}); }
  /// A null BSTR reaches the engine as a null pointer; the others are refused.
  bool isOptional() const;
  /// Written even when the engine reports a failure.
  bool isAlwaysWritten() const;
  /// True if the bytes that it receives have a form: that of the data, of the stream, or of an argument's choice.
  bool hasVbsForm() const;
  /// The call with an output of bytes whose form is asked for in the way of the method.
  HRESULT callInForm(const Objects& objects, bool vbs, VARIANT* output) const;
};

std::vector<OperationArgument> ByteInputs();
std::vector<OperationArgument> StringInputs();
/// Objects of the module; `type` is that of an interface, or empty for all.
std::vector<OperationArgument> ObjectInputs(const std::string& type = "");
std::vector<OperationArgument> OutputsOf(Output kind);

/// The rows of a list for which `condition` holds.
template <class Row, class Condition>
std::vector<Row> Where(std::vector<Row> rows, Condition condition) {
  std::erase_if(rows, [&](const Row& row) { return !condition(row); });
  return rows;
}

template <class Row>
std::string NameOfRow(const ::testing::TestParamInfo<Row>& info) {
  return info.param.name;
}

inline std::ostream& operator<<(std::ostream& out, const Operation& row) { return out << row.name; }
inline std::ostream& operator<<(std::ostream& out, const OperationArgument& row) { return out << row.name; }
