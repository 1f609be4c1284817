// Conversions between strings and the ANSI code page that fail: at the measurement of a text, or at its conversion.
#include "contract/properties/properties.h"
#include "support/import_patch.h"
#include "support/operations.h"
#include "support/registry.h"
#include "support/temp_file.h"

namespace {

enum class Step { kMeasurement, kConversion };
constexpr Step kSteps[] = {Step::kMeasurement, Step::kConversion};

constexpr DWORD kError = ERROR_NO_UNICODE_TRANSLATION;
constexpr uint32_t kMapped = 0xE0690459;
constexpr uint32_t kUnmapped = 0x80070459;
/// A last error that is no number of Win32 but a result already.
constexpr uint32_t kNegativeError = 0x80004005;

/// Lets the conversion of one text fail, in either direction.
class ConversionFailure {
 public:
  void at(Step step, const std::wstring& text, DWORD error = kError) {
    text_ = text;
    isMeasurement_ = step == Step::kMeasurement;
    error_ = error;
    isArmed_ = true;
  }
  bool happened() const { return !isArmed_; }

 private:
  bool fails(const std::wstring& text, bool isMeasurement) {
    if (!isArmed_ || text != text_ || isMeasurement != isMeasurement_) return false;
    isArmed_ = false;
    SetLastError(error_);
    return true;
  }

  std::wstring text_;
  bool isMeasurement_ = false;
  DWORD error_ = 0;
  bool isArmed_ = false;

  ImportHook<"WideCharToMultiByte", decltype(WideCharToMultiByte)> toAnsi_{
      [this](UINT page, DWORD flags, LPCWCH text, int length, LPSTR buffer, int size, LPCCH replacement, LPBOOL used) {
        EXPECT_EQ(static_cast<UINT>(CP_ACP), page);
        EXPECT_EQ(0u, flags);
        EXPECT_EQ(-1, length);
        EXPECT_EQ(nullptr, replacement);
        EXPECT_EQ(nullptr, used);
        if (text != nullptr && fails(text, size == 0)) return 0;
        return WideCharToMultiByte(page, flags, text, length, buffer, size, replacement, used);
      }};
  ImportHook<"MultiByteToWideChar", decltype(MultiByteToWideChar)> toWide_{
      [this](UINT page, DWORD flags, LPCCH text, int length, LPWSTR buffer, int size) {
        EXPECT_EQ(static_cast<UINT>(CP_ACP), page);
        EXPECT_EQ(0u, flags);
        EXPECT_EQ(-1, length);
        if (fails(WideOf(text), size == 0)) return 0;
        return MultiByteToWideChar(page, flags, text, length, buffer, size);
      }};
};

class InputConversionTest : public ContractTest, public ::testing::WithParamInterface<OperationArgument> {
 protected:
  HRESULT pass() { return GetParam().call(objects, Bstr(L"name")); }
  size_t calls() { return engine().count(GetParam().function); }

  Objects objects{openQuivo()};
  ConversionFailure failure;
};

TEST_P(InputConversionTest, FailureIsReturnedMappedWithoutTheEngine) {
  for (Step step : kSteps) {
    failure.at(step, L"name");
    EXPECT_HR(kMapped, pass());
    EXPECT_TRUE(failure.happened());
    EXPECT_EQ(0u, calls());
  }
}

TEST_P(InputConversionTest, NegativeLastErrorIsReturnedAsItIs) {
  for (Step step : kSteps) {
    failure.at(step, L"name", kNegativeError);
    EXPECT_HR(kNegativeError, pass());
    EXPECT_EQ(0u, calls());
  }
}

TEST_P(InputConversionTest, LastErrorZeroIsNoFailure) {
  failure.at(Step::kMeasurement, L"name", 0);
  EXPECT_OK(pass());
  EXPECT_TRUE(failure.happened());
  EXPECT_TRUE(engine().only(GetParam().function).null(GetParam().argument));
}

INSTANTIATE_TEST_SUITE_P(Arguments, InputConversionTest, ::testing::ValuesIn(StringInputs()),
                         NameOfRow<OperationArgument>);

class SessionConversionTest : public ContractTest {
 protected:
  Ptr<IQUIVO> quivo = Make<IQUIVO>();
  ConversionFailure failure;
};

TEST_F(SessionConversionTest, FailureOfTheProfileIsReturnedUnmapped) {
  for (Step step : kSteps) {
    failure.at(step, L"profile");
    EXPECT_HR(kUnmapped, quivo->Initialize(Bstr(L"profile"), Init_Flag_t{}));
    failure.at(step, L"profile", kNegativeError);
    EXPECT_HR(kNegativeError, quivo->Initialize(Bstr(L"profile"), Init_Flag_t{}));
  }
  EXPECT_EQ(0u, engine().count("QUIVO_Initialize"));
}

TEST_F(SessionConversionTest, LastErrorZeroOfTheProfileIsNoFailure) {
  failure.at(Step::kMeasurement, L"profile", 0);
  EXPECT_OK(quivo->Initialize(Bstr(L"profile"), Init_Flag_t{}));
  EXPECT_TRUE(engine().only("QUIVO_Initialize").null(0));
}

TEST_F(SessionConversionTest, FailureOfTheNameOfAnInterfaceIsReturnedUnmapped) {
  failure.at(Step::kMeasurement, L"ILocalParam");
  EXPECT_HR(kUnmapped, quivo->InitializeEx(Make<ILocalParam>()));
  EXPECT_TRUE(failure.happened());
  EXPECT_EQ(0u, engine().count("QUIVO_InitializeEx"));
}

TEST_F(SessionConversionTest, InterfaceWithoutANameIsRefused) {
  failure.at(Step::kMeasurement, L"ILocalParam", 0);
  EXPECT_HR(kInvalidArgument, quivo->InitializeEx(Make<ILocalParam>()));
  EXPECT_EQ(0u, engine().count("QUIVO_InitializeEx"));
}

class PropertyConversionTest : public ContractTest, public ::testing::WithParamInterface<Property> {
 protected:
  HRESULT put(const wchar_t* value) { return GetParam().put(object, Bstr(value)); }
  std::wstring text() {
    Bstr value;
    EXPECT_OK(GetParam().get(object, value.inOut()));
    return value.text();
  }

  Ptr<IDispatch> object = GetParam().make();
  ConversionFailure failure;
};

TEST_P(PropertyConversionTest, TextThatCannotBeMeasuredKeepsTheOldOne) {
  for (DWORD error : {kError, DWORD{kNegativeError}, DWORD{0}}) {
    EXPECT_OK(put(L"kept"));
    failure.at(Step::kMeasurement, L"new", error);
    EXPECT_HR(HRESULT_FROM_WIN32(error), put(L"new"));
    EXPECT_EQ(L"kept", text());
  }
}

TEST_P(PropertyConversionTest, TextThatCannotBeConvertedLeavesNone) {
  EXPECT_OK(put(L"old"));
  failure.at(Step::kConversion, L"new");
  EXPECT_HR(kUnmapped, put(L"new"));
  EXPECT_EQ(L"", text());
}

TEST_P(PropertyConversionTest, FailureOfAReadingIsReturnedUnmapped) {
  EXPECT_OK(put(L"value"));
  for (Step step : kSteps) {
    Bstr value(L"before");
    failure.at(step, L"value");
    EXPECT_HR(kUnmapped, GetParam().get(object, value.inOut()));
    EXPECT_EQ(L"before", value.text());
  }
}

INSTANTIATE_TEST_SUITE_P(Properties, PropertyConversionTest, ::testing::ValuesIn(TextProperties()), NameOfProperty);

class ArrayConversionTest : public ContractTest, public ::testing::WithParamInterface<Property> {
 protected:
  Ptr<IDispatch> object = GetParam().make();
  ConversionFailure failure;
};

TEST_P(ArrayConversionTest, FailureKeepsWhatIsConvertedSoFar) {
  for (Step step : kSteps) {
    failure.at(step, L"two");
    EXPECT_HR(kUnmapped, GetParam().put(object, StringArray({L"one", L"two", L"three"})));
    Variant value;
    EXPECT_OK(GetParam().get(object, value.out()));
    EXPECT_EQ((std::vector<std::wstring>{L"one", L"", L""}), StringsOf(value));
  }
}

TEST_P(ArrayConversionTest, FailureOfAReadingLeavesTheVariantAlone) {
  EXPECT_OK(GetParam().put(object, StringArray({L"one", L"two"})));
  for (Step step : kSteps) {
    Variant value = Variant::text(L"before");
    failure.at(step, L"two");
    EXPECT_HR(kUnmapped, GetParam().get(object, value.out()));
    EXPECT_EQ(L"before", TextOf(value));
  }
}

INSTANTIATE_TEST_SUITE_P(Properties, ArrayConversionTest, ::testing::ValuesIn(ArrayProperties("strings")),
                         NameOfProperty);

struct TextOutput {
  const char* name;
  /// The result when the text cannot be measured; one that cannot be converted is always reported mapped.
  uint32_t unmeasured;
  HRESULT (*call)(const Objects&, Variant& text);
};

void PrintTo(const TextOutput& row, std::ostream* out) { *out << row.name; }

/// For a method whose output is a BSTR: the variable is one of type VT_BSTR.
BSTR* StringOf(Variant& text) {
  if (text.type() != VT_BSTR) text = Variant::text(L"");
  return &V_BSTR(text.out());
}

const TextOutput kTextOutputs[]{
    {"GetPKIErrorText", kMapped,
     [](const Objects& o, Variant& text) { return o.quivo->GetPKIErrorText(5, StringOf(text)); }},
    {"GetPKIErrorTextVBS", kMapped,
     [](const Objects& o, Variant& text) { return o.quivo->GetPKIErrorTextVBS(5, text.out()); }},
    {"UpdateCrl", kMapped, [](const Objects& o, Variant& text) { return o.quivo->UpdateCrl(StringOf(text)); }},
    {"GetCurrentProfileNameVBS", kMapped,
     [](const Objects& o, Variant& text) {
       SetLastError(0);
       return o.quivo->GetCurrentProfileNameVBS(text.out());
     }},
    {"GetMyCertB64", kUnmapped, [](const Objects& o, Variant& text) { return o.quivo->GetMyCertB64(text.out()); }},
};

class TextConversionTest : public ContractTest, public ::testing::WithParamInterface<TextOutput> {
 protected:
  void SetUp() override {
    for (const char* function : {"QUIVO_GetErrorText", "QUIVO_Ctrl", "QUIVO_EncodeMem"}) {
      engine().on(function).text = "text";
    }
    engine().on("QUIVO_FindCert").certificates = {fake::Certificate{}};
    const std::wstring profiles = L"SOFTWARE\\KORVENTA\\tavl\\Profiles";
    WriteDword(user_.key(), profiles, L"CurSel", 0);
    WriteText(user_.key(), profiles + L"\\0", L"ProfileName", L"text");
  }

  Objects objects{openQuivo()};
  Variant text = Variant::text(L"before");
  ConversionFailure failure;

 private:
  PrivateRoot user_{HKEY_CURRENT_USER};
};

TEST_P(TextConversionTest, FailureIsReturnedAndTheVariableLeftAlone) {
  for (Step step : kSteps) {
    failure.at(step, L"text");
    EXPECT_HR(step == Step::kMeasurement ? GetParam().unmeasured : kMapped, GetParam().call(objects, text));
    EXPECT_EQ(L"before", TextOf(text));
    EXPECT_EQ(std::vector<std::string>{}, engine().outstanding());
  }
}

TEST_P(TextConversionTest, NegativeLastErrorIsReturnedAsItIs) {
  for (Step step : kSteps) {
    failure.at(step, L"text", kNegativeError);
    EXPECT_HR(kNegativeError, GetParam().call(objects, text));
    EXPECT_EQ(L"before", TextOf(text));
  }
}

INSTANTIATE_TEST_SUITE_P(Methods, TextConversionTest, ::testing::ValuesIn(kTextOutputs),
                         [](const auto& info) { return std::string(info.param.name); });

class SignatureConversionTest : public ContractTest {};

TEST_F(SignatureConversionTest, FailureIsExplainedByTheEngine) {
  Objects objects(openQuivo());
  TempFile file({1});
  Variant signature, text;
  engine().on("QUIVO_SignMem").output = Bytes(9);
  engine().on("QUIVO_EncodeMem").text = "signature";
  engine().on("QUIVO_GetErrorText").text = "why";
  ConversionFailure failure;
  failure.at(Step::kConversion, L"signature");
  EXPECT_HR(0xFFFFFFFFu, objects.quivo->SignFile2B64Mem(objects.sign, Bstr(file.path()), signature.out(), text.out()));
  EXPECT_EQ(VT_EMPTY, signature.type());
  EXPECT_EQ(L"why", TextOf(text));
  EXPECT_EQ(static_cast<int32_t>(kError), engine().only("QUIVO_GetErrorText").number(0));
}

}  // namespace
