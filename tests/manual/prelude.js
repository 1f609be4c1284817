// What the lines of the manual's methods find ready. Arguments: the name of a profile, a folder with a key and a store.
var NoFile = "NUL";
var arrays = new ActiveXObject("TavlTests.Arrays"), files = new ActiveXObject("Scripting.FileSystemObject");
var profile = WScript.Arguments.Item(0), folder = WScript.Arguments.Item(1) + "\\";
var data = arrays.variants(arrays.load("C:\\docs\\contract.txt"));
var signed = arrays.variants(arrays.load("C:\\docs\\contract.p7s"));
var encrypted = arrays.variants(arrays.load("C:\\docs\\contract.p7e"));
var certificate = arrays.load(folder + "store\\boris.cer"), certificateText = arrays.load(folder + "store\\anna.cer");
var crl = arrays.load(folder + "store\\ca.crl");
var quivo, legacy, localParam, stream, ownId, receiver, template;
var signParam, verifyParam, encryptParam, decryptParam, findParam, exportParam, importParam;
var samplesDone = 0, samplesFailed = 0;

function made(name, properties) {
  var object = new ActiveXObject("TAVL." + name);
  for (var property in properties) object[property] = properties[property];
  return object;
}

// Makes new objects for the lines of a method.
function begin(name) {
  localParam = made("LocalParam", { pse: folder + "anna.p12", localstore: folder + "store", pincode: "12345678" });
  quivo = made("QUIVO");
  quivo.InitializeEx(localParam);
  findParam = made("FindParam", { flag: 1, info: 0x7FFFF });
  receiver = arrays.item(quivo.FindCert(findParam), 0);
  ownId = made("CertId", { type: 1, keyId: receiver.keyId });
  signParam = made("SignParam", { flag: 1 + 8 });
  verifyParam = made("VerifyParam", { flag: 1, info: 4 });
  encryptParam = made("EncryptParam", { flag: 1, mycert: ownId });
  encryptParam.Receivers = quivo.FindCert(findParam);
  decryptParam = made("DecryptParam", { flag: 1, info: 4 });
  exportParam = made("ExportParam");
  importParam = made("ImportParam");
  template = made("Certificate", { fields: 4, subject: "CN=Script, C=RU" });
  stream = made("StreamCtx");
  // Leaves the thread without the last error of the objects' creation, which this method would report.
  if (name === "QUIVO.GetCurrentProfileNameVBS") quivo.HashFile("C:\\docs\\contract.txt");
  if (name.indexOf("pkiobj.") !== 0) return;
  legacy = made("pkiobj");
  legacy.Init(profile);
}

// Runs the lines and judges them: they raise no error, or the one that is stated, give every result, and the files are there.
function sample(name, expected, paths, run) {
  function fail(what) {
    samplesFailed++;
    WScript.Echo("FAILED: " + name + ": " + what);
  }
  function number(error) { return "0x" + (error.number >>> 0).toString(16).toUpperCase(); }
  samplesDone++;
  for (var i = 0; i < paths.length; i++)
    if (!/\\(contract\.\w+|partner\.cer)$/.test(paths[i]) && files.FileExists(paths[i])) files.DeleteFile(paths[i]);
  try { begin(name); } catch (error) { return fail("what it uses cannot be made: error " + number(error)); }
  var raised = "";
  try {
    var results = run();
    for (var key in results) if (results[key] === undefined) fail(key + " has no value");
  } catch (error) { raised = number(error); }
  if (raised !== expected) fail("error " + raised + (expected ? ", not " + expected : ""));
  for (i = 0; i < paths.length; i++) if (!files.FileExists(paths[i])) fail(paths[i] + " is not there");
  if (name.indexOf("pkiobj.") === 0) try { legacy.Uninit(); } catch (error) {}
}

function finish() { WScript.Echo("finished: " + samplesDone + " methods, " + samplesFailed + " failures"); }
