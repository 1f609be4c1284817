// Parsing and encoding of the trees.
#include "element.h"

#include <cstdlib>
#include <utility>

namespace {

using Bytes = std::vector<uint8_t>;

constexpr int kDeepest = 40;

/// Moves `position` behind the element; false if it is damaged.
bool Parse(const Bytes& bytes, size_t& position, size_t end, int depth, Element& element) {
  if (depth > kDeepest || end - position < 2) return false;
  element.tag = bytes[position++];
  const uint8_t first = bytes[position++];
  const bool indefinite = first == 0x80;
  size_t length = first;
  if (first > 0x80) {
    const size_t count = first & 0x7F;
    if (count > 4 || end - position < count) return false;
    length = 0;
    for (size_t i = 0; i < count; ++i) length = length << 8 | bytes[position++];
  }
  if (!indefinite && length > end - position) return false;
  if (!element.constructed()) {
    element.content.assign(bytes.begin() + static_cast<ptrdiff_t>(position),
                           bytes.begin() + static_cast<ptrdiff_t>(position + length));
    position += length;
    return !indefinite;
  }
  const size_t inside = indefinite ? end : position + length;
  while (position < inside) {
    Element child;
    if (!Parse(bytes, position, inside, depth + 1, child)) return false;
    if (indefinite && child.tag == 0) return true;
    element.children.push_back(std::move(child));
  }
  return !indefinite;
}

}  // namespace

Element& Element::at(std::initializer_list<size_t> path) {
  Element* element = this;
  for (const size_t index : path) element = &element->children.at(index);
  return *element;
}

Bytes Element::encode() const {
  Bytes inside = content;
  for (const Element& child : children) {
    const Bytes encoded = child.encode();
    inside.insert(inside.end(), encoded.begin(), encoded.end());
  }
  Bytes bytes = {tag};
  if (inside.size() < 0x80) {
    bytes.push_back(static_cast<uint8_t>(inside.size()));
  } else {
    Bytes digits;
    for (size_t rest = inside.size(); rest != 0; rest >>= 8) digits.insert(digits.begin(), static_cast<uint8_t>(rest));
    bytes.push_back(static_cast<uint8_t>(0x80 | digits.size()));
    bytes.insert(bytes.end(), digits.begin(), digits.end());
  }
  bytes.insert(bytes.end(), inside.begin(), inside.end());
  return bytes;
}

Element ParseElement(const Bytes& bytes) {
  Element element;
  size_t position = 0;
  if (!Parse(bytes, position, bytes.size(), 0, element) || position != bytes.size()) return {};
  return element;
}

Element Constructed(uint8_t tag, std::vector<Element> children) { return {tag, {}, std::move(children)}; }
Element Primitive(uint8_t tag, Bytes content) { return {tag, std::move(content), {}}; }
Element Sequence(std::vector<Element> children) { return Constructed(0x30, std::move(children)); }
Element Set(std::vector<Element> children) { return Constructed(0x31, std::move(children)); }

Element Oid(const std::string& dotted) {
  std::vector<unsigned long> arcs;
  for (const char* at = dotted.c_str(); *at != 0;) {
    char* end = nullptr;
    arcs.push_back(std::strtoul(at, &end, 10));
    at = *end == '.' ? end + 1 : end;
  }
  Bytes content = {static_cast<uint8_t>(arcs.at(0) * 40 + arcs.at(1))};
  for (size_t i = 2; i < arcs.size(); ++i) {
    Bytes digits = {static_cast<uint8_t>(arcs[i] & 0x7F)};
    for (unsigned long rest = arcs[i] >> 7; rest != 0; rest >>= 7) {
      digits.insert(digits.begin(), static_cast<uint8_t>(0x80 | (rest & 0x7F)));
    }
    content.insert(content.end(), digits.begin(), digits.end());
  }
  return Primitive(0x06, content);
}

Element BitString(const Bytes& bits) {
  Bytes content = {0};
  content.insert(content.end(), bits.begin(), bits.end());
  return Primitive(0x03, content);
}
