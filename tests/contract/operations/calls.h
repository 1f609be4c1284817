// Every operation of the main object as data: what a test wants to hold for all of them is written once.
#pragma once

#include <ostream>
#include <vector>

#include "support/contract_test.h"

/// One object of each kind that operations take, all as they are created.
struct Objects {
  explicit Objects(Ptr<IQUIVO> main);

  Ptr<IQUIVO> quivo;
  Ptr<ISignParam> sign = make<SignParam>();
  Ptr<IVerifyParam> verify = make<VerifyParam>();
  Ptr<IEncryptParam> encrypt = make<EncryptParam>();
  Ptr<IDecryptParam> decrypt = make<DecryptParam>();
  Ptr<IFindParam> find = make<FindParam>();
  Ptr<IExportParam> exporting = make<ExportParam>();
  Ptr<IImportParam> importing = make<ImportParam>();
  Ptr<ICertId> id = make<CertId>();
  Ptr<ICertificate> certificate = make<Certificate>();
  Ptr<IStreamCtx> stream = make<StreamCtx>();
};

/// A byte argument: the engine function that receives its blob, and as which argument.
struct ByteInput {
  const char* name;
  const char* function;
  size_t argument;
  HRESULT (*call)(const Objects&, VARIANT);
};
extern const std::vector<ByteInput> kByteInputs;

/// A byte result.
struct ByteOutput {
  const char* name;
  const char* function;
  bool hasVbsForm;
  /// Written even when the engine reports a failure.
  bool always;
  /// `vbs` asks for VBS form in the way of the method: by its data or by its argument.
  HRESULT (*call)(const Objects&, bool vbs, VARIANT* output);
};
extern const std::vector<ByteOutput> kByteOutputs;

/// A string argument that the engine receives.
struct StringInput {
  const char* name;
  const char* function;
  size_t argument;
  /// A null BSTR reaches the engine as a null pointer; otherwise it is refused.
  bool optional;
  HRESULT (*call)(const Objects&, BSTR);
};
extern const std::vector<StringInput> kStringInputs;

/// A method with arguments that reach the engine.
struct EngineCall {
  const char* name;
  const char* function;
  HRESULT (*call)(const Objects&);
};
/// The methods whose result is the engine's, mapped.
extern const std::vector<EngineCall> kEngineCalls;
/// The methods that untrusted-data mode refuses.
extern const std::vector<EngineCall> kFileMethods;

/// The rows of a table whose names begin with one of `prefixes`.
template <class Row>
std::vector<Row> rowsNamed(const std::vector<Row>& all, std::initializer_list<const char*> prefixes) {
  std::vector<Row> found;
  for (const Row& row : all) {
    for (const char* prefix : prefixes) {
      if (std::string(row.name).rfind(prefix, 0) == 0) found.push_back(row);
    }
  }
  return found;
}

template <class Row>
std::string nameOfRow(const ::testing::TestParamInfo<Row>& info) {
  return info.param.name;
}

inline std::ostream& operator<<(std::ostream& out, const ByteInput& row) { return out << row.name; }
inline std::ostream& operator<<(std::ostream& out, const ByteOutput& row) { return out << row.name; }
inline std::ostream& operator<<(std::ostream& out, const StringInput& row) { return out << row.name; }
inline std::ostream& operator<<(std::ostream& out, const EngineCall& row) { return out << row.name; }
