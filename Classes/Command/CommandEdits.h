#pragma once

#include "Classes/Editing/EditContext.h"

#include <memory>

struct CommandContext;

// What a command edits with: the same edits as a window's, without undo. Errors go to who asked for the command. Main
// thread.
class CommandEdits
{
public:
    explicit CommandEdits(CommandContext &command);
    ~CommandEdits();
    CommandEdits(const CommandEdits &) = delete;
    CommandEdits &operator=(const CommandEdits &) = delete;

    EditContext &context();

    // Waits until what was asked for is done and written to the files; then prints `one`, or `several` with the count,
    // and answers 0. After an error, or when it was cancelled, says so and answers 2.
    int finish(qsizetype count, const char *one, const char *several);

private:
    class User;

    CommandContext &m_command;
    std::unique_ptr<User> m_user;
    std::unique_ptr<EditContext> m_edits;
};
