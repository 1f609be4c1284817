// Examines the installation of the module on this machine: what is wrong, and what to do. The script of support.
//   cscript //nologo doctor.js [PROFILE] [/lang:en]
// With PROFILE a session is opened as well, which may ask for the PIN of the keys.
// To see whether this user is an administrator, it writes an empty file into the folder of programs and removes it again.
// Exit code: 0 all is well, 1 something is wrong, 2 wrong arguments.
var LibraryId = "{6C5ACF4C-A048-4640-8A59-D6D1511153B1}";
var Flag_Init_Nocrlupdate = 1, Flag_Init_Noldap = 4;

// The classes with their identifiers, in the order of registration.
var classes = [
  ["QUIVO", "{4D9C12F3-1D48-4A4D-A2EC-E740E455FEEA}"], ["LocalParam", "{236C9B37-B991-48C2-B14A-340A28638282}"],
  ["RSrvParam", "{DFDABA17-D518-42A6-81DE-C90C8EC32BCF}"], ["CertId", "{2FE53899-07E9-4CB2-BB03-D559BE2FC5D5}"],
  ["SignParam", "{5B584C94-8FB4-4647-AFE6-879085600DBF}"], ["Policy", "{931F33F5-525B-4613-A5A7-D0E28115DD9A}"],
  ["Extension", "{7D42ABCB-3B36-4B75-8610-3DE59F556435}"], ["VerifyParam", "{638DCAAF-63A6-40D2-BE7B-00E0D60B43D6}"],
  ["AltName", "{A87DDCC9-0E5C-4FD2-9336-C183B2068817}"], ["Certificate", "{A2B25429-5D39-44B8-B48F-421BBBD18E52}"],
  ["SignStatus", "{34349D2D-14C6-414B-9771-A7BD2A7C7180}"], ["EncryptParam", "{904023D8-3EB6-4079-B062-45C68095682E}"],
  ["DecryptParam", "{3DBDF772-F8AB-4DD8-9A7A-C9650637EE32}"], ["ExportParam", "{5D343B47-FDD0-4802-930B-EADDA0CE37D9}"],
  ["ImportParam", "{8C4D3DF5-889F-434C-BA1C-22F23FD7CB1B}"], ["FindParam", "{B67689B6-7C60-465C-A541-9878368A6AE5}"],
  ["StreamCtx", "{F0723AEE-B2DB-40C0-9205-B3CE505E8B2C}"], ["pkiobj", "{D107033F-3A53-4406-AF19-13543470DDB2}"]];

// What the engine has to export.
var functions = [
  "AddCRL", "AddCertificate", "AllocMem", "CreateXmlRequest", "Ctrl", "DecryptAndVerifyFile", "DecryptFile", "DecryptMem",
  "EncodeMem", "EncryptFile", "EncryptMem", "ExportFile", "ExportMem", "FindCert", "FreeCert", "FreeDecryptResult",
  "FreeFindResult", "FreeMem", "FreeSignedInfoResult", "FreeVerifyResult", "GenRandom", "GetErrorText", "HashFile",
  "HashMem", "ImportFile", "ImportMem", "InitMinimal", "Initialize", "InitializeEx", "ParseCert", "ShowCertificate",
  "ShowCrl", "SignAndEncryptFile", "SignFile", "SignMem", "SignedInfoFile", "StrDecryptFile", "StrDecryptFinalMem",
  "StrDecryptInitMem", "StrDecryptUpdateMem", "StrEncryptFile", "StrEncryptFinalMem", "StrEncryptInitMem",
  "StrEncryptUpdateMem", "StrHashFile", "StrHashFinalMem", "StrHashInitMem", "StrHashUpdateMem", "StrSignFile",
  "StrSignFinalMem", "StrSignInitMem", "StrSignUpdateMem", "StrVerifyFile", "StrVerifyFinalMem", "StrVerifyInitMem",
  "StrVerifyUpdateMem", "Uninitialize", "VerifyCert", "VerifyFile", "VerifyMem"];

var language = "ru", given = readArguments(0, 1), problems = 0;
var shell = new ActiveXObject("WScript.Shell"), files = new ActiveXObject("Scripting.FileSystemObject");
var modulePath = registry("HKCR\\CLSID\\" + classes[0][1] + "\\InprocServer32\\"), quivo = null;
examineHost();
examineRegistration();
examineEngine();
examineObjects();
examineProfiles();
examineRights();

WScript.Echo("");
WScript.Echo(problems == 0 ? t("Замечаний нет.", "All is well.") : t("Найдено неисправностей: ", "Problems found: ") + problems);
WScript.Quit(problems == 0 ? 0 : 1);

// The module and its engine are programs of 64 bits, and exchange text in the code page 1251.
function examineHost() {
  WScript.Echo(t("Сервер сценариев", "Script host"));
  var processor = variable("PROCESSOR_ARCHITECTURE");
  if (processor == "AMD64") good(t("64-разрядный", "64 bits"));
  else bad(t("не 64-разрядный: ", "not of 64 bits: ") + processor,
           t("запустите %SystemRoot%\\Sysnative\\cscript.exe вместо SysWOW64\\cscript.exe",
             "run %SystemRoot%\\Sysnative\\cscript.exe instead of SysWOW64\\cscript.exe"));
  var codePage = registry("HKLM\\SYSTEM\\CurrentControlSet\\Control\\Nls\\CodePage\\ACP");
  if (codePage == "1251") good(t("кодовая страница 1251", "code page 1251"));
  else bad(t("кодовая страница не 1251", "the code page is not 1251"),
           t("выберите русский язык для программ, не поддерживающих Юникод",
             "choose Russian as the language for programs that do not support Unicode"));
}

function examineRegistration() {
  WScript.Echo(t("Регистрация", "Registration"));
  if (modulePath == "") {
    bad(t("модуль не зарегистрирован", "the module is not registered"),
        t("выполните от имени администратора: regsvr32 tavlcom.dll", "run as administrator: regsvr32 tavlcom.dll"));
    return;
  }
  var again = t("зарегистрируйте модуль снова: ", "register the module again: ") + "regsvr32 \"" + modulePath + "\"";
  var missing = "", elsewhere = "";
  for (var i = 0; i < classes.length; i++) {
    var key = "HKCR\\CLSID\\" + classes[i][1] + "\\InprocServer32\\", path = registry(key);
    var isThere = registry("HKCR\\TAVL." + classes[i][0] + "\\CLSID\\") == classes[i][1] && registry(key + "ThreadingModel") == "Apartment";
    if (!isThere) missing += " TAVL." + classes[i][0];
    else if (path != modulePath) elsewhere += " TAVL." + classes[i][0];
  }
  if (missing != "") bad(t("нет классов:", "classes are missing:") + missing, again);
  else if (elsewhere != "") bad(t("классы другого файла:", "classes of another file:") + elsewhere, again);
  else good(t("классов: ", "classes: ") + classes.length);
  if (files.FileExists(modulePath)) good(modulePath + versionOf(modulePath));
  else bad(t("файла нет: ", "the file is not there: ") + modulePath,
           t("верните файл на место или зарегистрируйте его там, где он есть", "put it back, or register it where it is"));
  // Such a key hides the one of the machine from this user.
  var own = registry("HKCU\\Software\\Classes\\CLSID\\" + classes[0][1] + "\\InprocServer32\\");
  if (own != "") bad(t("у этого пользователя своя регистрация: ", "this user has a registration of his own: ") + own,
                     t("удалите раздел ", "delete the key ") + "HKCU\\Software\\Classes\\CLSID\\" + classes[0][1]);
  var library = registry("HKCR\\TypeLib\\" + LibraryId + "\\1.0\\0\\win64\\");
  if (library != "" && files.FileExists(library)) good(t("библиотека типов: ", "type library: ") + library);
  else bad(t("нет библиотеки типов", "no type library"), again);
}

// The engine is looked for where the module looks: in its own folder, in the system folder, in absolute folders of PATH.
function examineEngine() {
  WScript.Echo(t("Криптографическая библиотека", "Engine"));
  if (modulePath == "") return;
  var folders = [files.GetParentFolderName(modulePath), files.GetSpecialFolder(1).Path].concat(variable("PATH").split(";")),
      found = "";
  for (var i = 0; i < folders.length; i++) {
    var path = folders[i].replace(/\\$/, "") + "\\tavl1.dll";
    if (!/^([A-Z]:\\|\\\\)/i.test(path) || path.toLowerCase() == found.toLowerCase() || !files.FileExists(path)) continue;
    if (found == "") found = path;
    else remark(t("не используется: ", "not used: ") + path);
  }
  if (found == "") {
    bad(t("нет файла tavl1.dll", "there is no tavl1.dll"), t("положите его в папку ", "put it into the folder ") + folders[0]);
    return;
  }
  var names = exportedNames(found), missing = "";
  if (!names) {
    bad(t("не 64-разрядная библиотека: ", "not a library of 64 bits: ") + found,
        t("замените её на 64-разрядную", "replace it by the one of 64 bits"));
    return;
  }
  good(found + versionOf(found));
  for (i = 0; i < functions.length; i++) {
    if (!names["QUIVO_" + functions[i]]) missing += " QUIVO_" + functions[i];
  }
  if (missing == "") good(t("функций: ", "functions: ") + functions.length);
  else bad(t("нет функций:", "functions are missing:") + missing,
           t("поставьте версию библиотеки, для которой сделан модуль",
             "install the version of the engine that the module was made for"));
}

// The names that a library exports; null if it is not one of 64 bits.
function exportedNames(path) {
  var Machine64 = 0x8664;
  if (files.GetFile(path).Size < 512) return null;
  var image = files.OpenTextFile(path).ReadAll(), values = {}, upper = upperHalf();
  for (var i = 0; i < upper.length; i++) values[upper.charCodeAt(i)] = 128 + i;
  function numberAt(offset, size) {
    var result = 0;
    for (var k = size - 1; k >= 0; k--) {
      var code = image.charCodeAt(offset + k);
      result = result * 256 + (code < 128 ? code : values[code]);
    }
    return result;
  }
  // Where in the file the section lies that is loaded at an address.
  function placeOf(address) {
    for (var k = 0; k < numberAt(header + 6, 2); k++) {
      var entry = header + 24 + numberAt(header + 20, 2) + 40 * k, start = numberAt(entry + 12, 4);
      if (address >= start && address < start + numberAt(entry + 16, 4)) return address - start + numberAt(entry + 20, 4);
    }
    return 0;
  }
  var header = numberAt(60, 4), names = {};
  if (numberAt(header + 4, 2) != Machine64) return null;
  var table = placeOf(numberAt(header + 136, 4));
  if (table == 0) return names;
  var count = numberAt(table + 24, 4), list = placeOf(numberAt(table + 32, 4));
  for (i = 0; i < count; i++) {
    var place = placeOf(numberAt(list + 4 * i, 4)), name = "";
    for (; image.charCodeAt(place) != 0; place++) name += image.charAt(place);
    names[name] = true;
  }
  return names;
}

function examineObjects() {
  WScript.Echo(t("Объекты", "Objects"));
  var failed = "";
  for (var i = 0; i < classes.length; i++) {
    try {
      new ActiveXObject("TAVL." + classes[i][0]);
    } catch (error) {
      failed += " TAVL." + classes[i][0];
    }
  }
  if (failed != "") {
    bad(t("не создаются:", "cannot be created:") + failed,
        t("устраните неисправности, названные выше; если их нет, рядом с tavl1.dll не хватает её библиотек",
          "mend what is named above; if nothing is, a library that tavl1.dll needs is missing"));
    return;
  }
  good(t("создаются все", "all can be created"));
  quivo = new ActiveXObject("TAVL.QUIVO");
  try {
    quivo.InitMinimal();
    quivo.Uninitialize();
    good(t("библиотека отвечает", "the engine answers"));
  } catch (error) {
    bad(t("библиотека не отвечает: ", "the engine does not answer: ") + textOf(error),
        t("обратитесь к поставщику tavl1.dll", "ask whoever supplies tavl1.dll"));
  }
}

function examineProfiles() {
  WScript.Echo(t("Профили", "Profiles"));
  var key = "HKCU\\SOFTWARE\\KORVENTA\\tavl\\Profiles\\", selected = registry(key + "CurSel"), count = 0;
  for (var i = 0; i < 100; i++) {
    var name = registry(key + i + "\\ProfileName");
    if (name == "") continue;
    count++;
    good(i + ": " + name + (String(i) == String(selected) ? t(" - выбран", " - selected") : ""));
  }
  if (count == 0) {
    bad(t("у этого пользователя нет профилей", "this user has no profiles"),
        t("создайте профиль средствами tavl1.dll", "make a profile with the tools of tavl1.dll"));
  } else if (registry(key + selected + "\\ProfileName") == "") {
    bad(t("выбранного профиля нет: ", "the selected profile does not exist: ") + selected, t("выберите профиль", "select a profile"));
  }
  if (given.length == 0 || !quivo) return;
  try {
    quivo.Initialize(given[0], Flag_Init_Nocrlupdate | Flag_Init_Noldap);
  } catch (error) {
    bad(given[0] + ": " + textOf(error), t("проверьте имя профиля, его ключи и PIN",
                                           "check the name of the profile, its keys and the PIN"));
    return;
  }
  good(given[0] + t(": сеанс открыт", ": the session is open"));
  try {
    quivo.GetMyCertB64();
    good(t("свой сертификат есть", "there is an own certificate"));
  } catch (error) {
    bad(t("нет своего сертификата: ", "no own certificate: ") + textOf(error),
        t("получите сертификат (request.js)", "request a certificate (request.js)"));
  }
  quivo.Uninitialize();
}

function examineRights() {
  WScript.Echo(t("Права", "Rights"));
  var isAdministrator = isWritable(variable("ProgramFiles"));
  if (isAdministrator) good(t("администратор: регистрация разрешена", "an administrator: registration is allowed"));
  else remark(t("не администратор: для работы прав хватает, для регистрации - нет",
                "not an administrator: enough to work, not to register"));
  var folder = files.GetSpecialFolder(2).Path;
  if (isWritable(folder)) good(t("временная папка доступна: ", "the temporary folder can be written: ") + folder);
  else bad(t("временная папка недоступна: ", "the temporary folder cannot be written: ") + folder,
           t("дайте этому пользователю право записи", "give this user the right to write"));
}

function isWritable(folder) {
  try {
    var path = folder + "\\" + files.GetTempName();
    files.CreateTextFile(path, true).Close();
    files.DeleteFile(path);
    return true;
  } catch (error) {
    return false;
  }
}

// A variable of the environment. Wine's host leaves a NUL character behind it.
function variable(name) {
  return shell.ExpandEnvironmentStrings("%" + name + "%").replace(/\u0000/g, "");
}

// A file without a version is an error to the host.
function versionOf(path) {
  try {
    return ", " + files.GetFileVersion(path);
  } catch (error) {
    return "";
  }
}

// A value of the registry; nothing where there is none.
function registry(name) {
  try {
    return shell.RegRead(name);
  } catch (error) {
    return "";
  }
}

function good(what) {
  WScript.Echo("  ok  " + what);
}

function remark(what) {
  WScript.Echo("  --  " + what);
}

function bad(what, advice) {
  problems++;
  WScript.Echo("  !!  " + what);
  WScript.Echo("      > " + advice);
}

function usage() {
  WScript.Echo(t("Проверяет установку модуля:", "Examines the installation of the module:"));
  WScript.Echo("  cscript //nologo doctor.js " + t("[ПРОФИЛЬ]", "[PROFILE]") + " [/lang:en]");
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
