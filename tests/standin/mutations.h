// Seeded mutations of messages: of bytes, of lengths, of elements, of keys and algorithms.
#pragma once

#include <random>

#include "element.h"

/// Keys, as certificates have them, that libcrypto cannot decode or that cannot sign.
const std::vector<Element>& StrangeKeys();

class Mutations {
 public:
  /// Of these messages; elements are spliced from one into another.
  Mutations(const std::vector<std::vector<uint8_t>>& messages, unsigned seed);
  std::vector<uint8_t> next();

 private:
  size_t below(size_t limit) { return limit == 0 ? 0 : random_() % limit; }
  Element& anyOf(std::vector<Element*> elements) { return *elements[below(elements.size())]; }
  void changeBytes(std::vector<uint8_t>& bytes);
  void changeTree(Element& message);
  void changeKey(Element& message);

  std::mt19937 random_;
  std::vector<std::vector<uint8_t>> messages_;
  std::vector<Element> trees_;
};
