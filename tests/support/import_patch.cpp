#include "support/import_patch.h"

#include <gtest/gtest.h>

#include <cstring>

namespace {

uint8_t* Base(HMODULE module) { return reinterpret_cast<uint8_t*>(module); }

void** ImportSlot(HMODULE module, const char* function) {
  const auto dos = reinterpret_cast<IMAGE_DOS_HEADER*>(module);
  const auto headers = reinterpret_cast<IMAGE_NT_HEADERS*>(Base(module) + dos->e_lfanew);
  const auto& directory = headers->OptionalHeader.DataDirectory[IMAGE_DIRECTORY_ENTRY_IMPORT];
  auto import = reinterpret_cast<IMAGE_IMPORT_DESCRIPTOR*>(Base(module) + directory.VirtualAddress);
  for (; import->Name != 0; ++import) {
    auto name = reinterpret_cast<IMAGE_THUNK_DATA*>(Base(module) + import->OriginalFirstThunk);
    auto slot = reinterpret_cast<void**>(Base(module) + import->FirstThunk);
    for (; name->u1.AddressOfData != 0; ++name, ++slot) {
      if (IMAGE_SNAP_BY_ORDINAL(name->u1.Ordinal)) continue;
      const auto hint = reinterpret_cast<IMAGE_IMPORT_BY_NAME*>(Base(module) + name->u1.AddressOfData);
      if (std::strcmp(reinterpret_cast<const char*>(hint->Name), function) == 0) return slot;
    }
  }
  ADD_FAILURE() << "the module does not import " << function;
  return nullptr;
}

void Write(void** slot, void* value) {
  DWORD protection = 0;
  VirtualProtect(slot, sizeof(void*), PAGE_READWRITE, &protection);
  *slot = value;
  VirtualProtect(slot, sizeof(void*), protection, &protection);
}

}  // namespace

ImportPatch::ImportPatch(HMODULE module, const char* function, void* replacement)
    : slot_(ImportSlot(module, function)), original_(slot_ == nullptr ? nullptr : *slot_) {
  if (slot_ != nullptr) Write(slot_, replacement);
}

ImportPatch::~ImportPatch() {
  if (slot_ != nullptr) Write(slot_, original_);
}
