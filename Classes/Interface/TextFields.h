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
// The toolkit's fields take more keys than a person expects of them. From here on they give up, for as long as `owner`
// lives: undo and redo while they have nothing to take back, and Ctrl with a letter but for cut, copy, paste and select
// all. These mean what they mean in the window, or nothing.
void yieldKeys(QObject *owner);

} // namespace TextFields
