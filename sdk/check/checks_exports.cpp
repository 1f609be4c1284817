#include "checks.h"

namespace check {

void CheckExports(Kit& kit) {
  for (const Export& function : kit.engine.exports()) {
    kit.report.check("export " + function.name, "exported", [&] {
      Expect(function.isCallable, function.state);
      return function.state;
    });
  }
}

}  // namespace check
