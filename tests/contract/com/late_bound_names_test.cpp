// The names of members and arguments that scripts may use.
#include "contract/com/interface_tables.h"
#include "support/contract_test.h"
#include "support/invoke.h"
#include "support/type_library.h"

namespace {

struct Member {
  std::wstring name;
  DISPID id;
  std::vector<std::wstring> arguments;
};

std::wstring wide(const std::string& text) { return std::wstring(text.begin(), text.end()); }

/// "7 SignMem([in] ISignParam* param, ...)" taken apart; the names of a property's arguments are left out.
Member parsed(const std::string& line) {
  Member member;
  member.id = static_cast<DISPID>(std::stol(line));
  const size_t open = line.find('(');
  const size_t start = line.rfind(' ', open) + 1;
  member.name = wide(line.substr(start, open - start));
  const bool method = line.find(' ') + 1 == start;
  size_t at = open + 1;
  while (method && at < line.size() - 1) {
    // The commas inside the brackets of the flags are no ends.
    const size_t closing = line.find(']', at);
    const size_t end = std::min(line.find(", [", closing), line.size() - 1);
    const std::string argument = line.substr(at, end - at);
    member.arguments.push_back(wide(argument.substr(argument.rfind(' ') + 1)));
    at = end + 2;
  }
  return member;
}

class LateBoundNamesTest : public ContractTest, public ::testing::WithParamInterface<ClassFacts> {
 protected:
  Ptr<IDispatch> object = makeUnknown(guidOf(GetParam().clsid), IID_IDispatch).as<IDispatch>();

  const InterfaceTable& table() {
    return *std::find_if(kInterfaces.begin(), kInterfaces.end(),
                         [](const InterfaceTable& table) { return table.name == narrow(GetParam().interfaceName); });
  }
  HRESULT ids(std::vector<std::wstring> names, std::vector<DISPID>& found) {
    std::vector<LPOLESTR> pointers;
    for (std::wstring& name : names) pointers.push_back(name.data());
    found.assign(names.size(), 77);
    return object->GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(names.size()), LOCALE_USER_DEFAULT,
                                 found.data());
  }
};

TEST_P(LateBoundNamesTest, EveryMemberHasItsIdentifier) {
  for (const std::string& line : table().members) {
    const Member member = parsed(line);
    std::vector<DISPID> found;
    EXPECT_OK(ids({member.name}, found)) << line;
    EXPECT_EQ(member.id, found[0]) << line;
  }
}

TEST_P(LateBoundNamesTest, EveryArgumentHasItsNumber) {
  for (const std::string& line : table().members) {
    const Member member = parsed(line);
    std::vector<std::wstring> names{member.name};
    names.insert(names.end(), member.arguments.begin(), member.arguments.end());
    std::vector<DISPID> found;
    EXPECT_OK(ids(names, found)) << line;
    for (size_t i = 0; i < member.arguments.size(); ++i) EXPECT_EQ(static_cast<DISPID>(i), found[i + 1]) << line;
  }
}

TEST_P(LateBoundNamesTest, CaseOfANameDoesNotMatter) {
  for (const std::string& line : table().members) {
    Member member = parsed(line);
    for (wchar_t& character : member.name) character = towupper(character);
    std::vector<DISPID> found;
    EXPECT_OK(ids({member.name}, found)) << line;
    EXPECT_EQ(member.id, found[0]) << line;
  }
}

TEST_P(LateBoundNamesTest, UnknownNameIsRefused) {
  std::vector<DISPID> found;
  EXPECT_HR(DISP_E_UNKNOWNNAME, ids({L"noSuchMember"}, found));
  EXPECT_EQ(DISPID_UNKNOWN, found[0]);
}

TEST_P(LateBoundNamesTest, UnknownIdentifierIsRefused) {
  DISPPARAMS none{};
  EXPECT_HR(DISP_E_MEMBERNOTFOUND,
            object->Invoke(4711, IID_NULL, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
}

TEST_P(LateBoundNamesTest, OtherInterfaceIdentifierIsRefused) {
  DISPPARAMS none{};
  EXPECT_HR(DISP_E_UNKNOWNINTERFACE,
            object->Invoke(1, IID_IDispatch, 0, DISPATCH_METHOD, &none, nullptr, nullptr, nullptr));
}

INSTANTIATE_TEST_SUITE_P(Classes, LateBoundNamesTest, ::testing::ValuesIn(kClasses),
                         [](const auto& info) { return narrow(info.param.name); });

using LateBoundSecretTest = ContractTest;

TEST_F(LateBoundSecretTest, ExtraNameCannotBeReachedByName) {
  EXPECT_HR(DISP_E_UNKNOWNNAME, getProperty(make<AltName>(), L"extraName").result);
}

}  // namespace
