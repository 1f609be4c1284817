// What the stand-in engine takes from the platform, for its native build: files, code pages, the display. Paths and
// texts are UTF-8 here.
#include <sys/stat.h>

#include <cctype>
#include <cerrno>
#include <cstdio>
#include <filesystem>

#include "standin/base/ansi.h"
#include "standin/base/codes.h"
#include "standin/base/files.h"
#include "standin/base/folder_watch.h"
#include "standin/exports/texts.h"
#include "standin/operations/requests.h"
#include "standin/operations/transfer.h"
#include "standin/sessions/profile.h"
#include "standin/windows/display.h"
#include "standin/windows/selection_dialog.h"

namespace standin {

void FailWithLastError() { Fail(errno == ENOENT ? ERROR_FILE_NOT_FOUND : ERROR_ACCESS_DENIED); }

std::string AnsiFromUtf8(std::string_view text) { return std::string(text); }
std::string Utf8FromAnsi(std::string_view text) { return std::string(text); }
std::string FoldCase(std::string_view utf8) {
  std::string text(utf8);
  for (char& c : text) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return text;
}
std::string HexOf(ByteView bytes) {
  std::string text;
  for (const uint8_t byte : bytes) {
    char digits[3];
    std::snprintf(digits, sizeof digits, "%02X", byte);
    text += digits;
  }
  return text;
}

namespace {

FILE* FileOf(const FileHandle& handle) { return static_cast<FILE*>(handle.get()); }

}  // namespace

InputFile::InputFile(const char* path, bool) : size_(0) {
  if (path == nullptr) Fail(kWinInvalidParameter);
  handle_.reset(std::fopen(path, "rb"));
  if (handle_ == nullptr) FailWithLastError();
  size_ = std::filesystem::file_size(path);
}

ByteView InputFile::next() {
  piece_.resize(kFilePiece);
  return {piece_.data(), std::fread(piece_.data(), 1, piece_.size(), FileOf(handle_))};
}

Bytes ReadWholeFile(const char* path, uint64_t limit, bool) {
  InputFile file(path);
  if (file.size() > limit) Fail(kTooLarge);
  Bytes bytes;
  file.forEachPiece([&](ByteView piece) { Append(bytes, piece); });
  return bytes;
}

OutputFile::OutputFile(const char* path) : path_(path), temporary_(path_ + ".tmp") {
  handle_.reset(std::fopen(temporary_.c_str(), "wb"));
  if (handle_ == nullptr) FailWithLastError();
}
OutputFile::~OutputFile() { std::remove(temporary_.c_str()); }
void OutputFile::write(ByteView bytes) { std::fwrite(bytes.data(), 1, bytes.size(), FileOf(handle_)); }
void OutputFile::overwrite(uint64_t offset, ByteView bytes) {
  std::fseek(FileOf(handle_), static_cast<long>(offset), SEEK_SET);
  write(bytes);
  std::fseek(FileOf(handle_), 0, SEEK_END);
}
void OutputFile::commit() {
  handle_.reset();
  std::filesystem::rename(temporary_, path_);
}

void WriteWholeFile(const char* path, ByteView bytes) {
  OutputFile file(path);
  file.write(bytes);
  file.commit();
}

std::string FreeNameBeside(const std::string& path) { return path + ".between"; }
std::string JoinPath(const std::string& folder, const std::string& name) { return folder + "/" + name; }

std::string FullPath(const std::string& path) { return std::filesystem::absolute(path).string(); }

bool FileEntry::wasWrittenJustNow() const { return true; }

std::vector<FileEntry> FilesIn(const std::string& folder, const char* pattern) {
  std::vector<FileEntry> files;
  const std::string ending = std::string(pattern).substr(1);
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    const std::string name = entry.path().filename().string();
    if (entry.is_regular_file() && name.ends_with(ending)) files.push_back({name, entry.file_size(), 0, 0});
  }
  return files;
}

/// Every folder is listed.
std::optional<std::vector<std::string>> FolderWatch::changes() {
  id_ = listedAt_ = 0;
  return std::nullopt;
}

SessionSource ReadProfile(const std::string&) { Fail(kProfileNotFound); }
Bytes MakeXmlRequest(Session&, uint32_t, const CertificateRecord&) { Fail(kNotSupported); }
void AddCertificate(Session&, const SignParamRecord&, ByteView) { Fail(kNotSupported); }
void AddCrl(Session&, const SignParamRecord&, ByteView) { Fail(kNotSupported); }
Bytes ExportObjects(Session&, const SignParamRecord&) { Fail(kNotSupported); }
void ImportObjects(Session&, const SignParamRecord&, ByteView) { Fail(kNotSupported); }
std::vector<CertPtr> SelectCertificates(const std::vector<CertPtr>&) { Fail(kNoDisplay); }
void ShowCertificate(X509*) { Fail(kNoDisplay); }
void ShowCrl(X509_CRL*) { Fail(kNoDisplay); }
void WriteErrorText(int32_t, char* buffer, uint32_t) { *buffer = 0; }
void WriteCrlReport(const Store::CrlReload&, char* buffer, uint32_t) { *buffer = 0; }

}  // namespace standin
