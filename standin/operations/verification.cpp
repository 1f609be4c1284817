#include "standin/operations/verification.h"

#include "standin/base/codes.h"
#include "standin/base/digest.h"
#include "standin/base/files.h"
#include "standin/base/times.h"

namespace standin {
namespace {

Verification ResultOf(Verifier& verifier, const VerifyParamRecord& param) {
  verifier.finish(param);
  Verification result;
  result.code = verifier.overall();
  result.verdicts = verifier.takeVerdicts();
  return result;
}

/// The content, or the message with the remaining signatures.
DataBlob_t OutputOf(const Verifier& verifier, GrowingBuffer& content, Buffers& buffers) {
  if (!verifier.leavesSignatures()) return content.handOut(buffers);
  return verifier.remaining().handOut(buffers, verifier.hasContent() ? std::optional(content.view()) : std::nullopt);
}

void FeedFile(const char* path, const MessageReader::OnContent& take) { InputFile(path).forEachPiece(take); }

/// The content of a message as it was verified.
struct VerifiedContent {
  uint64_t length = 0;
  Bytes hash;
};

/// Writes the message with the remaining signatures, or the content if none remain. Reads the content once more, and
/// fails with kFileChanged if it is not what was verified.
void WriteAfterwards(const Verifier& verifier, const char* message, const VerifiedContent& content, const char* out) {
  const bool leaves = verifier.leavesSignatures();
  if (!verifier.hasContent()) {
    if (leaves) WriteWholeFile(out, verifier.remaining().withoutContent());
    return;
  }
  const Bytes trailer = leaves ? verifier.remaining().trailer() : Bytes();
  OutputFile file(out);
  if (leaves) file.write(verifier.remaining().header(content.length, trailer.size()));
  Digest copied(DefaultDigest());
  MessageReader reader([&](ByteView piece) {
    copied.update(piece);
    file.write(piece);
  });
  FeedFile(message, [&](ByteView piece) { reader.feed(piece); });
  if (copied.finish() != content.hash) Fail(kFileChanged);
  file.write(trailer);
  file.commit();
}

}  // namespace

void FillResult(VerifyResultRecord& result, const Verification& verification, const VerifyParamRecord& param,
                Buffers& buffers) {
  result = {};
  if (verification.verdicts.empty()) return;
  result.entries = buffers.allocateArray<SignStatusEntry>(verification.verdicts.size());
  for (const SignerVerdict& verdict : verification.verdicts) {
    SignStatusEntry& entry = result.entries[result.count++];
    entry.status = verdict.code;
    entry.time = RecordTime(verdict.signingTime);
    if (verdict.certificate == nullptr) continue;
    entry.cert = buffers.allocateArray<CertificateRecord>(1);
    *entry.cert = PersonRecordOf(verdict.certificate.get(), param.info, buffers);
  }
}

Verification VerifyMemory(Session& session, const VerifyParamRecord& param, std::optional<ByteView> data,
                          ByteView message, DataBlob_t& out) {
  GrowingBuffer content;
  content.reserve(message.size());
  Verifier verifier(session, [&](ByteView piece) { content.append(piece); });
  verifier.feedMessage(message);
  if (!verifier.headKnown()) Fail(kMessageDamaged);
  if (!verifier.hasContent()) {
    if (!data) Fail(kContentMissing);
    verifier.feedData(*data);
  } else if (data) {
    if (!Equal(*data, content.view())) Fail(kContentMismatch);
  }
  Verification result = ResultOf(verifier, param);
  if (result.code == kOk) out = OutputOf(verifier, content, session.buffers);
  return result;
}

Verification VerifyFiles(Session& session, const VerifyParamRecord& param, const char* data, const char* message,
                         const char* out) {
  if (message == nullptr) Fail(kWinInvalidParameter);
  data = Given(data);
  out = Given(out);
  // With one signature removed, the output begins with lengths that are known only at the end.
  const bool removesOne = (param.flag & kVerifyDelSign) != 0 && param.nSignToDelete != kDeleteAllSigns;
  std::optional<OutputFile> content;
  if (out != nullptr && !removesOne) content.emplace(out);
  VerifiedContent verified;
  // Read more than once, or compared with another file.
  std::optional<Digest> digest;
  if (removesOne || data != nullptr) digest.emplace(DefaultDigest());
  Verifier verifier(session, [&](ByteView piece) {
    verified.length += piece.size();
    if (digest) digest->update(piece);
    if (content) content->write(piece);
  });
  FeedFile(message, [&](ByteView piece) { verifier.feedMessage(piece); });
  if (!verifier.headKnown()) Fail(kMessageDamaged);
  if (digest) verified.hash = digest->finish();
  if (!verifier.hasContent()) {
    if (data == nullptr) Fail(kContentMissing);
    FeedFile(data, [&](ByteView piece) { verifier.feedData(piece); });
  } else if (data != nullptr) {
    Digest given(DefaultDigest());
    FeedFile(data, [&](ByteView piece) { given.update(piece); });
    if (given.finish() != verified.hash) Fail(kContentMismatch);
  }
  Verification result = ResultOf(verifier, param);
  if (!IsGood(result.code) || out == nullptr) return result;
  if (removesOne) {
    WriteAfterwards(verifier, message, verified, out);
  } else if (verifier.hasContent()) {
    content->commit();
  }
  return result;
}

uint32_t CountSignatures(const char* message) {
  if (message == nullptr) Fail(kWinInvalidParameter);
  MessageReader reader([](ByteView) {});
  FeedFile(message, [&](ByteView piece) { reader.feed(piece); });
  reader.finish();
  const size_t count = SignedParts::of(reader).signers.size();
  if (count == 0) Fail(kNotSigned);
  return static_cast<uint32_t>(count);
}

VerifyStream::VerifyStream(Session& session, ByteView start)
    : session_(session), verifier_(session, [this](ByteView piece) { content_.append(piece); }) {
  verifier_.feedMessage(start);
}

void VerifyStream::update(ByteView piece) {
  if (verifier_.headKnown() && !verifier_.hasContent()) {
    verifier_.feedData(piece);
  } else {
    verifier_.feedMessage(piece);
  }
}

Verification VerifyStream::finish(const VerifyParamRecord& param, DataBlob_t& out) {
  Verification result = ResultOf(verifier_, param);
  if (result.code == kOk) out = OutputOf(verifier_, content_, session_.buffers);
  return result;
}

}  // namespace standin
