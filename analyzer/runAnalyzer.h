#pragma once

namespace analyzer {

/// The program: does what the command line asks for and returns the exit status.
int runAnalyzer(int argc, char** argv);

} // namespace analyzer
