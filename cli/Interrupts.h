#pragma once

// What the system says to a running program: Ctrl+C, the end of the terminal or of the session.

// The first wish to end is handed on as RequestStop. A second one ends the program at once, and no
// file that is being written stays behind. What whoever started the program has set to be ignored
// stays ignored. A reader that goes away and a file that grows too large are no reason to end:
// the write that they concern fails and is reported.
void WatchInterrupts();
