// Messages taken apart in pieces of every size, whole and damaged.
#include "standin/messages/message_reader.h"

#include <gtest/gtest.h>

#include "standin/base/codes.h"
#include "standin/base/oids.h"

namespace {

using namespace standin;
using ber::Encode;

const Bytes kVersion = {2, 1, 1};
const Bytes kDigests = {0x31, 0};
const Bytes kSigners = {0x31, 2, 5, 0};

Bytes Indefinite(uint8_t tag, const Bytes& content) { return ber::Join({Bytes{tag, 0x80}, content, Bytes{0, 0}}); }
Bytes Definite(uint8_t tag, const Bytes& content) { return Encode(tag, content); }

/// A signed message with "content", each of its elements of the form that `wrap` makes.
Bytes Signed(Bytes (*wrap)(uint8_t, const Bytes&), const Bytes& content) {
  const Bytes info = wrap(0x30, ber::Join({kOidData, wrap(0xA0, content)}));
  const Bytes data = wrap(0x30, ber::Join({kVersion, kDigests, info, kSigners}));
  return wrap(0x30, ber::Join({kOidSignedData, wrap(0xA0, data)}));
}
Bytes DefiniteMessage() { return Signed(Definite, {4, 7, 'c', 'o', 'n', 't', 'e', 'n', 't'}); }
Bytes IndefiniteMessage() {
  return Signed(Indefinite, Indefinite(0x24, {4, 3, 'c', 'o', 'n', 0x24, 0x80, 4, 4, 't', 'e', 'n', 't', 0, 0}));
}

/// Reads in pieces of `size` bytes and returns the content; throws as the reader does.
std::string ContentOf(const Bytes& message, size_t size) {
  std::string content;
  MessageReader reader([](const MessageReader::Head& head) { EXPECT_EQ(head.kind, MessageKind::kSigned); },
                       [&](ByteView piece) { content.append(piece.begin(), piece.end()); });
  for (size_t start = 0; start < message.size(); start += size) {
    const Bytes piece(message.begin() + static_cast<ptrdiff_t>(start),
                      message.begin() + static_cast<ptrdiff_t>(std::min(start + size, message.size())));
    reader.feed(piece);
  }
  reader.finish();
  EXPECT_EQ(reader.tail(), std::vector<Bytes>{kSigners});
  return content;
}

TEST(MessageReader, TakesMessagesApartInPiecesOfEverySize) {
  for (const Bytes& message : {DefiniteMessage(), IndefiniteMessage()})
    for (size_t size = 1; size <= message.size(); ++size) EXPECT_EQ(ContentOf(message, size), "content") << size;
}

TEST(MessageReader, RefusesAMessageThatIsCutAnywhere) {
  for (const Bytes& message : {DefiniteMessage(), IndefiniteMessage()})
    for (size_t size = 0; size < message.size(); ++size)
      EXPECT_THROW(ContentOf({message.begin(), message.begin() + static_cast<ptrdiff_t>(size)}, 5), EngineError)
          << size;
}

TEST(MessageReader, RefusesWhatFollowsTheMessage) {
  Bytes message = DefiniteMessage();
  message.push_back(0);
  EXPECT_THROW(ContentOf(message, 4), EngineError);
}

TEST(MessageReader, RefusesAnElementThatEndsBehindItsParent) {
  const Bytes message = DefiniteMessage();
  for (size_t at : {1u, 14u, 16u}) {
    Bytes shorter = message;
    --shorter[at];
    EXPECT_THROW(ContentOf(shorter, message.size()), EngineError) << at;
  }
}

TEST(MessageReader, StandsAnyByteInAnyPlace) {
  const Bytes message = IndefiniteMessage();
  for (size_t at = 0; at < message.size(); ++at)
    for (int byte : {0x00, 0x1F, 0x24, 0x30, 0x7F, 0x80, 0x81, 0x87, 0xFF}) {
      Bytes changed = message;
      changed[at] = static_cast<uint8_t>(byte);
      MessageReader reader([](const auto&) {}, [](ByteView) {});
      try {
        reader.feed(changed);
        reader.finish();
      } catch (const EngineError& error) {
        EXPECT_EQ(error.code, kMessageDamaged);
      }
    }
}

}  // namespace
