// Parses signed and enveloped messages (CMS; BER, DER or PEM) as their bytes arrive: the elements before the content,
// the content in pieces, the elements after it. Memory does not grow with the content.
#pragma once

#include <functional>
#include <vector>

#include "standin/base/bytes.h"
#include "standin/messages/armour.h"
#include "standin/messages/ber.h"

namespace standin {

enum class MessageKind { kUnknown, kSigned, kEnveloped, kAuthEnveloped };

class MessageReader {
 public:
  /// The elements before the content.
  struct Head {
    MessageKind kind = MessageKind::kUnknown;
    /// Signed: version, digestAlgorithms. Enveloped: version, originatorInfo if any, recipientInfos. Whole elements.
    std::vector<Bytes> elements;
    Bytes contentType;    ///< the OID element
    Bytes contentCipher;  ///< enveloped only: the AlgorithmIdentifier element
    bool hasContent = false;

    bool enveloped() const { return kind == MessageKind::kEnveloped || kind == MessageKind::kAuthEnveloped; }
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
  /// Reads what stands behind the content, once it has arrived whole; false if bytes are missing.
  bool tryFinish();
  /// Fails with kMessageDamaged if the message is incomplete or bytes follow it.
  void finish();

  bool headKnown() const { return stage_ != Stage::kHead; }
  /// The content is complete, or there is none.
  bool contentEnded() const { return stage_ == Stage::kTail || stage_ == Stage::kEnd; }
  const Head& head() const { return head_; }
  /// After finish: the elements after the content, in order.
  const std::vector<Bytes>& tail() const { return tail_; }

 private:
  enum class Stage { kHead, kContent, kTail, kEnd };
  /// An open constructed element, with the offset of its end in the message.
  struct Level {
    bool indefinite;
    uint64_t end;
  };

  template <typename Work>
  auto unlessFailed(Work work);
  void feedMessage(ByteView bytes);
  bool endMessage();
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

  Armour armour_;
  OnHead on_head_;
  OnContent on_content_;
  Stage stage_ = Stage::kHead;
  int32_t failure_ = 0;
  Head head_;
  std::vector<Bytes> tail_;
  uint64_t offset_ = 0;  ///< of the first byte that is not parsed yet
  Bytes pending_;        ///< the bytes from there on that wait for more
  std::vector<Level> levels_;
  std::vector<Level> content_levels_;
  uint64_t primitive_left_ = 0;
};

}  // namespace standin
