#include "standin/certificates/distinguished_name.h"

#include <algorithm>
#include <cctype>
#include <vector>

#include "standin/certificates/russian_names.h"

namespace standin {
namespace {

struct Attribute {
  std::string type;
  std::string value;
};

std::string Trimmed(const std::string& text) {
  const size_t start = text.find_first_not_of(' ');
  return start == std::string::npos ? std::string() : text.substr(start, text.find_last_not_of(' ') - start + 1);
}

class Parser {
 public:
  explicit Parser(const std::string& text) : text_(text) {}

  /// False on a syntax error.
  bool parse(std::vector<Attribute>& attributes) {
    while (position_ < text_.size()) {
      const size_t equals = text_.find('=', position_);
      if (equals == std::string::npos) return false;
      Attribute attribute{Trimmed(text_.substr(position_, equals - position_)), {}};
      position_ = equals + 1;
      if (attribute.type.empty() || !parseValue(attribute.value)) return false;
      attributes.push_back(std::move(attribute));
    }
    return !attributes.empty();
  }

 private:
  bool parseValue(std::string& value) {
    while (position_ < text_.size() && text_[position_] == ' ') ++position_;
    const bool quoted = position_ < text_.size() && text_[position_] == '"';
    if (quoted) ++position_;
    for (; position_ < text_.size(); ++position_) {
      char c = text_[position_];
      if (quoted ? c == '"' : c == ',' || c == ';') break;
      if (c == '\\' && !parseEscape(c)) return false;
      value += c;
    }
    if (!quoted) {
      value = Trimmed(value);
    } else if (position_ == text_.size()) {
      return false;
    } else {
      position_ = text_.find_first_not_of(' ', position_ + 1);
      if (position_ == std::string::npos) position_ = text_.size();
      if (position_ < text_.size() && text_[position_] != ',' && text_[position_] != ';') return false;
    }
    if (position_ < text_.size()) ++position_;
    return true;
  }

  /// Leaves the position at the last character of the escape.
  bool parseEscape(char& c) {
    const std::string digits = text_.substr(position_ + 1, 2);
    if (digits.size() == 2 && std::all_of(digits.begin(), digits.end(), isHexDigit)) {
      c = static_cast<char>(std::stoi(digits, nullptr, 16));
      position_ += 2;
      return true;
    }
    if (++position_ == text_.size()) return false;
    c = text_[position_];
    return true;
  }

  static bool isHexDigit(unsigned char c) { return std::isxdigit(c) != 0; }

  const std::string& text_;
  size_t position_ = 0;
};

/// Names that other programs write differently.
const char* CustomaryName(const std::string& type) {
  if (type == "E" || type == "EMAIL" || type == "Email") return "emailAddress";
  if (type == "S") return "ST";
  if (type == "G") return "GN";
  return LatinName(type);
}

}  // namespace

NamePtr NameFromText(const std::string& text) {
  std::vector<Attribute> attributes;
  if (!Parser(text).parse(attributes)) return nullptr;
  NamePtr name(X509_NAME_new());
  if (name == nullptr) return nullptr;
  std::reverse(attributes.begin(), attributes.end());
  for (const Attribute& attribute : attributes) {
    const int added = X509_NAME_add_entry_by_txt(name.get(), CustomaryName(attribute.type), MBSTRING_UTF8,
                                                 reinterpret_cast<const unsigned char*>(attribute.value.data()),
                                                 static_cast<int>(attribute.value.size()), -1, 0);
    if (added != 1) return nullptr;
  }
  return name;
}

}  // namespace standin
