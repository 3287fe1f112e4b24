#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QByteArray>
#include <QString>
#include <QStringList>

#include <chrono>

// Other programs draw only where the system keeps them from a person's files, which this process finds out at its
// start.
void zqForbidDrawingPrograms();
bool zqMayRunDrawingPrograms();
// Why a picture that takes such a program is not drawn.
ZQError zqNoDrawingProgramsError(const QString &name);

// Runs a drawing program to its end, without input, its output thrown away, `folder` being its only temporary place,
// under limits on processor time, memory and file size; its alarm clock ends it when `limit` has passed. Whether it
// ended well. This process may send signals to none but itself: with a program that does not mind its alarm, it ends,
// so that who started it ends both. Any thread.
bool zqRunDrawingProgram(const QString &program, const QStringList &arguments, const QString &folder,
                         std::chrono::milliseconds limit);
