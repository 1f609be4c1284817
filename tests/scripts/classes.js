// Every class of the module can be created by both of its names.
var names = ["QUIVO", "LocalParam", "RSrvParam", "CertId", "SignParam", "Policy", "Extension", "VerifyParam", "AltName",
             "Certificate", "SignStatus", "EncryptParam", "DecryptParam", "ExportParam", "ImportParam", "FindParam",
             "StreamCtx", "pkiobj"];

function created(name) {
  try { return typeof new ActiveXObject(name) === "object"; } catch (e) { return false; }
}

for (var i = 0; i < names.length; i++) {
  ok(created("TAVL." + names[i]), names[i]);
  ok(created("TAVL." + names[i] + ".1"), names[i] + ".1");
}
refused(0x800A01AD, "a version that does not exist", function () { new ActiveXObject("TAVL.CertId.2"); });

finish();
