// What happens when somebody ends the program before its work is done.
#pragma once

namespace glimmerhost {

// From now on SIGINT, SIGTERM and SIGHUP (Ctrl-C, Ctrl-Break and a closed window on Windows)
// remove all temporary files and end the program at once, with 128 and the signal's number (130
// on Windows). A signal that the program was started to ignore stays ignored. A file that may not
// grow further is an error of its writer, and no signal; so is a pipe that nobody reads.
//
// Once, in main, before any thread starts: where there are signals, they are blocked for this
// thread and those that it starts, and one thread waits for them. A program that is started as a
// child would inherit that: give posix_spawn an empty mask (POSIX_SPAWN_SETSIGMASK).
void EndOnSignals();

}  // namespace glimmerhost
