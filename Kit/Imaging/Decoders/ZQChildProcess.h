#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>

// Runs a drawing program to its end, without input, its output thrown away, `folder` being its only temporary place,
// under limits on processor time, memory and file size, and ends it when `limit` has passed. Whether it ended well. Any
// thread.
bool zqRunDrawingProgram(const QString &program, const QStringList &arguments, const QString &folder,
                         std::chrono::milliseconds limit);
