#pragma once

#include <QFile>
#include <QString>

#include <gtest/gtest.h>

// As a person protects a file, until the block ends.
class ProtectedFile
{
public:
    explicit ProtectedFile(const QString &path) : m_path(path)
    {
        EXPECT_TRUE(QFile::setPermissions(m_path, QFileDevice::ReadOwner));
    }
    ~ProtectedFile() { QFile::setPermissions(m_path, QFileDevice::ReadOwner | QFileDevice::WriteOwner); }
    ProtectedFile(const ProtectedFile &) = delete;
    ProtectedFile &operator=(const ProtectedFile &) = delete;

private:
    QString m_path;
};
