#pragma once

#include "Kit/Files/ZQSystemFile.h"

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// A test with a folder of its own, which is the user's whole world meanwhile.
class Scratch : public testing::Test
{
public:
    Scratch()
    {
        m_folder.setAutoRemove(false);
        for (const char *const variable :
             {"XDG_DATA_HOME", "XDG_CONFIG_HOME", "XDG_CACHE_HOME", "XDG_RUNTIME_DIR", "TMPDIR"}) {
            m_before.append({variable, qgetenv(variable)});
            qputenv(variable, QFile::encodeName(path(QString::fromLatin1(variable))));
        }
        QDir().mkpath(path(QStringLiteral("TMPDIR"))); // without it, temporary files would lie in the root folder
    }
    ~Scratch() override
    {
        zqRemoveTree(QFile::encodeName(m_folder.path())); // unlike QTemporaryDir also names that are not UTF-8
        for (const auto &[variable, value] : m_before) {
            value.isEmpty() ? qunsetenv(variable) : qputenv(variable, value);
        }
    }

    QString path(const QString &name) const { return m_folder.path() + u'/' + name; }
    QString folder(const QString &name) const
    {
        EXPECT_TRUE(QDir().mkpath(path(name)));
        return path(name);
    }
    QString file(const QString &name, const QByteArray &content) const
    {
        write(path(name), content);
        return path(name);
    }
    static void write(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        EXPECT_EQ(file.write(content), content.size());
    }
    static QByteArray read(const QString &path)
    {
        QFile file(path);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("(cannot be read)");
    }

private:
    QTemporaryDir m_folder;
    QList<std::pair<const char *, QByteArray>> m_before;
};
