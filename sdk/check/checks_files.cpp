#include <cstdio>

#include "checks.h"
#include "engine/flags.h"

namespace check {
namespace {

/// The functions that come in two forms, for files and for files of any size.
struct Form {
  std::string prefix;
  decltype(&QUIVO_SignFile) sign;
  decltype(&QUIVO_VerifyFile) verify;
  decltype(&QUIVO_EncryptFile) encrypt;
  decltype(&QUIVO_DecryptFile) decrypt;
};

void Remove(const std::string& path) { std::remove(path.c_str()); }

void CheckForm(Kit& kit, const Form& form) {
  const Bytes data = Payload(100003);
  const auto check = [&](const char* what, const char* expected, auto work) {
    kit.check(form.prefix + what, expected, [&] { work(kit.open()); });
  };
  const auto signInto = [&](EngineSession session, uint32_t flags, const std::string& out) {
    In<SignParamRecord> param({kPkcs7 | kSendCertificate | flags, nullptr});
    InText in(kit.write("data.bin", data));
    InText target(out);
    Remove(out);
    Succeeds(form.prefix + "SignFile", form.sign(session, param.get(), in.get(), nullptr, target.get()));
  };
  const auto verifyInto = [&](EngineSession session, const std::string& message, const char* dataPath, char* out) {
    VerifyParamRecord wanted{};
    wanted.flag = kPkcs7;
    wanted.info = engine::kFieldSubject;
    In<VerifyParamRecord> param(wanted);
    InText in(message);
    Out<VerifyResultRecord> result;
    Succeeds(form.prefix + "VerifyFile", form.verify(session, param.get(), dataPath, in.get(), out, result.get()));
    Expect(result->count == 1 && result->entries[0].status == 0, "not one good signature");
    Succeeds("FreeVerifyResult", kit.engine.QUIVO_FreeVerifyResult(session, result.get()));
  };
  check("SignFile, VerifyFile: attached", "the content", [&](const Session& session) {
    const std::string message = kit.path("attached.p7s");
    InText out(kit.path("content.bin"));
    signInto(session, 0, message);
    kit.verifiesAs(session, kit.read(message), data);
    Remove(out.get());
    verifyInto(session, message, nullptr, out.get());
    Expect(kit.read(out.get()) == data, "other content");
  });
  check("SignFile, VerifyFile: detached, no file for the content", "one good signature", [&](const Session& session) {
    const std::string message = kit.path("detached.p7s");
    signInto(session, kDetached, message);
    InText in(kit.path("data.bin"));
    verifyInto(session, message, in.get(), nullptr);
  });
  check("EncryptFile, DecryptFile", "the data", [&](const Session& session) {
    Receiver receiver(kit.ownCertificate());
    InText in(kit.write("data.bin", data));
    InText message(kit.path("message.p7e"));
    InText out(kit.path("decrypted.bin"));
    Remove(out.get());
    Succeeds(form.prefix + "EncryptFile", form.encrypt(session, receiver.param(), in.get(), message.get()));
    Expect(kit.decrypt(session, kit.read(message.get())) == data, "DecryptMem: other data");
    In<DecryptParamRecord> param({kPkcs7, nullptr, engine::kFieldSubject});
    Out<DecryptResultRecord> result;
    Succeeds(form.prefix + "DecryptFile", form.decrypt(session, param.get(), message.get(), out.get(), result.get()));
    Succeeds("FreeDecryptResult", kit.engine.QUIVO_FreeDecryptResult(session, result.get()));
    Expect(kit.read(out.get()) == data, "other data");
  });
}

void CheckBothAtOnce(Kit& kit) {
  kit.check("SignAndEncryptFile, DecryptAndVerifyFile", "the data and one good signature", [&] {
    const Session session = kit.open();
    const Bytes data = Payload(100003);
    Receiver receiver(kit.ownCertificate());
    In<SignParamRecord> sign({kPkcs7, nullptr});
    InText in(kit.write("data.bin", data));
    InText message(kit.path("message.p7a"));
    InText out(kit.path("both.bin"));
    Remove(out.get());
    Succeeds("SignAndEncryptFile",
             kit.engine.QUIVO_SignAndEncryptFile(session, sign.get(), receiver.param(), in.get(), message.get()));
    In<DecryptParamRecord> decrypt({kPkcs7, nullptr, 0});
    VerifyParamRecord wanted{};
    wanted.flag = engine::kVerifyPkcs7 | engine::kVerifyDelSign;
    wanted.nSignToDelete = engine::kDeleteAllSigns;
    In<VerifyParamRecord> verify(wanted);
    Out<DecryptResultRecord> decrypted;
    Out<VerifyResultRecord> verified;
    Succeeds("DecryptAndVerifyFile",
             kit.engine.QUIVO_DecryptAndVerifyFile(session, decrypt.get(), verify.get(), message.get(), out.get(),
                                                   decrypted.get(), verified.get()));
    Expect(verified->count == 1 && verified->entries[0].status == 0, "not one good signature");
    Succeeds("FreeVerifyResult", kit.engine.QUIVO_FreeVerifyResult(session, verified.get()));
    Succeeds("FreeDecryptResult", kit.engine.QUIVO_FreeDecryptResult(session, decrypted.get()));
    Expect(kit.read(out.get()) == data, "other data");
  });
}

Bytes HashOfFile(Kit& kit, EngineSession session, const char* algorithm, const Bytes& data) {
  InText file(kit.write("hashed.bin", data));
  Out<DataBlob_t> hash;
  if (algorithm == nullptr) {
    Succeeds("HashFile", kit.engine.QUIVO_HashFile(session, file.get(), hash.get()));
  } else {
    InText name(algorithm);
    Succeeds("StrHashFile", kit.engine.QUIVO_StrHashFile(session, name.get(), file.get(), hash.get()));
  }
  return kit.take(session, *hash, "StrHashFile");
}

}  // namespace

void CheckFiles(Kit& kit) {
  const Engine& e = kit.engine;
  CheckForm(kit, {"", e.QUIVO_SignFile, e.QUIVO_VerifyFile, e.QUIVO_EncryptFile, e.QUIVO_DecryptFile});
  CheckForm(kit, {"Str", e.QUIVO_StrSignFile, e.QUIVO_StrVerifyFile, e.QUIVO_StrEncryptFile, e.QUIVO_StrDecryptFile});
  CheckBothAtOnce(kit);
  kit.check("HashFile", "the hash of HashMem", [&] {
    const Session session = kit.openMinimal();
    InBytes bytes(Payload(70001));
    Out<DataBlob_t> hash;
    Succeeds("HashMem", e.QUIVO_HashMem(session, bytes.blob(), hash.get()));
    Expect(HashOfFile(kit, session, nullptr, Payload(70001)) == kit.take(session, *hash, "HashMem"), "another hash");
  });
  kit.check("StrHashFile", "the same for the same data only", [&] {
    const Session session = kit.openMinimal();
    const char* const algorithm = kit.options.hash.c_str();
    const Bytes hash = HashOfFile(kit, session, algorithm, Payload(70001));
    Expect(!hash.empty(), "an empty hash");
    Expect(hash == HashOfFile(kit, session, algorithm, Payload(70001)), "two hashes of the same data");
    Expect(hash != HashOfFile(kit, session, algorithm, Payload(70000)), "one hash of two data");
  });
  kit.check("SignedInfoFile counts signatures", "1 of a message, a failure for other files", [&] {
    const Session session = kit.open();
    InText message(kit.write("counted.p7s", kit.sign(session, kSendCertificate, Payload(100))));
    Out<SignedInfoResultRecord> info;
    Succeeds("SignedInfoFile", e.QUIVO_SignedInfoFile(session, message.get(), info.get()));
    Expect(info->signatureCount == 1, std::to_string(info->signatureCount) + " signatures");
    Succeeds("FreeSignedInfoResult", e.QUIVO_FreeSignedInfoResult(session, info.get()));
    InText plain(kit.write("plain.bin", Payload(100)));
    Out<SignedInfoResultRecord> none;
    Fails("SignedInfoFile", e.QUIVO_SignedInfoFile(session, plain.get(), none.get()));
    Succeeds("FreeSignedInfoResult", e.QUIVO_FreeSignedInfoResult(session, none.get()));
  });
}

}  // namespace check
