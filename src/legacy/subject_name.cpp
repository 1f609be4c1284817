#include "legacy/subject_name.h"

#include <algorithm>
#include <cstring>

namespace legacy {
namespace {

/// A text of bounded length; what does not fit is dropped.
class Name {
 public:
  static constexpr size_t kSize = kNameSize;

  void add(char c) {
    if (length_ + 1 < kNameSize) text_[length_++] = c;
  }
  void add(const char* text) {
    while (*text) add(*text++);
  }
  void trimEnd() {
    while (length_ > kept_ && text_[length_ - 1] == ' ') --length_;
    text_[length_] = '\0';
  }
  /// What has been added so far is no space to be trimmed.
  void keep() { kept_ = length_; }
  bool isEmpty() const { return length_ == 0; }
  /// NUL-terminated, in `kSize` bytes.
  const char* text() const { return text_; }

 private:
  char text_[kNameSize] = {};
  size_t length_ = 0;
  size_t kept_ = 0;
};

int HexDigit(char c) {
  if (c >= '0' && c <= '9') return c - '0';
  if (c >= 'a' && c <= 'f') return c - 'a' + 10;
  if (c >= 'A' && c <= 'F') return c - 'A' + 10;
  return -1;
}

/// Reads the attributes of a subject one after the other.
class Attributes {
 public:
  explicit Attributes(const char* subject)
      : separators_(*subject == '/' ? "/" : ",;+\r\n"), next_(*subject == '/' ? subject + 1 : subject) {}

  /// Finds the next attribute: its key, and its value with quotes and escapes resolved. False at the end.
  bool read(const char** key, size_t* keyLength, Name& value) {
    next_ += std::strspn(next_, " ");
    while (*next_ && std::strchr(separators_, *next_)) next_ += 1 + std::strspn(next_ + 1, " ");
    if (!*next_) return false;
    *key = next_;
    *keyLength = 0;
    while (next_[*keyLength] && next_[*keyLength] != '=' && !std::strchr(separators_, next_[*keyLength])) ++*keyLength;
    next_ += *keyLength;
    while (*keyLength > 0 && (*key)[*keyLength - 1] == ' ') --*keyLength;
    if (*next_ == '=') readValue(value);
    return true;
  }

 private:
  void readValue(Name& value) {
    ++next_;
    next_ += std::strspn(next_, " ");
    bool isQuoted = *next_ == '"';
    if (isQuoted) ++next_;
    for (; *next_; ++next_) {
      if (isQuoted && *next_ == '"') {
        if (next_[1] != '"') break;
        value.add(*++next_);
      } else if (*next_ == '\\' && next_[1]) {
        value.add(escaped());
        value.keep();
      } else if (!isQuoted && std::strchr(separators_, *next_)) {
        break;
      } else {
        value.add(*next_);
      }
    }
    if (isQuoted) {
      value.keep();
      next_ += std::strcspn(next_, separators_);
    }
    value.trimEnd();
  }

  /// The character that an escape stands for; `next_` ends on the escape's last character.
  char escaped() {
    ++next_;
    int high = HexDigit(next_[0]);
    int low = high < 0 ? -1 : HexDigit(next_[1]);
    if (low < 0) return *next_;
    ++next_;
    return static_cast<char>(high * 16 + low);
  }

  const char* const separators_;
  const char* next_;
};

bool IsOneOf(const char* key, size_t length, const char* const (&names)[4]) {
  return std::ranges::any_of(
      names, [&](const char* name) { return std::strlen(name) == length && _strnicmp(key, name, length) == 0; });
}

constexpr const char* kCommonName[] = {"CN", "commonName", "2.5.4.3", "OID.2.5.4.3"};
constexpr const char* kOrganisation[] = {"O", "organizationName", "2.5.4.10", "OID.2.5.4.10"};

}  // namespace

void NameFromSubject(const char* subject, char (&name)[kNameSize]) {
  Name commonName;
  Name organisation;
  Name whole;
  if (subject) {
    Attributes attributes(subject);
    const char* key = nullptr;
    size_t length = 0;
    for (Name value; attributes.read(&key, &length, value); value = {}) {
      if (commonName.isEmpty() && IsOneOf(key, length, kCommonName)) commonName = value;
      if (organisation.isEmpty() && IsOneOf(key, length, kOrganisation)) organisation = value;
    }
    whole.add(commonName.text());
    if (!commonName.isEmpty() && !organisation.isEmpty()) whole.add(", ");
    whole.add(organisation.text());
    if (whole.isEmpty()) whole.add(subject);
  }
  static_assert(sizeof(name) == Name::kSize);
  std::memcpy(name, whole.text(), kNameSize);
}

}  // namespace legacy
