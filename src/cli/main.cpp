// hifx: the command line of the exchange engine. Scripts rely on its words,
// its output and its exit codes; keep them.
#include "cli/Commands.h"

int main(int argc, char** argv) { return hifx::cli::Main(argc, argv); }
