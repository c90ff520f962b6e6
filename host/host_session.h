// The host side of HostService, shared by the reference host and by programs that run the plug-in
// in process: it checks every record it receives, keeps the file objects and their frames (copies:
// the plug-in frees its own), answers requests from a script, and logs each call as one line of
// space-separated key=value pairs (texts percent-escaped), so that tests can read what happened.
#pragma once

#include <cstdint>
#include <cstdio>
#include <deque>
#include <map>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "shell/host_interface.h"

struct HostFrame {
  std::vector<uint8_t> dib;  // a copy of the Packed DIB
  int32_t transparent = 0;
  int32_t delay = 0;
  int32_t index = 0;
  int32_t transparentIndex = 0;
};

struct HostFile {
  int32_t serial = 0;  // 1 for the first file of the session
  int32_t test = 0;    // made by HostOpCreateTestFile
  FileObjectRecord record{};
  std::vector<HostFrame> frames;
  int64_t backgroundMode = 0;  // 0 until HostOpSetBackground, then 100 or 101
  uint64_t background = 0;
  std::string comment;
  int32_t closed = 0;
  int32_t committed = 0;
};

struct HostSettingValue {
  std::string key;
  int32_t value = 0;
  HostSetting record{};
};

struct HostSession {
  FILE* log = nullptr;                           // one line per call; not owned
  std::string dumpFolder;                        // where closed files are dumped; empty: no dumps
  std::vector<std::unique_ptr<HostFile>> files;  // every file of the session, in order
  std::map<const void*, HostFile*> openFiles;    // by the address of the plug-in's record
  // Answers from the script.
  std::deque<uint32_t> colours;              // HostOpChooseColour; none left: cancelled
  std::deque<std::string> selectedFiles;     // HostOpSelectImageFile; none left: cancelled
  std::deque<std::string> animationFiles;    // HostOpOpenAnimation with no path: files chosen
  std::vector<std::string> animationFrames;  // else BMP files of the AnimationBlock; none: cancelled
  std::map<std::string, std::unique_ptr<HostSettingValue>> settings;
  std::set<int32_t> refused;  // opcodes answered with 0
  // Reads the picture file for HostOpLoadImageFile as a new Packed DIB, or null; without one only
  // BMP files are read.
  MovableHandle (*readPicture)(const char* path) = nullptr;
  uint64_t registered = 1;
  int32_t dialogWidth = 0, dialogHeight = 0;
  long calls = 0;
};

// Reads one line of a host script. Answer lines configure the session and give 1:
//   colour 0xBBGGRR | select-file PATH | animation-file PATH | animation BMP... |
//   setting KEY INTEGER | refuse OPCODE | registered N | dialog-size W H
// A request for an animation with a path reads that file; one without asks the user, whose
// answer is the next animation-file (read as a request's path is), else the animation frames.
// Blank lines and lines starting with # give 1. Any other line gives 0 and is left to the caller.
int ReadHostAnswerLine(HostSession* session, const char* line);

// Serves one call of HostService for the session.
uint64_t ServeHostCall(HostSession* session, void* object, int32_t opcode, uint64_t a, uint64_t b);

// Writes `frames` of a file as BMP files and its metadata as text into the dump folder:
// file<serial>-frame<index>.bmp and file<serial>.txt. Returns 0 when a file cannot be written.
int DumpHostFile(const HostSession* session, const HostFile* file);

// Writes a line to the session's log: `text` as given, then a newline.
void HostLog(HostSession* session, const std::string& text);
// `text` with bytes outside '!' to '~' and '%' written as %XX.
std::string EscapeLogText(const char* text, size_t limit = 4096);
