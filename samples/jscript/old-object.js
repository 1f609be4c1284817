// Signs, encrypts and decrypts a file by the older object, which has no parameter objects and talks to the user in windows.
//   cscript //nologo old-object.js PROFILE FILE FOLDER MAIL [/lang:en]
// Writes NAME.p7s (signed), NAME.p7e (encrypted to who has the MAIL address) and NAME.opened (decrypted again) into FOLDER.
// Exit code: 0 all written, 1 not all, 2 wrong arguments.
var language = "ru", given = readArguments(4, 4);
var files = new ActiveXObject("Scripting.FileSystemObject");
var target = files.BuildPath(given[2], files.GetFileName(given[1]));

var pkiobj = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.pkiobj");
});
attempt(t("Сеанс не открыт", "The session cannot be opened"), function () { pkiobj.Init(given[0]); });

// A script cannot tell every failure from success: a cancelled window and a positive code of the engine succeed without a
// result. That is why the files are looked for. IsSigned answers in the same way, so a script learns nothing from it.
attempt(t("Не подписан", "Not signed"), function () { pkiobj.Sign(given[1], target + ".p7s", 0); });
look(target + ".p7s");

// A recipient needs a certificate for both signatures and key encipherment: others are not found by an address.
attempt(given[3], function () { pkiobj.SetRecipients("SMTP:" + given[3]); });
attempt(t("Не зашифрован", "Not encrypted"), function () { pkiobj.Encrypt(given[1], target + ".p7e"); });
look(target + ".p7e");

// The last argument keeps the results sheet away. A file that is marked read-only is so no longer afterwards.
attempt(t("Не расшифрован", "Not decrypted"), function () { pkiobj.Unencrypt(target + ".p7e", target + ".opened", 0); });
look(target + ".opened");
pkiobj.Uninit();

function look(path) {
  if (!files.FileExists(path)) {
    WScript.Echo(t("Отказано или отменено, файла нет: ", "Refused or cancelled, there is no ") + path);
    WScript.Quit(1);
  }
  WScript.Echo(t("Записан ", "Written: ") + path);
}

// The object itself has shown the user why.
function textOf(error) {
  return error.message + " (0x" + (error.number >>> 0).toString(16).toUpperCase() + ")";
}

function usage() {
  WScript.Echo(t("Работает с файлом через прежний объект:", "Works on a file by the older object:"));
  WScript.Echo("  cscript //nologo old-object.js " + t("ПРОФИЛЬ ФАЙЛ ПАПКА ПОЧТА", "PROFILE FILE FOLDER MAIL") + " [/lang:en]");
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

// The text in the language of the messages.
function t(russian, english) {
  return language == "en" ? english : russian;
}
