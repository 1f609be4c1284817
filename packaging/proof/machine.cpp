#include "machine.h"

#include <windows.h>

#include <wincrypt.h>

#include <cstdio>

#include "text.h"

namespace proof {
namespace {

template <class Function>
Function FunctionOf(const wchar_t* library, const char* name) {
  return reinterpret_cast<Function>(reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(library), name)));
}

std::string TextOfWindows(const wchar_t* name) {
  wchar_t text[256] = L"";
  DWORD size = sizeof text;
  RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", name, RRF_RT_REG_SZ, nullptr,
               text, &size);
  return Utf8(text);
}

/// GetVersion states what a program's manifest allows.
std::string WindowsVersion() {
  RTL_OSVERSIONINFOW version{};
  version.dwOSVersionInfoSize = sizeof version;
  if (const auto get = FunctionOf<LONG(WINAPI*)(RTL_OSVERSIONINFOW*)>(L"ntdll.dll", "RtlGetVersion")) get(&version);
  DWORD revision = 0, size = sizeof revision;
  RegGetValueW(HKEY_LOCAL_MACHINE, L"SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion", L"UBR", RRF_RT_REG_DWORD,
               nullptr, &revision, &size);
  std::string name = Trimmed(TextOfWindows(L"ProductName") + " " + TextOfWindows(L"DisplayVersion"));
  // The registry of Windows 11 has kept the name of Windows 10.
  if (version.dwBuildNumber >= 22000) name = Replaced(name, "Windows 10", "Windows 11");
  return name +
         Format(" (%lu.%lu.%lu.%lu)", version.dwMajorVersion, version.dwMinorVersion, version.dwBuildNumber, revision);
}

std::string Processor() {
  SYSTEM_INFO system{};
  GetNativeSystemInfo(&system);
  std::string name = Format("architecture %u", system.wProcessorArchitecture);
  if (system.wProcessorArchitecture == PROCESSOR_ARCHITECTURE_AMD64) name = "x64";
  if (system.wProcessorArchitecture == 12) name = "ARM64";
  return name + Format(", %lu processors; this program has %zu bits", system.dwNumberOfProcessors, 8 * sizeof(void*));
}

std::string Time(const SYSTEMTIME& time) {
  return Format("%04u-%02u-%02u %02u:%02u:%02u", time.wYear, time.wMonth, time.wDay, time.wHour, time.wMinute,
                time.wSecond);
}

std::string Times() {
  SYSTEMTIME local{}, utc{};
  GetLocalTime(&local);
  GetSystemTime(&utc);
  return Time(local) + ", in UTC " + Time(utc);
}

std::string UserLocale() {
  wchar_t name[LOCALE_NAME_MAX_LENGTH] = L"";
  GetUserDefaultLocaleName(name, LOCALE_NAME_MAX_LENGTH);
  return Utf8(name);
}

std::string FileVersion(const std::wstring& path) {
  DWORD ignored = 0;
  std::string data(GetFileVersionInfoSizeW(path.c_str(), &ignored), '\0');
  VS_FIXEDFILEINFO* fixed = nullptr;
  UINT length = 0;
  if (data.empty() || !GetFileVersionInfoW(path.c_str(), 0, static_cast<DWORD>(data.size()), data.data()) ||
      !VerQueryValueW(data.data(), L"\\", reinterpret_cast<void**>(&fixed), &length)) {
    return "no version";
  }
  return Format("version %u.%u.%u.%u", HIWORD(fixed->dwFileVersionMS), LOWORD(fixed->dwFileVersionMS),
                HIWORD(fixed->dwFileVersionLS), LOWORD(fixed->dwFileVersionLS));
}

/// The size of a file and its SHA-256.
std::string Content(const std::wstring& path) {
  HCRYPTPROV provider = 0;
  HCRYPTHASH hash = 0;
  CryptAcquireContextW(&provider, nullptr, nullptr, PROV_RSA_AES, CRYPT_VERIFYCONTEXT);
  CryptCreateHash(provider, CALG_SHA_256, 0, 0, &hash);
  unsigned long long size = 0;
  if (FILE* file = _wfopen(path.c_str(), L"rb")) {
    BYTE buffer[65536];
    while (const size_t count = std::fread(buffer, 1, sizeof buffer, file)) {
      CryptHashData(hash, buffer, static_cast<DWORD>(count), 0);
      size += count;
    }
    std::fclose(file);
  }
  BYTE digest[32] = {};
  DWORD length = sizeof digest;
  const bool hashed = CryptGetHashParam(hash, HP_HASHVAL, digest, &length, 0) != FALSE;
  CryptDestroyHash(hash);
  CryptReleaseContext(provider, 0);
  std::string text = Format("%llu bytes", size) + (hashed ? ", SHA-256 " : "");
  for (DWORD i = 0; hashed && i < length; ++i) text += Format("%02x", digest[i]);
  return text;
}

void AddFiles(const std::wstring& folder, const std::wstring& name, Facts& facts) {
  WIN32_FIND_DATAW entry;
  const HANDLE search = FindFirstFileW((folder + name + L"*").c_str(), &entry);
  if (search == INVALID_HANDLE_VALUE) return;
  do {
    const std::wstring file = entry.cFileName, path = name + file;
    if (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) {
      if (file != L"." && file != L"..") AddFiles(folder, path + L"\\", facts);
    } else if (file.ends_with(L".dll") || file.ends_with(L".exe")) {
      facts.emplace_back(Utf8(path), FileVersion(folder + path) + ", " + Content(folder + path));
    }
  } while (FindNextFileW(search, &entry));
  FindClose(search);
}

}  // namespace

Facts MachineFacts() {
  Facts facts{{"Windows", WindowsVersion()}};
  using WineVersion = const char*(__cdecl*)();
  if (const auto version = FunctionOf<WineVersion>(L"ntdll.dll", "wine_get_version")) {
    facts.emplace_back("Not Windows", std::string("but Wine ") + version());
  }
  facts.emplace_back("Processor", Processor());
  facts.emplace_back("Code page of programs", std::to_string(GetACP()));
  facts.emplace_back("Code page of consoles", std::to_string(GetOEMCP()));
  facts.emplace_back("Locale of the user", UserLocale());
  facts.emplace_back("Rights", IsElevated() ? "an administrator's" : "an ordinary user's");
  facts.emplace_back("Desktop", HasDesktop() ? "yes" : "no");
  facts.emplace_back("Time", Times());
  return facts;
}

Facts FileFacts(const std::wstring& folder) {
  Facts facts;
  AddFiles(folder, L"", facts);
  return facts;
}

std::wstring ProgramPath() {
  std::wstring path(32768, L'\0');
  path.resize(GetModuleFileNameW(nullptr, path.data(), static_cast<DWORD>(path.size())));
  return path;
}

bool IsElevated() {
  HANDLE token = nullptr;
  TOKEN_ELEVATION elevation{};
  DWORD size = sizeof elevation;
  if (!OpenProcessToken(GetCurrentProcess(), TOKEN_QUERY, &token)) return false;
  GetTokenInformation(token, TokenElevation, &elevation, sizeof elevation, &size);
  CloseHandle(token);
  return elevation.TokenIsElevated != 0;
}

bool HasDesktop() {
  USEROBJECTFLAGS flags{};
  DWORD size = 0;
  if (GetUserObjectInformationW(GetProcessWindowStation(), UOI_FLAGS, &flags, sizeof flags, &size) &&
      (flags.dwFlags & WSF_VISIBLE) == 0) {
    return false;
  }
  const HWND window =
      CreateWindowExW(WS_EX_TOOLWINDOW, L"STATIC", nullptr, WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
  if (window == nullptr) return false;
  DestroyWindow(window);
  return true;
}

}  // namespace proof
