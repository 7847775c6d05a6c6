#include "cli/program.h"

int main(int argc, char** argv) {
  return torvane::cli::RunProgram(argc, argv);
}
