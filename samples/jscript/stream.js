// Signs a file in pieces, as a program does that gets its data from elsewhere, and shows how far it is.
//   cscript //nologo stream.js PROFILE FILE SIGNATURE [/lang:en]
// A file on a disk needs no pieces: StrSignFile reads it as a stream by itself (sign-folder.vbs).
// Exit code: 0 signed, 1 not signed, 2 wrong arguments.
var Flag_Sign_Pkcs7 = 1, Flag_Sign_Detached = 2, Flag_Sign_SendSert = 8;

var language = "ru", given = readArguments(3, 3);
var files = new ActiveXObject("Scripting.FileSystemObject");
var quivo = attempt(t("Модуль не зарегистрирован (см. doctor.js)", "The module is not registered (see doctor.js)"), function () {
  return new ActiveXObject("TAVL.QUIVO");
});
attempt(t("Сеанс не открыт", "The session cannot be opened"), function () { quivo.Initialize(given[0], 0); });

var pieces = attempt(given[1], function () { return piecesOf(given[1]); });
var size = files.GetFile(given[1]).Size, done = 0, shown = -1;
var param = new ActiveXObject("TAVL.SignParam");
param.flag = Flag_Sign_Pkcs7 | Flag_Sign_Detached | Flag_Sign_SendSert;
var context = new ActiveXObject("TAVL.StreamCtx");
attempt("StrSignInitMem", function () { quivo.StrSignInitMem(param, undefined, context); });
while (done < size) {
  attempt("StrSignUpdateMem", function () { quivo.StrSignUpdateMem(param, context, pieces.next()); });
  done = Math.min(done + pieces.length, size);
  progress(Math.floor(100 * done / size));
}
var signature = attempt("StrSignFinalMem", function () { return quivo.StrSignFinalMem(param, context); });
attempt(given[2], function () { writeBytes(given[2], signature); });
quivo.Uninitialize();
WScript.Echo(t("Подписано байт: ", "Bytes signed: ") + size);

// One line that grows where the host can, else a line for each tenth.
function progress(percent) {
  try {
    WScript.StdOut.Write("\r" + percent + "%  ");
    if (percent == 100) WScript.StdOut.WriteLine();
  } catch (error) {
    if (Math.floor(percent / 10) > shown) WScript.Echo(percent + "%");
    shown = Math.floor(percent / 10);
  }
}

// A file that is read in pieces of `length` bytes. Where there is no ADODB.Stream, as under Wine, bytes are letters.
function piecesOf(path) {
  try {
    var stream = new ActiveXObject("ADODB.Stream");
    stream.Type = 1;
    stream.Open();
    stream.LoadFromFile(path);
    return { length: 1048576, next: function () { return stream.Read(1048576); } };
  } catch (error) {
    var text = files.OpenTextFile(path);
    return { length: 4096, next: function () { return bytesOf(text.Read(4096)); } };
  }
}

function usage() {
  WScript.Echo(t("Подписывает файл по частям:", "Signs a file in pieces:"));
  WScript.Echo("  cscript //nologo stream.js " + t("ПРОФИЛЬ ФАЙЛ ПОДПИСЬ", "PROFILE FILE SIGNATURE") + " [/lang:en]");
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
