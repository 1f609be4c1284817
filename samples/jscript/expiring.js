// Lists the certificates that have expired or expire soon.
//   cscript //nologo expiring.js PROFILE [DAYS [FOLDER]] [/lang:en]
// Looks at the store of the profile and, if it is named, at the certificates (*.cer) of FOLDER. DAYS is 30 unless it is given.
// Exit code: 0 none expires, 1 some do, 2 wrong arguments, 3 it could not be found out.
var Field_Subject = 4, Field_NotAfter = 64;
var Flag_Find_All = 2, Flag_Find_NoTimeCheck = 16;

var language = "ru", given = readArguments(1, 3);
var files = new ActiveXObject("Scripting.FileSystemObject");
var days = given.length > 1 ? parseInt(given[1], 10) : 30, expiring = 0;
if (isNaN(days)) {
  usage();
  WScript.Quit(2);
}
var quivo = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.QUIVO");
});
attempt(t("Сеанс не открыт", "The session cannot be opened"), function () { quivo.Initialize(given[0], 0); });

var find = new ActiveXObject("TAVL.FindParam");
find.flag = Flag_Find_All | Flag_Find_NoTimeCheck;
find.info = Field_Subject | Field_NotAfter;
var certificates = elements(attempt(t("Справочник не прочитан", "The store cannot be read"),
                                    function () { return quivo.FindCert(find); }));
if (certificates) {
  for (var i = 0; i < certificates.length; i++) look(certificates[i]);
} else {
  WScript.Echo(t("Данный сервер сценариев не читает массивы объектов: из справочника показан только свой сертификат.",
                 "This script host walks no arrays of objects: of the store, only the own certificate is shown."));
  look(attempt(t("Нет своего сертификата", "No own certificate"), function () {
    return quivo.ParseCert(bytesOfBase64(quivo.GetMyCertB64()), Field_Subject | Field_NotAfter);
  }));
}
if (given.length > 2) {
  var paths = attempt(given[2], function () { return filesOf(given[2]); });
  for (var k = 0; k < paths.length; k++) {
    if (/\.cer$/i.test(paths[k])) {
      look(attempt(paths[k], function () { return quivo.ParseCert(readBytes(paths[k]), Field_Subject | Field_NotAfter); }));
    }
  }
}
quivo.Uninitialize();
WScript.Echo(t("Истекают в ближайшие дни (", "Expiring within days (") + days + "): " + expiring);
if (expiring > 0) WScript.Quit(1);

function look(certificate) {
  // Times are UTC; half a day more or less changes nothing here.
  var left = Math.floor((new Date(certificate.notAfter) - new Date()) / 86400000);
  if (left >= days) return;
  expiring++;
  WScript.Echo((left < 0 ? t("истёк", "expired") : t("дней: ", "days: ") + left) + "\t" + certificate.subject);
}

function bytesOfBase64(text) {
  var element = new ActiveXObject("Msxml2.DOMDocument.3.0").createElement("bytes");
  element.dataType = "bin.base64";
  element.text = text;
  return element.nodeTypedValue;
}

function usage() {
  WScript.Echo(t("Показывает сертификаты, срок которых истекает:", "Lists certificates that expire:"));
  WScript.Echo("  cscript //nologo expiring.js " + t("ПРОФИЛЬ [ДНЕЙ [ПАПКА]]", "PROFILE [DAYS [FOLDER]]") + " [/lang:en]");
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
  WScript.Quit(3);
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
