// Programs with a time limit, each with whatever it starts.
#pragma once

#include <string>

namespace proof {

struct ProgramEnd {
  /// Empty, or why the program could not be started.
  std::string notStarted;
  bool overTime = false;
  unsigned long code = 0;
  std::string output;
  double seconds = 0;

  bool good() const { return notStarted.empty() && !overTime && code == 0; }
  /// How it ended, as a part of a sentence.
  std::string howItEnded() const;
};

/// What the windows of a program are shown on.
enum class Screen { kUsers, kHidden };

/// Runs a program without a window for its console, and ends what is left of it and its children after `seconds`.
ProgramEnd RunProgram(const std::wstring& commandLine, unsigned seconds, Screen screen = Screen::kHidden);

/// Makes the hidden screen, a window station that nobody sees, and tries it with a command line that ends with 0. If
/// that fails, all programs run on the user's screen, and false is returned.
bool MakeHiddenScreen(const std::wstring& commandLine);

/// From the first call on, Ctrl+C and the end of the console stop the kit: the program that runs is ended, and
/// stopped() is true.
void WatchForStop();
bool Stopped();
/// Whether a stop ends the program that runs, which is so at first, or programs run to their end.
void LetStopEndPrograms(bool ends);
/// Nothing is left to be taken back: the console may close.
void AllowClose();

}  // namespace proof
