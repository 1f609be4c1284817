#include "checks.h"
#include "engine/flags.h"
#include "read_through.h"
#include "streams.h"

namespace check {
namespace {

Bytes Garbage() {
  Bytes bytes = Payload(1000);
  bytes[0] = 0x30;
  return bytes;
}

/// The bytes with another one in the middle.
Bytes Changed(Bytes bytes, size_t place) {
  bytes[place] ^= 1;
  return bytes;
}

/// Where the content stands in an attached message.
size_t PlaceOf(const Bytes& content, const Bytes& message) {
  const auto found = std::search(message.begin(), message.end(), content.begin(), content.end());
  Expect(found != message.end(), "the message does not contain its content in one piece");
  return static_cast<size_t>(found - message.begin()) + content.size() / 2;
}

/// A refused signature: a failure, no content, and no entry that is good.
void Refused(const Verified& verified) {
  Fails("VerifyMem", verified.code);
  for (const int32_t status : verified.statuses) Fails("the status of the signature", status);
}

void CheckSignatures(Kit& kit) {
  kit.check("VerifyMem refuses changed content", "a failure, no content", [&] {
    const Session session = kit.open();
    const Bytes data = Payload(200);
    const Bytes message = kit.sign(session, kSendCertificate, data);
    Refused(kit.verify(session, Changed(message, PlaceOf(data, message))));
  });
  kit.check("VerifyMem refuses other data", "a failure", [&] {
    const Session session = kit.open();
    const Bytes data = Payload(200);
    const Bytes other = Changed(data, 100);
    Refused(kit.verify(session, kit.sign(session, kDetached | kSendCertificate, data), &other));
  });
  const auto refusesMessage = [&](const char* what, auto make) {
    kit.check(std::string("VerifyMem refuses ") + what, "a failure, no content", [&kit, make] {
      const Session session = kit.open();
      Refused(kit.verify(session, make(session)));
    });
  };
  refusesMessage("bytes that are no message", [](const Session&) { return Garbage(); });
  refusesMessage("a message that is cut", [&](const Session& session) {
    Bytes message = kit.sign(session, kSendCertificate, Payload(200));
    message.resize(message.size() / 2);
    return message;
  });
  kit.check("SignMem refuses a certificate that is missing", "a failure, no message", [&] {
    const Session session = kit.open();
    Guarded hash(20);
    CertIdRecord nobody{};
    nobody.type = engine::kIdCertHash;
    nobody.certHash = {20, hash.data()};
    In<CertIdRecord> id(nobody);
    In<SignParamRecord> param({kPkcs7, id.get()});
    InBytes data(Payload(10)), absent;
    Out<DataBlob_t> out;
    Fails("SignMem", kit.engine.QUIVO_SignMem(session, param.get(), data.blob(), absent.blob(), out.get()));
    Kit::untouched(*out, "SignMem");
  });
  kit.check("SignMem refuses a session without keys", "a failure, no message", [&] {
    const Session session = kit.openMinimal();
    In<SignParamRecord> param({kPkcs7, nullptr});
    InBytes data(Payload(10)), absent;
    Out<DataBlob_t> out;
    Fails("SignMem", kit.engine.QUIVO_SignMem(session, param.get(), data.blob(), absent.blob(), out.get()));
    Kit::untouched(*out, "SignMem");
  });
}

/// Neither bytes nor a certificate: after a failure nobody gives them back.
void DoesNotDecrypt(Kit& kit, EngineSession session, const Bytes& message) {
  In<DecryptParamRecord> param({kPkcs7, nullptr, engine::kFieldAll});
  InBytes bytes(message);
  Out<DataBlob_t> out;
  Out<DecryptResultRecord> result;
  Fails("DecryptMem", kit.engine.QUIVO_DecryptMem(session, param.get(), bytes.blob(), out.get(), result.get()));
  Kit::untouched(*out, "DecryptMem");
  ReadThrough(*result);
  Expect(result->cert.subject == nullptr && result->cert.certEncoded.data == nullptr,
         "DecryptMem has failed and handed out a certificate");
}

void CheckEnvelopes(Kit& kit) {
  kit.check("DecryptMem refuses bytes that are no message", "a failure, nothing handed out",
            [&] { DoesNotDecrypt(kit, kit.open(), Garbage()); });
  kit.check("DecryptMem refuses a message that is cut", "a failure, nothing handed out", [&] {
    const Session session = kit.open();
    Bytes message = kit.encrypt(session, Payload(1000));
    message.resize(message.size() - 100);
    DoesNotDecrypt(kit, session, message);
  });
  kit.check("DecryptMem refuses who is no receiver", "a failure, nothing handed out",
            [&] { DoesNotDecrypt(kit, kit.openMinimal(), kit.encrypt(kit.open(), Payload(1000))); });
  kit.check("EncryptMem refuses a receiver that cannot be read", "a failure, no message", [&] {
    const Session session = kit.open();
    Receiver receiver(Garbage());
    InBytes data(Payload(10));
    Out<DataBlob_t> out;
    Fails("EncryptMem", kit.engine.QUIVO_EncryptMem(session, receiver.param(), data.blob(), out.get()));
    Kit::untouched(*out, "EncryptMem");
  });
}

void CheckCertificates(Kit& kit) {
  kit.check("ParseCert and VerifyCert refuse bytes that are no certificate", "a failure, nothing handed out", [&] {
    const Session session = kit.open();
    InBytes bytes(Garbage());
    Out<CertificateRecord> record;
    Fails("ParseCert", kit.engine.QUIVO_ParseCert(session, bytes.blob(), engine::kFieldAll, record.get()));
    Expect(record->subject == nullptr && record->certEncoded.data == nullptr, "ParseCert has handed out fields");
    In<VerifyCertParamRecord> param({5, nullptr, engine::kFieldAll});
    Fails("VerifyCert", kit.engine.QUIVO_VerifyCert(session, param.get(), bytes.blob(), record.get()));
    Succeeds("FreeCert", kit.engine.QUIVO_FreeCert(session, record.get()));
  });
  kit.check("VerifyCert refuses a certificate that does not verify", "a failure", [&] {
    Needs(!kit.options.refused.empty(), "--refused");
    const Session session = kit.open();
    InBytes encoded(kit.read(kit.options.refused));
    In<VerifyCertParamRecord> param({5, nullptr, engine::kFieldSubject});
    Out<CertificateRecord> record;
    Fails("VerifyCert", kit.engine.QUIVO_VerifyCert(session, param.get(), encoded.blob(), record.get()));
    Succeeds("FreeCert", kit.engine.QUIVO_FreeCert(session, record.get()));
  });
}

void CheckOthers(Kit& kit) {
  const Engine& e = kit.engine;
  kit.check("an unknown hash algorithm is refused", "a failure, no stream, no hash", [&] {
    const Session session = kit.openMinimal();
    InText algorithm("no such algorithm");
    InText file(kit.write("data.bin", Payload(10)));
    Stream stream;
    Out<DataBlob_t> hash;
    Fails("StrHashInitMem", e.QUIVO_StrHashInitMem(session, algorithm.get(), stream.get()));
    stream.isEnded("StrHashInitMem has failed and");
    Fails("StrHashFile", e.QUIVO_StrHashFile(session, algorithm.get(), file.get(), hash.get()));
    Kit::untouched(*hash, "StrHashFile");
  });
  kit.check("a negative number of random bytes is refused", "a failure, no bytes", [&] {
    const Session session = kit.openMinimal();
    Out<DataBlob_t> random;
    Fails("GenRandom", e.QUIVO_GenRandom(session, -1, random.get()));
    Kit::untouched(*random, "GenRandom");
  });
  kit.check("a file that is missing is refused", "a failure of every function with a file", [&] {
    const Session session = kit.open();
    InText missing(kit.path("missing.bin")), out(kit.path("out.bin"));
    Out<DataBlob_t> hash;
    Fails("HashFile", e.QUIVO_HashFile(session, missing.get(), hash.get()));
    Kit::untouched(*hash, "HashFile");
    In<SignParamRecord> sign({kPkcs7, nullptr});
    Fails("SignFile", e.QUIVO_SignFile(session, sign.get(), missing.get(), nullptr, out.get()));
    Fails("StrSignFile", e.QUIVO_StrSignFile(session, sign.get(), missing.get(), nullptr, out.get()));
    Fails("ImportFile", e.QUIVO_ImportFile(session, sign.get(), missing.get()));
    In<VerifyParamRecord> verify(VerifyParamRecord{});
    Out<VerifyResultRecord> verified;
    Fails("VerifyFile", e.QUIVO_VerifyFile(session, verify.get(), nullptr, missing.get(), nullptr, verified.get()));
    Fails("StrVerifyFile",
          e.QUIVO_StrVerifyFile(session, verify.get(), nullptr, missing.get(), nullptr, verified.get()));
    Receiver receiver(kit.ownCertificate());
    Fails("EncryptFile", e.QUIVO_EncryptFile(session, receiver.param(), missing.get(), out.get()));
    Fails("StrEncryptFile", e.QUIVO_StrEncryptFile(session, receiver.param(), missing.get(), out.get()));
    Fails("SignAndEncryptFile",
          e.QUIVO_SignAndEncryptFile(session, sign.get(), receiver.param(), missing.get(), out.get()));
    In<DecryptParamRecord> decrypt({kPkcs7, nullptr, 0});
    Out<DecryptResultRecord> decrypted;
    Fails("DecryptFile", e.QUIVO_DecryptFile(session, decrypt.get(), missing.get(), out.get(), decrypted.get()));
    Succeeds("FreeDecryptResult", e.QUIVO_FreeDecryptResult(session, decrypted.get()));
    Fails("StrDecryptFile", e.QUIVO_StrDecryptFile(session, decrypt.get(), missing.get(), out.get(), decrypted.get()));
    Succeeds("FreeDecryptResult", e.QUIVO_FreeDecryptResult(session, decrypted.get()));
    Fails("DecryptAndVerifyFile", e.QUIVO_DecryptAndVerifyFile(session, decrypt.get(), verify.get(), missing.get(),
                                                               out.get(), decrypted.get(), verified.get()));
    Succeeds("FreeDecryptResult", e.QUIVO_FreeDecryptResult(session, decrypted.get()));
    Succeeds("FreeVerifyResult", e.QUIVO_FreeVerifyResult(session, verified.get()));
  });
}

}  // namespace

void CheckCodes(Kit& kit) {
  CheckSignatures(kit);
  CheckEnvelopes(kit);
  CheckCertificates(kit);
  CheckOthers(kit);
}

}  // namespace check
