// The fixture of the stand-in engine's tests: sessions of the people in the material, and the engine's functions in
// forms that take and give plain values.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "engine/functions.h"
#include "standin/base/codes.h"

using Bytes = std::vector<uint8_t>;

/// Codes in hexadecimal, as they stand in the table of codes.
struct EngineCode {
  int32_t value;
  bool operator==(const EngineCode&) const = default;
};
void PrintTo(const EngineCode& code, std::ostream* out);

#define EXPECT_CODE(expected, actual) EXPECT_EQ(EngineCode{expected}, EngineCode{actual})
#define ASSERT_CODE(expected, actual) ASSERT_EQ(EngineCode{expected}, EngineCode{actual})

constexpr uint32_t kDetached = 2;
constexpr uint32_t kSendCertificate = 8;

/// What a signature was found to be.
struct Verdict {
  int32_t status;
  uint32_t time;
  std::string subject;
};

struct Verified {
  int32_t code;
  std::vector<Verdict> verdicts;
  Bytes out;
};

struct Decrypted {
  int32_t code;
  int32_t status;
  Bytes out;
  std::string sender;
};

/// Milliseconds of work of this process: other than the clock on the wall, it does not count what other processes do.
uint64_t WorkDone();

/// A blob that names bytes of the test's own.
DataBlob_t BlobOf(const Bytes& bytes);
Bytes BytesOf(const std::string& text);
/// An identifier by the certificate's hash.
CertIdRecord ByHash(const Bytes& hash);
/// The hash of a certificate.
Bytes HashOf(EngineSession session, const Bytes& certificate);

/// Bytes of a file of the material.
std::string MaterialPath(const std::string& name);
Bytes Material(const std::string& name);
/// A path in the folder for files of this test process; the folder exists.
std::string ScratchPath(const std::string& name);
Bytes ReadBytes(const std::string& path);
void WriteBytes(const std::string& path, const Bytes& bytes);
bool FileExists(const std::string& path);
/// A fresh folder with the files of a store of the material.
std::string CopyOfStore(const std::string& store, const std::string& name);

class EngineTest : public ::testing::Test {
 protected:
  ~EngineTest() override;

  /// The session of a person with a store of the material.
  EngineSession open(const std::string& person, const std::string& store = "store");
  /// One with a store anywhere.
  EngineSession openIn(const std::string& person, const std::string& folder);
  int32_t tryOpen(const std::string& keyFile, const std::string& pin, const std::string& folder, EngineSession& session,
                  uint32_t flags = 0);
  EngineSession openMinimal();
  void close(EngineSession session);

  /// Copies the blob and gives the engine's memory back.
  Bytes take(EngineSession session, DataBlob_t& blob);

  int32_t trySign(EngineSession session, uint32_t flags, const Bytes* data, const Bytes* existing, Bytes& out,
                  const CertIdRecord* own = nullptr);
  /// Expects success.
  Bytes sign(EngineSession session, uint32_t flags, const Bytes& data);
  Bytes addSignature(EngineSession session, uint32_t flags, const Bytes* data, const Bytes& existing);

  Verified verify(EngineSession session, const Bytes& message, const Bytes* data = nullptr,
                  VerifyParamRecord param = {});
  Verified verifyFile(EngineSession session, const std::string& message, const std::string& out,
                      VerifyParamRecord param = {}, const char* data = nullptr);

  /// Encrypts to the certificates of these people.
  int32_t tryEncrypt(EngineSession session, uint32_t flags, const Bytes& data, const std::vector<std::string>& people,
                     Bytes& out);
  Bytes encrypt(EngineSession session, const Bytes& data, const std::vector<std::string>& people);
  Decrypted decrypt(EngineSession session, const Bytes& message, const CertIdRecord* own = nullptr);

 private:
  std::vector<EngineSession> sessions_;
};

/// Records that name certificates of the material by their encoding.
class Receivers {
 public:
  explicit Receivers(const std::vector<std::string>& people);
  EncryptParamRecord param(uint32_t flags = 0);

 private:
  std::vector<Bytes> encoded_;
  std::vector<CertificateRecord> records_;
};
