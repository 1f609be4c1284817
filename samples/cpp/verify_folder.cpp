// Verifies the signatures of a folder (*.p7s), and writes a report for people: what is wrong with each, and what to do.
//   verify_folder PROFILE FOLDER REPORT.html [/lang:en]
// The signature NAME.p7s stands beside its document if there is a file NAME, and contains it otherwise.
// Exit code: 0 all are good, or good with remarks, 1 some are not, 2 wrong arguments.
#include <windows.h>

#include <algorithm>
#include <cstdio>
#include <filesystem>
#include <string>
#include <vector>

#include "com.h"
#include "console.h"
#include "quivocom.h"
#include "report.h"
#include "verdict.h"

namespace {

namespace fs = std::filesystem;

/// Verifies files with one session.
class Verifier {
 public:
  explicit Verifier(Language language) : language_(language) {}

  HRESULT open(const std::wstring& profile) {
    const HRESULT hr = quivo_.create<QUIVO>();
    return FAILED(hr) ? hr : quivo_->Initialize(Bstr(profile).get(), static_cast<Init_Flag_t>(0));
  }

  /// A failure in words: the module's codes have the texts of its engine.
  std::wstring textOf(LONG code) const {
    Bstr text;
    if (quivo_) quivo_->GetPKIErrorText(code, text.receive());
    wchar_t number[16];
    std::swprintf(number, std::size(number), L"0x%08lX", static_cast<unsigned long>(code));
    return text.str() + L" (" + number + L")";
  }

  FileResult verify(const fs::path& signature) {
    ComPtr<IVerifyParam> param;
    Variant results;
    HRESULT hr = param.create<VerifyParam>();
    if (SUCCEEDED(hr)) hr = call(param.get(), signature, results.receive());
    FileResult result{signature.filename().wstring(), explain(hr).level, {}};
    // A verification that fails gives its results all the same.
    if (SAFEARRAY* array = results.objects()) result.signatures = rowsOf(array);
    if (result.signatures.empty()) result.signatures.push_back({L"", L"", L"", explain(hr)});
    return result;
  }

 private:
  HRESULT call(IVerifyParam* param, const fs::path& signature, VARIANT* results) {
    const fs::path document = fs::path(signature).replace_extension();
    std::error_code error;
    const bool isDetached = fs::is_regular_file(document, error);
    param->put_flag(static_cast<VerifyParamFlag_t>(Flag_Verify_Pkcs7 | (isDetached ? Flag_Verify_Detached : 0)));
    param->put_info(static_cast<Certinfo_t>(Field_Subject | Field_Issuer));
    const Bstr none;
    const Bstr data(document.wstring());
    return quivo_->StrVerifyFile(param, isDetached ? data.get() : none.get(), Bstr(signature.wstring()).get(),
                                 none.get(), results);
  }

  Verdict explain(LONG code) const {
    Verdict verdict = Explain(code, language_);
    if (verdict.wrong.empty()) verdict.wrong = textOf(code);
    return verdict;
  }

  std::vector<SignatureRow> rowsOf(SAFEARRAY* array) const {
    std::vector<SignatureRow> rows;
    for (LONG i = 0; i < static_cast<LONG>(array->rgsabound[0].cElements); ++i) {
      ComPtr<IDispatch> object;
      ComPtr<ISignStatus> status;
      if (FAILED(SafeArrayGetElement(array, &i, object.receive())) || !object) continue;
      if (SUCCEEDED(object->QueryInterface(__uuidof(ISignStatus), reinterpret_cast<void**>(status.receive()))))
        rows.push_back(rowOf(status.get()));
    }
    return rows;
  }

  SignatureRow rowOf(ISignStatus* status) const {
    LONG code = 0;
    DATE time = 0;
    ComPtr<ICertificate> certificate;
    Bstr subject;
    Bstr issuer;
    status->get_status(&code);
    status->get_time(&time);
    status->get_cert(certificate.receive());
    // Without a certificate the signer is unknown.
    if (certificate) {
      certificate->get_subject(subject.receive());
      certificate->get_issuer(issuer.receive());
    }
    return {subject.str(), issuer.str(), timeText(time), explain(code)};
  }

  static std::wstring timeText(DATE time) {
    SYSTEMTIME parts{};
    if (!VariantTimeToSystemTime(time, &parts)) return L"";
    wchar_t text[32];
    std::swprintf(text, std::size(text), L"%04u-%02u-%02u %02u:%02u", parts.wYear, parts.wMonth, parts.wDay,
                  parts.wHour, parts.wMinute);
    return text;
  }

  Language language_;
  ComPtr<IQUIVO> quivo_;
};

std::vector<fs::path> SignaturesIn(const fs::path& folder, std::error_code* error) {
  std::vector<fs::path> paths;
  for (const fs::directory_entry& entry : fs::directory_iterator(folder, *error)) {
    if (entry.path().extension() == L".p7s") paths.push_back(entry.path());
  }
  std::sort(paths.begin(), paths.end());
  return paths;
}

int VerifyFolder(const Arguments& arguments) {
  const Language language = arguments.language;
  Verifier verifier(language);
  const HRESULT hr = verifier.open(arguments.given[0]);
  if (FAILED(hr)) {
    Print(Choose(language, L"Сеанс не открыт: ", L"The session cannot be opened: ") + verifier.textOf(hr));
    return 1;
  }
  std::error_code error;
  std::vector<FileResult> files;
  for (const fs::path& path : SignaturesIn(arguments.given[1], &error)) {
    files.push_back(verifier.verify(path));
    Print(files.back().name);
    for (const SignatureRow& row : files.back().signatures) Print(L"  " + row.signer + L": " + row.verdict.wrong);
  }
  if (error) {
    Print(Choose(language, L"Папка не прочитана: ", L"The folder cannot be read: ") + arguments.given[1]);
    return 1;
  }
  if (!WriteReport(arguments.given[2], arguments.given[1], files, language)) {
    Print(Choose(language, L"Отчёт не создан: ", L"The report cannot be written: ") + arguments.given[2]);
    return 1;
  }
  Print(Summary(files, language));
  return std::any_of(files.begin(), files.end(), [](const FileResult& file) { return file.level == Level::kBad; }) ? 1
                                                                                                                   : 0;
}

}  // namespace

int wmain(int count, wchar_t** values) {
  Arguments arguments;
  if (!ReadArguments(count, values, 3, &arguments)) {
    Print(Choose(arguments.language, L"Проверяет подписи папки и пишет отчёт:",
                 L"Verifies the signatures of a folder and writes a report:"));
    Print(Choose(arguments.language, L"  verify_folder ПРОФИЛЬ ПАПКА ОТЧЁТ.html [/lang:en]",
                 L"  verify_folder PROFILE FOLDER REPORT.html [/lang:en]"));
    return 2;
  }
  // The objects live in a single-threaded apartment, and are released before it ends.
  if (FAILED(CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED))) return 1;
  const int result = VerifyFolder(arguments);
  CoUninitialize();
  return result;
}
