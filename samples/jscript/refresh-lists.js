// Refreshes the revocation lists: adds lists that lie in files, and lets the engine fetch what it can.
//   cscript //nologo refresh-lists.js PROFILE [FILE...] [/lang:en]
// Exit code: 0 refreshed, 1 some list was refused, 2 wrong arguments.
var Flag_Import_Crl = 4, Flag_Import_Update = 16;

var language = "ru", given = readArguments(1, 99), failed = 0;
var quivo = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.QUIVO");
});
attempt(t("Сеанс не открыт", "The session cannot be opened"), function () { quivo.Initialize(given[0], 0); });

// With Update, a list that is older than the store's is passed over.
var parameters = new ActiveXObject("TAVL.ImportParam");
parameters.flag = Flag_Import_Crl | Flag_Import_Update;
for (var i = 1; i < given.length; i++) {
  try {
    quivo.ImportFile(parameters, given[i]);
    WScript.Echo(given[i] + ": " + t("список принят", "accepted"));
  } catch (error) {
    failed++;
    WScript.Echo(given[i] + ": " + textOf(error));
  }
}

// An engine that fails but has something to report succeeds: only the text says what happened, so it is always shown.
WScript.Echo(attempt(t("Списки не обновлены", "The lists are not refreshed"), function () { return quivo.UpdateCrl(); }));
quivo.Uninitialize();
if (failed > 0) WScript.Quit(1);

function usage() {
  WScript.Echo(t("Обновляет списки отозванных сертификатов:", "Refreshes the revocation lists:"));
  WScript.Echo("  cscript //nologo refresh-lists.js " + t("ПРОФИЛЬ [ФАЙЛ...]", "PROFILE [FILE...]") + " [/lang:en]");
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
