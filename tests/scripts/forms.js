// This language can receive results of calls and objects' properties only: both forms reach every result.
// Arguments: the name of a profile, a registry value with bytes.
var quivo = new ActiveXObject("TAVL.QUIVO");
var parameters = new ActiveXObject("TAVL.SignParam");
parameters.flag = 1;

// The bytes of the registry come as an array of VARIANTs of single bytes, which this language cannot make by itself.
var bytes = new ActiveXObject("WScript.Shell").RegRead(WScript.Arguments.Item(1));

function count(array) { return new VBArray(array).toArray().length; }

// Strings.
var expected = quivo.GetPKIErrorTextVBS(5);
ok(expected.length > 0, "GetPKIErrorTextVBS as a function");
equal(quivo.GetPKIErrorText(5), expected, "GetPKIErrorText as a function");
equal(quivo.GetPKIErrorText(0xE0680001 | 0), "\u041E\u0431\u044A\u0435\u043A\u0442 \u0443\u0436\u0435 " +
      "\u0438\u043D\u0438\u0446\u0438\u0430\u043B\u0438\u0437\u0438\u0440\u043E\u0432\u0430\u043D", "a text of the module");
var holder = {};
quivo.GetPKIErrorText(5, holder);
equal(holder.value, expected, "GetPKIErrorText into an object");
holder = { value: 5 };
quivo.GetPKIErrorTextVBS(5, holder);
equal(holder.value, expected, "GetPKIErrorTextVBS into an object that has the property");

// Bytes.
quivo.Initialize(WScript.Arguments.Item(0), 0);
refused(0xE0680001, "Initialize twice", function () { quivo.Initialize(WScript.Arguments.Item(0), 0); });
ok(count(quivo.SignMem(parameters, bytes, undefined)) > 100, "SignMem as a function");
holder = {};
quivo.SignMem(parameters, bytes, undefined, holder);
ok(count(holder.value) > 100, "SignMem into an object");

// A refusal leaves what the caller had.
holder = { value: "kept" };
refused(0xE0690057, "SignMem of a string", function () { quivo.SignMem(parameters, "no data", undefined, holder); });
equal(holder.value, "kept", "the object after a refusal");

// Two results of one call, each in its object.
var signature = {}, message = {};
quivo.SignFile2B64Mem(parameters, WScript.ScriptFullName, signature, message);
ok(signature.value.indexOf("MI") === 0, "SignFile2B64Mem gives its signature");
equal(message.value, undefined, "and no message");
refused(0xFFFFFFFF, "SignFile2B64Mem of a missing file", function () {
  quivo.SignFile2B64Mem(parameters, "Z:\\no\\such\\file", signature, message);
});
ok(quivo.GetMyCertB64().indexOf("MI") === 0, "GetMyCertB64 as a function");

finish();
