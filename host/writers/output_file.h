// Writing files so that a user's data is never lost. A file is encoded in memory first, then
// written to a temporary file beside its destination, every write and the close checked, and
// renamed over the destination only when complete. A device, a pipe or standard output ("-") is
// written in place. A folder of frames receives only its own numbered frames, each written the
// same way; a folder holding anything else is refused, and no folder is ever removed.
// The temporary file in flight is published for a signal handler, which removes it.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

// Nonzero when `name` is the name of a frame in a folder of frames: "frame-" with four or more
// digits and ".png".
int IsFrameFileName(const std::string& name);

// Checks, before anything is rendered, that a file can be written at `path` ("-" is standard
// output): its folder exists and is a folder, and `path` is not a folder itself. Returns 0 with a
// one-line `error` otherwise.
int CheckOutputFile(const std::string& path, std::string* error);
// Checks that `path` can take a folder of frames: not ".", "..", "/" or the home folder, not
// something other than a folder, and holding nothing but frames. Returns 0 with a one-line `error`
// naming the first foreign entry otherwise.
int CheckFrameFolder(const std::string& path, std::string* error);

// Opens, before `path`'s bytes are made, the temporary they will be written to, so that a folder
// that cannot take it is refused before the work and a stopped run removes it. Nothing is opened
// for standard output, a device or a pipe. The next WriteOutputBytes to `path` uses it. Returns 0
// with "cannot write PATH: REASON" otherwise.
int ReserveOutputFile(const std::string& path, std::string* error);
// Closes and removes a reserved temporary that was not used; nothing when there is none.
void ReleaseOutputFile();

// Writes `size` bytes as the whole of `path`. With `keepBackup`, a file that is replaced is first
// copied to path + ".bak". Returns 0 with "cannot write PATH: REASON" (the system's reason) in
// `error` on failure, having left the destination as it was.
int WriteOutputBytes(const std::string& path, const void* bytes, size_t size, int keepBackup,
                     std::string* error);
// Writes `frames` (encoded pictures) into the folder `path` as frame-0001.png, frame-0002.png, ...,
// creating the folder when missing, and removes the frames of an earlier, longer render. Checks
// the folder as CheckFrameFolder does first.
int WriteFrameFolder(const std::string& path, const std::vector<std::vector<uint8_t>>& frames,
                     std::string* error);
// The name of frame `index` (from 0) in such a folder.
std::string FrameFileName(size_t index);

// Removes, from a signal handler, the temporary file being written, if any. Uses only calls that
// are safe there.
void RemovePartialOutputFromSignal();
