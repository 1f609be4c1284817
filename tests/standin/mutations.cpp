// The mutations.
#include "mutations.h"

#include <algorithm>
#include <utility>

namespace {

using Bytes = std::vector<uint8_t>;

void Collect(Element& element, std::vector<Element*>& all) {
  all.push_back(&element);
  for (Element& child : element.children) Collect(child, all);
}

std::vector<Element*> AllOf(Element& root) {
  std::vector<Element*> all;
  Collect(root, all);
  return all;
}

/// An algorithm with parameters, or a key of it.
Element Key(std::vector<Element> algorithm, const Bytes& bits) {
  return Sequence({Sequence(std::move(algorithm)), BitString(bits)});
}

const std::vector<Element>& Identifiers() {
  static const std::vector<Element> kIdentifiers = [] {
    std::vector<Element> identifiers;
    for (const char* dotted : {"1.2.643.99.9",
                               "1.2.840.113549.1.7.1",
                               "1.2.840.113549.1.7.2",
                               "1.2.840.113549.1.7.3",
                               "1.2.840.113549.1.9.16.1.23",
                               "1.2.840.113549.1.1.1",
                               "1.2.840.113549.1.1.7",
                               "1.2.840.113549.1.1.10",
                               "1.2.840.10045.4.3.2",
                               "1.2.840.113549.2.4",
                               "2.16.840.1.101.3.4.2.1",
                               "2.16.840.1.101.3.4.2.12",
                               "2.16.840.1.101.3.4.1.42",
                               "2.16.840.1.101.3.4.1.46",
                               "2.16.840.1.101.3.4.1.47",
                               "2.16.840.1.101.3.4.1.45",
                               "1.2.840.113549.3.7",
                               "1.3.132.1.11.1",
                               "1.2.840.113549.1.9.3",
                               "1.2.840.113549.1.9.4"}) {
      identifiers.push_back(Oid(dotted));
    }
    return identifiers;
  }();
  return kIdentifiers;
}

bool IsKey(const Element* element) {
  return element->children.size() == 2 && element->children[0].tag == 0x30 && element->children[1].tag == 3;
}
bool IsIdentifier(const Element* element) { return element->tag == 6; }

}  // namespace

const std::vector<Element>& StrangeKeys() {
  static const std::vector<Element> kKeys = [] {
    const Element ec = Oid("1.2.840.10045.2.1"), p256 = Oid("1.2.840.10045.3.1.7"), null = Primitive(5, {});
    const Element gost = Sequence({Oid("1.2.643.7.1.2.1.1.1"), Oid("1.2.643.7.1.1.2.2")});
    const Element zeros = Sequence({Primitive(2, {0}), Primitive(2, {0})});
    Bytes point(65, 1);
    point[0] = 4;
    return std::vector<Element>{
        Key({Oid("1.2.643.99.7"), null}, Bytes(64, 7)),
        Key({Oid("1.2.643.7.1.1.1.1"), gost}, Bytes(66, 4)),
        Key({Oid("2.16.840.1.101.3.4.3.18")}, Bytes(1952, 1)),
        Key({ec, Oid("1.2.643.99.8")}, point),
        Key({ec, p256}, point),
        Key({ec, p256}, {}),
        Key({ec, p256}, {0}),
        Key({ec, Sequence({})}, point),
        Key({ec}, point),
        Key({Oid("1.2.840.113549.1.1.1"), null}, {}),
        Key({Oid("1.2.840.113549.1.1.1"), null}, zeros.encode()),
        Key({Oid("1.2.840.113549.1.1.10"), null}, zeros.encode()),
        Key({Oid("1.2.840.10040.4.1")}, Primitive(2, Bytes(128, 0x33)).encode()),
        Key({Oid("1.2.840.10046.2.1"), Sequence({})}, Primitive(2, {5}).encode()),
        Key({Oid("1.3.101.110")}, Bytes(32, 9)),
        Key({Oid("1.3.101.112")}, Bytes(32, 9)),
        Key({Oid("1.3.101.113")}, Bytes(57, 9)),
    };
  }();
  return kKeys;
}

Mutations::Mutations(const std::vector<Bytes>& messages, unsigned seed) : random_(seed), messages_(messages) {
  for (const Bytes& message : messages) trees_.push_back(ParseElement(message));
}

Bytes Mutations::next() {
  const size_t message = below(messages_.size());
  const size_t kind = below(10);
  Bytes bytes = messages_[message];
  if (kind < 3 || trees_[message].children.empty()) {
    changeBytes(bytes);
    return bytes;
  }
  Element tree = trees_[message];
  if (kind < 5) {
    changeKey(tree);
  } else {
    for (size_t count = below(2) + 1; count != 0; --count) changeTree(tree);
  }
  bytes = tree.encode();
  if (kind == 9) changeBytes(bytes);
  return bytes;
}

void Mutations::changeBytes(Bytes& bytes) {
  static constexpr uint8_t kLengths[] = {0, 1, 0x7F, 0x80, 0x81, 0x82, 0x84, 0x87, 0xFF};
  for (size_t count = below(3) + 1; count != 0 && !bytes.empty(); --count) {
    const size_t at = below(bytes.size());
    switch (below(5)) {
      case 0:
        bytes[at] = static_cast<uint8_t>(random_());
        break;
      case 1:
        bytes[at] ^= static_cast<uint8_t>(1u << below(8));
        break;
      case 2:
        bytes[at] = kLengths[below(std::size(kLengths))];
        break;
      case 3:
        if (below(8) == 0) bytes.resize(at);
        break;
      default:
        bytes.insert(bytes.begin() + static_cast<ptrdiff_t>(at), static_cast<uint8_t>(random_()));
    }
  }
}

void Mutations::changeTree(Element& message) {
  Element& element = anyOf(AllOf(message));
  std::vector<Element>& children = element.children;
  const auto place = [&](size_t index) { return children.begin() + static_cast<ptrdiff_t>(index); };
  switch (below(7)) {
    case 0:
      if (!children.empty()) children.erase(place(below(children.size())));
      break;
    case 1:
      if (!children.empty()) children.insert(place(below(children.size())), Element(children[below(children.size())]));
      break;
    case 2:
      if (!children.empty()) std::swap(children[below(children.size())], children[below(children.size())]);
      break;
    case 3:
      element.tag = static_cast<uint8_t>(element.tag ^ (1u << below(8)));
      break;
    case 4:
      changeBytes(element.content);
      break;
    case 5:
      element = Element(anyOf(AllOf(message)));
      break;
    default:
      element = Element(anyOf(AllOf(trees_[below(trees_.size())])));
  }
}

void Mutations::changeKey(Element& message) {
  std::vector<Element*> places = AllOf(message);
  const bool ofKeys = below(2) == 0;
  std::erase_if(places, [&](Element* element) { return ofKeys ? !IsKey(element) : !IsIdentifier(element); });
  if (places.empty()) return changeTree(message);
  const std::vector<Element>& others = ofKeys ? StrangeKeys() : Identifiers();
  anyOf(places) = others[below(others.size())];
}
