#pragma once

#include "Kit/Foundation/ZQThreadSafety.h"

#include <QObject>
#include <QThread>

#include <functional>
#include <memory>

// The thread on which all requests move their bytes. It begins with the first of them and ends with the application.
class ZQNetworkThread
{
public:
    ~ZQNetworkThread();
    // False, and `block` never runs, when there is no application, or no longer.
    static bool run(std::function<void()> block);
    // On that thread: `block` is called when it ends, in place of what can no longer come, unless `context` went first.
    static void whenItEnds(QObject *context, std::function<void()> block);

private:
    ZQNetworkThread();
    static void stop();

    struct Shared;
    static Shared &shared();

    QThread m_thread;
    std::unique_ptr<QObject> m_context; // lives there
};
