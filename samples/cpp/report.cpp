#include "report.h"

#include <fstream>

namespace {

constexpr const wchar_t* kStyle =
    LR"(
body{font:15px/1.4 'Segoe UI',Arial,sans-serif;margin:2em auto;max-width:60em;color:#222;background:#f4f5f7}
h1{font-size:1.5em;margin-bottom:0}.about{color:#667}
section{background:#fff;border-left:6px solid;border-radius:4px;margin:1em 0;padding:.6em 1em}
section.good{border-color:#2a8a43}section.remark{border-color:#d99a00}section.bad{border-color:#c0392b}
h2{font-size:1.05em;margin:.2em 0}table{border-collapse:collapse;width:100%;table-layout:fixed}
th{text-align:left;color:#667;font-weight:normal;font-size:.85em}td,th{padding:.25em 1em .25em 0;vertical-align:top}
td small{color:#667}th:nth-child(1){width:38%}th:nth-child(2){width:9em}th:nth-child(3){width:21%}
td.good{color:#2a8a43}td.remark{color:#9a6d00}td.bad{color:#c0392b}
)";

const wchar_t* ClassOf(Level level) {
  constexpr const wchar_t* kClasses[] = {L"good", L"remark", L"bad"};
  return kClasses[static_cast<int>(level)];
}

std::wstring Html(const std::wstring& text) {
  std::wstring result;
  for (wchar_t letter : text) {
    switch (letter) {
      case L'&':
        result += L"&amp;";
        break;
      case L'<':
        result += L"&lt;";
        break;
      case L'>':
        result += L"&gt;";
        break;
      default:
        result += letter;
    }
  }
  return result;
}

/// The name of a person in the name of a certificate, where a comma that belongs to the name has a backslash before it.
std::wstring PersonIn(const std::wstring& subject) {
  const size_t start = subject.find(L"CN=");
  if (start == std::wstring::npos) return subject;
  std::wstring name;
  for (size_t i = start + 3; i < subject.size() && subject[i] != L','; ++i) {
    if (subject[i] == L'\\' && i + 1 < subject.size()) ++i;
    name += subject[i];
  }
  return name;
}

std::string Utf8(const std::wstring& text) {
  const int length = static_cast<int>(text.size());
  std::string bytes(
      static_cast<size_t>(WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, nullptr, 0, nullptr, nullptr)), '\0');
  WideCharToMultiByte(CP_UTF8, 0, text.c_str(), length, bytes.data(), static_cast<int>(bytes.size()), nullptr, nullptr);
  return bytes;
}

std::wstring RowOf(const SignatureRow& row, Language language) {
  std::wstring html = L"<tr><td>" + Html(PersonIn(row.signer));
  if (!row.signer.empty()) html += L"<br><small>" + Html(row.signer) + L"</small>";
  if (!row.issuer.empty())
    html += std::wstring(L"<br><small>") + Choose(language, L"выдан: ", L"issued by ") + Html(PersonIn(row.issuer)) +
            L"</small>";
  html += L"<td>" + row.time + L"<td class='" + ClassOf(row.verdict.level) + L"'>" + Html(row.verdict.wrong) + L"<td>" +
          Html(row.verdict.advice);
  return html + L"\n";
}

std::wstring BlockOf(const FileResult& file, Language language) {
  std::wstring html = std::wstring(L"<section class='") + ClassOf(file.level) + L"'><h2>" + Html(file.name) +
                      L"</h2><table><tr><th>" + Choose(language, L"Кто подписал", L"Signer") + L"<th>" +
                      Choose(language, L"Когда, UTC", L"When, UTC") + L"<th>" +
                      Choose(language, L"Что с подписью", L"Verdict") + L"<th>" +
                      Choose(language, L"Что делать", L"What to do") + L"\n";
  for (const SignatureRow& row : file.signatures) html += RowOf(row, language);
  return html + L"</table></section>\n";
}

}  // namespace

std::wstring Summary(const std::vector<FileResult>& files, Language language) {
  int counts[3] = {};
  for (const FileResult& file : files) ++counts[static_cast<int>(file.level)];
  return Choose(language, L"Верны: ", L"Good: ") + std::to_wstring(counts[0]) +
         Choose(language, L", с замечаниями: ", L", with remarks: ") + std::to_wstring(counts[1]) +
         Choose(language, L", неверны: ", L", bad: ") + std::to_wstring(counts[2]);
}

bool WriteReport(const std::filesystem::path& page, const std::wstring& folder, const std::vector<FileResult>& files,
                 Language language) {
  const std::wstring title = Choose(language, L"Проверка подписей", L"Signatures");
  std::wstring html = std::wstring(L"<!DOCTYPE html><html lang='") + Choose(language, L"ru", L"en") +
                      L"'><meta charset='utf-8'><title>" + title + L"</title><style>" + kStyle + L"</style><h1>" +
                      title + L"</h1><p class='about'>" + Html(folder) + L"</p><p>" + Summary(files, language) +
                      L"</p>\n";
  for (const FileResult& file : files) html += BlockOf(file, language);
  std::ofstream out(page, std::ios::binary);
  out << Utf8(html + L"</html>\n");
  out.close();
  return out.good();
}
