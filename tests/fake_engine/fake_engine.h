// The control object of the fake engine: what it was asked, what it shall answer, what it handed out.
// A test reaches it through TavlFakeEngine(), the one function that the fake exports in addition to the engine's own.
#pragma once

#include <algorithm>
#include <array>
#include <deque>
#include <functional>
#include <map>
#include <optional>
#include <string>
#include <vector>

#include "fake_engine/snapshot.h"

namespace fake {

using Bytes = std::vector<uint8_t>;
/// A string of a record; without a value the record holds a null pointer.
using Text = std::optional<std::string>;

struct Policy {
  Text oid, organization;
  int32_t noticeNumber = 0;
  Text text;
};

struct Extension {
  Text oid;
  int32_t type = 0;
  int32_t critical = 0;
  Bytes data;
};

using AltName = std::array<Text, 15>;

/// What a certificate record is filled from.
struct Certificate {
  uint32_t fields = 0;
  Text issuer, serialNumber, subject, algorithm, issuerUID, subjectUID, keyId;
  uint32_t notBefore = 0, notAfter = 0, keyUsage = 0, notBeforePrivate = 0, notAfterPrivate = 0;
  AltName issuerAltName, subjectAltName;
  std::vector<Policy> policies;
  std::vector<Text> extKeyUsage;
  std::vector<Extension> extensions;
  Bytes certEncoded, certHash;
};

struct Signature {
  int32_t status = 0;
  uint32_t time = 0;
  std::optional<Certificate> cert;
};

/// What a function answers. Outputs are handed out whatever `result` is, unless nothing is to be written; members
/// that a function has no use for are ignored.
struct Reply {
  int32_t result = 0;
  bool writesNothing = false;              ///< leaves every output as the module passed it
  Bytes output;                            ///< of the output blob; empty hands out no buffer
  std::string text;                        ///< of QUIVO_GetErrorText, QUIVO_Ctrl and QUIVO_EncodeMem
  std::vector<Signature> signatures;       ///< of a verification
  std::vector<Certificate> certificates;   ///< of a search
  std::optional<int32_t> findCount;        ///< of a search, where it differs from the number of certificates
  std::optional<int32_t> entryCount;       ///< of a verification, where it differs from the number of signatures
  std::optional<int32_t> usageCount;       ///< of the extended key usages of what a search finds, as above
  std::optional<uint32_t> outputLength;    ///< of the output blob, where it differs from that of the output
  std::optional<Certificate> certificate;  ///< of a parse, a decryption or a certificate verification
  std::optional<Snapshot> record;          ///< of a parse: a certificate's record with everything behind it
  int32_t status = 0;                      ///< of a decryption
  uint32_t signatureCount = 0;             ///< of QUIVO_SignedInfoFile
  int32_t left = 0;                        ///< of a decryption stream
  std::optional<void*> handle;             ///< stored as session or stream; a fresh one unless given
  std::function<void()> during;            ///< runs in the middle of the call
};

/// One argument: its value (a number, a handle or an address) and what it points to.
struct Argument {
  uint64_t value = 0;
  Snapshot target;
};

struct Call {
  std::string function;
  std::vector<Argument> arguments;

  const Argument& argument(size_t index) const { return arguments.at(index); }
  uint64_t value(size_t index) const { return argument(index).value; }
  int32_t number(size_t index) const { return static_cast<int32_t>(argument(index).value); }
  bool null(size_t index) const { return argument(index).value == 0; }
  const Snapshot& record(size_t index) const {
    if (null(index)) throw std::out_of_range("a null record");
    return argument(index).target;
  }
  /// A string argument; no value for a null pointer.
  Text text(size_t index) const { return null(index) ? Text{} : Text{argument(index).target.asText()}; }
  uint32_t blobLength(size_t index) const { return record(index).u32(0); }
  uintptr_t blobData(size_t index) const { return record(index).pointer(8); }
  Bytes blobBytes(size_t index) const { return record(index).blob(0); }
};

class FakeEngine {
 public:
  virtual ~FakeEngine() = default;

  /// The standing answer of a function, to be changed in place. An unknown name throws.
  Reply& on(const std::string& function) { return standingReplies[known(function)]; }
  /// An answer for one call; several are used in order, then the standing one.
  Reply& once(const std::string& function) { return queuedReplies[known(function)].emplace_back(); }

  /// Makes up the answers of functions that a test gave none.
  std::function<Reply(const Call&)> improvise;

  const std::vector<Call>& calls() const { return madeCalls; }
  std::vector<std::string> names() const {
    std::vector<std::string> all;
    for (const Call& call : madeCalls) all.push_back(call.function);
    return all;
  }
  size_t count(const std::string& function) const {
    size_t found = 0;
    for (const Call& call : madeCalls) found += call.function == known(function) ? 1 : 0;
    return found;
  }
  /// The one call of a function; throws unless there was exactly one.
  const Call& only(const std::string& function) const {
    if (count(function) != 1) throw std::logic_error(function + ": " + std::to_string(count(function)) + " calls");
    return *std::find_if(madeCalls.begin(), madeCalls.end(), [&](const Call& c) { return c.function == function; });
  }
  const Call& last() const { return madeCalls.at(madeCalls.size() - 1); }
  void forgetCalls() { madeCalls.clear(); }

  /// Buffers and result blocks that have not been given back, by the function that handed them out.
  virtual std::vector<std::string> outstanding() const = 0;
  virtual size_t handedOut() const = 0;
  virtual size_t givenBack() const = 0;
  /// What the module did that no engine allows: a foreign buffer, a closed session, an unreadable record.
  virtual std::vector<std::string> violations() const = 0;
  virtual size_t openSessions() const = 0;
  /// Of the record of a certificate, for lists of them.
  virtual size_t certificateSize() const = 0;
  /// For a test in which the module leaves engine memory behind on purpose.
  virtual void releaseOutstanding() = 0;
  /// Back to the state of a fresh engine: no calls, no answers, nothing handed out.
  virtual void reset() = 0;

 protected:
  /// `function` itself, if the engine exports it.
  virtual const std::string& known(const std::string& function) const = 0;

  std::vector<Call> madeCalls;
  std::map<std::string, Reply> standingReplies;
  std::map<std::string, std::deque<Reply>> queuedReplies;
};

}  // namespace fake

#ifdef tavl1_fake_EXPORTS
#define TAVL_FAKE_EXPORT __declspec(dllexport)
#else
#define TAVL_FAKE_EXPORT
#endif
extern "C" TAVL_FAKE_EXPORT fake::FakeEngine* TavlFakeEngine();
