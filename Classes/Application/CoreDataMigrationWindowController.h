#pragma once

#include "Classes/Application/UserInteraction.h"

#include <functional>

// The window shown while an older library is brought up to date: one determinate bar, which can be cancelled. Main
// thread.
class CoreDataMigrationWindowController
{
public:
    // `isEndWanted`: whether the process was asked to end, which nobody else hears meanwhile. Null: never.
    CoreDataMigrationWindowController(UserInteraction &userInteraction, std::function<bool()> isEndWanted);

    void showWindow(); // and lets it be drawn
    void setMaximum(double maximum);
    void advanceBy(double items); // and lets it be drawn
    // Runs `work`, whose length nobody knows, on a thread of its own and goes on drawing until it is over. Cancels that
    // thread's work when this is cancelled.
    void showWhile(const std::function<void()> &work);
    void hideWindow();
    bool isCancelled() const; // by the person, or by who ends the process

private:
    UserInteraction &m_userInteraction;
    std::function<bool()> m_isEndWanted;
    std::shared_ptr<bool> m_isCancelled = std::make_shared<bool>(false);
    std::shared_ptr<UserProgress> m_progress;
};
