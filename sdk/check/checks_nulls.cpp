#include <cstring>

#include "checks.h"
#include "engine/codes.h"

namespace check {
namespace {

// Every function as one that takes pointers: under the platform's calling convention the caller clears the arguments
// away, and a function reads as many as it has. The result of QUIVO_AllocMem is a pointer.
using AnyFunction = void* (*)(void*, void*, void*, void*, void*, void*, void*);

bool StartsWith(const char* name, const char* start) { return std::strncmp(name, start, std::strlen(start)) == 0; }

/// The functions that open a session or take none.
bool TakesSession(const char* name) {
  return !StartsWith(name, "QUIVO_Init") && std::strcmp(name, "QUIVO_GetErrorText") != 0 &&
         std::strcmp(name, "QUIVO_EncodeMem") != 0;
}

void CheckNullSession(Kit& kit, const char* name, void* function) {
  if (!TakesSession(name)) return;
  // What has nothing to give back may say so or not.
  const bool mayAnswer = StartsWith(name, "QUIVO_Free");
  const bool isAllocation = std::strcmp(name, "QUIVO_AllocMem") == 0;
  kit.check(std::string(name) + " without a session", mayAnswer ? "no fault" : "a failure", [&] {
    // Zeros are a record, a blob and a text.
    Guarded zeros(4096);
    void* const z = zeros.data();
    void* const result = reinterpret_cast<AnyFunction>(function)(nullptr, z, z, z, z, z, z);
    const auto code = static_cast<int32_t>(reinterpret_cast<intptr_t>(result));
    if (isAllocation) {
      Expect(result == nullptr, "a buffer of no session");
    } else if (!mayAnswer) {
      Fails(name, code);
    }
  });
}

/// A call with bytes that are absent: anything but a fault, and a failure where there has to be something to read.
template <class Call>
void CheckAbsent(Kit& kit, const std::string& what, bool hasToFail, Call call) {
  kit.check(what, hasToFail ? "a failure" : "no fault", [&] {
    const Session session = kit.open();
    InBytes absent;
    Out<DataBlob_t> out;
    const int32_t code = call(static_cast<EngineSession>(session), absent.blob(), out.get());
    if (hasToFail) Fails(what, code);
    if (code == engine::kErrorNotSupported) throw NotSupported{};
    if (code == 0) kit.take(session, *out, what);
  });
}

void CheckAbsentBytes(Kit& kit) {
  const Engine& e = kit.engine;
  using S = EngineSession;
  using Source = const DataBlob_t*;
  using Target = DataBlob_t*;
  CheckAbsent(kit, "HashMem of absent bytes", false,
              [&](S s, Source in, Target out) { return e.QUIVO_HashMem(s, in, out); });
  CheckAbsent(kit, "EncryptMem of absent bytes", false, [&](S s, Source in, Target out) {
    Receiver receiver(kit.ownCertificate());
    return e.QUIVO_EncryptMem(s, receiver.param(), in, out);
  });
  CheckAbsent(kit, "SignMem without data and message", false, [&](S s, Source in, Target out) {
    In<SignParamRecord> param({kPkcs7, nullptr});
    return e.QUIVO_SignMem(s, param.get(), in, in, out);
  });
  CheckAbsent(kit, "VerifyMem without a message", true, [&](S s, Source in, Target out) {
    In<VerifyParamRecord> param({});
    Out<VerifyResultRecord> result;
    return e.QUIVO_VerifyMem(s, param.get(), in, in, out, result.get());
  });
  CheckAbsent(kit, "DecryptMem without a message", true, [&](S s, Source in, Target out) {
    In<DecryptParamRecord> param({kPkcs7, nullptr, 0});
    Out<DecryptResultRecord> result;
    return e.QUIVO_DecryptMem(s, param.get(), in, out, result.get());
  });
  CheckAbsent(kit, "ParseCert of absent bytes", true, [&](S s, Source in, Target) {
    Out<CertificateRecord> result;
    return e.QUIVO_ParseCert(s, in, 0x7FFFF, result.get());
  });
  CheckAbsent(kit, "VerifyCert of absent bytes", true, [&](S s, Source in, Target) {
    In<VerifyCertParamRecord> param({5, nullptr, 4});
    Out<CertificateRecord> result;
    return e.QUIVO_VerifyCert(s, param.get(), in, result.get());
  });
  const auto stores = [&](const char* name, auto function) {
    CheckAbsent(kit, std::string(name) + " of absent bytes", true, [&](S s, Source in, Target) {
      In<SignParamRecord> param({0, nullptr});
      return function(s, param.get(), in);
    });
  };
  stores("AddCertificate", e.QUIVO_AddCertificate);
  stores("AddCRL", e.QUIVO_AddCRL);
  stores("ImportMem", e.QUIVO_ImportMem);
}

template <class Record>
void CheckEmptyRecord(Kit& kit, const char* name, int32_t (*free)(EngineSession, Record*)) {
  kit.check(std::string(name) + " of a record of zeros", "0", [&] {
    const Session session = kit.openMinimal();
    Out<Record> record;
    Succeeds(name, free(session, record.get()));
  });
}

void CheckNullPaths(Kit& kit) {
  kit.check("SignFile without data and message", "a failure", [&] {
    const Session session = kit.open();
    In<SignParamRecord> param({kPkcs7, nullptr});
    InText out(kit.path("nothing.p7s"));
    Fails("SignFile", kit.engine.QUIVO_SignFile(session, param.get(), nullptr, nullptr, out.get()));
  });
  kit.check("StrSignFile without a message to add to", "0", [&] {
    const Session session = kit.open();
    In<SignParamRecord> param({kPkcs7, nullptr});
    InText data(kit.write("null.bin", Payload(100)));
    InText out(kit.path("null.p7s"));
    Succeeds("StrSignFile", kit.engine.QUIVO_StrSignFile(session, param.get(), data.get(), nullptr, out.get()));
  });
  kit.check("Initialize with an empty name", "no fault; a handle exactly after success", [&] {
    InText profile("");
    Out<EngineSession> opened;
    const int32_t code = kit.engine.QUIVO_Initialize(profile.get(), 0, opened.get());
    const Session session(kit.engine, *opened);
    if (code == engine::kErrorNotSupported) throw NotSupported{};
    Expect((code == 0) == (*opened != nullptr),
           "Initialize: " + Hex(code) + (*opened ? " and a handle" : ", no handle"));
  });
}

}  // namespace

void CheckNulls(Kit& kit) {
#define TAVL_CHECK(name) CheckNullSession(kit, #name, reinterpret_cast<void*>(kit.engine.name));
  TAVL_ENGINE_FUNCTIONS(TAVL_CHECK)
#undef TAVL_CHECK
  CheckAbsentBytes(kit);
  CheckNullPaths(kit);
  CheckEmptyRecord(kit, "FreeVerifyResult", kit.engine.QUIVO_FreeVerifyResult);
  CheckEmptyRecord(kit, "FreeDecryptResult", kit.engine.QUIVO_FreeDecryptResult);
  CheckEmptyRecord(kit, "FreeFindResult", kit.engine.QUIVO_FreeFindResult);
  CheckEmptyRecord(kit, "FreeSignedInfoResult", kit.engine.QUIVO_FreeSignedInfoResult);
  CheckEmptyRecord(kit, "FreeCert", kit.engine.QUIVO_FreeCert);
}

}  // namespace check
