// What the command line asks for besides the program itself.
#pragma once

#include <memory>
#include <variant>

#include "linux/instance/RunningInstance.h"
#include "shell/CommandLine.h"

namespace tarvix {

// Each prints what there is to say and gives the exit status.
int printHelp();
int printVersion();
int consultDoctor(const command::Doctor& asked);
int quitRunning();
int complain(const command::WrongUse& wrong);

// Becomes the one running program, or has the one that runs do what this one was started for; then there is only the
// exit status left to give. Of several at once exactly one becomes it.
std::variant<std::unique_ptr<RunningInstance>, int> becomeInstance(const command::Start& start);

}  // namespace tarvix
