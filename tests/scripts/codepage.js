// What the other tests rest on: the ANSI code page is 1251, as codepage.check sees in the file. Argument: a folder.
var files = new ActiveXObject("Scripting.FileSystemObject");
var file = files.CreateTextFile(WScript.Arguments.Item(0) + "\\letters.txt", true);
file.Write("\u0410\u044F\u0401\u2116");
file.Close();
ok(files.FileExists(WScript.Arguments.Item(0) + "\\letters.txt"), "the file is written");

finish();
