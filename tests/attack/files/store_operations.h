// What writes into a store, and how its files are looked at.
#pragma once

#include "caller.h"

struct StoreOperation {
  const char* name;
  std::function<HRESULT(const Caller&)> run;
};

/// Each adds what the store of the material lacks. `number` chooses among certificates.
std::vector<StoreOperation> StoreOperations(const Folders& folders, unsigned number);

/// The files of a store that are no whole entry, left-overs of writing apart; empty if all are whole.
std::string BrokenEntries(const std::map<std::wstring, Bytes>& files);
/// The number of files that are certificates.
size_t CertificatesAmong(const std::map<std::wstring, Bytes>& files);
