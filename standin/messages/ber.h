// Reading of BER elements and writing of DER elements, as far as messages need them.
#pragma once

#include <initializer_list>
#include <vector>

#include "standin/base/bytes.h"

namespace standin::ber {

enum Tag : uint8_t {
  kInteger = 0x02,
  kOctetString = 0x04,
  kOid = 0x06,
  kSequence = 0x30,
  kSet = 0x31,
  kContext0 = 0x80,
  kContext1 = 0x81,
  kContext0Constructed = 0xA0,
  kContext1Constructed = 0xA1,
  kContext2Constructed = 0xA2,
  kContext3Constructed = 0xA3,
  kConstructedOctetString = 0x24,
};

/// Thrown if the bytes end inside an element.
struct NeedMore {};

struct Header {
  uint8_t tag;
  bool indefinite;
  uint64_t length;  ///< of the content; 0 for an indefinite one
  size_t size;      ///< of the header itself

  bool constructed() const { return (tag & 0x20) != 0; }
  bool isEndOfContents() const { return tag == 0 && length == 0 && !indefinite; }
};

/// The header at the start of `bytes`. Throws NeedMore, or EngineError with kMessageDamaged if it is malformed.
Header ReadHeader(ByteView bytes);

/// Reads elements in order; throws as ReadHeader does.
class Cursor {
 public:
  explicit Cursor(ByteView bytes) : bytes_(bytes) {}

  size_t position() const { return position_; }
  bool atEnd() const { return position_ == bytes_.size(); }
  ByteView rest() const { return bytes_.subspan(position_); }
  /// The tag of the next element; 0 at the end and at an end-of-contents mark.
  uint8_t peekTag() const { return atEnd() ? 0 : bytes_[position_]; }
  /// Reads a header that must have this tag.
  Header open(uint8_t tag);
  /// Skips a whole element with this tag and returns its bytes, header included.
  ByteView element(uint8_t tag);
  ByteView anyElement();
  void skip(size_t count);

 private:
  ByteView bytes_;
  size_t position_ = 0;
};

/// The content of an element of definite length.
ByteView ContentOf(ByteView element);
/// The elements inside a constructed element of definite or indefinite length.
std::vector<ByteView> ChildrenOf(ByteView element);

Bytes EncodeHeader(uint8_t tag, uint64_t length);
Bytes Encode(uint8_t tag, ByteView content);
/// The header of an element and the start of its content, which `more` bytes follow.
Bytes EncodeStart(uint8_t tag, ByteView start, uint64_t more);
Bytes Join(std::initializer_list<ByteView> parts);
/// Sorts elements into the order of a SET OF in DER and removes duplicates.
void SortAsSet(std::vector<Bytes>& elements);
/// The elements as the content of a SET OF.
Bytes JoinSorted(std::vector<Bytes> elements);

}  // namespace standin::ber
