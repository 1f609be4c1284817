// Every class of the module can be created by both of its names. Arguments: the classes.

function created(name) {
  try { return typeof new ActiveXObject(name) === "object"; } catch (e) { return false; }
}

for (var i = 0; i < WScript.Arguments.length; i++) {
  var name = WScript.Arguments(i);
  ok(created("TAVL." + name), name);
  ok(created("TAVL." + name + ".1"), name + ".1");
}
ok(i > 0, "classes are named");
refused(0x800A01AD, "a version that does not exist", function () { new ActiveXObject("TAVL.CertId.2"); });

finish();
