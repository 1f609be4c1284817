
// What every test in this language ends with: counted checks. It stands behind the test, so that line numbers stay the test's.
var checks_done, checks_failed, checks_last;

function ok(condition, what) {
  checks_done = (checks_done || 0) + 1;
  checks_failed = checks_failed || 0;
  checks_last = what;
  if (condition) return;
  checks_failed++;
  WScript.Echo("FAILED: " + what);
}

function equal(actual, expected, what) {
  ok(actual === expected, what + ": " + actual + ", not " + expected);
}

// The call is refused with this number; with any, where the number is null: it is the platform's or the host's then.
function refused(number, what, call) {
  var actual = 0;
  try { call(); } catch (e) { actual = e.number >>> 0; }
  if (number === null) return ok(actual !== 0, what);
  ok(actual === number >>> 0, what + ": error " + actual.toString(16) + ", not " + (number >>> 0).toString(16));
}

// The script ended before its end.
function stopped(error) {
  WScript.Echo("FAILED: error " + (error.number >>> 0).toString(16) + " " + error.message + ", after the check '" + checks_last + "'");
}

// Without this marker the runner fails the test, whatever was printed before.
function finish() {
  WScript.Echo("finished: " + (checks_done || 0) + " checks, " + (checks_failed || 0) + " failed");
}
