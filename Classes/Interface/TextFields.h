#pragma once

// The text field that has the focus, to which editing keys belong first. Main thread.
namespace TextFields {

bool haveFocus();
// Has the field with the focus do that ("copy", "paste", …). False when no field has it.
bool forward(const char *slot);
// Typing is taken back in its field as long as there is some.
bool canUndo();
bool canRedo();

} // namespace TextFields
