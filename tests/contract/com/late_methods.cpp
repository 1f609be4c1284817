#include "contract/com/late_methods.h"

#include "support/certificates.h"

namespace {

using Inputs = std::vector<std::pair<std::wstring, Variant>>;

template <class... Pairs>
Inputs inputs(Pairs&&... pairs) {
  Inputs made;
  (made.push_back(std::forward<Pairs>(pairs)), ...);
  return made;
}

std::pair<std::wstring, Variant> in(const wchar_t* name, Variant value) { return {name, std::move(value)}; }
std::pair<std::wstring, Variant> param(const wchar_t* name, IDispatch* object) {
  return {name, Variant::object(object)};
}
std::pair<std::wstring, Variant> file(const wchar_t* name) { return {name, Variant::text(L"C:\\file")}; }

using O = Output;

}  // namespace

const std::vector<LateMethod> kLateMethods{
    {"GetPKIErrorText",
     [](const Objects&) { return inputs(in(L"err_code", Variant::number(5))); },
     {{L"err_text", O::kText}}},
    {"GetPKIErrorTextVBS",
     [](const Objects&) { return inputs(in(L"err_code", Variant::number(5))); },
     {{L"err_text", O::kText}}},
    {"UpdateCrl", [](const Objects&) { return Inputs{}; }, {{L"description", O::kText}}},
    {"GetMyCertB64", [](const Objects&) { return Inputs{}; }, {{L"var_cert_str", O::kText}}},
    {"HashMem", [](const Objects&) { return inputs(in(L"in", bytes({1}))); }, {{L"hash", O::kBytes}}},
    {"HashFile", [](const Objects&) { return inputs(file(L"file_name")); }, {{L"hash", O::kBytes}}},
    {"SignMem",
     [](const Objects& o) {
       return inputs(param(L"param", o.sign), in(L"data", bytes({1})), in(L"sign_in", Variant()));
     },
     {{L"sign_out", O::kBytes}}},
    {"VerifyMem",
     [](const Objects& o) {
       return inputs(param(L"pIVerifyParam", o.verify), in(L"data", bytes({1})), in(L"sign_in", Variant()));
     },
     {{L"sign_out", O::kBytes}, {L"VerifyResults", O::kObjects}}},
    {"VerifyFile",
     [](const Objects& o) {
       return inputs(param(L"pIVerifyParam", o.verify), file(L"data"), file(L"sign_in"), file(L"sign_out"));
     },
     {{L"VerifyResults", O::kObjects}}},
    {"FindCert",
     [](const Objects& o) { return inputs(param(L"pIFindParam", o.find)); },
     {{L"FindResult", O::kObjects}}},
    {"GenRandom", [](const Objects&) { return inputs(in(L"len", Variant::number(1))); }, {{L"random", O::kBytes}}},
    {"ParseCert",
     [](const Objects&) { return inputs(in(L"enccert", bytes({1})), in(L"info", Variant::number(4))); },
     {{L"pICertificate", O::kCertificate}}},
    {"EncryptMem",
     [](const Objects& o) { return inputs(param(L"pIParam", o.encrypt), in(L"in", bytes({1}))); },
     {{L"out", O::kBytes}}},
    {"DecryptMem",
     [](const Objects& o) { return inputs(param(L"pIParam", o.decrypt), in(L"in", bytes({1}))); },
     {{L"out", O::kBytes}, {L"pICert", O::kCertificate}}},
    {"DecryptFile",
     [](const Objects& o) { return inputs(param(L"pIParam", o.decrypt), file(L"file_in"), file(L"file_out")); },
     {{L"pICert", O::kCertificate}}},
    {"StrSignFinalMem",
     [](const Objects& o) { return inputs(param(L"param", o.sign), param(L"hStr", o.stream)); },
     {{L"sign_out", O::kBytes}}},
    {"StrVerifyFinalMem",
     [](const Objects& o) { return inputs(param(L"param", o.verify), param(L"hStr", o.stream)); },
     {{L"sign_out", O::kBytes}, {L"VerifyResults", O::kObjects}}},
    {"StrDecryptFinalMem",
     [](const Objects& o) { return inputs(param(L"pIParam", o.decrypt), param(L"hStr", o.stream)); },
     {{L"pICert", O::kCertificate}}},
    {"StrHashFinalMem", [](const Objects& o) { return inputs(param(L"hStr", o.stream)); }, {{L"hash", O::kBytes}}},
};

void answerLateMethods(fake::FakeEngine& engine) {
  for (const char* function :
       {"QUIVO_HashMem", "QUIVO_HashFile", "QUIVO_SignMem", "QUIVO_VerifyMem", "QUIVO_GenRandom", "QUIVO_EncryptMem",
        "QUIVO_DecryptMem", "QUIVO_StrSignFinalMem", "QUIVO_StrVerifyFinalMem", "QUIVO_StrHashFinalMem"}) {
    engine.on(function).output = {9, 8};
  }
  for (const char* function : {"QUIVO_GetErrorText", "QUIVO_Ctrl", "QUIVO_EncodeMem"}) {
    engine.on(function).text = "text";
  }
  for (const char* function : {"QUIVO_VerifyMem", "QUIVO_VerifyFile", "QUIVO_StrVerifyFinalMem"}) {
    engine.on(function).signatures = {{0, 0, {}}};
  }
  for (const char* function :
       {"QUIVO_ParseCert", "QUIVO_DecryptMem", "QUIVO_DecryptFile", "QUIVO_StrDecryptFinalMem"}) {
    engine.on(function).certificate = certificateOf("CN=x");
  }
  engine.on("QUIVO_FindCert").certificates = {certificateOf("CN=x")};
}
