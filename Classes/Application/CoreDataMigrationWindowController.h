#pragma once

#include "Classes/Application/UserInteraction.h"

#include <functional>

// The window shown while an older library is brought up to date: one determinate bar. Main thread.
class CoreDataMigrationWindowController
{
public:
    explicit CoreDataMigrationWindowController(UserInteraction &userInteraction);

    void showWindow(); // and lets it be drawn
    void setMaximum(double maximum);
    void advanceBy(double items); // and lets it be drawn
    // Runs `work`, whose length nobody knows, on a thread of its own and goes on drawing until it is over.
    void showWhile(const std::function<void()> &work);
    void hideWindow();

private:
    UserInteraction &m_userInteraction;
    std::shared_ptr<UserProgress> m_progress;
};
