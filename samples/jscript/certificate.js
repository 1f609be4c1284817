// Shows what is in a certificate.
//   cscript //nologo certificate.js FILE [/lang:en]
// FILE is a certificate in DER or PEM. No profile is needed, and none is asked whether the certificate can be trusted.
// Exit code: 0 shown, 1 not a certificate, 2 wrong arguments.
var Field_All = 0x7FFFF;

var language = "ru", given = readArguments(1, 1);
var quivo = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.QUIVO");
});
attempt("InitMinimal", function () { quivo.InitMinimal(); });
var certificate = attempt(t("Не сертификат: ", "Not a certificate: ") + given[0], function () {
  return quivo.ParseCert(readBytes(given[0]), Field_All);
});

show(t("Владелец", "Subject"), certificate.subject);
show(t("Издатель", "Issuer"), certificate.issuer);
show(t("Номер", "Serial number"), certificate.serialNumber);
// The times are UTC, but this language takes them for local time: they are shown as they come.
show(t("Действует с", "Valid from"), moment(certificate.notBefore) + " UTC");
show(t("Действует по", "Valid to"), moment(certificate.notAfter) + " UTC" + remaining(certificate.notAfter));
// A certificate without a period of its key reads as 1970.
if (new Date(certificate.notAfterPrivate).getFullYear() > 1970) {
  show(t("Ключ по", "Key valid to"), moment(certificate.notAfterPrivate) + " UTC");
}
show(t("Алгоритм", "Algorithm"), certificate.algorithm);
show(t("Ключ", "Key identifier"), certificate.keyId);
show(t("Отпечаток", "Hash"), hexOf(certificate.certHash));
show(t("Назначение", "Key usage"), usages(certificate.keyUsage));
show(t("Почта", "Mail"), certificate.subjectAltName.emailAddress);
show("DNS", certificate.subjectAltName.DNS);
showList(t("Применение", "Extended usage"), certificate.extKeyUsage);
showList(t("Политика", "Policy"), certificate.policies);
showList(t("Расширение", "Extension"), certificate.extensions);

function show(name, value) {
  if (value != "") WScript.Echo(name + ": " + value);
}

function showList(name, list) {
  var items = elements(list);
  if (!items) {
    show(name, t("(данный сервер сценариев не читает массивы объектов и строк)",
                 "(this script host walks no arrays of objects and strings)"));
    return;
  }
  for (var i = 0; i < items.length; i++) show(name, typeof items[i] == "string" ? items[i] : items[i].oid);
}

function usages(bits) {
  var names = [t("подпись", "digital signature"), t("неотрекаемость", "non-repudiation"),
               t("шифрование ключей", "key encipherment"),
               t("шифрование данных", "data encipherment"), t("согласование ключей", "key agreement"),
               t("подпись сертификатов", "certificate signing"), t("подпись списков отзыва", "revocation list signing"),
               t("только шифрование", "encipher only"), t("только расшифрование", "decipher only")];
  var used = [];
  for (var i = 0; i < names.length; i++) {
    if (bits & (1 << i)) used.push(names[i]);
  }
  return used.join(", ");
}

function remaining(value) {
  var days = Math.floor((new Date(value) - new Date()) / 86400000);
  return days < 0 ? t(" - истёк", " - expired") : t(", осталось дней: ", ", days left: ") + days;
}

function hexOf(bytes) {
  var element = hexadecimal();
  element.nodeTypedValue = bytes;
  return element.text.toUpperCase();
}

function usage() {
  WScript.Echo(t("Показывает содержимое сертификата:", "Shows what is in a certificate:"));
  WScript.Echo("  cscript //nologo certificate.js " + t("ФАЙЛ", "FILE") + " [/lang:en]");
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
