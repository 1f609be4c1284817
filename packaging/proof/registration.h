// The classes and profiles that scripts need, for as long as the kit runs: for this user alone where COM sees that,
// else for the machine. What was there before is left as it is.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "results.h"

namespace proof {

class Registration {
 public:
  /// The names of the keys in a key, by its path.
  using KeyNames = std::map<std::wstring, std::vector<std::wstring>>;

  /// `kit` is the folder of the kit, with a backslash at its end.
  explicit Registration(std::wstring kit) : kit_(std::move(kit)) {}

  /// Registers module and profiles; adds a case for each to `result`.
  void prepare(PartResult& result);
  /// Takes everything back that this run or an earlier one has noted, and adds a case.
  void takeBack(PartResult& result);
  static bool somethingIsLeft();

  /// Empty, or why there are no classes, or no profiles.
  const std::string& noClasses() const { return noClasses_; }
  const std::string& noProfiles() const { return noProfiles_; }

 private:
  void registerFor(const wchar_t* scope, Case& one);
  std::string unregister();
  void writeProfiles();

  std::wstring kit_;
  KeyNames before_;
  std::string noClasses_ = "the module is not registered";
  std::string noProfiles_ = "the profiles are not there";
};

/// The kit's own program as a child: "register", "unregister" with the scope "user" or "machine"; "created"; "nothing".
/// Returns its exit code.
int RunRegistrationCommand(const std::wstring& kit, const std::wstring& command, const std::wstring& scope);

}  // namespace proof
