#include "checks.h"
#include "engine/flags.h"

namespace check {
namespace {

constexpr size_t kSizes[] = {0, 1, 15, 16, 17, 5003, 100000};

void CheckSignatures(Kit& kit) {
  kit.check("SignMem, VerifyMem: attached", "the content, for 0 to 100,000 bytes", [&] {
    const Session session = kit.open();
    for (size_t size : kSizes)
      kit.verifiesAs(session, kit.sign(session, kSendCertificate, Payload(size)), Payload(size));
  });
  kit.check("SignMem, VerifyMem: detached", "0, with the data given", [&] {
    const Session session = kit.open();
    const Bytes data = Payload(5003);
    const Verified verified = kit.verify(session, kit.sign(session, kDetached | kSendCertificate, data), &data);
    verified.isGood("VerifyMem");
  });
  kit.check("SignMem adds a signature to a message", "good signatures over the content", [&] {
    const Session session = kit.open();
    const Bytes data = Payload(5003);
    const Bytes first = kit.sign(session, kSendCertificate, data);
    const Verified verified = kit.verify(session, kit.sign(session, kSendCertificate, data, &first));
    verified.isGood("VerifyMem");
    Expect(verified.out == data, "other content");
  });
  kit.check("VerifyMem removes all signatures", "the content", [&] {
    const Session session = kit.open();
    const Bytes data = Payload(5003);
    const Verified verified = kit.verify(session, kit.sign(session, kSendCertificate, data), nullptr,
                                         engine::kVerifyPkcs7 | engine::kVerifyDelSign, engine::kDeleteAllSigns);
    Succeeds("VerifyMem", verified.code);
    Expect(verified.out == data, "something else");
  });
}

Bytes HashOf(Kit& kit, EngineSession session, const Bytes& data) {
  InBytes bytes(data);
  Out<DataBlob_t> hash;
  Succeeds("HashMem", kit.engine.QUIVO_HashMem(session, bytes.blob(), hash.get()));
  return kit.take(session, *hash, "HashMem");
}

Bytes RandomBytes(Kit& kit, EngineSession session, int32_t length) {
  Out<DataBlob_t> random;
  Succeeds("GenRandom", kit.engine.QUIVO_GenRandom(session, length, random.get()));
  return kit.take(session, *random, "GenRandom");
}

}  // namespace

void CheckMessages(Kit& kit) {
  CheckSignatures(kit);
  kit.check("EncryptMem, DecryptMem", "the data, for 0 to 100,000 bytes", [&] {
    const Session session = kit.open();
    for (size_t size : kSizes)
      Expect(kit.decrypt(session, kit.encrypt(session, Payload(size))) == Payload(size),
             "other data of " + std::to_string(size) + " bytes");
  });
  kit.check("HashMem", "the same for the same data only", [&] {
    const Session session = kit.openMinimal();
    const Bytes hash = HashOf(kit, session, Payload(5003));
    Expect(!hash.empty(), "an empty hash");
    Expect(hash == HashOf(kit, session, Payload(5003)), "two hashes of the same data");
    Expect(hash != HashOf(kit, session, Payload(5004)), "one hash of two data");
  });
  kit.check("GenRandom", "as many bytes as wanted, never the same", [&] {
    const Session session = kit.openMinimal();
    for (int32_t length : {1, 16, 70000})
      Expect(RandomBytes(kit, session, length).size() == static_cast<size_t>(length), "another length");
    Expect(RandomBytes(kit, session, 32) != RandomBytes(kit, session, 32), "the same bytes twice");
  });
}

}  // namespace check
