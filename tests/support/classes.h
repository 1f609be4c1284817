// The eighteen classes as they have to be registered, and the interface that each is used by.
#pragma once

#include <windows.h>

#include <array>
#include <ostream>
#include <string>

#include "quivocom.h"

struct ClassFacts {
  const wchar_t* name;
  const wchar_t* clsid;
  const wchar_t* interfaceName;
  const wchar_t* iid;
  /// The default value of the CLSID key; that of the ProgID keys is `name` with " Class".
  const wchar_t* description;
  const wchar_t* currentVersion;
  int script;

  std::wstring progId() const { return L"TAVL." + std::wstring(name); }
  std::wstring versionedProgId() const { return progId() + L".1"; }
};

constexpr const wchar_t* kLibraryId = L"{6C5ACF4C-A048-4640-8A59-D6D1511153B1}";

/// In the order of registration.
extern const std::array<ClassFacts, 18> kClasses;

std::ostream& operator<<(std::ostream& out, const ClassFacts& facts);
GUID guidOf(const wchar_t* text);

template <class Class>
struct InterfaceOf;

#define TAVL_CLASS(name)     \
  template <>                \
  struct InterfaceOf<name> { \
    using type = I##name;    \
  };
TAVL_CLASS(QUIVO)
TAVL_CLASS(LocalParam)
TAVL_CLASS(RSrvParam)
TAVL_CLASS(CertId)
TAVL_CLASS(SignParam)
TAVL_CLASS(Policy)
TAVL_CLASS(Extension)
TAVL_CLASS(VerifyParam)
TAVL_CLASS(AltName)
TAVL_CLASS(Certificate)
TAVL_CLASS(SignStatus)
TAVL_CLASS(EncryptParam)
TAVL_CLASS(DecryptParam)
TAVL_CLASS(ExportParam)
TAVL_CLASS(ImportParam)
TAVL_CLASS(FindParam)
TAVL_CLASS(StreamCtx)
TAVL_CLASS(pkiobj)
#undef TAVL_CLASS
