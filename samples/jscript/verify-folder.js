// Verifies the signatures of a folder (*.p7s), and writes a report for people: what is wrong with each, and what to do.
//   cscript //nologo verify-folder.js PROFILE FOLDER REPORT.html [/lang:en]
// The signature NAME.p7s stands beside its document if there is a file NAME, and contains it otherwise. The files are read into
// memory; verify-folder.vbs need not.
// Exit code: 0 all are good, or good with remarks, 1 some are not, 2 wrong arguments.
var Field_Issuer = 2, Field_Subject = 4;
var Flag_Verify_Pkcs7 = 1, Flag_Verify_Detached = 2;
var VerifiedWithRemarks = 0xE0700019;
var marks = ["good", "remark", "bad"];

var language = "ru", given = readArguments(3, 3);
var files = new ActiveXObject("Scripting.FileSystemObject");
var verdicts = [0, 0, 0], walks = true;
var quivo = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.QUIVO");
});
attempt(t("Сеанс не открыт", "The session cannot be opened"), function () { quivo.Initialize(given[0], 0); });

var paths = attempt(t("Папка не прочитана", "The folder cannot be read"), function () { return filesOf(given[1]); });
var report = attempt(t("Отчёт не создан", "The report cannot be written"),
                     function () { return files.CreateTextFile(given[2], true); });
beginReport();
for (var i = 0; i < paths.length; i++) {
  if (/\.p7s$/i.test(paths[i])) verifyOne(paths[i]);
}
endReport();
quivo.Uninitialize();
if (verdicts[2] > 0) WScript.Quit(1);

function verifyOne(path) {
  var param = new ActiveXObject("TAVL.VerifyParam"), document = path.replace(/\.p7s$/i, ""), data, failure = { number: 0 },
      holder = {};
  param.flag = Flag_Verify_Pkcs7;
  param.info = Field_Issuer | Field_Subject;
  try {
    if (files.FileExists(document)) {
      param.flag = Flag_Verify_Pkcs7 | Flag_Verify_Detached;
      data = readBytes(document);
    }
    // A verification that fails gives its results all the same.
    quivo.VerifyMem(param, data, readBytes(path), {}, holder);
  } catch (error) {
    failure = error;
  }
  var statuses = "value" in holder ? elements(holder.value) : [], mark = marks[level(failure.number)],
      name = files.GetFileName(path);
  if (!statuses) walks = false;

  WScript.Echo(name + ": " + explain(failure.number, failure)[0]);
  verdicts[level(failure.number)]++;
  report.WriteLine("<section class='" + mark + "'><h2>" + html(name) + "</h2><table>");
  report.WriteLine("<tr><th>" + t("Кто подписал", "Signer") + "<th>" + t("Когда, UTC", "When, UTC") + "<th>" +
                   t("Что с подписью", "Verdict") + "<th>" + t("Что делать", "What to do"));
  if (!statuses || statuses.length == 0) {
    writeRow("", "", failure.number, failure);
  } else {
    for (var i = 0; i < statuses.length; i++) {
      var signature = statuses[i], time = moment(signature.time);
      writeRow(signature.cert ? signature.cert.subject : "", time, signature.status, { number: signature.status, message: "" });
    }
  }
  report.WriteLine("</table></section>");
}

function writeRow(signer, time, code, failure) {
  var words = explain(code, failure);
  report.WriteLine("<tr><td>" + html(signer) + "<td>" + time + "<td class='" + marks[level(code)] + "'>" + html(words[0]) + "<td>" +
                   html(words[1]));
}

function beginReport() {
  var style = "body{font:15px/1.4 'Segoe UI',Arial,sans-serif;margin:2em auto;max-width:60em;color:#222;background:#f4f5f7}" +
               "h1{font-size:1.5em;margin-bottom:0}.about{color:#667}" +
               "section{background:#fff;border-left:6px solid;border-radius:4px;margin:1em 0;padding:.6em 1em}" +
               "section.good{border-color:#2a8a43}section.remark{border-color:#d99a00}section.bad{border-color:#c0392b}" +
               "h2{font-size:1.05em;margin:.2em 0}table{border-collapse:collapse;width:100%;table-layout:fixed}" +
               "th{text-align:left;color:#667;font-weight:normal;font-size:.85em}td,th{padding:.25em 1em .25em 0;vertical-align:top}" +
               "th:nth-child(1){width:38%}th:nth-child(2){width:9em}th:nth-child(3){width:21%}" +
               "td.good{color:#2a8a43}td.remark{color:#9a6d00}td.bad{color:#c0392b}";
  report.WriteLine("<!DOCTYPE html><html lang='" + language + "'><meta charset='windows-1251'><title>" +
                   t("Проверка подписей", "Signatures") + "</title><style>" + style + "</style><h1>" +
                   t("Проверка подписей", "Signatures") + "</h1><p class='about'>" + html(given[1]) + ", " +
                   moment(new Date()) + "</p>");
}

function endReport() {
  var text = t("Верны: ", "Good: ") + verdicts[0] + t(", с замечаниями: ", ", with remarks: ") + verdicts[1] +
             t(", неверны: ", ", bad: ") + verdicts[2];
  WScript.Echo(text);
  report.WriteLine("<p>" + text + "</p>");
  if (!walks) {
    text = t("Данный сервер сценариев не читает массивы объектов: каждый файл оценён в целом.",
             "This script host walks no arrays of objects: each file is judged as a whole.");
    WScript.Echo(text);
    report.WriteLine("<p>" + text + "</p>");
  }
  report.WriteLine("</html>");
  report.Close();
}

// 0 good, 1 good with remarks, 2 bad.
function level(code) {
  if (code == 0) return 0;
  if (code >>> 0 == VerifiedWithRemarks) return 1;
  var low = code & 0xFFFF;
  return low == 0x702F || low == 0x7060 || low == 0x7061 ? 1 : 2;
}

// What a code means to a person, and what the person can do. Only its low half is the same in the status of a signature and in
// the failure of a call. A code that is not here has the engine's text.
function explain(code, failure) {
  var known = {
    0x7010: ["Файл повреждён или это не подпись", "The file is damaged, or is not a signature",
             "Попросите прислать файл снова", "Ask for the file again"],
    0x7011: ["В файле нет подписи", "The file has no signature",
             "Попросите отправителя подписать документ", "Ask the sender to sign the document"],
    0x7013: ["Нет подписанного документа", "The signed document is missing",
             "Положите документ рядом с подписью", "Put the document beside its signature"],
    0x7014: ["Подписан другой документ", "Another document was signed",
             "Найдите документ, к которому относится подпись", "Find the document that the signature belongs to"],
    0x7021: ["Документ или подпись изменены", "The document or the signature was changed",
             "Не пользуйтесь документом; попросите прислать его и подпись снова",
             "Do not rely on the document; ask for it and the signature again"],
    0x7022: ["Нет сертификата подписавшего", "The signer's certificate is not at hand",
             "Попросите сертификат и добавьте его в справочник", "Ask for the certificate and add it to the store"],
    0x7023: ["Сертификат выдан неизвестным центром", "An unknown authority issued the certificate",
             "Если центру можно доверять, добавьте его сертификат в справочник",
             "If the authority can be trusted, add its certificate to the store"],
    0x7024: ["Срок сертификата истёк", "The certificate has expired",
             "Попросите подписать документ действующим сертификатом", "Ask for a signature with a valid certificate"],
    0x7025: ["Срок сертификата не наступил", "The certificate is not yet valid",
             "Проверьте часы компьютера", "Check the clock of this computer"],
    0x7026: ["Сертификат отозван", "The certificate is revoked",
             "Не доверяйте подписи; спросите подписавшего другим путём",
             "Do not trust the signature; ask the signer by other means"],
    0x7027: ["Цепочка сертификатов не прошла проверку", "The chain of certificates is broken",
             "Сообщите администратору", "Report it to the administrator"],
    0x7028: ["Сертификат не предназначен для подписи", "The certificate is not meant for signatures",
             "Попросите подписать документ другим сертификатом", "Ask for a signature with another certificate"],
    0x702E: ["Неизвестный алгоритм", "Unknown algorithm",
             "Обновите криптографическую библиотеку", "Update the engine"],
    0x702F: ["Подписано вне срока действия ключа", "Signed outside of the period of the key",
             "Спросите подписавшего, когда он подписал документ", "Ask the signer when the document was signed"],
    0x7043: ["Список отзыва подделан", "A revocation list is forged",
             "Удалите список и получите его от центра (refresh-lists)",
             "Remove the list and get the authority's (refresh-lists)"],
    0x7049: ["Список отзыва непригоден", "A revocation list cannot be used",
             "Получите список от центра (refresh-lists)", "Get the list from the authority (refresh-lists)"],
    0x7060: ["Слабый алгоритм или короткий ключ", "Weak algorithm or short key",
             "Попросите в будущем подписывать более стойким ключом", "Ask for a stronger key in future"],
    0x7061: ["Списки отзыва не охватывают сертификат", "The revocation lists do not cover the certificate",
             "Обновите списки отзыва (refresh-lists)", "Refresh the revocation lists (refresh-lists)"]
  };
  var words = known[code & 0xFFFF];
  if (code == 0) words = ["Подпись верна", "The signature is good", "Ничего делать не нужно", "Nothing to do"];
  if (code >>> 0 == VerifiedWithRemarks) words = ["Список отзыва устарел", "A revocation list is out of date",
                                                  "Обновите списки отзыва (refresh-lists)",
                                                  "Refresh the revocation lists (refresh-lists)"];
  if (words) return [t(words[0], words[1]), t(words[2], words[3])];
  return [textOf(failure), t("Сообщите администратору этот код", "Report this code to the administrator")];
}

function html(text) {
  return text.replace(/&/g, "&amp;").replace(/</g, "&lt;").replace(/>/g, "&gt;");
}

function usage() {
  WScript.Echo(t("Проверяет подписи папки и пишет отчёт:", "Verifies the signatures of a folder and writes a report:"));
  WScript.Echo("  cscript //nologo verify-folder.js " + t("ПРОФИЛЬ ПАПКА ОТЧЁТ.html",
                                                          "PROFILE FOLDER REPORT.html") + " [/lang:en]");
}

// A time as text.
function moment(value) {
  var time = new Date(value);
  return time.getFullYear() + "-" + two(time.getMonth() + 1) + "-" + two(time.getDate()) + " " + two(time.getHours()) + ":" +
         two(time.getMinutes());
}

function two(number) {
  return (number < 10 ? "0" : "") + number;
}

// The paths of the files of a folder. Wine's host cannot walk the collections of Scripting.FileSystemObject.
function filesOf(folder) {
  var items = new ActiveXObject("Shell.Application").NameSpace(files.GetAbsolutePathName(folder)).Items(), result = [];
  for (var i = 0; i < items.Count; i++) {
    if (files.FileExists(items.Item(i).Path)) result.push(items.Item(i).Path);
  }
  return result;
}

// The bytes of a file as the module takes them. Where there is no ADODB.Stream, as under Wine, they are read as letters of the
// code page 1251, each of which is a byte.
function readBytes(path) {
  try {
    var stream = new ActiveXObject("ADODB.Stream");
    stream.Type = 1;
    stream.Open();
    stream.LoadFromFile(path);
    return stream.Size == 0 ? bytesOf("") : stream.Read();
  } catch (error) {
    var folder = new ActiveXObject("Scripting.FileSystemObject");
    return bytesOf(folder.GetFile(path).Size == 0 ? "" : folder.OpenTextFile(path).ReadAll());
  }
}

// Bytes from letters, by way of their hexadecimal digits: this language has no arrays of bytes.
function bytesOf(letters) {
  var upper = upperHalf(), values = {}, digits = [];
  for (var i = 0; i < upper.length; i++) values[upper.charCodeAt(i)] = 128 + i;
  for (i = 0; i < letters.length; i++) {
    var code = letters.charCodeAt(i);
    digits.push((256 + (code < 128 ? code : values[code])).toString(16).substr(1));
  }
  var element = hexadecimal();
  element.text = digits.join("");
  return element.nodeTypedValue;
}

function hexadecimal() {
  var element = new ActiveXObject("Msxml2.DOMDocument.3.0").createElement("bytes");
  element.dataType = "bin.hex";
  return element;
}

// The elements of an array that the module returned; null if this host cannot open it: Wine's cannot.
function elements(found) {
  try {
    return new VBArray(found).toArray();
  } catch (error) {
    return null;
  }
}

// The arguments but the options. Without the right number of them the script shows how it is used.
function readArguments(least, most) {
  var result = [];
  for (var i = 0; i < WScript.Arguments.length; i++) {
    var argument = WScript.Arguments.Item(i);
    if (/^\/lang:(ru|en)$/i.test(argument)) language = argument.substr(6).toLowerCase();
    else if (argument.charAt(0) == "/") most = -1;
    else result.push(argument);
  }
  if (result.length >= least && result.length <= most) return result;
  usage();
  WScript.Quit(2);
}

// The value of a call; if it fails, the script ends.
function attempt(what, call) {
  var failure = null;
  try {
    return call();
  } catch (error) {
    failure = error;
  }
  WScript.Echo(what + ": " + textOf(failure));
  WScript.Quit(1);
}

// A failure in words: of the module's codes the engine knows the text.
function textOf(error) {
  var code = error.number >>> 0;
  var text = (code & 0xFFFE0000) >>> 0 == 0xE0680000 ? quivo.GetPKIErrorText(error.number) : error.message;
  return text + " (0x" + code.toString(16).toUpperCase() + ")";
}

// The text in the language of the messages.
function t(russian, english) {
  return language == "en" ? english : russian;
}

// The letters of the code page 1251 from 0x80 on.
function upperHalf() {
  var letters = "\u0402\u0403\u201A\u0453\u201E\u2026\u2020\u2021\u20AC\u2030\u0409\u2039\u040A\u040C\u040B\u040F" +
                "\u0452\u2018\u2019\u201C\u201D\u2022\u2013\u2014\u0098\u2122\u0459\u203A\u045A\u045C\u045B\u045F" +
                "\u00A0\u040E\u045E\u0408\u00A4\u0490\u00A6\u00A7\u0401\u00A9\u0404\u00AB\u00AC\u00AD\u00AE\u0407" +
                "\u00B0\u00B1\u0406\u0456\u0491\u00B5\u00B6\u00B7\u0451\u2116\u0454\u00BB\u0458\u0405\u0455\u0457";
  for (var code = 0x410; code < 0x450; code++) letters += String.fromCharCode(code);
  return letters;
}
