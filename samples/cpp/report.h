// The report of a verification as a page for people: a block for each file, a row for each of its signatures.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "verdict.h"

struct SignatureRow {
  std::wstring signer;
  std::wstring issuer;
  std::wstring time;
  Verdict verdict;
};

struct FileResult {
  std::wstring name;
  Level level;
  std::vector<SignatureRow> signatures;
};

/// How many files are good, good with remarks, and bad, in words.
std::wstring Summary(const std::vector<FileResult>& files, Language language);

/// False if the page cannot be written.
bool WriteReport(const std::filesystem::path& page, const std::wstring& folder, const std::vector<FileResult>& files,
                 Language language);
