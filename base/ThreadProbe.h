#pragma once

// How many of `wanted` threads, the calling one among them, the system lets run at once. Limits on
// processes count threads as well, and the libraries that split our loops end the program when they
// cannot get one.
int ThreadsThatStart(int wanted);
