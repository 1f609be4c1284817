#include "standin/messages/ber.h"

#include <algorithm>

#include "standin/base/codes.h"

namespace standin::ber {
namespace {

constexpr int kDeepestNesting = 32;
/// Longer length fields are rejected as malformed.
constexpr size_t kLongestLength = 7;

size_t WholeSize(ByteView bytes, int depth) {
  if (depth > kDeepestNesting) Fail(kMessageDamaged);
  const Header header = ReadHeader(bytes);
  if (!header.indefinite) {
    if (header.length > bytes.size() - header.size) throw NeedMore{};
    return header.size + static_cast<size_t>(header.length);
  }
  size_t position = header.size;
  for (;;) {
    const Header inner = ReadHeader(bytes.subspan(position));
    if (inner.isEndOfContents()) return position + inner.size;
    position += WholeSize(bytes.subspan(position), depth + 1);
  }
}

}  // namespace

Header ReadHeader(ByteView bytes) {
  if (bytes.size() < 2) throw NeedMore{};
  const uint8_t tag = bytes[0];
  // Messages have no tags of more than one byte.
  if ((tag & 0x1F) == 0x1F) Fail(kMessageDamaged);
  const uint8_t first = bytes[1];
  if (first < 0x80) return {tag, false, first, 2};
  if (first == 0x80) {
    if ((tag & 0x20) == 0) Fail(kMessageDamaged);
    return {tag, true, 0, 2};
  }
  const size_t count = first & 0x7F;
  if (count > kLongestLength) Fail(kMessageDamaged);
  if (bytes.size() < 2 + count) throw NeedMore{};
  uint64_t length = 0;
  for (size_t i = 0; i < count; ++i) length = length << 8 | bytes[2 + i];
  return {tag, false, length, 2 + count};
}

Header Cursor::open(uint8_t tag) {
  const Header header = ReadHeader(rest());
  if (header.tag != tag) Fail(kMessageDamaged);
  position_ += header.size;
  return header;
}

ByteView Cursor::element(uint8_t tag) {
  if (ReadHeader(rest()).tag != tag) Fail(kMessageDamaged);
  return anyElement();
}

ByteView Cursor::anyElement() {
  const ByteView element = rest().first(WholeSize(rest(), 0));
  position_ += element.size();
  return element;
}

void Cursor::skip(size_t count) {
  if (count > rest().size()) throw NeedMore{};
  position_ += count;
}

ByteView ContentOf(ByteView element) {
  const Header header = ReadHeader(element);
  if (header.indefinite || header.length != element.size() - header.size) Fail(kMessageDamaged);
  return element.subspan(header.size);
}

std::vector<ByteView> ChildrenOf(ByteView element) {
  const Header header = ReadHeader(element);
  Cursor cursor(element.subspan(header.size));
  std::vector<ByteView> children;
  try {
    while (!cursor.atEnd()) {
      if (header.indefinite && ReadHeader(cursor.rest()).isEndOfContents()) break;
      children.push_back(cursor.anyElement());
    }
  } catch (const NeedMore&) {
    Fail(kMessageDamaged);
  }
  return children;
}

Bytes EncodeHeader(uint8_t tag, uint64_t length) {
  if (length < 0x80) return {tag, static_cast<uint8_t>(length)};
  Bytes digits;
  for (uint64_t rest = length; rest != 0; rest >>= 8) digits.insert(digits.begin(), static_cast<uint8_t>(rest));
  Bytes header = {tag, static_cast<uint8_t>(0x80 | digits.size())};
  Append(header, digits);
  return header;
}

Bytes Encode(uint8_t tag, ByteView content) {
  Bytes element = EncodeHeader(tag, content.size());
  Append(element, content);
  return element;
}

Bytes EncodeStart(uint8_t tag, ByteView start, uint64_t more) {
  Bytes bytes = EncodeHeader(tag, start.size() + more);
  Append(bytes, start);
  return bytes;
}

Bytes Join(std::initializer_list<ByteView> parts) {
  Bytes joined;
  for (const ByteView part : parts) Append(joined, part);
  return joined;
}

void SortAsSet(std::vector<Bytes>& elements) {
  std::ranges::sort(elements, [](const Bytes& left, const Bytes& right) {
    return std::lexicographical_compare(left.data(), left.data() + left.size(), right.data(),
                                        right.data() + right.size());
  });
  elements.erase(std::unique(elements.begin(), elements.end()), elements.end());
}

Bytes JoinSorted(std::vector<Bytes> elements) {
  SortAsSet(elements);
  Bytes joined;
  for (const Bytes& element : elements) Append(joined, element);
  return joined;
}

}  // namespace standin::ber
