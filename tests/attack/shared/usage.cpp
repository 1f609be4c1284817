#include "attack/shared/usage.h"

#include <windows.h>

#include <winternl.h>

#include <array>
#include <vector>

namespace {

size_t PrivateBytes() {
  size_t bytes = 0;
  MEMORY_BASIC_INFORMATION region{};
  const char* address = nullptr;
  while (VirtualQuery(address, &region, sizeof region) != 0) {
    if (region.State == MEM_COMMIT && region.Type == MEM_PRIVATE) bytes += region.RegionSize;
    address = static_cast<const char*>(region.BaseAddress) + region.RegionSize;
  }
  return bytes;
}

struct HandleEntry {
  ULONG process;
  BYTE type;
  BYTE flags;
  USHORT value;
  void* object;
  ULONG access;
};

/// Wine's GetProcessHandleCount always answers 0.
size_t Handles() {
  constexpr auto kAllHandles = static_cast<SYSTEM_INFORMATION_CLASS>(16);
  using Query = NTSTATUS(WINAPI*)(SYSTEM_INFORMATION_CLASS, void*, ULONG, ULONG*);
  const auto query = reinterpret_cast<Query>(
      reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"ntdll.dll"), "NtQuerySystemInformation")));
  std::vector<HandleEntry> entries(100000);
  if (query(kAllHandles, entries.data(), static_cast<ULONG>(entries.size() * sizeof(HandleEntry)), nullptr) != 0)
    return 0;
  // The count comes first, aligned like the entries that follow it.
  const ULONG count = *reinterpret_cast<const ULONG*>(entries.data());
  const auto* first = reinterpret_cast<const HandleEntry*>(reinterpret_cast<const char*>(entries.data()) + 8);
  size_t own = 0;
  for (ULONG i = 0; i < count; ++i) own += first[i].process == GetCurrentProcessId() ? 1 : 0;
  return own;
}

size_t BlocksOf(HANDLE heap) {
  size_t blocks = 0;
  HeapLock(heap);
  PROCESS_HEAP_ENTRY entry{};
  while (HeapWalk(heap, &entry)) blocks += (entry.wFlags & PROCESS_HEAP_ENTRY_BUSY) != 0 ? 1 : 0;
  HeapUnlock(heap);
  return blocks;
}

}  // namespace

Usage UsageOfProcess() {
  Usage usage{PrivateBytes(), Handles(), 0};
  std::array<HANDLE, 64> heaps{};
  const DWORD count = GetProcessHeaps(static_cast<DWORD>(heaps.size()), heaps.data());
  for (DWORD i = 0; i < count && i < heaps.size(); ++i) usage.blocks += BlocksOf(heaps[i]);
  return usage;
}

std::ostream& operator<<(std::ostream& out, const Usage& usage) {
  return out << usage.privateBytes / 1024 << " KiB private, " << usage.handles << " handles, " << usage.blocks
             << " heap blocks";
}
