// Decrypts a file, and names its sender if the message does. Nothing proves who the sender is: only a signature does.
//   cscript //nologo decrypt.js PROFILE ENCRYPTED RESULT [/lang:en]
// Exit code: 0 decrypted, 1 not decrypted, 2 wrong arguments.
var Field_Subject = 4;
var Flag_Decrypt_Pkcs7 = 1;

var language = "ru", given = readArguments(3, 3);
var quivo = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.QUIVO");
});
attempt(t("Сеанс не открыт", "The session cannot be opened"), function () { quivo.Initialize(given[0], 0); });

var param = new ActiveXObject("TAVL.DecryptParam");
param.flag = Flag_Decrypt_Pkcs7;
param.info = Field_Subject;
var sender = attempt(t("Не расшифрован", "Not decrypted"), function () {
  return quivo.StrDecryptFile(param, given[1], given[2]);
});
if (sender.subject == "") WScript.Echo(t("Расшифрован, отправитель не назван", "Decrypted, the sender is not named"));
else WScript.Echo(t("Расшифрован, отправитель: ", "Decrypted, the sender is ") + sender.subject);
quivo.Uninitialize();

function usage() {
  WScript.Echo(t("Расшифровывает файл:", "Decrypts a file:"));
  WScript.Echo("  cscript //nologo decrypt.js " + t("ПРОФИЛЬ ЗАШИФРОВАННЫЙ РЕЗУЛЬТАТ",
                                                    "PROFILE ENCRYPTED RESULT") + " [/lang:en]");
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
