// Output that appears whole or not at all: writers fill a temporary file or folder beside the
// destination, named after it with the process id, and a commit renames it into place. The
// temporary path is also published for a signal handler, which removes it if the run is stopped.
#pragma once

#include <string>

struct OutputTarget {
  std::string path;       // where the result goes
  std::string temporary;  // what the writer fills
  int folder = 0;         // 1: a folder of frames
};

// Prepares the temporary path for `path`; a folder target also creates the temporary folder.
// Returns 0, with `error` set, when the place cannot be written.
int BeginOutput(OutputTarget* target, const std::string& path, int folder, std::string* error);
// Replaces whatever is at `path` by the temporary. Returns 0, with `error` set, on failure, having
// removed the temporary.
int CommitOutput(OutputTarget* target, std::string* error);
// Removes the temporary and everything in it. Safe to call twice.
void AbandonOutput(OutputTarget* target);

// Removes, from a signal handler, the temporary file of the output in progress (with the frames
// written so far into a temporary folder). Uses only calls that are safe there.
void RemovePartialOutputFromSignal();
// A file written into the temporary folder, remembered for the handler above.
void NotePartialOutputFile(const std::string& path);
