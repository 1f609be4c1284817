// The forms of verification.
#include "standin/operations/verification.h"

#include <algorithm>

#include "standin/base/codes.h"
#include "standin/base/digest.h"
#include "standin/base/times.h"
#include "standin/base/win_file.h"

namespace standin {
namespace {

void ignore(ByteView) {}

Verification resultOf(Verifier& verifier, const VerifyParamRecord& param) {
  verifier.finish(param);
  Verification result;
  result.code = verifier.overall();
  result.verdicts = verifier.takeVerdicts();
  return result;
}

bool isGood(int32_t code) { return code == kOk || code == kVerifiedWithRemarks; }

/// What a message is given back as: its content, or itself with the signatures that are left.
DataBlob_t outputOf(const Verifier& verifier, GrowingBuffer& content, Buffers& buffers) {
  if (!verifier.leavesSignatures()) return content.handOut(buffers);
  const SignedParts& parts = verifier.remaining();
  if (!verifier.hasContent()) return buffers.copyBytes(parts.withoutContent());
  const Bytes trailer = parts.trailer();
  return buffers.join({parts.header(content.view().size(), trailer.size()), content.view(), trailer});
}

void feedFile(const char* path, const MessageReader::OnContent& take) {
  InputFile file(path);
  for (ByteView piece = file.next(); !piece.empty(); piece = file.next()) take(piece);
}

/// The hash of data that is given beside a message, to be compared with the content that the message carries.
class ContentComparison {
 public:
  ContentComparison() : in_message_(defaultDigest()), in_data_(defaultDigest()) {}
  void message(ByteView piece) { in_message_.update(piece); }
  void data(ByteView piece) { in_data_.update(piece); }
  void require() {
    if (in_message_.finish() != in_data_.finish()) fail(kContentMismatch);
  }

 private:
  Digest in_message_;
  Digest in_data_;
};

/// Goes through the content of a message file once more.
void copyContent(const char* message, uint64_t expected_length, OutputFile& file) {
  uint64_t copied = 0;
  MessageReader reader([](const MessageReader::Head&) {},
                       [&](ByteView piece) {
                         copied += piece.size();
                         file.write(piece);
                       });
  feedFile(message, [&](ByteView piece) { reader.feed(piece); });
  if (copied != expected_length) fail(kFileChanged);
}

/// The file that a verification gives when it was not known beforehand what that would be.
void writeAfterwards(const Verifier& verifier, const char* message, uint64_t content_length, const char* out) {
  if (!verifier.hasContent()) {
    if (verifier.leavesSignatures()) writeWholeFile(out, verifier.remaining().withoutContent());
    return;
  }
  OutputFile file(out);
  Bytes trailer;
  if (verifier.leavesSignatures()) {
    trailer = verifier.remaining().trailer();
    file.write(verifier.remaining().header(content_length, trailer.size()));
  }
  copyContent(message, content_length, file);
  file.write(trailer);
  file.commit();
}

}  // namespace

void fillResult(VerifyResultRecord& result, const Verification& verification, const VerifyParamRecord& param,
                Buffers& buffers) {
  result = {};
  if (verification.verdicts.empty()) return;
  result.entries = buffers.allocateArray<SignStatusEntry>(verification.verdicts.size());
  for (const SignerVerdict& verdict : verification.verdicts) {
    SignStatusEntry& entry = result.entries[result.count++];
    entry.status = verdict.code;
    entry.time = recordTime(verdict.signing_time);
    if (verdict.certificate == nullptr) continue;
    entry.cert = buffers.allocateArray<CertificateRecord>(1);
    fillRecord(*entry.cert, verdict.certificate.get(), param.info, buffers);
  }
}

void freeResult(VerifyResultRecord& result, Buffers& buffers) {
  if (buffers.owns(result.entries)) {
    for (int32_t i = 0; i < result.count; ++i) {
      CertificateRecord* record = result.entries[i].cert;
      if (!buffers.owns(record)) continue;
      freeRecord(*record, buffers);
      buffers.release(record);
    }
    buffers.release(result.entries);
  }
  result = {};
}

Verification verifyMemory(Session& session, const VerifyParamRecord& param, std::optional<ByteView> data,
                          ByteView message, DataBlob_t& out) {
  GrowingBuffer content;
  content.reserve(message.size());
  Verifier verifier(session, [&](ByteView piece) { content.append(piece); });
  verifier.feedMessage(message);
  if (!verifier.headKnown()) fail(kMessageDamaged);
  if (!verifier.hasContent()) {
    if (!data) fail(kContentMissing);
    verifier.feedData(*data);
  } else if (data) {
    const ByteView carried = content.view();
    if (!std::equal(data->begin(), data->end(), carried.begin(), carried.end())) fail(kContentMismatch);
  }
  Verification result = resultOf(verifier, param);
  if (result.code == kOk) out = outputOf(verifier, content, session.buffers);
  return result;
}

Verification verifyFile(Session& session, const VerifyParamRecord& param, const char* data, const char* message,
                        const char* out) {
  if (message == nullptr) fail(kWinInvalidParameter);
  data = given(data);
  out = given(out);
  // With one signature removed the output begins with lengths that are only known at the end.
  const bool removes_one = (param.flag & kVerifyDeleteSignature) != 0 && param.nSignToDelete != kDeleteAllSignatures;
  std::optional<OutputFile> content;
  if (out != nullptr && !removes_one) content.emplace(out);
  std::optional<ContentComparison> comparison;
  if (data != nullptr) comparison.emplace();
  uint64_t content_length = 0;
  Verifier verifier(session, [&](ByteView piece) {
    content_length += piece.size();
    if (content) content->write(piece);
    if (comparison) comparison->message(piece);
  });
  feedFile(message, [&](ByteView piece) { verifier.feedMessage(piece); });
  if (!verifier.headKnown()) fail(kMessageDamaged);
  if (!verifier.hasContent()) {
    if (data == nullptr) fail(kContentMissing);
    feedFile(data, [&](ByteView piece) { verifier.feedData(piece); });
  } else if (data != nullptr) {
    feedFile(data, [&](ByteView piece) { comparison->data(piece); });
    comparison->require();
  }
  Verification result = resultOf(verifier, param);
  if (!isGood(result.code) || out == nullptr) return result;
  if (removes_one) {
    writeAfterwards(verifier, message, content_length, out);
  } else if (verifier.hasContent()) {
    content->commit();
  }
  return result;
}

uint32_t countSignatures(const char* message) {
  if (message == nullptr) fail(kWinInvalidParameter);
  MessageReader reader(
      [](const MessageReader::Head& head) {
        if (head.kind != MessageKind::kSigned) fail(kNotSigned);
      },
      ignore);
  feedFile(message, [&](ByteView piece) { reader.feed(piece); });
  reader.finish();
  const size_t count = SignedParts::of(reader).signers.size();
  if (count == 0) fail(kNotSigned);
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
  Verification result = resultOf(verifier_, param);
  if (result.code == kOk) out = outputOf(verifier_, content_, session_.buffers);
  return result;
}

}  // namespace standin
