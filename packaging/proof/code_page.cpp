#include "code_page.h"

#include <windows.h>

#include "machine.h"
#include "process.h"
#include "text.h"

namespace proof {
namespace {

constexpr char kManifest[] =
    R"(<?xml version="1.0" encoding="UTF-8" standalone="yes"?>
<assembly xmlns="urn:schemas-microsoft-com:asm.v1" manifestVersion="1.0">
  <application xmlns="urn:schemas-microsoft-com:asm.v3">
    <windowsSettings>
      <activeCodePage xmlns="http://schemas.microsoft.com/SMI/2019/WindowsSettings">ru-RU</activeCodePage>
    </windowsSettings>
  </application>
</assembly>
)";

bool WriteManifest(const std::wstring& program) { return WriteWholeFile(program + L".manifest", kManifest); }

/// Older versions of Windows do not know such a manifest: a copy of this program finds out.
bool ManifestWorks(const std::wstring& kit) {
  const std::wstring probe = kit + L"scratch\\probe.exe";
  return WriteManifest(probe) && CopyFileW(ProgramPath().c_str(), probe.c_str(), FALSE) &&
         RunProgram(L"\"" + probe + L"\" --codepage", 30).good();
}

}  // namespace

bool GiveCodePage(const std::wstring& kit, const std::wstring& program) {
  if (GetACP() == kNeededCodePage) return true;
  static const bool kWorks = ManifestWorks(kit);
  return kWorks && WriteManifest(program);
}

}  // namespace proof
