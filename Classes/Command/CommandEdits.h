#pragma once

#include "Classes/Editing/EditContext.h"
#include "Kit/Foundation/ZQLocalized.h"

#include <memory>

struct CommandContext;

// What a command edits with: the same edits as a window's, without undo, in a context of its own, so that what fails
// takes nothing of the window's with it. Errors go to who asked for the command. Main thread.
class CommandEdits
{
public:
    explicit CommandEdits(CommandContext &command);
    ~CommandEdits(); // waits for what was asked for
    CommandEdits(const CommandEdits &) = delete;
    CommandEdits &operator=(const CommandEdits &) = delete;

    EditContext &context() { return m_edits; }

    // Waits until what was asked for is done and written to the files; then prints `one`, or `several` with the count,
    // and answers 0. After an error, or when it was cancelled, says so and answers 2.
    int finish(qsizetype count, const ZQCountedKey &text);

private:
    class User;

    bool save();
    void takeIn(const ZQContextDidSave &saved); // into the application's context

    CommandContext &m_command;
    const std::unique_ptr<User> m_user;
    const std::shared_ptr<bool> m_isCancelled; // set from the edit queue, perhaps when this is gone
    ZQManagedObjectContext m_context;
    EditContext m_edits;
};
