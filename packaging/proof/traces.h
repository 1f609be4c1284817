// What the kit writes into the registry, noted there before it is written: also the next run can take it back.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

namespace proof {

/// The key of the notes; it is removed with the last trace.
constexpr const wchar_t* kNotesKey = L"Software\\tavlcom.proof";

bool KeyExists(HKEY root, const std::wstring& path);
std::vector<std::wstring> SubkeysOf(HKEY root, const std::wstring& path);

/// Creates a key and those above it, and notes which of them are new. `root` is HKEY_CURRENT_USER or
/// HKEY_LOCAL_MACHINE.
bool CreateNotedKey(HKEY root, const std::wstring& path);
void WriteText(HKEY root, const std::wstring& path, const wchar_t* name, const std::wstring& text);

/// A text among the notes; empty if there is none.
std::wstring Note(const wchar_t* name);
void WriteNote(const wchar_t* name, const std::wstring& text);

/// Removes the noted keys, those that others have put something into apart. Returns the keys that are left.
std::vector<std::wstring> RemoveNotedKeys();
void RemoveNotes();

}  // namespace proof
