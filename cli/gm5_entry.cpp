// gm5: the command-line renderer. Reads the command line, runs one command, and ends with status
// 0, or 1 and a one-line message on stderr naming the problem.
#include <csignal>
#include <cstdio>
#include <string>

#include "cli/command_line.h"
#include "host/writers/output_file.h"
#include "shell/effect_table.h"

namespace {

// A stopped run leaves nothing behind: the partial output is removed, then the signal goes on.
void OnStopSignal(int number) {
  RemovePartialOutputFromSignal();
  signal(number, SIG_DFL);
  raise(number);
}

int Fail(const std::string& message) {
  fprintf(stderr, "gm5: %s\n", message.c_str());
  return 1;
}

int ListEffects() {
  for (int32_t row = 0; row < kEffectCount; ++row) printf("%2d %s\n", row, EffectTable[row].name);
  return 0;
}

}  // namespace

int main(int argc, char** argv) {
  signal(SIGINT, OnStopSignal);
  signal(SIGTERM, OnStopSignal);
  CommandLine line;
  std::string error;
  if (!ParseCommandLine(argc, argv, &line, &error)) return Fail(error);
  if (line.help) {
    fputs(Gm5Usage(), stdout);
    return 0;
  }
  if (line.version) {
    printf("gm5 %s\n", GM5_VERSION);
    return 0;
  }
  int status = 1;
  switch (line.command) {
    case CommandNone:
      return Fail("no command given (see gm5 --help)");
    case CommandEffects:
      if (!line.arguments.empty()) return Fail("effects takes no arguments");
      if (HasBuildOptions(line)) return Fail("effects takes no options");
      status = ListEffects();
      break;
  }
  if (fflush(stdout) != 0) return Fail("cannot write the standard output");
  return status;
}
