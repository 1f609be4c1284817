#include "standin/operations/signing.h"

#include "standin/base/codes.h"
#include "standin/base/files.h"

namespace standin {
namespace {

using Sink = MessageReader::OnContent;

/// A message that was read to its end.
struct ReadMessage {
  explicit ReadMessage(const MessageReader& reader)
      : parts(SignedParts::of(reader)), hasContent(reader.head().hasContent) {}

  SignedParts parts;
  bool hasContent;
  uint64_t contentLength = 0;
};

ReadMessage ReadSignedFile(const char* path, const Sink& onContent) {
  uint64_t length = 0;
  MessageReader reader([&](ByteView piece) {
    length += piece.size();
    onContent(piece);
  });
  InputFile(path).forEachPiece([&](ByteView piece) { reader.feed(piece); });
  reader.finish();
  ReadMessage message(reader);
  message.contentLength = length;
  return message;
}

/// The source of the content of a signed file. It can be read more than once.
struct ContentFile {
  const char* path;
  bool insideMessage;
  uint64_t length;

  void pump(const Sink& sink) const {
    uint64_t seen = 0;
    const auto counted = [&](ByteView piece) {
      seen += piece.size();
      sink(piece);
    };
    if (insideMessage) {
      ReadSignedFile(path, counted);
    } else {
      InputFile(path).forEachPiece(counted);
    }
    if (seen != length) Fail(kFileChanged);
  }
};

void RequireSameContent(const char* data, const char* message) {
  Digest inFile(DefaultDigest());
  Digest inMessage(DefaultDigest());
  InputFile(data).forEachPiece([&](ByteView piece) { inFile.update(piece); });
  ReadSignedFile(message, [&](ByteView piece) { inMessage.update(piece); });
  if (inFile.finish() != inMessage.finish()) Fail(kContentMismatch);
}

ContentFile ContentOf(SignatureMaker& maker, const char* data, const char* existing) {
  if (data == nullptr && existing == nullptr) Fail(kContentMissing);
  ContentFile content{data, false, data == nullptr ? 0 : InputFile(data).size()};
  if (existing == nullptr) return content;
  ReadMessage message = ReadSignedFile(existing, [](ByteView) {});
  maker.addTo(std::move(message.parts));
  if (data == nullptr) {
    if (!message.hasContent) Fail(kContentMissing);
    return {existing, true, message.contentLength};
  }
  if (message.hasContent) RequireSameContent(data, existing);
  return content;
}

void WriteSmallAttached(SignatureMaker& maker, const ContentFile& content, const char* out) {
  OutputFile file(out);
  Bytes kept;
  content.pump([&](ByteView piece) { Append(kept, piece); });
  maker.update(kept);
  const SignedParts signedParts = maker.finish();
  const Bytes trailer = signedParts.trailer();
  file.write(signedParts.header(kept.size(), trailer.size()));
  file.write(kept);
  file.write(trailer);
  file.commit();
}

void WriteAttached(SignatureMaker& maker, const ContentFile& content, const char* out) {
  // The header has lengths that are known only after the signature: leave room, and overwrite it in the end.
  const SignedParts estimate = maker.estimate();
  const Bytes room = estimate.header(content.length, estimate.trailer().size());
  SignedParts signedParts;
  Bytes header;
  {
    OutputFile file(out);
    file.write(room);
    content.pump([&](ByteView piece) {
      maker.update(piece);
      file.write(piece);
    });
    signedParts = maker.finish();
    const Bytes trailer = signedParts.trailer();
    header = signedParts.header(content.length, trailer.size());
    file.write(trailer);
    if (header.size() == room.size()) {
      file.overwrite(0, header);
      file.commit();
      return;
    }
  }
  OutputFile file(out);
  file.write(header);
  content.pump([&](ByteView piece) { file.write(piece); });
  file.write(signedParts.trailer());
  file.commit();
}

DataBlob_t OutputOf(Session& session, SignatureMaker& maker, ByteView content) {
  return maker.finish().handOut(session.buffers, maker.isDetached() ? std::nullopt : std::optional(content));
}

}  // namespace

DataBlob_t SignMemory(Session& session, const SignParamRecord* param, std::optional<ByteView> data,
                      std::optional<ByteView> existing) {
  SignatureMaker maker(session.keys, param);
  Bytes kept;
  ByteView content = data.value_or(ByteView());
  if (existing) {
    ReadMessage message(MessageReader::whole(*existing, [&](ByteView piece) { Append(kept, piece); }));
    if (!data && !message.hasContent) Fail(kContentMissing);
    if (data && message.hasContent && !Equal(content, kept)) Fail(kContentMismatch);
    if (!data) content = kept;
    maker.addTo(std::move(message.parts));
  }
  maker.update(content);
  return OutputOf(session, maker, content);
}

void SignFiles(Session& session, const SignParamRecord* param, const char* data, const char* existing,
               const char* out) {
  if (out == nullptr) Fail(kWinInvalidParameter);
  SignatureMaker maker(session.keys, param);
  const ContentFile content = ContentOf(maker, Given(data), Given(existing));
  if (!maker.isDetached()) {
    // To estimate the length of a signature is to make one.
    content.length <= kFilePiece ? WriteSmallAttached(maker, content, out) : WriteAttached(maker, content, out);
    return;
  }
  content.pump([&](ByteView piece) { maker.update(piece); });
  WriteWholeFile(out, maker.finish().withoutContent());
}

SignStream::SignStream(Session& session, const SignParamRecord* param, std::optional<ByteView> existing)
    : session_(session), maker_(session.keys, param) {
  if (!existing) return;
  Bytes content;
  ReadMessage message(MessageReader::whole(*existing, [&](ByteView piece) { Append(content, piece); }));
  maker_.addTo(std::move(message.parts));
  if (message.hasContent) existing_content_ = std::move(content);
}

void SignStream::update(ByteView data) {
  if (existing_content_) {
    // The message has its content already: the data must repeat it.
    const ByteView expected = ByteView(*existing_content_).subspan(matched_);
    if (data.size() > expected.size() || !Equal(data, expected.first(data.size()))) Fail(kContentMismatch);
    matched_ += data.size();
    return;
  }
  maker_.update(data);
  if (!maker_.isDetached()) Append(content_, data);
}

DataBlob_t SignStream::finish() {
  if (existing_content_) {
    if (matched_ != 0 && matched_ != existing_content_->size()) Fail(kContentMismatch);
    content_ = std::move(*existing_content_);
    maker_.update(content_);
  }
  return OutputOf(session_, maker_, content_);
}

}  // namespace standin
