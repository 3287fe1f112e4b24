#pragma once

#include "Classes/Tags/DesktopMirror.h"
#include "Classes/Tags/OpenMeta.h"
#include "Classes/Tags/OpenMetaBackup.h"
#include "Kit/Files/ZQExtendedAttributes.h"
#include "Kit/Files/ZQPropertyList.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Support/Skip.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QTemporaryDir>

#include <gtest/gtest.h>

// A folder on the file system of the build, with one file in it, and the mirrors switched on.
class TagsFixture : public testing::Test
{
protected:
    void SetUp() override
    {
        ZQUserDefaults::standardUserDefaults().registerDefaults({{DesktopMirror::preferenceKey, true}});
        path = newFile(QStringLiteral("file.png"));
        if (!ZQExtendedAttributes::set(path, QStringLiteral("probe"), "1")) {
            return skipWithout("extended attributes");
        }
        ZQExtendedAttributes::remove(path, QStringLiteral("probe"));
    }
    void TearDown() override
    {
        OpenMetaBackup::waitUntilAllWritten();
        ZQUserDefaults::standardUserDefaults().registerDefaults({{DesktopMirror::preferenceKey, false}});
    }

    QString newFile(const QString &name, const QByteArray &contents = {})
    {
        QFile file(folder.filePath(name));
        EXPECT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(contents);
        return file.fileName();
    }

    // Whether everything that is written of a file fits beside each other here.
    bool hasRoomForMirrors() const
    {
        const QString probe = QStringLiteral("probe");
        const bool fits = ZQExtendedAttributes::set(path, probe, QByteArray(3000, 'p'));
        ZQExtendedAttributes::remove(path, probe);
        return fits;
    }
    static QStringList list(const char *tags) // separated by blanks
    {
        return QString::fromUtf8(tags).split(u' ', Qt::SkipEmptyParts);
    }
    static QStringList tagsOf(const QString &file) { return OpenMeta::getUserTags(file).value_or(QStringList()); }
    static std::optional<QByteArray> raw(const QString &file, const QString &name)
    {
        return ZQExtendedAttributes::get(file, name);
    }

    QTemporaryDir folder{QCoreApplication::applicationDirPath() + QStringLiteral("/tags-XXXXXX")};
    QString path;
};
