// Creates the main object, and keeps it for as many seconds as are named.
var quivo = new ActiveXObject("TAVL.QUIVO");
WScript.Echo("created");
var start = new Date().getTime();
while (new Date().getTime() - start < 1000 * WScript.Arguments(0)) {
}
WScript.Echo(quivo.GetPKIErrorText(0) + " done");
