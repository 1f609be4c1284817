// The type library inside the module: what object browsers, compilers and late-bound callers read.
#include "contract/com/interface_tables.h"
#include "contract/com/registration.h"

namespace {

class TypeLibraryTest : public ContractTest {
 protected:
  /// The type information of every kind, or of one.
  std::vector<Ptr<ITypeInfo>> types(int kind = -1) {
    std::vector<Ptr<ITypeInfo>> found;
    for (UINT i = 0; i < library->GetTypeInfoCount(); ++i) {
      Ptr<ITypeInfo> info;
      EXPECT_OK(library->GetTypeInfo(i, info.out()));
      if (kind == -1 || FactsOf(info).kind == kind) found.push_back(info);
    }
    return found;
  }

  const Ptr<ITypeLib> library = ModuleTypeLibrary();
};

TEST_F(TypeLibraryTest, LibraryHasItsIdentity) {
  ASSERT_NE(nullptr, library.get());
  Bstr name, help;
  ASSERT_OK(library->GetDocumentation(-1, name.inOut(), help.inOut(), nullptr, nullptr));
  EXPECT_EQ(L"QUIVOCOMLib", name.text());
  EXPECT_EQ(L"quivocom 1.0 Type Library", help.text());
  TLIBATTR* attributes = nullptr;
  ASSERT_OK(library->GetLibAttr(&attributes));
  EXPECT_TRUE(attributes->guid == GuidOf(kLibraryId));
  EXPECT_EQ(1, attributes->wMajorVerNum);
  EXPECT_EQ(0, attributes->wMinorVerNum);
  EXPECT_EQ(SYS_WIN64, attributes->syskind);
  library->ReleaseTLibAttr(attributes);
}

TEST_F(TypeLibraryTest, MembersStandInOrderWithIdentifiersAndArguments) {
  for (const InterfaceTable& table : kInterfaces) {
    std::vector<std::string> expected;
    for (const std::string& line : table.members) expected.push_back(line.substr(0, line.find(" @")));
    EXPECT_EQ(expected, ListingOf(MembersOf(table.name))) << table.name;
  }
}

TEST_F(TypeLibraryTest, SlotsFollowThoseOfIDispatch) {
  for (const InterfaceTable& table : kInterfaces) {
    int offset = 7 * sizeof(void*);
    for (const Member& member : MembersOf(table.name)) {
      EXPECT_EQ(offset, member.offset) << table.name << "." << member.name;
      offset += sizeof(void*);
    }
  }
}

// The convention of calls has registers of their own for these: a late-bound call passes them in the first alone.
TEST_F(TypeLibraryTest, ADateIsTheOnlyArgumentOfItsMemberAndNoOtherTypeIsAFloatingOne) {
  for (const InterfaceTable& table : kInterfaces) {
    for (const Member& member : MembersOf(table.name)) {
      for (const Argument& argument : member.arguments) {
        SCOPED_TRACE(table.name + "." + member.name + ": " + argument.type);
        EXPECT_TRUE(argument.type != "DATE" || member.arguments.size() == 1);
        EXPECT_TRUE(argument.type != "double" && argument.type != "float");
      }
    }
  }
}

TEST_F(TypeLibraryTest, InterfacesHaveTheirIdentifiers) {
  for (const InterfaceTable& table : kInterfaces) {
    EXPECT_TRUE(FactsOf(TypeNamed(library, table.name)).guid == GuidOf(Widen(table.iid))) << table.name;
  }
}

TEST_F(TypeLibraryTest, InterfacesAreDualButTheLegacyOne) {
  for (const InterfaceTable& table : kInterfaces) {
    SCOPED_TRACE(table.name);
    Ptr<ITypeInfo> info = TypeNamed(library, table.name);
    const WORD flags = FactsOf(info).flags;
    EXPECT_EQ(TYPEFLAG_FDISPATCHABLE, flags & TYPEFLAG_FDISPATCHABLE);
    EXPECT_EQ(TYPEFLAG_FOLEAUTOMATION, FactsOf(VirtualTableOf(info)).flags & TYPEFLAG_FOLEAUTOMATION);
    EXPECT_EQ(table.name == "Ipkiobj" ? 0 : TYPEFLAG_FDUAL, flags & TYPEFLAG_FDUAL);
  }
}

TEST_F(TypeLibraryTest, EveryClassIsCreatableAndHasItsDefaultInterface) {
  EXPECT_EQ(kInterfaces.size(), Classes().size());
  EXPECT_EQ(kRegistered.size(), Classes().size());
  for (const RegisteredClass& row : kRegistered) {
    SCOPED_TRACE(row);
    Ptr<ITypeInfo> info = TypeNamed(library, Narrow(row.name));
    ASSERT_NE(nullptr, info.get());
    EXPECT_TRUE(FactsOf(info).guid == GuidOf(row.clsid));
    EXPECT_EQ(TKIND_COCLASS, FactsOf(info).kind);
    EXPECT_EQ(TYPEFLAG_FCANCREATE, FactsOf(info).flags & TYPEFLAG_FCANCREATE);
    ASSERT_EQ(1, FactsOf(info).implemented);
    INT flags = 0;
    EXPECT_OK(info->GetImplTypeFlags(0, &flags));
    EXPECT_EQ(IMPLTYPEFLAG_FDEFAULT, flags & IMPLTYPEFLAG_FDEFAULT);
    EXPECT_EQ(Narrow(row.name), ClassOf("I" + Narrow(row.name)).name);
  }
}

TEST_F(TypeLibraryTest, EnumerationsHaveTheirValues) {
  std::map<std::string, std::string> found;
  for (ITypeInfo* info : types(TKIND_ENUM)) found[DeclaredNameOf(info)] = ConstantsOf(info);
  EXPECT_EQ(kEnums.size(), found.size());
  for (const EnumTable& table : kEnums) EXPECT_EQ(table.members, found[table.name]) << table.name;
}

TEST_F(TypeLibraryTest, EnumerationsAreKnownByTheirNames) {
  for (const EnumTable& table : kEnums) EXPECT_NE(nullptr, TypeNamed(library, table.name).get()) << table.name;
}

TEST_F(TypeLibraryTest, NamedEnumerationsHaveTheirHelp) {
  EXPECT_EQ("Initialization flags enum", HelpOf(TypeNamed(library, "__MIDL_IQUIVO_0001")));
  Ptr<ITypeInfo> request = TypeNamed(library, "XmlRequest_Flag_t");
  ASSERT_NE(nullptr, request.get());
  EXPECT_EQ("Xml Request flags enum", HelpOf(request));
}

TEST_F(TypeLibraryTest, EverythingHasAHelpString) {
  std::string missing;
  for (ITypeInfo* info : types()) {
    for (const std::string& name : WithoutHelp(VirtualTableOf(info))) missing += name + " ";
  }
  EXPECT_EQ("", missing);
}

TEST_F(TypeLibraryTest, ObjectsShowTheTypeInformationOfTheirInterface) {
  for (const RegisteredClass& row : kRegistered) {
    SCOPED_TRACE(row);
    Ptr<IDispatch> object = MakeUnknown(GuidOf(row.clsid), IID_IDispatch).as<IDispatch>();
    UINT count = 0;
    EXPECT_OK(object->GetTypeInfoCount(&count));
    EXPECT_EQ(1u, count);
    EXPECT_EQ("I" + Narrow(row.name), InterfaceNameOf(object));
  }
}

TEST_F(TypeLibraryTest, ThereIsNoSecondTypeInformation) {
  Ptr<ITypeInfo> info;
  EXPECT_HR(DISP_E_BADINDEX, Make<ICertId>()->GetTypeInfo(1, 0, info.out()));
  EXPECT_EQ(nullptr, info.get());
}

TEST_F(TypeLibraryTest, ObjectsOfAClassShareTheirTypeInformation) {
  Ptr<ITypeInfo> first, second;
  ASSERT_OK(Make<ICertId>()->GetTypeInfo(0, 0, first.out()));
  ASSERT_OK(Make<ICertId>()->GetTypeInfo(0, 0, second.out()));
  EXPECT_EQ(first.get(), second.get());
}

}  // namespace
