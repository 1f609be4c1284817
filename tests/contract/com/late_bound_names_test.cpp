// The names of members and arguments that scripts may use.
#include "contract/com/interface_tables.h"
#include "support/contract_test.h"
#include "support/invoke.h"

namespace {

struct ListedMember {
  std::wstring name;
  DISPID id;
  std::vector<std::wstring> arguments;
};

/// "7 SignMem([in] ISignParam* param, ...)" or "2 issuer BSTR @8" taken apart; the argument of a property has no name.
ListedMember Parsed(const std::string& line) {
  ListedMember member;
  member.id = static_cast<DISPID>(std::stol(line));
  const size_t start = line.find(' ') + 1, end = line.find_first_of(" (", start);
  member.name = Widen(line.substr(start, end - start));
  size_t at = line[end] == '(' ? end + 1 : line.size();
  while (at < line.size() - 1) {
    // The commas inside the brackets of the flags are no ends.
    const size_t closing = line.find(']', at);
    const size_t next = std::min(line.find(", [", closing), line.size() - 1);
    const std::string argument = line.substr(at, next - at);
    member.arguments.push_back(Widen(argument.substr(argument.rfind(' ') + 1)));
    at = next + 2;
  }
  return member;
}

class LateBoundNamesTest : public ContractTest, public ::testing::WithParamInterface<InterfaceTable> {
 protected:
  Ptr<IDispatch> object = MakeUnknown(ClassOf(GetParam().name).clsid, IID_IDispatch).as<IDispatch>();

  HRESULT ids(std::vector<std::wstring> names, std::vector<DISPID>& found) {
    std::vector<LPOLESTR> pointers;
    for (std::wstring& name : names) pointers.push_back(name.data());
    found.assign(names.size(), 77);
    return object->GetIDsOfNames(IID_NULL, pointers.data(), static_cast<UINT>(names.size()), LOCALE_USER_DEFAULT,
                                 found.data());
  }
};

TEST_P(LateBoundNamesTest, EveryMemberHasItsIdentifierInAnyCase) {
  for (const std::string& line : GetParam().members) {
    const ListedMember member = Parsed(line);
    std::wstring upper = member.name;
    for (wchar_t& character : upper) character = towupper(character);
    for (const std::wstring& name : {member.name, upper}) {
      std::vector<DISPID> found;
      EXPECT_OK(ids({name}, found)) << line;
      EXPECT_EQ(member.id, found[0]) << line;
    }
  }
}

TEST_P(LateBoundNamesTest, EveryArgumentHasItsNumber) {
  for (const std::string& line : GetParam().members) {
    const ListedMember member = Parsed(line);
    std::vector<std::wstring> names{member.name};
    names.insert(names.end(), member.arguments.begin(), member.arguments.end());
    std::vector<DISPID> found;
    EXPECT_OK(ids(names, found)) << line;
    for (size_t i = 0; i < member.arguments.size(); ++i) EXPECT_EQ(static_cast<DISPID>(i), found[i + 1]) << line;
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

INSTANTIATE_TEST_SUITE_P(Interfaces, LateBoundNamesTest, ::testing::ValuesIn(kInterfaces),
                         [](const auto& info) { return info.param.name; });

using LateBoundSecretTest = ContractTest;

TEST_F(LateBoundSecretTest, ExtraNameCannotBeReachedByName) {
  EXPECT_HR(DISP_E_UNKNOWNNAME, GetProperty(Make<IAltName>(), L"extraName").result);
}

}  // namespace
