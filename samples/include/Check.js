// Turns the number of a failed call into words, and ends the script. The file is in Windows-1251.
//
//   try { quivo.Initialize("Anna", 0); } catch (error) { Check(quivo, error, "Initialize"); }
//
// Copy these functions into a script, or read them in:
//   eval(new ActiveXObject("Scripting.FileSystemObject").OpenTextFile("Check.js").ReadAll());
// The first argument is a TAVL.QUIVO, which need not have a session, or null: without one the engine's texts are missing.
// The texts of the table are Russian unless checkLanguage is "en"; the engine's are always in its own language.
var checkLanguage;

function Check(object, error, what) {
  WScript.Echo(what + ": 0x" + (error.number >>> 0).toString(16).toUpperCase() + " " + errorText(object, error));
  WScript.Quit(1);
}

// The text of a caught error, for scripts that go on after a failure.
function errorText(object, error) {
  var number = error.number >>> 0, range = number >>> 16;
  // The script host's own errors are 0x800Axxxx, and it has a text for each.
  return (range === 0xE068 || range === 0xE069) && engineText(object, number) ||
         knownText(number) || range !== 0x800A && engineText(object, number) || error.message;
}

function engineText(object, number) {
  try { return object.GetPKIErrorTextVBS(number | 0); } catch (failure) { return ""; }
}

function knownText(number) {
  var texts = knownTexts[number.toString(16)];
  return texts && texts[checkLanguage === "en" ? 1 : 0];
}

var knownTexts = {
  "e0680001": ["Объект уже инициализирован: сначала Uninitialize", "The object has a session already: call Uninitialize first"],
  "e0690005": ["Нет доступа к файлу, или файловые методы запрещены узлом сценария", "Access denied, or the host forbids the file methods"],
  "e069000e": ["Недостаточно памяти", "Out of memory"],
  "e0690057": ["Аргумент не того типа: данные - это массив байтов, объекты - только этого модуля", "An argument has the wrong type: data is an array of bytes, objects are this module's only"],
  "ffffffff": ["Причина - в последнем аргументе вызова", "The reason is in the last argument of the call"],
  "e0700019": ["Подпись проверена с замечаниями", "The signature is verified, with remarks"],
  "e0700036": ["Срок действия сертификата не наступил или истёк", "The certificate is not valid yet, or no more"],
  "e072008a": ["Сертификат не выбран", "No certificate was selected"],
  "80000008": ["Недостаточно памяти для списка получателей", "Out of memory for the list of recipients"],
  "80000057": ["Получатель не задан или не найден", "No recipient is given, or none is found"],
  "80004005": ["Не выполнено: сертификат не найден, или причина - в последнем аргументе вызова", "Failed: no certificate is found, or the reason is in the last argument of the call"],
  "80004002": ["Передан объект другого класса", "An object of another class was passed"],
  "80004003": ["Нет места для результата", "There is no place for the result"],
  "80070005": ["Отказано в доступе", "Access denied"],
  "8007000e": ["Недостаточно памяти", "Out of memory"],
  "80070057": ["Неверное значение. У CertId сначала задают type", "Invalid value. The type of a CertId is set first"],
  "80020003": ["У объекта нет такого метода или свойства", "The object has no such method or property"],
  "80020005": ["Несовпадение типов", "Type mismatch"],
  "8002000e": ["Неверное число аргументов", "Wrong number of arguments"],
  "80040154": ["Модуль не зарегистрирован для программ этой разрядности: нужен 64-разрядный узел", "The module is not registered for programs of this bitness: a 64-bit host is needed"],
  "80040111": ["В модуле нет такого класса", "The module has no such class"],
  "800401f0": ["COM не инициализирован в этом потоке", "COM is not initialised on this thread"],
  "8007007e": ["Не найдена библиотека tavl1.dll или библиотека, которая ей нужна", "tavl1.dll is missing, or a library that it needs"],
  "8007007f": ["В tavl1.dll нет функции, которую вызывает модуль", "tavl1.dll lacks a function that the module calls"]
};
knownTexts["800401f3"] = knownTexts["800a01ad"] = knownTexts["80040154"];
knownTexts["800a01b6"] = knownTexts["80020003"];
knownTexts["800a000d"] = knownTexts["80020005"];
knownTexts["800a01c2"] = knownTexts["8002000e"];
knownTexts["800a0005"] = knownTexts["80070057"];
knownTexts["800a01ae"] = knownTexts["80004002"];
knownTexts["800a0007"] = knownTexts["8007000e"];
knownTexts["800a0046"] = knownTexts["80070005"];
