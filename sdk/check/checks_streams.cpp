#include "checks.h"
#include "streams.h"
#include "trap.h"

namespace check {
namespace {

constexpr size_t kWhole = 1 << 30;
constexpr size_t kPieces[] = {1, 2, 3, 15, 16, 17, 4095, 4096, 4097, 65536, kWhole};

/// Enough data for pieces of that size: several of them, and a part of one.
Bytes DataFor(size_t size) { return Payload(size < 4095 ? 1003 : 140001); }

/// Adds a check of a stream in every size of pieces. `work` receives the session, the data and the size.
template <class Work>
void CheckSizes(Kit& kit, const std::string& what, const std::string& expected, Work work) {
  kit.report.check(what, expected + ", in pieces of 1 to 65,536 bytes and whole", [&] {
    const Session session = kit.open();
    for (size_t size : kPieces) {
      const std::string name = size == kWhole ? "whole" : "pieces of " + std::to_string(size);
      const std::string fault = FaultIn([&] {
        try {
          work(session, DataFor(size), size);
        } catch (const Failure& failure) {
          throw Failure{name + ": " + failure.seen};
        }
      });
      Expect(fault.empty(), name + ": " + fault);
    }
    return expected;
  });
}

void CheckSigning(Kit& kit) {
  CheckSizes(kit, "StrSign*Mem: attached", "a message that VerifyMem reads",
             [&](auto& session, const Bytes& data, size_t size) {
               kit.verifiesAs(session, SignInPieces(kit, session, kSendCertificate, data, size), data);
             });
  CheckSizes(kit, "StrSign*Mem: detached", "a message that VerifyMem reads",
             [&](auto& session, const Bytes& data, size_t size) {
               const Bytes message = SignInPieces(kit, session, kDetached | kSendCertificate, data, size);
               kit.verify(session, message, &data).isGood("VerifyMem");
             });
  CheckSizes(kit, "StrSign*Mem: a second signature", "good signatures over the data",
             [&](auto& session, const Bytes& data, size_t size) {
               const Bytes first = kit.sign(session, kDetached | kSendCertificate, data);
               const Bytes both = SignInPieces(kit, session, kDetached | kSendCertificate, data, size, &first);
               const Verified verified = kit.verify(session, both, &data);
               verified.isGood("VerifyMem");
             });
}

void CheckVerification(Kit& kit) {
  CheckSizes(kit, "StrVerify*Mem: attached", "the content", [&](auto& session, const Bytes& data, size_t size) {
    const Bytes message = kit.sign(session, kSendCertificate, data);
    Expect(VerifyInPieces(kit, session, {}, message, size).out == data, "other content");
  });
  CheckSizes(kit, "StrVerify*Mem: detached, the signature with Init", "one good signature",
             [&](auto& session, const Bytes& data, size_t size) {
               VerifyInPieces(kit, session, kit.sign(session, kDetached | kSendCertificate, data), data, size);
             });
  CheckSizes(kit, "StrVerify*Mem: a message made in the same pieces", "the content",
             [&](auto& session, const Bytes& data, size_t size) {
               const Bytes message = SignInPieces(kit, session, kSendCertificate, data, size);
               Expect(VerifyInPieces(kit, session, {}, message, size).out == data, "other content");
             });
}

void CheckEnvelopes(Kit& kit) {
  CheckSizes(kit, "StrEncrypt*Mem", "a message that DecryptMem reads",
             [&](auto& session, const Bytes& data, size_t size) {
               Expect(kit.decrypt(session, EncryptInPieces(kit, session, data, size)) == data, "other data");
             });
  CheckSizes(kit, "StrDecrypt*Mem", "the data", [&](auto& session, const Bytes& data, size_t size) {
    Expect(DecryptInPieces(kit, session, kit.encrypt(session, data), size) == data, "other data");
  });
  CheckSizes(kit, "StrDecrypt*Mem: a message made in the same pieces", "the data",
             [&](auto& session, const Bytes& data, size_t size) {
               Expect(DecryptInPieces(kit, session, EncryptInPieces(kit, session, data, size), size) == data,
                      "other data");
             });
  CheckSizes(
      kit, "StrDecrypt*Mem: a first piece with Init", "the data", [&](auto& session, const Bytes& data, size_t size) {
        const Bytes message = kit.encrypt(session, data);
        Expect(DecryptInPieces(kit, session, message, size, std::min(size, message.size())) == data, "other data");
      });
}

void CheckHashes(Kit& kit) {
  CheckSizes(kit, "StrHash*Mem", "the hash of StrHashFile", [&](auto& session, const Bytes& data, size_t size) {
    InText algorithm(kit.options.hash);
    InText file(kit.write("stream.bin", data));
    Out<DataBlob_t> hash;
    Succeeds("StrHashFile", kit.engine.QUIVO_StrHashFile(session, algorithm.get(), file.get(), hash.get()));
    const Bytes expected = kit.take(session, *hash, "StrHashFile");
    Expect(HashInPieces(kit, session, data, size) == expected, "another hash");
  });
}

/// Streams beside each other, pieces without bytes, calls out of order.
void CheckOrder(Kit& kit) {
  const Engine& e = kit.engine;
  kit.check("an Update without bytes changes nothing", "the hash of the bytes", [&] {
    const Session session = kit.openMinimal();
    InText algorithm(kit.options.hash);
    InBytes bytes(Payload(100)), absent;
    Stream stream;
    Succeeds("StrHashInitMem", e.QUIVO_StrHashInitMem(session, algorithm.get(), stream.get()));
    Succeeds("StrHashUpdateMem", e.QUIVO_StrHashUpdateMem(session, stream.get(), absent.blob()));
    Succeeds("StrHashUpdateMem", e.QUIVO_StrHashUpdateMem(session, stream.get(), bytes.blob()));
    Succeeds("StrHashUpdateMem", e.QUIVO_StrHashUpdateMem(session, stream.get(), absent.blob()));
    Out<DataBlob_t> hash;
    Succeeds("StrHashFinalMem", e.QUIVO_StrHashFinalMem(session, stream.get(), hash.get()));
    Expect(kit.take(session, *hash, "StrHashFinalMem") == HashInPieces(kit, session, Payload(100), 100),
           "another hash");
  });
  kit.check("two streams of a session are independent", "each its hash", [&] {
    const Session session = kit.openMinimal();
    InText algorithm(kit.options.hash);
    InBytes one(Payload(100)), other(Payload(99));
    Stream first, second;
    Out<DataBlob_t> hash;
    Succeeds("StrHashInitMem", e.QUIVO_StrHashInitMem(session, algorithm.get(), first.get()));
    Succeeds("StrHashInitMem", e.QUIVO_StrHashInitMem(session, algorithm.get(), second.get()));
    Succeeds("StrHashUpdateMem", e.QUIVO_StrHashUpdateMem(session, first.get(), one.blob()));
    Succeeds("StrHashUpdateMem", e.QUIVO_StrHashUpdateMem(session, second.get(), other.blob()));
    Succeeds("StrHashFinalMem", e.QUIVO_StrHashFinalMem(session, second.get(), hash.get()));
    Expect(kit.take(session, *hash, "StrHashFinalMem") == HashInPieces(kit, session, Payload(99), 99), "another hash");
    Succeeds("StrHashFinalMem", e.QUIVO_StrHashFinalMem(session, first.get(), hash.get()));
    Expect(kit.take(session, *hash, "StrHashFinalMem") == HashInPieces(kit, session, Payload(100), 100),
           "another hash");
  });
  kit.check("a stream without an Init is refused", "a failure of every Update and Final", [&] {
    const Session session = kit.open();
    InBytes bytes(Payload(10));
    In<SignParamRecord> sign({kPkcs7, nullptr});
    Stream stream;
    Out<DataBlob_t> out;
    Fails("StrHashUpdateMem", e.QUIVO_StrHashUpdateMem(session, stream.get(), bytes.blob()));
    Fails("StrHashFinalMem", e.QUIVO_StrHashFinalMem(session, stream.get(), out.get()));
    Kit::untouched(*out, "StrHashFinalMem");
    Fails("StrSignUpdateMem", e.QUIVO_StrSignUpdateMem(session, sign.get(), stream.get(), bytes.blob()));
    Fails("StrSignFinalMem", e.QUIVO_StrSignFinalMem(session, sign.get(), stream.get(), out.get()));
    Kit::untouched(*out, "StrSignFinalMem");
    In<VerifyParamRecord> verify(VerifyParamRecord{});
    Out<VerifyResultRecord> result;
    Fails("StrVerifyUpdateMem", e.QUIVO_StrVerifyUpdateMem(session, verify.get(), stream.get(), bytes.blob()));
    Fails("StrVerifyFinalMem", e.QUIVO_StrVerifyFinalMem(session, verify.get(), stream.get(), out.get(), result.get()));
    Receiver receiver(kit.ownCertificate());
    Fails("StrEncryptUpdateMem",
          e.QUIVO_StrEncryptUpdateMem(session, receiver.param(), stream.get(), bytes.blob(), out.get()));
    Fails("StrEncryptFinalMem", e.QUIVO_StrEncryptFinalMem(session, receiver.param(), stream.get(), out.get()));
    In<DecryptParamRecord> decrypt({kPkcs7, nullptr, 0});
    Out<int32_t> left;
    Out<DecryptResultRecord> decrypted;
    Fails("StrDecryptUpdateMem",
          e.QUIVO_StrDecryptUpdateMem(session, decrypt.get(), stream.get(), bytes.blob(), left.get(), out.get()));
    Fails("StrDecryptFinalMem", e.QUIVO_StrDecryptFinalMem(session, decrypt.get(), stream.get(), decrypted.get()));
  });
  kit.check("a stream of another kind is refused", "a failure", [&] {
    const Session session = kit.open();
    InText algorithm(kit.options.hash);
    InBytes bytes(Payload(10));
    In<SignParamRecord> sign({kPkcs7, nullptr});
    Stream stream;
    Out<DataBlob_t> out;
    Succeeds("StrHashInitMem", e.QUIVO_StrHashInitMem(session, algorithm.get(), stream.get()));
    Fails("StrSignUpdateMem", e.QUIVO_StrSignUpdateMem(session, sign.get(), stream.get(), bytes.blob()));
    Fails("StrSignFinalMem", e.QUIVO_StrSignFinalMem(session, sign.get(), stream.get(), out.get()));
  });
}

}  // namespace

void CheckStreams(Kit& kit) {
  CheckSigning(kit);
  CheckVerification(kit);
  CheckEnvelopes(kit);
  CheckHashes(kit);
  CheckOrder(kit);
}

}  // namespace check
