// Every operation with each of the platform's functions failing once, in each of its calls: the failure is reported,
// nothing is lost, nothing stays locked.
#include <set>

#include "callers.h"
#include "contract/properties/properties.h"
#include "support/import_patch.h"
#include "support/invoke.h"

namespace {

/// A function of the platform that fails when it is asked to.
class Import {
 public:
  virtual ~Import() = default;
  void fail(long succeeding) { until_ = succeeding; }
  bool failed() const { return until_ == kFailed; }

 protected:
  bool fails() {
    if (until_ < 0 || until_-- != 0) return false;
    until_ = kFailed;
    return true;
  }

 private:
  static constexpr long kFailed = -2;
  long until_ = -1;
};

template <FunctionName name, class Function>
class FailingImport;

template <FunctionName name, class Result, class... Arguments>
class FailingImport<name, Result(Arguments...)> final : public Import {
 public:
  FailingImport(Result (*function)(Arguments...), Result failure)
      : hook_([=, this](Arguments... arguments) {
          if (!fails()) return function(arguments...);
          SetLastError(ERROR_NOT_ENOUGH_MEMORY);
          return failure;
        }) {}

 private:
  ImportHook<name, Result(Arguments...)> hook_;
};

/// The name of a function of the platform, and how the module's import of it is made to fail.
struct Row {
  std::string name;
  std::unique_ptr<Import> (*make)();
};
std::ostream& operator<<(std::ostream& out, const Row& row) { return out << row.name; }

template <FunctionName name, class Function>
std::unique_ptr<Import> MakeImport(Function* function, auto failure) {
  return std::make_unique<FailingImport<name, Function>>(function, failure);
}

#define FAILING(function, failure)                                                                    \
  Row {                                                                                               \
#function, []() -> std::unique_ptr < Import> { return MakeImport<#function>(function, failure); } \
  }

const Row kRows[] = {FAILING(SysAllocString, nullptr),
                     FAILING(SysAllocStringLen, nullptr),
                     FAILING(SysReAllocString, 0),
                     FAILING(SysReAllocStringLen, 0),
                     FAILING(VariantChangeType, E_OUTOFMEMORY),
                     FAILING(SafeArrayCreateVector, nullptr),
                     FAILING(SafeArrayPutElement, E_OUTOFMEMORY),
                     FAILING(SafeArrayAccessData, E_OUTOFMEMORY),
                     FAILING(CoCreateInstance, E_OUTOFMEMORY),
                     FAILING(WideCharToMultiByte, 0),
                     FAILING(MultiByteToWideChar, 0),
                     FAILING(CreateFileW, INVALID_HANDLE_VALUE),
                     FAILING(ReadFile, FALSE),
                     FAILING(GetFileSize, INVALID_FILE_SIZE),
                     FAILING(GetFileAttributesA, INVALID_FILE_ATTRIBUTES),
                     FAILING(realloc, nullptr)};

class PlatformFailureTest : public FaultTest, public ::testing::WithParamInterface<Row> {
 protected:
  /// Runs a call with the function failing in each of its calls in turn, until one run needs no more of them.
  void sweep(const Caller& caller) {
    for (long succeeding = 0; succeeding < 500; ++succeeding) {
      TearDown();
      engine().reset();
      SetUp();
      answerRichly();
      const std::unique_ptr<Import> import = GetParam().make();
      import->fail(succeeding);
      const HRESULT result = caller.call(*this);
      const bool happened = import->failed();
      import->fail(-1);
      legacy().FreeRecipCerts();
      EXPECT_EQ(std::vector<std::string>{}, engine().outstanding()) << caller << " after " << succeeding;
      if (!happened) return;
      ++failures_;
      EXPECT_TRUE(FAILED(result) || (result == S_FALSE && answersFalse(caller))) << caller << " after " << succeeding;
    }
    FAIL() << caller << " never succeeded";
  }

  /// The same for a late-bound property: read as it is created, set, and read again.
  void sweep(const Property& property) {
    const std::wstring name = Widen(property.getter.name);
    for (long succeeding = 0; succeeding < 500; ++succeeding) {
      const Ptr<IDispatch> object = property.make();
      const Variant value = isNumber(property) ? Variant::text(L"5") : property.sample();
      const std::unique_ptr<Import> import = GetParam().make();
      import->fail(succeeding);
      HRESULT result = GetProperty(object, name.c_str()).result;
      if (!import->failed())
        result = (property.isObject() ? PutRefProperty : PutProperty)(object, name.c_str(), value).result;
      if (!import->failed()) result = GetProperty(object, name.c_str()).result;
      const bool happened = import->failed();
      import->fail(-1);
      if (!happened) return;
      ++failures_;
      EXPECT_TRUE(FAILED(result)) << property << " after " << succeeding;
    }
    FAIL() << property << " never succeeded";
  }

  int failures() const { return failures_; }

 private:
  /// Of these methods S_FALSE is the failure: "False for an access error" in docs/behaviour.md.
  bool answersFalse(const Caller& caller) {
    static const std::set<std::string> kUnreadable{"pkiobjUnencrypt", "pkiobjVerifyAndUnencrypt"};
    return caller.method.ends_with("IsSigned") ||
           (GetParam().name == "GetFileAttributesA" && kUnreadable.contains(caller.method));
  }

  static bool isNumber(const Property& property) { return property.type() == "long"; }

  /// Answers with everything that an engine can hand out.
  void answerRichly() {
    for (const OperationArgument& row : OutputsOf(Output::kBytes)) engine().on(row.function).output = {1, 2, 3};
    for (const OperationArgument& row : OutputsOf(Output::kObjects)) {
      engine().on(row.function).signatures = {{0, 0, FullCertificate()}, {5, 0, {}}};
      engine().on(row.function).certificates = {FullCertificate()};
    }
    for (const OperationArgument& row : OutputsOf(Output::kCertificate))
      engine().on(row.function).certificate = FullCertificate();
    for (const char* function : {"QUIVO_EncodeMem", "QUIVO_Ctrl", "QUIVO_GetErrorText"})
      engine().on(function).text = "text";
  }

  int failures_ = 0;
};

TEST_P(PlatformFailureTest, IsReportedByEveryMethodAndProperty) {
  for (const Caller& caller : Callers()) {
    // Freeing what could not be added is a success.
    if (caller.method != "pkiobjFreeRecipCerts") sweep(caller);
  }
  for (const Property& property : AllProperties()) sweep(property);
  EXPECT_LT(0, failures());
}

INSTANTIATE_TEST_SUITE_P(Functions, PlatformFailureTest, ::testing::ValuesIn(kRows), NameOfRow<Row>);

HRESULT WINAPI FailToLoad(LPCOLESTR, REGKIND, ITypeLib**) { return E_OUTOFMEMORY; }

TEST_F(FaultTest, TypeLibraryThatCannotBeLoadedIsReportedAndLoadedLater) {
  leaveOutComMemory();
  // The other module has its type library already.
  const ModuleCopy fresh(L"without a library\\tavlcom.dll");
  ASSERT_TRUE(fresh.loaded());
  Ptr<IClassFactory> factory;
  ASSERT_OK(fresh.entry<LPFNGETCLASSOBJECT>("DllGetClassObject")(ClassOf("ICertId").clsid, IID_IClassFactory,
                                                                 factory.voidOut()));
  Ptr<IDispatch> object;
  ASSERT_OK(factory->CreateInstance(nullptr, IID_IDispatch, object.voidOut()));
  wchar_t text[] = L"issuer";
  LPOLESTR name = text;
  DISPID id = 0;
  {
    const ImportPatch failing(GetModuleHandleW(fresh.path().c_str()), "LoadTypeLibEx",
                              reinterpret_cast<void*>(FailToLoad));
    Ptr<ITypeInfo> info;
    EXPECT_HR(E_OUTOFMEMORY, object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id));
    EXPECT_HR(E_OUTOFMEMORY, object->GetTypeInfo(0, LOCALE_USER_DEFAULT, info.out()));
    EXPECT_EQ(nullptr, info.get());
  }
  EXPECT_OK(object->GetIDsOfNames(IID_NULL, &name, 1, LOCALE_USER_DEFAULT, &id));
  object.reset();
  factory.reset();
  EXPECT_OK(fresh.canUnloadNow());
}

}  // namespace
