// Takes signed and enveloped messages (CMS, BER or DER) apart as their bytes arrive: what stands before the content,
// the content itself in pieces, what stands behind it. Memory is bounded however large the content is.
#pragma once

#include <functional>
#include <vector>

#include "standin/base/bytes.h"
#include "standin/messages/ber.h"

namespace standin {

enum class MessageKind { kUnknown, kSigned, kEnveloped };

class MessageReader {
 public:
  /// What stands before the content.
  struct Head {
    MessageKind kind = MessageKind::kUnknown;
    /// Signed: version, digestAlgorithms. Enveloped: version, originatorInfo if any, recipientInfos. Whole elements.
    std::vector<Bytes> elements;
    Bytes contentType;    ///< the OID element
    Bytes contentCipher;  ///< enveloped only: the AlgorithmIdentifier element
    bool hasContent = false;
  };
  using OnHead = std::function<void(const Head&)>;
  using OnContent = std::function<void(ByteView)>;

  /// `onHead` is called once, before the first piece of content.
  MessageReader(OnHead onHead, OnContent onContent);
  explicit MessageReader(OnContent onContent) : MessageReader([](const Head&) {}, std::move(onContent)) {}
  /// A reader that has read the whole message.
  static MessageReader whole(
      ByteView message, OnContent onContent = [](ByteView) {});

  /// Fails with kMessageDamaged.
  void feed(ByteView bytes);
  /// Fails with kMessageDamaged when the message is not whole or bytes are left over.
  void finish();

  bool headKnown() const { return stage_ != Stage::kHead; }
  /// The content has arrived whole, or there is none.
  bool contentEnded() const { return stage_ == Stage::kTail; }
  const Head& head() const { return head_; }
  /// After finish: the elements behind the content, in order.
  const std::vector<Bytes>& tail() const { return tail_; }

 private:
  enum class Stage { kHead, kContent, kTail };
  /// A constructed element that is open, and where in the message it ends.
  struct Level {
    bool indefinite;
    uint64_t end;
  };

  bool tryHead();
  void parseHead(ber::Cursor& cursor);
  void parseContentInfo(ber::Cursor& cursor);
  bool moreInside(const ber::Cursor& cursor, const Level& level) const;
  Level openLevel(ber::Cursor& cursor, uint8_t tag);
  static Level levelOf(const ber::Header& header, uint64_t contentOffset, const Level* parent);
  void beginContent(const ber::Header& header);
  ByteView takeContent(ByteView bytes);
  ByteView nextContentHeader(ByteView bytes);
  void closeEndedContent();
  void parseTail();
  void closeLevel(ber::Cursor& cursor);

  OnHead on_head_;
  OnContent on_content_;
  Stage stage_ = Stage::kHead;
  Head head_;
  std::vector<Bytes> tail_;
  uint64_t offset_ = 0;  ///< of the first byte that is not yet taken apart
  Bytes pending_;        ///< the bytes from there on that have arrived, as far as they could not be used yet
  std::vector<Level> levels_;
  std::vector<Level> content_levels_;
  uint64_t primitive_left_ = 0;
};

}  // namespace standin
