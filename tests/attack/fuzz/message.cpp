// Signed and enveloped messages, with and without armour: a message in pieces reads as the whole one does.
#include <optional>

#include "attack/fuzz/input.h"
#include "standin/base/codes.h"
#include "standin/messages/message_reader.h"

using namespace standin;

namespace {

struct Reading {
  int32_t code = 0;
  int heads = 0;
  Bytes content;
  std::vector<Bytes> tail;

  bool operator==(const Reading&) const = default;
};

Reading Read(ByteView message, size_t pieceSize) {
  Reading reading;
  MessageReader reader([&](const MessageReader::Head&) { ++reading.heads; },
                       [&](ByteView piece) { Append(reading.content, piece); });
  try {
    for (ByteView rest = message; !rest.empty(); rest = rest.subspan(std::min(rest.size(), pieceSize)))
      reader.feed(rest.first(std::min(rest.size(), pieceSize)));
    reader.finish();
    reading.tail = reader.tail();
  } catch (const EngineError& error) {
    // A failure comes sooner or later, by the size of the pieces.
    reading = {};
    reading.code = error.code;
  }
  return reading;
}

}  // namespace

void fuzz::Run(Input bytes) {
  const size_t pieceSize = Take<uint8_t>(bytes) + size_t{1};
  const Reading whole = Read(bytes, bytes.size() + 1);
  Require(whole.code == 0 || whole.code == kMessageDamaged);
  Require(whole.heads == (whole.code == 0 ? 1 : 0));
  Require(Read(bytes, pieceSize) == whole);
  Require(Read(bytes, 1) == whole);
}
