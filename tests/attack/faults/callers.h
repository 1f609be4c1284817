// Every method that calls the engine, by the engine's functions, with what it makes of their results.
#pragma once

#include <functional>

#include "contract/legacy/legacy_test.h"
#include "support/certificates.h"
#include "support/operations.h"
#include "support/temp_file.h"

/// What a caller needs: both main objects with open sessions, their arguments, and an engine that answers.
class FaultTest : public LegacyTest {
 protected:
  void SetUp() override;
  void TearDown() override;

 public:
  fake::FakeEngine& answers() { return engine(); }
  Ipkiobj& legacy() { return *object.get(); }
  const Objects& arguments() { return *objects_; }
  /// A file that stands.
  const std::wstring& file() const { return file_.path(); }

 private:
  std::unique_ptr<Objects> objects_;
  TempFile file_{{1, 2, 3}};
};

/// How a method shows a result of the engine.
using Shown = std::function<uint32_t(uint32_t code)>;

struct Caller {
  std::string function;
  std::string method;
  Shown shown;
  std::function<HRESULT(FaultTest&)> call;
  std::string name = method + "_" + function.substr(function.find('_') + 1);
};
std::ostream& operator<<(std::ostream& out, const Caller& caller);

/// The engine's results that are tried, each with what the mapping makes of it.
struct MappedCode {
  uint32_t code;
  uint32_t mapped;
};
constexpr MappedCode kCodes[] = {{1, 1},
                                 {2, 0xE0690002},
                                 {0xFFFF, 0xE069FFFF},
                                 {0x12345678, 0xE0695678},
                                 {0x80004005, 0x80004005},
                                 {0x80070005, 0xE0690005},
                                 {0x8007000E, 0xE069000E},
                                 {0xE0700019, 0xE0700019}};

/// All callers. A new function of the engine needs a row here, unless a method has its name.
const std::vector<Caller>& Callers();
