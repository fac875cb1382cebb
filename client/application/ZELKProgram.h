#pragma once

/// The program lullwatch, from its arguments to its exit status.
namespace ZELKProgram {

/// `argc` and `argv` as main() has them; both outlive the call.
int run(int &argc, char **argv);

} // namespace ZELKProgram
