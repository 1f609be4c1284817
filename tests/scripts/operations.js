// Every method of QUIVO with a result, reached in the two ways that this language has: as the value of the call, and in an
// object. Arguments: a folder, the names of two profiles, the folder of the PKI, the folder of the messages.
// No file: this language cannot pass a null string.
var noFile = "NUL";
var argument = function (i) { return WScript.Arguments.Item(i); };
var folder = argument(0) + "\\", pki = argument(3) + "\\", messages = argument(4) + "\\";
var arrays = new ActiveXObject("TavlTests.Arrays");
var ArrayOfObjects = 8201, ArrayOfVariants = 8204, ArrayOfBytes = 8209;

function create(name, properties) {
  var object = new ActiveXObject("TAVL." + name);
  for (var property in properties) object[property] = properties[property];
  return object;
}

function session(profile) {
  var quivo = create("QUIVO");
  quivo.Initialize(profile, 0);
  return quivo;
}

function load(name) { return arrays.load(messages + name); }
function text(array) { return arrays.text(array); }
function hexadecimal(array) {
  var result = "";
  for (var i = 0; i < arrays.count(array); i++) result += (256 + arrays.item(array, i)).toString(16).substr(1);
  return result;
}

// Looks at the value of a call, and at what an object received from another call of the same: `call` is given the object
// for the second one only.
function both(what, call, look) {
  look(call(), what + " as a function");
  var holder = {};
  call(holder);
  look(holder.value, what + " into an object");
}

var anna = session(argument(1)), boris = session(argument(2));
var data = text(load("data.bin"));
arrays.save(folder + "data.bin", data);
arrays.save(folder + "abc.txt", "abc");
var sha256 = "ba7816bf8f01cfea414140de5dae2223b00361a396177a9cb410ff61f20015ad";

function is(expected, reading) {
  return function (value, what) { equal(reading ? reading(value) : value, expected, what); };
}
function has(part, reading) {
  return function (value, what) { ok((reading ? reading(value) : value).indexOf(part) >= 0, what); };
}

// Texts.
both("GetPKIErrorText",
     function (h) { return h ? anna.GetPKIErrorText(5, h) : anna.GetPKIErrorText(5); },
     is(anna.GetPKIErrorTextVBS(5)));
both("GetPKIErrorTextVBS",
     function (h) { return h ? anna.GetPKIErrorTextVBS(5, h) : anna.GetPKIErrorTextVBS(5); },
     is(anna.GetPKIErrorText(5)));
both("UpdateCrl", function (h) { return h ? anna.UpdateCrl(h) : anna.UpdateCrl(); }, is(anna.UpdateCrl()));
both("GetMyCertB64", function (h) { return h ? anna.GetMyCertB64(h) : anna.GetMyCertB64(); }, has("MII"));

// Hashes and random numbers.
both("HashMem",
     function (h) { return h ? anna.HashMem(arrays.variants("abc"), h) : anna.HashMem(arrays.variants("abc")); },
     is(sha256, hexadecimal));
both("HashFile",
     function (h) { return h ? anna.HashFile(folder + "abc.txt", h) : anna.HashFile(folder + "abc.txt"); },
     is(sha256, hexadecimal));
both("GenRandom",
     function (h) { return h ? anna.GenRandom(16, h) : anna.GenRandom(16); },
     is(16, function (value) { return arrays.count(value); }));
equal(hexadecimal(anna.StrHashFile("SHA-256", folder + "abc.txt", true)), sha256, "StrHashFile as a function");
equal(new VBArray(anna.StrHashFile("SHA-1", folder + "abc.txt", true)).toArray()[0], 0xA9, "bytes opened by the language itself");
var holder = {};
anna.StrHashFile("SHA-256", folder + "abc.txt", holder, false);
equal(arrays.kind(holder.value), ArrayOfBytes, "StrHashFile into an object");

// Signing and verification.
var sign = create("SignParam", { flag: 1 + 8 });
var verify = create("VerifyParam", { flag: 1, info: 0x7FFFF });
both("SignMem",
     function (h) { return h ? anna.SignMem(sign, arrays.variants(data), undefined, h) : anna.SignMem(sign, arrays.variants(data), undefined); },
     function (value, what) {
  equal(arrays.kind(value), ArrayOfVariants, what);
  var content = {}, results = {};
  boris.VerifyMem(verify, undefined, value, content, results);
  equal(text(content.value), data, what + ": the content");
  equal(arrays.count(results.value), 1, what + ": the results");
  equal(arrays.item(results.value, 0).status, 0, what + ": the status");
  ok(arrays.item(results.value, 0).cert.subject.indexOf("anna@") >= 0, what + ": the signer");
});
anna.SignFile(sign, folder + "data.bin", noFile, folder + "file.p7s");
boris.StrSignFile(sign, noFile, folder + "file.p7s", folder + "two.p7s");
function verified(method, file, count) {
  both(method, function (holder) {
    return holder ? boris[method](verify, noFile, folder + file, folder + "content.bin", holder)
                  : boris[method](verify, noFile, folder + file, folder + "content.bin");
  }, function (results, what) {
    equal(arrays.kind(results), ArrayOfObjects, what);
    equal(arrays.count(results), count, what + ": the results");
    equal(text(arrays.load(folder + "content.bin")), data, what + ": the content");
  });
}
verified("VerifyFile", "file.p7s", 1);
verified("StrVerifyFile", "two.p7s", 2);
var results = boris.VerifyMem(verify, undefined, load("two.p7s"), {});
equal(arrays.count(results), 2, "VerifyMem as a function gives its last result");
holder = {};
refused(0xE0697021, "a changed signature", function () {
  boris.VerifyMem(verify, undefined, load("signature.flipped.p7s"), {}, holder);
});
equal(arrays.item(holder.value, 0).status & 0xFFFF, 0x7021, "the results of a refused verification");

// The store.
var find = create("FindParam", { flag: 512, info: 0x7FFFF, certTemplate: create("Certificate", { fields: 4, subject: "boris@" }) });
both("FindCert", function (h) { return h ? anna.FindCert(find, h) : anna.FindCert(find); }, function (value, what) {
  equal(arrays.kind(value), ArrayOfObjects, what);
  equal(arrays.item(value, 0).subjectAltName.emailAddress, "boris@example.test", what + ": the certificate");
});
var found = anna.FindCert(find);
var certificate = arrays.load(pki + "store\\boris.cer");
both("ParseCert",
     function (h) { return h ? anna.ParseCert(certificate, 0x7FFFF, h) : anna.ParseCert(certificate, 0x7FFFF); },
     has("boris@", function (value) { return value.subject; }));
equal(new Date(anna.ParseCert(certificate, 0x7FFFF).notAfter).getFullYear() > 2000, true, "a date of a certificate");
var own = create("LocalParam", { pse: pki + "anna.p12", pincode: "12345678", localstore: folder + "store" });
var files = new ActiveXObject("Scripting.FileSystemObject");
if (files.FolderExists(folder + "store")) files.DeleteFolder(folder + "store", true);
files.CreateFolder(folder + "store");
var local = create("QUIVO");
local.InitializeEx(own);
// Nothing cannot be passed for an object by this language: the own certificate is named.
var myself = create("CertId", { type: 1, keyId: arrays.item(local.FindCert(create("FindParam", { flag: 1, info: 0x7FFFF })), 0).keyId });
local.AddCertificate(myself, certificate);
local.AddCRL(myself, arrays.load(pki + "store\\ca.crl"));
both("ExportMem", function (holder) {
  var parameters = create("ExportParam", { flag: 2 });
  return holder ? local.ExportMem(parameters, holder, true) : local.ExportMem(parameters, true);
}, is(ArrayOfVariants, function (value) { return arrays.kind(value); }));
local.ExportFile(create("ExportParam", { flag: 2 }), folder + "export.p7b");
local.ImportMem(create("ImportParam", { flag: 2 }), local.ExportMem(create("ExportParam", { flag: 2 }), false));
local.ImportFile(create("ImportParam", { flag: 2 }), folder + "export.p7b");
ok(true, "AddCertificate, AddCRL, ExportFile, ImportMem and ImportFile");
refused(0xE069700C, "ShowCertificate without a display", function () { local.ShowCertificate(certificate); });
refused(0xE069700C, "ShowCrl without a display", function () { local.ShowCrl(arrays.load(pki + "store\\ca.crl")); });

// Requests and identifiers.
var template = create("Certificate", { fields: 4, subject: "CN=Script, C=RU" });
both("CreateXmlRequest", function (holder) {
  return holder ? local.CreateXmlRequest(0, template, holder, false) : local.CreateXmlRequest(0, template, false);
}, has("<?xml", text));
local.Uninitialize();
holder = {};
anna.CheckOID("1.3.6.1.5.5.7.3.4", holder);
refused(0x80004005, "CheckOID of an identifier that is not there", function () { anna.CheckOID("1.2.3", holder); });
equal(holder.value.indexOf("OID 1.2.3 "), 0, "its text");

// Encryption.
var encrypt = create("EncryptParam", { flag: 1 });
encrypt.Receivers = found;
encrypt.mycert = create("CertId", { type: 1, keyId: arrays.item(anna.FindCert(create("FindParam", { flag: 1, info: 0x7FFFF })), 0).keyId });
var decrypt = create("DecryptParam", { flag: 1, info: 4 });
both("EncryptMem",
     function (h) { return h ? anna.EncryptMem(encrypt, arrays.variants(data), h) : anna.EncryptMem(encrypt, arrays.variants(data)); },
     function (value, what) {
  var opened = {}, sender = {};
  boris.DecryptMem(decrypt, value, opened, sender);
  equal(text(opened.value), data, what + ": decrypted");
  ok(sender.value.subject.indexOf("anna@") >= 0, what + ": the sender");
  ok(boris.DecryptMem(decrypt, value, {}).subject.indexOf("anna@") >= 0, what + ": the sender as the value of the call");
});
anna.EncryptFile(encrypt, folder + "data.bin", folder + "file.p7m");
anna.StrEncryptFile(encrypt, folder + "data.bin", folder + "stream.p7m");
both("DecryptFile",
     function (h) { return h ? boris.DecryptFile(decrypt, folder + "file.p7m", folder + "file.bin", h) : boris.DecryptFile(decrypt, folder + "file.p7m", folder + "file.bin"); },
     has("anna@", function (value) { return value.subject; }));
both("StrDecryptFile",
     function (h) { return h ? boris.StrDecryptFile(decrypt, folder + "stream.p7m", folder + "stream.bin", h) : boris.StrDecryptFile(decrypt, folder + "stream.p7m", folder + "stream.bin"); },
     has("anna@", function (value) { return value.subject; }));
equal(text(arrays.load(folder + "file.bin")), data, "what DecryptFile wrote");
equal(text(arrays.load(folder + "stream.bin")), data, "what StrDecryptFile wrote");

// Streams: the same in both ways, each with a stream of its own.
function streamed(h) {
  var stream = create("StreamCtx");
  anna.StrHashInitMem("SHA-256", stream);
  anna.StrHashUpdateMem(stream, arrays.bytes("abc"));
  return h ? anna.StrHashFinalMem(stream, h) : anna.StrHashFinalMem(stream);
}
both("StrHashFinalMem", streamed, is(sha256, hexadecimal));

both("StrSignFinalMem", function (h) {
  var stream = create("StreamCtx");
  anna.StrSignInitMem(sign, undefined, stream);
  anna.StrSignUpdateMem(sign, stream, arrays.bytes(data));
  return h ? anna.StrSignFinalMem(sign, stream, h) : anna.StrSignFinalMem(sign, stream);
}, function (value, what) {
  var content = {};
  boris.VerifyMem(verify, undefined, value, content);
  equal(text(content.value), data, what);
});

both("StrVerifyFinalMem", function (h) {
  var stream = create("StreamCtx"), content = {};
  boris.StrVerifyInitMem(verify, undefined, stream);
  boris.StrVerifyUpdateMem(verify, stream, load("two.p7s"));
  var value = h ? boris.StrVerifyFinalMem(verify, stream, content, h) : boris.StrVerifyFinalMem(verify, stream, content);
  equal(text(content.value), data, "StrVerifyFinalMem: the content");
  return value;
}, is(2, function (value) { return arrays.count(value); }));

both("StrEncryptFinalMem", function (h) {
  var stream = create("StreamCtx"), piece = {};
  anna.StrEncryptInitMem(encrypt, stream);
  var message = text(anna.StrEncryptUpdateMem(encrypt, stream, arrays.bytes(data)));
  anna.StrEncryptUpdateMem(encrypt, stream, arrays.bytes(data), piece);
  message += text(piece.value) + text(h ? (anna.StrEncryptFinalMem(encrypt, stream, h), h.value)
                                        : anna.StrEncryptFinalMem(encrypt, stream));
  equal(text(boris.DecryptMem(decrypt, arrays.bytes(message), piece) && piece.value), data + data, "StrEncryptFinalMem");
  return message;
}, function () {});

both("StrDecryptFinalMem", function (h) {
  var stream = create("StreamCtx"), left = {}, plain = {};
  boris.StrDecryptInitMem(decrypt, undefined, left, stream);
  equal(left.value, 0, "StrDecryptInitMem: what is left over");
  left = {};
  boris.StrDecryptUpdateMem(decrypt, stream, arrays.load(folder + "file.p7m"), left, plain);
  equal(left.value, 0, "StrDecryptUpdateMem: what is left over");
  equal(text(plain.value), data, "StrDecryptUpdateMem into an object");
  return h ? boris.StrDecryptFinalMem(decrypt, stream, h) : boris.StrDecryptFinalMem(decrypt, stream);
}, has("anna@", function (value) { return value.subject; }));
refused(null, "a parameter object in the place of a stream", function () { anna.StrSignUpdateMem(sign, sign, arrays.bytes("a")); });

finish();
