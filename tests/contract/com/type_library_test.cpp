// The type library inside the module: what object browsers, compilers and late-bound callers are told.
#include "support/type_library.h"

#include "contract/com/interface_tables.h"
#include "support/contract_test.h"

namespace {

using TypeLibraryTest = ContractTest;

std::vector<int> consecutiveSlots(size_t count) {
  constexpr int kFirstAfterDispatch = 7 * sizeof(void*);
  std::vector<int> offsets;
  for (size_t i = 0; i < count; ++i) offsets.push_back(static_cast<int>(kFirstAfterDispatch + i * sizeof(void*)));
  return offsets;
}

TEST_F(TypeLibraryTest, LibraryHasItsIdentity) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  ASSERT_NE(nullptr, library.get());
  Bstr name, help;
  ASSERT_OK(library->GetDocumentation(-1, name.inOut(), help.inOut(), nullptr, nullptr));
  EXPECT_EQ(L"QUIVOCOMLib", name.text());
  EXPECT_EQ(L"quivocom 1.0 Type Library", help.text());
  TLIBATTR* attributes = nullptr;
  ASSERT_OK(library->GetLibAttr(&attributes));
  EXPECT_TRUE(attributes->guid == guidOf(kLibraryId));
  EXPECT_EQ(1, attributes->wMajorVerNum);
  EXPECT_EQ(0, attributes->wMinorVerNum);
  EXPECT_EQ(SYS_WIN64, attributes->syskind);
  library->ReleaseTLibAttr(attributes);
}

/// The tag and the name of this one enumeration are both used.
std::string withTypedefName(std::string member) {
  const std::string tag = "__MIDL_IQUIVO_0001";
  const size_t at = member.find(tag);
  return at == std::string::npos ? member : member.replace(at, tag.size(), "Init_Flag_t");
}

TEST_F(TypeLibraryTest, MembersStandInOrderWithIdentifiersAndArguments) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  for (const InterfaceTable& table : kInterfaces) {
    SCOPED_TRACE(table.name);
    Ptr<ITypeInfo> info = typeNamed(library, table.name);
    ASSERT_NE(nullptr, info.get());
    const std::vector<std::string> found = membersOf(virtualTableOf(info));
    ASSERT_EQ(table.members.size(), found.size());
    for (size_t i = 0; i < found.size(); ++i) EXPECT_EQ(table.members[i], withTypedefName(found[i]));
  }
}

TEST_F(TypeLibraryTest, SlotsFollowThoseOfIDispatch) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  for (const InterfaceTable& table : kInterfaces) {
    SCOPED_TRACE(table.name);
    Ptr<ITypeInfo> info = virtualTableOf(typeNamed(library, table.name));
    EXPECT_EQ(consecutiveSlots(table.members.size()), slotOffsetsOf(info));
  }
}

TEST_F(TypeLibraryTest, InterfacesHaveTheirIdentifiers) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  for (const ClassFacts& facts : kClasses) {
    SCOPED_TRACE(facts);
    Ptr<ITypeInfo> info = typeNamed(library, narrow(facts.interfaceName));
    ASSERT_NE(nullptr, info.get());
    EXPECT_TRUE(factsOf(info).guid == guidOf(facts.iid));
  }
}

TEST_F(TypeLibraryTest, InterfacesAreDualButTheLegacyOne) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  for (const ClassFacts& facts : kClasses) {
    SCOPED_TRACE(facts);
    Ptr<ITypeInfo> info = typeNamed(library, narrow(facts.interfaceName));
    const WORD flags = factsOf(info).flags;
    const bool legacy = std::wstring(facts.name) == L"pkiobj";
    EXPECT_EQ(TYPEFLAG_FDISPATCHABLE, flags & TYPEFLAG_FDISPATCHABLE);
    EXPECT_EQ(TYPEFLAG_FOLEAUTOMATION, factsOf(virtualTableOf(info)).flags & TYPEFLAG_FOLEAUTOMATION);
    EXPECT_EQ(legacy ? 0 : TYPEFLAG_FDUAL, flags & TYPEFLAG_FDUAL);
  }
}

TEST_F(TypeLibraryTest, EveryClassIsCreatableAndHasItsDefaultInterface) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  for (const ClassFacts& facts : kClasses) {
    SCOPED_TRACE(facts);
    Ptr<ITypeInfo> info = typeNamed(library, narrow(facts.name));
    ASSERT_NE(nullptr, info.get());
    EXPECT_TRUE(factsOf(info).guid == guidOf(facts.clsid));
    EXPECT_EQ(TKIND_COCLASS, factsOf(info).kind);
    EXPECT_EQ(TYPEFLAG_FCANCREATE, factsOf(info).flags & TYPEFLAG_FCANCREATE);
    ASSERT_EQ(1, factsOf(info).implemented);
    INT flags = 0;
    HREFTYPE reference = 0;
    Ptr<ITypeInfo> implemented;
    EXPECT_OK(info->GetImplTypeFlags(0, &flags));
    EXPECT_EQ(IMPLTYPEFLAG_FDEFAULT, flags & IMPLTYPEFLAG_FDEFAULT);
    ASSERT_OK(info->GetRefTypeOfImplType(0, &reference));
    ASSERT_OK(info->GetRefTypeInfo(reference, implemented.out()));
    EXPECT_EQ(narrow(facts.interfaceName), nameOf(implemented));
  }
}

TEST_F(TypeLibraryTest, EnumerationsHaveTheirValues) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  std::map<std::string, int32_t> all;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    Ptr<ITypeInfo> info;
    ASSERT_OK(library->GetTypeInfo(i, info.out()));
    if (factsOf(info).kind == TKIND_ENUM) all.merge(constantsOf(info));
  }
  std::map<std::string, int32_t> expected;
  for (const EnumTable& table : kEnums) expected.insert(table.members.begin(), table.members.end());
  EXPECT_EQ(expected, all);
}

TEST_F(TypeLibraryTest, MembersOfAnEnumerationStandTogether) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    Ptr<ITypeInfo> info;
    ASSERT_OK(library->GetTypeInfo(i, info.out()));
    if (factsOf(info).kind != TKIND_ENUM) continue;
    const std::map<std::string, int32_t> constants = constantsOf(info);
    const auto isThisOne = [&](const EnumTable& table) {
      return constants == std::map<std::string, int32_t>(table.members.begin(), table.members.end());
    };
    EXPECT_TRUE(std::any_of(kEnums.begin(), kEnums.end(), isThisOne)) << nameOf(info);
  }
}

TEST_F(TypeLibraryTest, EnumerationsAreKnownByTheirNames) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  for (const EnumTable& table : kEnums) EXPECT_NE(nullptr, typeNamed(library, table.name).get()) << table.name;
}

TEST_F(TypeLibraryTest, NamedEnumerationsHaveTheirHelp) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  EXPECT_EQ("Initialization flags enum", helpOf(typeNamed(library, "__MIDL_IQUIVO_0001")));
  Ptr<ITypeInfo> request = typeNamed(library, "XmlRequest_Flag_t");
  ASSERT_NE(nullptr, request.get());
  EXPECT_EQ("Xml Request flags enum", helpOf(request));
}

TEST_F(TypeLibraryTest, EverythingHasAHelpString) {
  Ptr<ITypeLib> library = moduleTypeLibrary();
  std::string missing;
  for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
    Ptr<ITypeInfo> info;
    ASSERT_OK(library->GetTypeInfo(i, info.out()));
    for (const std::string& name : withoutHelp(virtualTableOf(info))) missing += name + " ";
  }
  EXPECT_EQ("", missing);
}

TEST_F(TypeLibraryTest, ObjectsShowTheTypeInformationOfTheirInterface) {
  for (const ClassFacts& facts : kClasses) {
    SCOPED_TRACE(facts);
    Ptr<IUnknown> object = makeUnknown(guidOf(facts.clsid), IID_IDispatch);
    Ptr<IDispatch> dispatch = object.as<IDispatch>();
    UINT count = 0;
    EXPECT_OK(dispatch->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    Ptr<ITypeInfo> info;
    ASSERT_OK(dispatch->GetTypeInfo(0, 0, info.out()));
    EXPECT_EQ(narrow(facts.interfaceName), nameOf(info));
  }
}

TEST_F(TypeLibraryTest, ThereIsNoSecondTypeInformation) {
  Ptr<ICertId> id = make<CertId>();
  Ptr<ITypeInfo> info;
  EXPECT_HR(DISP_E_BADINDEX, id->GetTypeInfo(1, 0, info.out()));
  EXPECT_EQ(nullptr, info.get());
}

TEST_F(TypeLibraryTest, ObjectsOfAClassShareTheirTypeInformation) {
  Ptr<ITypeInfo> first, second;
  ASSERT_OK(make<CertId>()->GetTypeInfo(0, 0, first.out()));
  ASSERT_OK(make<CertId>()->GetTypeInfo(0, 0, second.out()));
  EXPECT_EQ(first.get(), second.get());
}

}  // namespace
