#pragma once

#include "Classes/Capture/ZeltoKunViewController.h"

#include <optional>

struct CommandContext;

// The exit status of a command that captures, its reason in `context`. Nothing: whoever stores captures went before it
// ended.
int zqStatusOfCapture(const std::optional<ZeltoKunViewController::End> &end, CommandContext &context);
