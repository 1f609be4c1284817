// Every property that holds a string, a number or an object, reached by its name.
var strings = {
  LocalParam: "pse localstore ldap pincode",
  Certificate: "issuer serialNumber subject algorithm issuerUID subjectUID keyId",
  AltName: "emailAddress DNS URI IP organizationName registredAddress surname businessCategory telephoneNumber " +
           "description account_number bank_id physicalDelivery exchange_address",
  Policy: "oid org_name text",
  Extension: "oid"
};
var numbers = {
  LocalParam: "flag", RSrvParam: "timeout flag", SignParam: "flag", DecryptParam: "flag info", EncryptParam: "flag",
  ExportParam: "flag", ImportParam: "flag", FindParam: "flag info",
  VerifyParam: "flag keyUsage nSignToDelete minsigns info",
  Certificate: "fields keyUsage", Policy: "not_num", Extension: "type critical", SignStatus: "status"
};
var objects = {
  SignParam: "mycert", VerifyParam: "mycert", EncryptParam: "mycert", DecryptParam: "mycert", FindParam: "mycert certTemplate",
  ExportParam: "mycert", ImportParam: "mycert", Certificate: "issuerAltName subjectAltName", SignStatus: "cert"
};
var classes = { mycert: "CertId", certTemplate: "Certificate", cert: "Certificate", issuerAltName: "AltName", subjectAltName: "AltName" };

function create(name) { return new ActiveXObject("TAVL." + name); }

// Calls visit(object, property, title) for every property of a table.
function each(table, visit) {
  for (var name in table) {
    var properties = table[name].split(" ");
    for (var i = 0; i < properties.length; i++) visit(create(name), properties[i], name + "." + properties[i]);
  }
}

each(strings, function (object, property, title) {
  equal(object[property], "", title + " at first");
  object[property] = "\u041F\u0440\u0438\u043C\u0435\u0440";
  equal(object[property], "\u041F\u0440\u0438\u043C\u0435\u0440", title);
  object[property] = "\u4E2D\u6587";
  equal(object[property], "??", title + " with characters outside the code page");
});

each(numbers, function (object, property, title) {
  equal(object[property], 0, title + " at first");
  object[property] = 5;
  equal(object[property], 5, title);
  object[property] = -1;
  equal(object[property], -1, title + " takes every bit");
});

each(objects, function (object, property, title) {
  equal(object[property], null, title + " at first");
  var value = create(classes[property]);
  object[property] = value;
  ok(object[property] !== null, title);
  refused(null, title + " refuses an object of another class", function () { object[property] = create("StreamCtx"); });
  ok(object[property] !== null, title + " after a refusal");
});

// The object behind a property is the one that was put, not a copy.
var parameters = create("SignParam");
var certid = create("CertId");
parameters.mycert = certid;
certid.type = 1;
certid.keyId = "0C";
equal(parameters.mycert.keyId, "0C", "a change of the identifier is seen through mycert");

refused(0x80070057, "CertId.issuer before the type", function () { create("CertId").issuer = "x"; });
refused(null, "a property that does not exist", function () { create("CertId").nothing = "x"; });

finish();
