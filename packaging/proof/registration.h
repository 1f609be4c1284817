// The classes and profiles that scripts need, for as long as the kit runs: for this user alone where COM sees that,
// else for the machine. What was there before is left as it is.
#pragma once

#include <set>
#include <string>

#include "results.h"

namespace proof {

class Registration {
 public:
  /// `kit` is the folder of the kit, with a backslash at its end.
  explicit Registration(std::wstring kit) : kit_(std::move(kit)) {}

  /// Writes the profiles, and adds a case.
  void prepareProfiles(PartResult& result);
  /// Registers the module, and adds a case.
  void prepareClasses(PartResult& result);
  /// Takes everything back that this run or an earlier one has noted, and adds a case.
  void takeBack(PartResult& result);
  static bool somethingIsLeft();

  /// Empty, or why there are no classes, or no profiles.
  const std::string& noClasses() const { return noClasses_; }
  const std::string& noProfiles() const { return noProfiles_; }
  /// For whom the module is registered.
  const std::string& scope() const { return scope_; }

 private:
  /// Whether others see the classes.
  enum class Effect { kSeen, kNone, kFailed };

  Case registerModule();
  Effect registerFor(const wchar_t* scope, Case& one);
  std::string unregister();
  void writeProfiles();

  std::wstring kit_;
  /// The keys that the registration added.
  std::set<std::wstring> registered_;
  std::string scope_ = "nobody";
  std::string noClasses_ = "the module is not registered";
  std::string noProfiles_ = "the profiles are not there";
};

/// Whether this program may write the classes of the machine.
bool CanWriteMachineClasses();

/// The kit's own program as a child: "register", "unregister" with the scope "user" or "machine"; "created". Returns
/// its exit code.
int RunRegistrationCommand(const std::wstring& kit, const std::wstring& command, const std::wstring& scope);

}  // namespace proof
