// Sources that another program writes while they are read: what is copied is what the file held at some moment.

#include "Kit/Files/ZQFileCopy.h"
#include "Tests/Kit/Files/Scratch.h"

#include <QCryptographicHash>

#include <cerrno>
#include <unistd.h>

namespace {

using Copy = std::optional<ZQCopyResult> (*)(const QString &, const QString &, ZQError *,
                                             const std::function<bool()> &);

class ChangingSource : public Scratch
{
protected:
    static constexpr qsizetype block = 1 << 20; // what is read at a time

    // The file as its writer leaves it the n-th time: one byte throughout, and a length of its own.
    static QByteArray version(int number, qsizetype step) { return {5 * block + number * step, char('a' + number)}; }
    static QByteArray sha1(const QByteArray &data)
    {
        return QCryptographicHash::hash(data, QCryptographicHash::Sha1).toHex();
    }

    // In place, as an editor does that keeps the file.
    static void rewrite(const QString &path, const QByteArray &content)
    {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::ReadWrite));
        ASSERT_EQ(file.write(content), content.size());
        ASSERT_TRUE(file.resize(content.size()));
    }

    struct Row
    {
        const char *name;
        Copy copy;
        qsizetype step; // by which each version is longer
    };
    static constexpr Row rows[] = {{"grows while it is copied", zqCopyFile, block / 2},
                                   {"shrinks while it is copied", zqCopyFile, -block / 2},
                                   {"grows while it is linked", zqLinkOrCopyFile, block / 2},
                                   {"shrinks while it is linked", zqLinkOrCopyFile, -block / 2},
                                   {"keeps its length", zqCopyFile, 0}};
};

} // namespace

TEST_F(ChangingSource, IsReadAgainUntilItHoldsStill)
{
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const QString source = file(QString::fromLatin1(row.name), version(0, row.step));
        const QString copy = source + QStringLiteral(" copy");
        int calls = 0;
        int number = 0;
        ZQError error;
        const auto result = row.copy(source, copy, &error, [&] {
            if (++calls == 3) { // two blocks are read
                rewrite(source, version(++number, row.step));
            }
            return false;
        });
        ASSERT_TRUE(result) << qPrintable(error.localizedDescription());
        EXPECT_EQ(number, 1);
        EXPECT_TRUE(read(copy) == version(0, row.step) || read(copy) == version(1, row.step)) << "two versions in one";
        EXPECT_EQ(result->bytes, QFileInfo(copy).size());
        EXPECT_EQ(result->SHA1, sha1(read(copy)));
    }
}

TEST_F(ChangingSource, IsNotCopiedWhileItNeverHoldsStill)
{
    for (const Row &row : rows) {
        SCOPED_TRACE(row.name);
        const QString source = file(QString::fromLatin1(row.name), version(0, row.step));
        const QString copy = source + QStringLiteral(" copy");
        int calls = 0;
        int number = 0;
        ZQError error;
        const auto result = row.copy(source, copy, &error, [&] {
            if (++calls % 3 == 0) {
                rewrite(source, version(++number % 6, row.step));
            }
            return false;
        });
        if (result) { // a file system that clones files has one version in a moment
            EXPECT_EQ(read(copy), version(0, row.step));
            continue;
        }
        EXPECT_EQ(error.code, EBUSY);
        EXPECT_EQ(error.localizedDescription(),
                  QStringLiteral("“%1” changed while it was being copied. Close it in other programs and try again.")
                      .arg(source));
        EXPECT_FALSE(QFileInfo::exists(copy));
        EXPECT_TRUE(QFileInfo::exists(source));
    }
}
