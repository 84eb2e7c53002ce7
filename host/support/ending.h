// SPDX-License-Identifier: BSD-3-Clause
// What happens when somebody ends the program before its work is done.
#pragma once

namespace glimmerhost {

// From now on SIGINT, SIGTERM and SIGHUP (Ctrl-C, Ctrl-Break and a closed window on Windows) end
// the programs that this one has started, remove all temporary files and end it at once, with 128
// and the signal's number (130 on Windows). A signal that the program was started to ignore stays
// ignored. A file that may not grow further is an error of its writer, and no signal; so is a pipe
// that nobody reads.
//
// Once, in main, before any thread starts: where there are signals, they are blocked for this
// thread and those that it starts, and one thread waits for them. A child that is started other
// than by child_process.h would inherit that. Without memory for that thread they end the program
// as they end any other, and the next one removes what it leaves.
void EndOnSignals();

}  // namespace glimmerhost
