#include "report.h"

#include "text.h"

namespace proof {
namespace {

const char kHead[] = R"(<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<title>tavlcom: proof</title>
<style>
body { font: 15px/1.4 "Segoe UI", sans-serif; margin: 2em auto; max-width: 70em; padding: 0 1em; color: #222; }
table { border-collapse: collapse; margin: 0.5em 0 1.5em; }
td, th { border: 1px solid #ccc; padding: 0.2em 0.6em; text-align: left; vertical-align: top; }
pre { background: #f4f4f4; padding: 0.6em; overflow-x: auto; white-space: pre-wrap; }
.passed { color: #06702c; } .failed { color: #b00020; } .skipped { color: #7a5b00; }
.number { text-align: right; }
</style>
</head>
<body>
)";

const char* WordOf(Verdict verdict) {
  switch (verdict) {
    case Verdict::kPassed:
      return "passed";
    case Verdict::kFailed:
      return "failed";
    default:
      return "skipped";
  }
}

std::string NameOf(const Case& one) { return Escaped(one.suite.empty() ? one.name : one.suite + "." + one.name); }

std::string FactsTable(const Facts& facts) {
  std::string table = "<table>\n";
  for (const auto& [name, text] : facts) {
    table += "<tr><th>" + Escaped(name) + "</th><td>" + Escaped(text) + "</td></tr>\n";
  }
  return table + "</table>\n";
}

std::string Cell(size_t number) { return Format("<td class=\"number\">%zu</td>", number); }

std::string PartsTable(const Report& report) {
  std::string table =
      "<table>\n<tr><th>part</th><th></th><th>passed</th><th>failed</th><th>skipped</th><th>seconds</th></tr>\n";
  for (const PartResult& part : report.parts) {
    const size_t failed = part.count(Verdict::kFailed), passed = part.count(Verdict::kPassed);
    const char* word = WordOf(failed != 0 ? Verdict::kFailed : passed != 0 ? Verdict::kPassed : Verdict::kSkipped);
    table += "<tr><td>" + Escaped(part.name) + "</td><td class=\"" + word + "\">" + word + "</td>" + Cell(passed) +
             Cell(failed) + Cell(part.count(Verdict::kSkipped)) +
             Format("<td class=\"number\">%.1f</td></tr>\n", part.seconds);
  }
  return table + "</table>\n";
}

/// The cases of one verdict with what they printed.
std::string Texts(const Report& report, Verdict verdict, const std::string& title) {
  if (report.count(verdict) == 0) return {};
  std::string text = "<h2>" + title + "</h2>\n";
  for (const PartResult& part : report.parts) {
    for (const Case& one : part.cases) {
      if (one.verdict != verdict) continue;
      text += "<p class=\"" + std::string(WordOf(verdict)) + "\">" + Escaped(part.name) + ": " + NameOf(one) +
              "</p>\n<pre>" + Escaped(one.text) + "</pre>\n";
    }
  }
  return text;
}

std::string AllCases(const Report& report) {
  std::string text = "<h2>All cases</h2>\n";
  for (const PartResult& part : report.parts) {
    text += "<details><summary>" + Escaped(part.name) + Format(" (%zu)", part.cases.size()) + "</summary>\n<table>\n";
    for (const Case& one : part.cases) {
      const char* word = WordOf(one.verdict);
      text += "<tr><td>" + NameOf(one) + "</td><td class=\"" + word + "\">" + word + "</td>" +
              Format("<td class=\"number\">%.3f</td></tr>\n", one.seconds);
    }
    text += "</table></details>\n";
  }
  return text;
}

std::string JUnitCase(const PartResult& part, const Case& one) {
  const std::string text = Escaped(one.text);
  // The first line names the failed check.
  const std::string message = Escaped(one.text.substr(0, one.text.find('\n')));
  const std::string suite = one.suite.empty() ? part.name : part.name + "." + one.suite;
  std::string element = "    <testcase classname=\"" + Escaped(suite) + "\" name=\"" + Escaped(one.name) + "\"" +
                        Format(" time=\"%.3f\"", one.seconds);
  switch (one.verdict) {
    case Verdict::kPassed:
      return element + "/>\n";
    case Verdict::kFailed:
      return element + "><failure message=\"" + message + "\">" + text + "</failure></testcase>\n";
    default:
      return element + "><skipped message=\"" + message + "\"/></testcase>\n";
  }
}

std::string CountAttributes(size_t all, size_t failed, size_t skipped, double seconds) {
  return Format(" tests=\"%zu\" failures=\"%zu\" errors=\"0\" skipped=\"%zu\" time=\"%.3f\"", all, failed, skipped,
                seconds);
}

std::string Properties(const Report& report) {
  std::string text = "    <properties>\n";
  for (const Facts* facts : {&report.machine, &report.files}) {
    for (const auto& [name, value] : *facts) {
      text += "      <property name=\"" + Escaped(name) + "\" value=\"" + Escaped(value) + "\"/>\n";
    }
  }
  return text + "    </properties>\n";
}

}  // namespace

size_t Report::count(Verdict verdict) const {
  size_t found = 0;
  for (const PartResult& part : parts) found += part.count(verdict);
  return found;
}

std::string Counts(size_t passed, size_t failed, size_t skipped) {
  return Format("%zu passed, %zu failed, %zu skipped", passed, failed, skipped);
}

std::string Page(const Report& report) {
  const size_t passed = report.count(Verdict::kPassed), failed = report.count(Verdict::kFailed),
               skipped = report.count(Verdict::kSkipped);
  const Verdict verdict = failed != 0 ? Verdict::kFailed : skipped != 0 ? Verdict::kSkipped : Verdict::kPassed;
  const std::string words = verdict == Verdict::kSkipped ? "passed in part, the rest was skipped" : WordOf(verdict);
  std::string page = std::string(kHead) + "<h1>tavlcom on this machine: <span class=\"" + WordOf(verdict) + "\">" +
                     words + "</span></h1>\n";
  if (report.stopped) page += "<p class=\"failed\">The run was stopped before its end.</p>\n";
  page += "<p>" + Counts(passed, failed, skipped) + Format(", in %.0f seconds</p>\n", report.seconds);
  page += FactsTable(report.machine) + "<h2>Parts</h2>\n" + PartsTable(report);
  page += Texts(report, Verdict::kFailed, "Failed") + Texts(report, Verdict::kSkipped, "Skipped, and why");
  page += "<h2>Files</h2>\n" + FactsTable(report.files) + AllCases(report);
  return page + "</body>\n</html>\n";
}

std::string JUnit(const Report& report) {
  const size_t passed = report.count(Verdict::kPassed), failed = report.count(Verdict::kFailed),
               skipped = report.count(Verdict::kSkipped);
  std::string text = "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"tavlcom\"" +
                     CountAttributes(passed + failed + skipped, failed, skipped, report.seconds) + ">\n";
  bool isFirst = true;
  for (const PartResult& part : report.parts) {
    text +=
        "  <testsuite name=\"" + Escaped(part.name) + "\"" +
        CountAttributes(part.cases.size(), part.count(Verdict::kFailed), part.count(Verdict::kSkipped), part.seconds) +
        ">\n";
    if (isFirst) text += Properties(report);
    isFirst = false;
    for (const Case& one : part.cases) text += JUnitCase(part, one);
    text += "  </testsuite>\n";
  }
  return text + "</testsuites>\n";
}

}  // namespace proof
