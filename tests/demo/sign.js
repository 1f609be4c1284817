// Signs a file and prints the signature as text, as a page or a mail would take it.
//   cscript //nologo sign.js PROFILE DOCUMENT
// This language takes results as the value of a call, or in the property "value" of an object that it passes.
var Flag_Init_Nocrlupdate = 1, Flag_Init_Noldap = 4;
var Flag_Sign_Pkcs7 = 1, Flag_Sign_Detached = 2, Flag_Sign_SendSert = 8;

var quivo = new ActiveXObject("TAVL.QUIVO");

// The text of a failure is the engine's.
function fail(what, error) {
  WScript.Echo(what + ": 0x" + (error.number >>> 0).toString(16) + " " + quivo.GetPKIErrorText(error.number));
  WScript.Quit(1);
}

try {
  quivo.Initialize(WScript.Arguments.Item(0), Flag_Init_Nocrlupdate | Flag_Init_Noldap);
} catch (error) {
  fail("The session cannot be opened", error);
}

var param = new ActiveXObject("TAVL.SignParam");
param.flag = Flag_Sign_Pkcs7 | Flag_Sign_Detached | Flag_Sign_SendSert;

// SignFile2B64Mem tells in its last argument, in words, why it failed.
var signature = {}, reason = {};
try {
  quivo.SignFile2B64Mem(param, WScript.Arguments.Item(1), signature, reason);
} catch (error) {
  WScript.Echo(reason.value);
  WScript.Quit(1);
}
// The text ends at the first NUL character; what stands behind it is nothing.
WScript.Echo(signature.value.match(/^[A-Za-z0-9+\/=\r\n]*/)[0]);

quivo.Uninitialize();
