// Gets a certificate: makes a key and a request, and takes the certificate that was issued.
//   cscript //nologo request.js new PROFILE SUBJECT REQUEST [/lang:en]
//   cscript //nologo request.js import PROFILE CERTIFICATE DOCUMENT SIGNATURE [/lang:en]
// The first form writes REQUEST (PKCS#10) for the authority to issue the certificate from, such as for "CN=Anna, C=RU". The
// second imports what it issued, and signs DOCUMENT with the new key to see that all is well.
// Exit code: 0 done, 1 not done, 2 wrong arguments.
var Field_Subject = 4, Field_KeyUsage = 128, Field_KeyID = 32768;
var Keyusage_DigitalSignature = 1, Keyusage_NonRepudation = 2, Keyusage_KeyEncipherment = 4;
var Id_KeyId = 1, Flag_Export_NewRequest = 4, Flag_Import_MyCertificate = 8;
var Flag_Sign_Pkcs7 = 1, Flag_Sign_Detached = 2, Flag_Sign_SendSert = 8;

var language = "ru", given = readArguments(4, 5);
if (given[0] + given.length != "new4" && given[0] + given.length != "import5") {
  usage();
  WScript.Quit(2);
}
var quivo = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.QUIVO");
});
attempt(t("Сеанс не открыт", "The session cannot be opened"), function () { quivo.Initialize(given[1], 0); });
if (given[0] == "new") makeRequest();
else importCertificate();
quivo.Uninitialize();

function makeRequest() {
  var template = new ActiveXObject("TAVL.Certificate");
  template.fields = Field_Subject | Field_KeyUsage;
  template.subject = given[2];
  template.keyUsage = Keyusage_DigitalSignature | Keyusage_NonRepudation | Keyusage_KeyEncipherment;
  // The XML is for authorities that take it; the newest request of the store is the same one in the common form.
  attempt(t("Запрос не создан", "The request was not made"), function () { quivo.CreateXmlRequest(0, template, {}, true); });
  var parameters = new ActiveXObject("TAVL.ExportParam");
  parameters.flag = Flag_Export_NewRequest;
  attempt(t("Запрос не записан", "The request was not written"), function () { quivo.ExportFile(parameters, given[3]); });
  WScript.Echo(t("Запрос: ", "Request: ") + given[3]);
}

function importCertificate() {
  var parameters = new ActiveXObject("TAVL.ImportParam");
  parameters.flag = Flag_Import_MyCertificate;
  attempt(t("Сертификат не принят", "The certificate was refused"), function () { quivo.ImportFile(parameters, given[2]); });
  var certificate = attempt(given[2], function () { return quivo.ParseCert(readBytes(given[2]), Field_Subject | Field_KeyID); });
  WScript.Echo(t("Сертификат принят: ", "Imported: ") + certificate.subject);

  // The type comes first: without it the identifier takes nothing.
  var identifier = new ActiveXObject("TAVL.CertId");
  identifier.type = Id_KeyId;
  identifier.keyId = certificate.keyId;
  var param = new ActiveXObject("TAVL.SignParam");
  param.flag = Flag_Sign_Pkcs7 | Flag_Sign_Detached | Flag_Sign_SendSert;
  param.mycert = identifier;
  // StrSignFile wants a null string where there is no signature to add to, which this language cannot pass.
  var signature = attempt(t("Не подписан", "Not signed"), function () {
    return quivo.SignMem(param, readBytes(given[3]), undefined);
  });
  attempt(given[4], function () { writeBytes(given[4], signature); });
  WScript.Echo(t("Подписан новым ключом: ", "Signed with the new key: ") + given[3]);
}

function usage() {
  WScript.Echo(t("Получает сертификат:", "Gets a certificate:"));
  WScript.Echo("  cscript //nologo request.js new " + t("ПРОФИЛЬ \"CN=Имя, C=RU\" ЗАПРОС",
                                                        "PROFILE \"CN=Name, C=RU\" REQUEST") + " [/lang:en]");
  WScript.Echo("  cscript //nologo request.js import " + t("ПРОФИЛЬ СЕРТИФИКАТ ДОКУМЕНТ ПОДПИСЬ",
                                                           "PROFILE CERTIFICATE DOCUMENT SIGNATURE") +
               " [/lang:en]");
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

function writeBytes(path, bytes) {
  try {
    var stream = new ActiveXObject("ADODB.Stream");
    stream.Type = 1;
    stream.Open();
    stream.Write(bytes);
    stream.SaveToFile(path, 2);
  } catch (error) {
    var element = hexadecimal(), upper = upperHalf();
    element.nodeTypedValue = bytes;
    var letters = element.text.replace(/../g, function (digits) {
      var value = parseInt(digits, 16);
      return value < 128 ? String.fromCharCode(value) : upper.charAt(value - 128);
    });
    var file = new ActiveXObject("Scripting.FileSystemObject").CreateTextFile(path, true);
    file.Write(letters);
    file.Close();
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
