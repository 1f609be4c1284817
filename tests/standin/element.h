// Elements of BER as trees, so that tests can change a message and encode it again.
#pragma once

#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <vector>

struct Element {
  uint8_t tag = 0;
  std::vector<uint8_t> content;   ///< of a primitive element
  std::vector<Element> children;  ///< of a constructed one

  bool constructed() const { return (tag & 0x20) != 0; }
  /// The element at the end of a path of indices.
  Element& at(std::initializer_list<size_t> path);
  /// In DER, but for the order of sets.
  std::vector<uint8_t> encode() const;
};

/// The one element that the bytes are; without children or content if they are damaged.
Element ParseElement(const std::vector<uint8_t>& bytes);

Element Constructed(uint8_t tag, std::vector<Element> children);
Element Primitive(uint8_t tag, std::vector<uint8_t> content);
Element Sequence(std::vector<Element> children);
Element Set(std::vector<Element> children);
/// An object identifier in its dotted form.
Element Oid(const std::string& dotted);
Element BitString(const std::vector<uint8_t>& bits);
