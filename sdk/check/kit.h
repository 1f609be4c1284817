// What every check needs: sessions of the engine, the caller's certificate, and the engine's functions in forms that
// take and give plain values. All of them throw what ends a check (report.h).
#pragma once

#include <string>
#include <utility>
#include <vector>

#include "engine.h"
#include "guarded.h"
#include "report.h"

namespace check {

struct Options {
  std::string profile;  // the session's: this, or the three below
  std::string keys, store, pin;
  std::string scratch;  // a folder for files
  std::string seconds = "60";
  std::string hash = "SHA-256";
  std::string refused;     // a certificate that does not verify, in DER
  std::string crl;         // a revocation list
  bool mayShow = false;    // windows may be shown, which somebody closes
  bool mayChange = false;  // the store may be changed
};

/// The code as the tables have it.
std::string Hex(int32_t code);
/// Fails with `seen` unless `holds`.
void Expect(bool holds, const std::string& seen);
/// The call has succeeded.
void Succeeds(const std::string& function, int32_t code);
/// The call has failed, with a code that callers take for a failure, and whose low half is enough to find its text.
void Fails(const std::string& function, int32_t code);
/// Ends a check that needs what the caller of this program has not named.
void Needs(bool isThere, const char* what);

class Session {
 public:
  Session(const Engine& engine, EngineSession handle) : engine_(engine), handle_(handle) {}
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session() {
    if (handle_ != nullptr) engine_.QUIVO_Uninitialize(handle_);
  }

  operator EngineSession() const { return handle_; }
  EngineSession release() { return std::exchange(handle_, nullptr); }

 private:
  const Engine& engine_;
  EngineSession handle_;
};

/// What a verification has found.
struct Verified {
  /// The call has succeeded, and all signatures are good; there may be several.
  void isGood(const std::string& function) const;

  int32_t code;
  std::vector<int32_t> statuses;
  std::vector<std::string> signers;
  Bytes out;
};

class Kit {
 public:
  Kit(const Engine& theEngine, Report& theReport, Options theOptions)
      : engine(theEngine), report(theReport), options(std::move(theOptions)) {}

  const Engine& engine;
  Report& report;
  const Options options;

  /// Adds a check whose success needs no words.
  template <class Work>
  void check(const std::string& what, const std::string& expected, Work work) {
    report.check(what, expected, [&]() -> std::string {
      work();
      return expected;
    });
  }

  /// The code; the handle is set after success and null after a failure.
  int32_t openWith(const std::string& keys, const std::string& pin, EngineSession& session) const;
  /// A session with the caller's keys.
  Session open() const;
  Session openMinimal() const;

  /// Copies a buffer that `function` has handed out, and gives it back.
  Bytes take(EngineSession session, DataBlob_t& blob, const std::string& function) const;
  /// After a failed call nothing is handed out.
  static void untouched(const DataBlob_t& blob, const std::string& function);

  /// The caller's own certificate in DER.
  const Bytes& ownCertificate();

  Bytes sign(EngineSession session, uint32_t flags, const Bytes& data, const Bytes* message = nullptr) const;
  Verified verify(EngineSession session, const Bytes& message, const Bytes* data = nullptr, uint32_t flags = 1,
                  int32_t signToDelete = 0) const;
  /// Good signatures over `data`.
  void verifiesAs(EngineSession session, const Bytes& message, const Bytes& data) const;
  Bytes encrypt(EngineSession session, const Bytes& data);
  Bytes decrypt(EngineSession session, const Bytes& message) const;

  /// A path in the folder for files.
  std::string path(const std::string& name) const { return options.scratch + "\\" + name; }
  std::string write(const std::string& name, const Bytes& bytes) const;
  static Bytes read(const std::string& path);

 private:
  Bytes ownCertificate_;
};

/// Records that name the caller as the receiver.
class Receiver {
 public:
  explicit Receiver(const Bytes& certificate)
      : encoded_(certificate), record_(recordOf(*encoded_.blob())), param_({1, nullptr, 1, record_.get()}) {}
  const EncryptParamRecord* param() { return param_.get(); }

 private:
  static CertificateRecord recordOf(const DataBlob_t& encoded);

  InBytes encoded_;
  In<CertificateRecord> record_;
  In<EncryptParamRecord> param_;
};

/// Bytes that look like data, the same at each call.
Bytes Payload(size_t size);
constexpr uint32_t kPkcs7 = 1;
constexpr uint32_t kDetached = 2;
constexpr uint32_t kSendCertificate = 8;

}  // namespace check
