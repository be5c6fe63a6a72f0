#pragma once

// What the tool tells the calling script, the same for every command.
enum class ExitCode : int {
    Ok = 0,       // done, nothing reported
    Issues = 1,   // done, but the load reported warnings or errors
    Failure = 2,  // bad usage, unreadable or unrecognised file, or a failed write
};

inline int toInt(ExitCode code) { return static_cast<int>(code); }

// The worse of two outcomes, for commands that do several things.
inline ExitCode worse(ExitCode a, ExitCode b) { return toInt(a) >= toInt(b) ? a : b; }
