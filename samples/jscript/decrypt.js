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

// The text in the language of the messages. The host reads this file, which is UTF-8, byte by byte in the code page 1251: two
// letters are put together again to the one that they stand for.
function t(russian, english) {
  if (language == "en") return english;
  return russian.replace(/([\u0420\u0421])([\u0080-\uFFFF])/g, function (pair, first, second) {
    return String.fromCharCode((first == "\u0420" ? 0x400 : 0x440) + upperHalf().indexOf(second));
  });
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
