// The fixture.
#include "engine_test.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <ostream>

#ifdef _WIN32
#include <windows.h>

#include <process.h>
#else
#include <unistd.h>

#include <ctime>
#endif

void PrintTo(const EngineCode& code, std::ostream* out) {
  char text[512];
  std::snprintf(text, sizeof text, "0x%X", static_cast<unsigned>(code.value));
  *out << text;
}

namespace {

std::string FolderFrom(const char* variable) {
  const char* value = std::getenv(variable);
  if (value == nullptr) {
    ADD_FAILURE() << variable << " is not set";
    return {};
  }
#ifdef _WIN32
  return value[0] == '/' ? std::string("Z:") + value : value;
#else
  return value;
#endif
}

}  // namespace

uint64_t WorkDone() {
#ifdef _WIN32
  FILETIME created, ended, kernel, user;
  GetProcessTimes(GetCurrentProcess(), &created, &ended, &kernel, &user);
  const auto ticks = [](FILETIME time) {
    return static_cast<uint64_t>(time.dwHighDateTime) << 32 | time.dwLowDateTime;
  };
  return (ticks(kernel) + ticks(user)) / 10000;
#else
  return static_cast<uint64_t>(std::clock()) * 1000 / CLOCKS_PER_SEC;
#endif
}

DataBlob_t BlobOf(const Bytes& bytes) {
  static uint8_t none;
  return {static_cast<uint32_t>(bytes.size()), bytes.empty() ? &none : const_cast<uint8_t*>(bytes.data())};
}

Bytes BytesOf(const std::string& text) { return Bytes(text.begin(), text.end()); }

CertIdRecord ByHash(const Bytes& hash) {
  CertIdRecord id{};
  id.type = 2;
  id.certHash = BlobOf(hash);
  return id;
}

Bytes HashOf(EngineSession session, const Bytes& certificate) {
  const DataBlob_t blob = BlobOf(certificate);
  CertificateRecord record{};
  constexpr uint32_t kFieldHash = 1u << 17;
  EXPECT_CODE(0, QUIVO_ParseCert(session, &blob, kFieldHash, &record));
  const Bytes hash(record.certHash.data, record.certHash.data + record.certHash.len);
  QUIVO_FreeCert(session, &record);
  return hash;
}

std::string MaterialPath(const std::string& name) {
  return (std::filesystem::path(FolderFrom("TAVL_STANDIN_MATERIAL")) / name).make_preferred().string();
}

Bytes Material(const std::string& name) {
  Bytes bytes = ReadBytes(MaterialPath(name));
  EXPECT_FALSE(bytes.empty()) << name;
  return bytes;
}

std::string ScratchPath(const std::string& name) {
  const std::filesystem::path root = FolderFrom("TAVL_STANDIN_SCRATCH");
  const std::filesystem::path folder = root / std::to_string(getpid());
  std::filesystem::create_directories(folder);
  return (folder / name).make_preferred().string();
}

Bytes ReadBytes(const std::string& path) {
  Bytes bytes;
  FILE* file = std::fopen(path.c_str(), "rb");
  if (file == nullptr) return bytes;
  uint8_t piece[65536];
  for (size_t count; (count = std::fread(piece, 1, sizeof piece, file)) != 0;) {
    bytes.insert(bytes.end(), piece, piece + count);
  }
  std::fclose(file);
  return bytes;
}

void WriteBytes(const std::string& path, const Bytes& bytes) {
  FILE* file = std::fopen(path.c_str(), "wb");
  ASSERT_NE(nullptr, file) << path;
  const size_t written = bytes.empty() ? 0 : std::fwrite(bytes.data(), 1, bytes.size(), file);
  EXPECT_EQ(bytes.size(), written);
  std::fclose(file);
}

bool FileExists(const std::string& path) { return std::filesystem::exists(path); }

std::string CopyOfStore(const std::string& store, const std::string& name) {
  const std::string target = ScratchPath(name);
  using std::filesystem::copy_options;
  std::filesystem::copy(MaterialPath(store), target, copy_options::recursive | copy_options::overwrite_existing);
  return target;
}

EngineTest::~EngineTest() {
  for (EngineSession session : sessions_) EXPECT_CODE(0, QUIVO_Uninitialize(session));
}

EngineSession EngineTest::open(const std::string& person, const std::string& store) {
  return openIn(person, MaterialPath(store));
}

EngineSession EngineTest::openIn(const std::string& person, const std::string& folder) {
  EngineSession session = nullptr;
  const std::string keys = person.empty() ? std::string() : MaterialPath(person + ".p12");
  EXPECT_CODE(0, tryOpen(keys, "12345678", folder, session));
  return session;
}

int32_t EngineTest::tryOpen(const std::string& keyFile, const std::string& pin, const std::string& folder,
                            EngineSession& session, uint32_t flags) {
  std::string keys = keyFile;
  std::string secret = pin;
  std::string store = folder;
  LocalParamRecord param{};
  param.size = sizeof param;
  param.flag = flags;
  param.pse = keys.empty() ? nullptr : keys.data();
  param.pincode = secret.data();
  param.localstore = store.empty() ? nullptr : store.data();
  const int32_t code = QUIVO_InitializeEx(kEngineLocalParam, &param, &session);
  if (code == 0) sessions_.push_back(session);
  return code;
}

EngineSession EngineTest::openMinimal() {
  EngineSession session = nullptr;
  EXPECT_CODE(0, QUIVO_InitMinimal(&session));
  sessions_.push_back(session);
  return session;
}

void EngineTest::close(EngineSession session) {
  sessions_.erase(std::find(sessions_.begin(), sessions_.end(), session));
  EXPECT_CODE(0, QUIVO_Uninitialize(session));
}

Bytes EngineTest::take(EngineSession session, DataBlob_t& blob) {
  Bytes bytes;
  if (blob.data != nullptr) {
    bytes.assign(blob.data, blob.data + blob.len);
    EXPECT_CODE(0, QUIVO_FreeMem(session, blob.data));
  }
  blob = {};
  return bytes;
}

int32_t EngineTest::trySign(EngineSession session, uint32_t flags, const Bytes* data, const Bytes* existing, Bytes& out,
                            const CertIdRecord* own) {
  const SignParamRecord param{flags, own};
  const DataBlob_t none{};
  const DataBlob_t dataBlob = data == nullptr ? none : BlobOf(*data);
  const DataBlob_t existingBlob = existing == nullptr ? none : BlobOf(*existing);
  DataBlob_t result{};
  const int32_t code = QUIVO_SignMem(session, &param, &dataBlob, &existingBlob, &result);
  out = take(session, result);
  return code;
}

Bytes EngineTest::sign(EngineSession session, uint32_t flags, const Bytes& data) {
  Bytes out;
  EXPECT_CODE(0, trySign(session, flags, &data, nullptr, out));
  return out;
}

Bytes EngineTest::addSignature(EngineSession session, uint32_t flags, const Bytes* data, const Bytes& existing) {
  Bytes out;
  EXPECT_CODE(0, trySign(session, flags, data, &existing, out));
  return out;
}

namespace {

constexpr uint32_t kFieldSubject = 4;

std::vector<Verdict> VerdictsOf(const VerifyResultRecord& result) {
  std::vector<Verdict> verdicts;
  for (int32_t i = 0; i < result.count; ++i) {
    const SignStatusEntry& entry = result.entries[i];
    const bool named = entry.cert != nullptr && entry.cert->subject != nullptr;
    verdicts.push_back({entry.status, entry.time, named ? entry.cert->subject : ""});
  }
  return verdicts;
}

}  // namespace

Verified EngineTest::verify(EngineSession session, const Bytes& message, const Bytes* data, VerifyParamRecord param) {
  param.info |= kFieldSubject;
  const DataBlob_t messageBlob = BlobOf(message);
  const DataBlob_t dataBlob = data == nullptr ? DataBlob_t{} : BlobOf(*data);
  DataBlob_t out{};
  VerifyResultRecord result{};
  Verified verified{};
  verified.code = QUIVO_VerifyMem(session, &param, &dataBlob, &messageBlob, &out, &result);
  verified.verdicts = VerdictsOf(result);
  verified.out = take(session, out);
  EXPECT_CODE(0, QUIVO_FreeVerifyResult(session, &result));
  return verified;
}

Verified EngineTest::verifyFile(EngineSession session, const std::string& message, const std::string& out,
                                VerifyParamRecord param, const char* data) {
  param.info |= kFieldSubject;
  VerifyResultRecord result{};
  Verified verified{};
  const char* target = out.empty() ? nullptr : out.c_str();
  verified.code = QUIVO_VerifyFile(session, &param, data, message.c_str(), target, &result);
  verified.verdicts = VerdictsOf(result);
  if (!out.empty()) verified.out = ReadBytes(out);
  EXPECT_CODE(0, QUIVO_FreeVerifyResult(session, &result));
  return verified;
}

Receivers::Receivers(const std::vector<std::string>& people) {
  for (const std::string& person : people) encoded_.push_back(Material(person + ".cer"));
  for (const Bytes& encoded : encoded_) {
    records_.push_back({});
    records_.back().certEncoded = BlobOf(encoded);
  }
}

EncryptParamRecord Receivers::param(uint32_t flags) {
  return {flags, nullptr, static_cast<int32_t>(records_.size()), records_.data()};
}

int32_t EngineTest::tryEncrypt(EngineSession session, uint32_t flags, const Bytes& data,
                               const std::vector<std::string>& people, Bytes& out) {
  Receivers receivers(people);
  const EncryptParamRecord param = receivers.param(flags);
  const DataBlob_t in = BlobOf(data);
  DataBlob_t result{};
  const int32_t code = QUIVO_EncryptMem(session, &param, &in, &result);
  out = take(session, result);
  return code;
}

Bytes EngineTest::encrypt(EngineSession session, const Bytes& data, const std::vector<std::string>& people) {
  Bytes out;
  EXPECT_CODE(0, tryEncrypt(session, 0, data, people, out));
  return out;
}

Decrypted EngineTest::decrypt(EngineSession session, const Bytes& message, const CertIdRecord* own) {
  const DecryptParamRecord param{1, own, kFieldSubject};
  const DataBlob_t in = BlobOf(message);
  DataBlob_t out{};
  DecryptResultRecord result{};
  Decrypted decrypted{};
  decrypted.code = QUIVO_DecryptMem(session, &param, &in, &out, &result);
  decrypted.status = result.status;
  if (result.cert.subject != nullptr) decrypted.sender = result.cert.subject;
  decrypted.out = take(session, out);
  EXPECT_CODE(0, QUIVO_FreeDecryptResult(session, &result));
  return decrypted;
}
