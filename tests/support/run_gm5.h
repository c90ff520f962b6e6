// Runs the built gm5 program for the command-line tests (POSIX only: popen and the wait macros).
#pragma once

#include <sys/wait.h>

#include <cstdio>
#include <string>

struct ProgramRun {
  int status = -1;
  std::string out;
};

// Runs gm5 with `arguments` (shell words), stderr joined to stdout.
inline ProgramRun RunGm5(const std::string& arguments) {
  ProgramRun run;
  FILE* pipe = popen((std::string(GM5_PROGRAM_PATH) + " " + arguments + " 2>&1").c_str(), "r");
  if (!pipe) return run;
  char buffer[4096];
  for (size_t n; (n = fread(buffer, 1, sizeof buffer, pipe)) > 0;) run.out.append(buffer, n);
  const int status = pclose(pipe);
  run.status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return run;
}
