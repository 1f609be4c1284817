#include "streams.h"

#include "engine/flags.h"

namespace check {
namespace {

void Append(Bytes& bytes, const Bytes& more) { bytes.insert(bytes.end(), more.begin(), more.end()); }

/// The data of a decryption. Bytes that the engine has left come again before the next piece.
class Decryption {
 public:
  Decryption(Kit& kit, EngineSession session) : kit_(kit), session_(session), param_({kPkcs7, nullptr, 4}) {}

  void begin(const Bytes& start) {
    InBytes bytes(start);
    InBytes absent;
    Out<int32_t> left;
    const DataBlob_t* first = start.empty() ? absent.blob() : bytes.blob();
    Succeeds("StrDecryptInitMem",
             kit_.engine.QUIVO_StrDecryptInitMem(session_, param_.get(), first, left.get(), stream_.get()));
    stream_.isOpen("StrDecryptInitMem");
    keep({static_cast<uint32_t>(bytes.size()), bytes.data()}, *left, "StrDecryptInitMem");
  }

  void update(const DataBlob_t& piece) {
    if (left_.empty()) return feed(piece);
    Bytes again = std::move(left_);
    again.insert(again.end(), piece.data, piece.data + piece.len);
    InBytes bytes(again);
    feed(*bytes.blob());
  }

  Bytes end() {
    for (size_t before = left_.size() + 1; !left_.empty() && left_.size() < before;) {
      before = left_.size();
      update({});
    }
    Expect(left_.empty(), "the engine uses no more of the last " + std::to_string(left_.size()) + " bytes");
    Out<DecryptResultRecord> result;
    Succeeds("StrDecryptFinalMem",
             kit_.engine.QUIVO_StrDecryptFinalMem(session_, param_.get(), stream_.get(), result.get()));
    Expect(result->status == 0, "StrDecryptFinalMem: the status is " + Hex(result->status));
    stream_.isEnded("StrDecryptFinalMem");
    Succeeds("FreeDecryptResult", kit_.engine.QUIVO_FreeDecryptResult(session_, result.get()));
    return std::move(data_);
  }

 private:
  void feed(const DataBlob_t& piece) {
    DataBlob_t out{};
    int32_t left = 0;
    Succeeds("StrDecryptUpdateMem",
             kit_.engine.QUIVO_StrDecryptUpdateMem(session_, param_.get(), stream_.get(), &piece, &left, &out));
    keep(piece, left, "StrDecryptUpdateMem");
    Append(data_, kit_.take(session_, out, "StrDecryptUpdateMem"));
  }

  void keep(const DataBlob_t& piece, int32_t left, const std::string& function) {
    Expect(left >= 0 && static_cast<uint32_t>(left) <= piece.len,
           function + " has left " + std::to_string(left) + " of " + std::to_string(piece.len) + " bytes");
    left_.assign(piece.data + piece.len - left, piece.data + piece.len);
  }

  Kit& kit_;
  EngineSession session_;
  In<DecryptParamRecord> param_;
  Stream stream_;
  Bytes data_, left_;
};

}  // namespace

Bytes SignInPieces(Kit& kit, EngineSession session, uint32_t flags, const Bytes& data, size_t size,
                   const Bytes* message) {
  In<SignParamRecord> param({kPkcs7 | flags, nullptr});
  InBytes absent;
  InBytes given(message == nullptr ? Bytes() : *message);
  Stream stream;
  Succeeds("StrSignInitMem",
           kit.engine.QUIVO_StrSignInitMem(session, param.get(), message == nullptr ? absent.blob() : given.blob(),
                                           stream.get()));
  stream.isOpen("StrSignInitMem");
  InBytes bytes(data);
  InPieces(bytes, size, [&](const DataBlob_t& piece) {
    Succeeds("StrSignUpdateMem", kit.engine.QUIVO_StrSignUpdateMem(session, param.get(), stream.get(), &piece));
  });
  Out<DataBlob_t> out;
  Succeeds("StrSignFinalMem", kit.engine.QUIVO_StrSignFinalMem(session, param.get(), stream.get(), out.get()));
  stream.isEnded("StrSignFinalMem");
  return kit.take(session, *out, "StrSignFinalMem");
}

Verified VerifyInPieces(Kit& kit, EngineSession session, const Bytes& start, const Bytes& rest, size_t size) {
  VerifyParamRecord wanted{};
  wanted.flag = kPkcs7;
  wanted.info = engine::kFieldSubject;
  In<VerifyParamRecord> param(wanted);
  InBytes absent;
  InBytes given(start);
  Stream stream;
  Succeeds("StrVerifyInitMem", kit.engine.QUIVO_StrVerifyInitMem(
                                   session, param.get(), start.empty() ? absent.blob() : given.blob(), stream.get()));
  stream.isOpen("StrVerifyInitMem");
  InBytes bytes(rest);
  InPieces(bytes, size, [&](const DataBlob_t& piece) {
    Succeeds("StrVerifyUpdateMem", kit.engine.QUIVO_StrVerifyUpdateMem(session, param.get(), stream.get(), &piece));
  });
  Out<DataBlob_t> out;
  Out<VerifyResultRecord> result;
  Verified verified{};
  verified.code = kit.engine.QUIVO_StrVerifyFinalMem(session, param.get(), stream.get(), out.get(), result.get());
  for (int32_t i = 0; i < result->count; ++i) verified.statuses.push_back(result->entries[i].status);
  Succeeds("FreeVerifyResult", kit.engine.QUIVO_FreeVerifyResult(session, result.get()));
  verified.isGood("StrVerifyFinalMem");
  stream.isEnded("StrVerifyFinalMem");
  verified.out = kit.take(session, *out, "StrVerifyFinalMem");
  return verified;
}

Bytes EncryptInPieces(Kit& kit, EngineSession session, const Bytes& data, size_t size) {
  Receiver receiver(kit.ownCertificate());
  Stream stream;
  Succeeds("StrEncryptInitMem", kit.engine.QUIVO_StrEncryptInitMem(session, receiver.param(), stream.get()));
  stream.isOpen("StrEncryptInitMem");
  Bytes message;
  InBytes bytes(data);
  InPieces(bytes, size, [&](const DataBlob_t& piece) {
    DataBlob_t out{};
    Succeeds("StrEncryptUpdateMem",
             kit.engine.QUIVO_StrEncryptUpdateMem(session, receiver.param(), stream.get(), &piece, &out));
    Append(message, kit.take(session, out, "StrEncryptUpdateMem"));
  });
  Out<DataBlob_t> out;
  Succeeds("StrEncryptFinalMem",
           kit.engine.QUIVO_StrEncryptFinalMem(session, receiver.param(), stream.get(), out.get()));
  stream.isEnded("StrEncryptFinalMem");
  Append(message, kit.take(session, *out, "StrEncryptFinalMem"));
  return message;
}

Bytes DecryptInPieces(Kit& kit, EngineSession session, const Bytes& message, size_t size, size_t start) {
  Decryption decryption(kit, session);
  const auto middle = message.begin() + static_cast<ptrdiff_t>(start);
  decryption.begin(Bytes(message.begin(), middle));
  InBytes bytes(Bytes(middle, message.end()));
  InPieces(bytes, size, [&](const DataBlob_t& piece) { decryption.update(piece); });
  // What came with Init comes out with an Update.
  if (bytes.size() == 0) decryption.update({});
  return decryption.end();
}

Bytes HashInPieces(Kit& kit, EngineSession session, const Bytes& data, size_t size) {
  InText algorithm(kit.options.hash);
  Stream stream;
  Succeeds("StrHashInitMem", kit.engine.QUIVO_StrHashInitMem(session, algorithm.get(), stream.get()));
  stream.isOpen("StrHashInitMem");
  InBytes bytes(data);
  InPieces(bytes, size, [&](const DataBlob_t& piece) {
    Succeeds("StrHashUpdateMem", kit.engine.QUIVO_StrHashUpdateMem(session, stream.get(), &piece));
  });
  Out<DataBlob_t> hash;
  Succeeds("StrHashFinalMem", kit.engine.QUIVO_StrHashFinalMem(session, stream.get(), hash.get()));
  stream.isEnded("StrHashFinalMem");
  return kit.take(session, *hash, "StrHashFinalMem");
}

}  // namespace check
