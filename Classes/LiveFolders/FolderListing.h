#pragma once

#include "Classes/LiveFolders/FolderEntries.h"

#include <QByteArray>
#include <QList>

#include <string_view>

// One directory as it is now. Links are neither followed nor listed, nothing in it is opened, and one that changes
// while it is read is read again. Any thread.
struct FolderListing
{
    enum class Status {
        Whole,
        Gone,       // no directory is there
        Unreadable, // not to its end: nothing may be concluded from what is missing
    };

    Status status = Status::Unreadable;
    int error = 0;      // errno, of the last two
    quint64 device = 0; // of the directory itself
    quint64 inode = 0;
    FolderEntries entries;     // of a whole one
    qsizetype unheldNames = 0; // left out, since no text can stand for them
    // Entries nobody can look at, as where something is mounted that does not answer: they are there, and not listed.
    QList<QByteArray> unreadNames;
    bool hasPassingInodes = false; // files have other numbers each time the file system is mounted

    bool isUnread(std::string_view name) const
    {
        return unreadNames.contains(QByteArrayView(name.data(), qsizetype(name.size())));
    }
    // Lists those as they were when they could be looked at.
    void keepUnread(const FolderEntries &was);

    enum class Links { NotFollowed, Followed }; // where the directory itself is one
    static FolderListing ofFolder(const QByteArray &path, Links links = Links::NotFollowed);
};
