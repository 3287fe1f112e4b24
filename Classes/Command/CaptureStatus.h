#pragma once

#include "Classes/Capture/CaptureCommands.h"

#include <optional>

struct CommandContext;

// The exit status of a command that captures, its reason in `context`. Nothing: whoever stores captures went before it
// ended.
int zqStatusOfCapture(const std::optional<CaptureCommands::End> &end, CommandContext &context);
