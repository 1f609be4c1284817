// Names from texts: the text of a name is a text of that name, in both forms.
#include "standin/certificates/names.h"
#include "attack/fuzz/input.h"
#include "legacy/subject_name.h"
#include "standin/certificates/distinguished_name.h"

using namespace standin;

void fuzz::Run(Input bytes) {
  const std::string text = TextOf(bytes);
  char shown[legacy::kNameSize];
  legacy::NameFromSubject(text.c_str(), shown);
  const NamePtr name = NameFromText(text);
  if (name == nullptr) return;
  for (const NameForm form : {NameForm::kShort, NameForm::kQualified}) {
    const std::string written = NameText(name.get(), form);
    Require(IsNameText(name.get(), written));
    Require(NameContains(name.get(), written));
  }
  IsNameText(name.get(), text);
  NameContains(name.get(), text.substr(0, text.size() / 2));
}
