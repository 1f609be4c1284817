// A script test that goes wrong in the way that its argument names.
var how = WScript.Arguments.Item(0);
if (how !== "unchecked") ok(true, "the beginning");
if (how === "fail") ok(false, "bad");
if (how === "error") nothing.there();
if (how === "quit") WScript.Quit(0);
if (how === "loop") for (;;);
if (how === "crash" || how === "exit") new ActiveXObject("TavlTests.Arrays").misbehave(how);
if (how !== "unfinished") finish();
