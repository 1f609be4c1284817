// Encrypts a file to recipients, who are named by a part of the subject of their certificates, such as a mail address.
//   cscript //nologo encrypt.js PROFILE FILE RESULT PART [PART...] [/lang:en]
// Each part has to fit exactly one certificate of the store: where it fits none or several, nothing is encrypted.
// Exit code: 0 encrypted, 1 not encrypted, 2 wrong arguments.
var Field_Subject = 4;
var Flag_Encrypt_Pkcs7 = 1, Flag_Encrypt_PartialSubject = 512;

var language = "ru", given = readArguments(4, 99);
var quivo = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.QUIVO");
});
attempt(t("Сеанс не открыт", "The session cannot be opened"), function () { quivo.Initialize(given[0], 0); });

// A receiver can be a search: a certificate of which only the subject is stated. This language has no arrays that the module
// takes; the items of a dictionary are one.
var receivers = new ActiveXObject("Scripting.Dictionary");
for (var i = 3; i < given.length; i++) {
  var receiver = new ActiveXObject("TAVL.Certificate");
  receiver.fields = Field_Subject;
  receiver.subject = given[i];
  receivers.Add(i, receiver);
}
var param = new ActiveXObject("TAVL.EncryptParam");
param.flag = Flag_Encrypt_Pkcs7 | Flag_Encrypt_PartialSubject;
attempt("Receivers", function () { param.Receivers = receivers.Items(); });
attempt(t("Не зашифрован", "Not encrypted"), function () { quivo.StrEncryptFile(param, given[1], given[2]); });
WScript.Echo(t("Зашифрован, получателей: ", "Encrypted, recipients: ") + (given.length - 3));
quivo.Uninitialize();

function usage() {
  WScript.Echo(t("Шифрует файл получателям, сертификаты которых находит по части имени:",
                 "Encrypts a file to recipients found by a part of their names:"));
  WScript.Echo("  cscript //nologo encrypt.js " + t("ПРОФИЛЬ ФАЙЛ РЕЗУЛЬТАТ ЧАСТЬ [ЧАСТЬ...]",
                                                    "PROFILE FILE RESULT PART [PART...]") + " [/lang:en]");
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
