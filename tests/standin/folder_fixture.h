// Folders of stores whose files change, and what sessions find in them.
#pragma once

#include <windows.h>

#include <string>

#include "store_fixture.h"

class FolderTest : public StoreTest {
 protected:
  /// A copy of a store whose files were last written an hour ago.
  static std::string oldCopy(const std::string& name) {
    const std::string folder = CopyOfStore("store", name);
    WIN32_FIND_DATAA entry{};
    const HANDLE search = FindFirstFileA((folder + "\\*").c_str(), &entry);
    do {
      if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) == 0) age(folder + "\\" + entry.cFileName, 3600);
    } while (FindNextFileA(search, &entry));
    FindClose(search);
    return folder;
  }
  static void age(const std::string& file, int seconds) {
    FILETIME now;
    GetSystemTimeAsFileTime(&now);
    const uint64_t time =
        (static_cast<uint64_t>(now.dwHighDateTime) << 32 | now.dwLowDateTime) - seconds * 10'000'000ll;
    setTime(file, {static_cast<DWORD>(time), static_cast<DWORD>(time >> 32)});
  }
  static void setTime(const std::string& file, FILETIME time) {
    const HANDLE handle = CreateFileA(file.c_str(), FILE_WRITE_ATTRIBUTES, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    EXPECT_TRUE(SetFileTime(handle, nullptr, nullptr, &time));
    CloseHandle(handle);
  }
  static FILETIME timeOf(const std::string& file) {
    WIN32_FILE_ATTRIBUTE_DATA data{};
    EXPECT_TRUE(GetFileAttributesExA(file.c_str(), GetFileExInfoStandard, &data));
    return data.ftLastWriteTime;
  }
  /// How many certificates a new session finds.
  size_t found(const std::string& folder) { return find(openIn("", folder), WithFlags(2)).size(); }
  bool knows(EngineSession session, const std::string& person) {
    const Bytes hash = HashOf(session, Material(person + ".cer"));
    const CertIdRecord id = ByHash(hash);
    FindParamRecord param = WithFlags(2);
    param.mycert = &id;
    return find(session, param).size() == 1;
  }
};
