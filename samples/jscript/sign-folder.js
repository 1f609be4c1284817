// Signs every file of a folder. The signature of NAME is written beside it as NAME.p7s; files that have one are passed over.
//   cscript //nologo sign-folder.js PROFILE FOLDER REPORT [/lang:en]
// REPORT becomes a table: file, size, result, separated by tabs. The files are read into memory; sign-folder.vbs need not.
// Exit code: 0 all is signed, 1 something is not, 2 wrong arguments.
var Flag_Sign_Pkcs7 = 1, Flag_Sign_Detached = 2, Flag_Sign_SendSert = 8;

var language = "ru", given = readArguments(3, 3);
var files = new ActiveXObject("Scripting.FileSystemObject");
var quivo = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.QUIVO");
});
attempt(t("Сеанс не открыт", "The session cannot be opened"), function () { quivo.Initialize(given[0], 0); });

// The names are collected before the first file is signed: then the folder grows.
var paths = attempt(t("Папка не прочитана", "The folder cannot be read"), function () { return filesToSign(given[1]); });
var report = attempt(t("Отчёт не создан", "The report cannot be written"),
                     function () { return files.CreateTextFile(given[2], true); });
var param = new ActiveXObject("TAVL.SignParam");
param.flag = Flag_Sign_Pkcs7 | Flag_Sign_Detached | Flag_Sign_SendSert;
report.WriteLine(t("Подписание папки ", "Signing of the folder ") + given[1] + ", " + moment(new Date()) + ", " + given[0]);
var failed = 0, passed = 0;
for (var i = 0; i < paths.length; i++) {
  var result = signOne(paths[i]), name = files.GetFileName(paths[i]);
  WScript.Echo("[" + (i + 1) + "/" + paths.length + "] " + name + ": " + result);
  report.WriteLine(name + "\t" + files.GetFile(paths[i]).Size + "\t" + result);
}
result = t("Подписано: ", "Signed: ") + (paths.length - failed - passed) + t(", пропущено: ", ", passed over: ") + passed +
         t(", ошибок: ", ", failed: ") + failed;
report.WriteLine(result);
report.Close();
WScript.Echo(result);
quivo.Uninitialize();
if (failed > 0) WScript.Quit(1);

// What became of one file, in words.
function signOne(path) {
  if (files.FileExists(path + ".p7s")) {
    passed++;
    return t("подпись уже есть", "has a signature already");
  }
  try {
    // StrSignFile wants a null string where there is no signature to add to, which this language cannot pass.
    writeBytes(path + ".p7s", quivo.SignMem(param, readBytes(path), undefined));
    return t("подписан", "signed");
  } catch (error) {
    failed++;
    return textOf(error);
  }
}

function filesToSign(folder) {
  var all = filesOf(folder), result = [];
  var reportPath = files.GetAbsolutePathName(given[2]).toLowerCase();
  for (var i = 0; i < all.length; i++) {
    if (!/\.p7s$/i.test(all[i]) && all[i].toLowerCase() != reportPath) result.push(all[i]);
  }
  return result;
}

function usage() {
  WScript.Echo(t("Подписывает все файлы папки:", "Signs every file of a folder:"));
  WScript.Echo("  cscript //nologo sign-folder.js " + t("ПРОФИЛЬ ПАПКА ОТЧЁТ", "PROFILE FOLDER REPORT") + " [/lang:en]");
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
