#pragma once

// The text field that has the focus, to which editing keys belong first. Main thread.
class QObject;

namespace TextFields {

bool haveFocus();
// Has the field with the focus do that ("copy", "paste", …). False when no field has it.
bool forward(const char *slot);
// Typing is taken back in its field as long as there is some.
bool canUndo();
bool canRedo();
// Fields keep the keys of undo and redo to themselves, also when they have nothing to take back. From here on they give
// them to the window then, for as long as `owner` lives.
void yieldUndo(QObject *owner);

} // namespace TextFields
