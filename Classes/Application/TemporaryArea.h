#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QStringList>

// The scratch space below the system's temporary directory, where imports that arrive as data are written: the folder
// "ZeltoTemporaryFolder", and in it a fresh folder for each use.
//
// The system's temporary directory is everybody's. The folder is used only when it is this user's own, closed to
// others and no link; otherwise one with a fresh name behind the usual one is made. Each process that uses the folder
// holds a shared lock on it, so that one that quits does not take away what another works with. Any thread.
namespace TemporaryArea {

// The folder, made when it is missing. Empty with `error`.
QString folder(ZQError *error = nullptr);
// A fresh folder in it, "t.XXXXXX". Empty with `error`.
QString newFolder(ZQError *error = nullptr);
// Whether such a folder is at `path`, of whichever process, and no link to one: what lies in it may be removed.
bool isFolderOfOurs(const QString &path);

// For quitting: what may be removed now. The whole folder, set aside under another name, when no other running process
// uses it; else the folders this process made.
QStringList takeForRemoval();

} // namespace TemporaryArea
