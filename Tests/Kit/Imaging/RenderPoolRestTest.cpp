#include "Kit/Imaging/ZQRenderPool.h"

#include <QDir>
#include <QFile>
#include <QSet>

#include <gtest/gtest.h>

#include <chrono>
#include <thread>

namespace {

using namespace std::chrono_literals;

QSet<QString> ownThreads()
{
    const QStringList names = QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs | QDir::NoDotAndDotDot);
    return {names.begin(), names.end()};
}

bool isAsleep(const QString &thread)
{
    QFile file(QStringLiteral("/proc/self/task/%1/stat").arg(thread));
    const QByteArray stat = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return stat.mid(stat.lastIndexOf(')') + 2).startsWith('S');
}

} // namespace

TEST(RenderPoolRestTest, APoolThatIsAskedNothingSleeps)
{
    const QSet<QString> before = ownThreads();
    const ZQRenderPool pool({.time = 30s, .processes = 1});
    const QSet<QString> keeper = ownThreads() - before;
    ASSERT_EQ(keeper.size(), 1);
    const auto latest = std::chrono::steady_clock::now() + 30s;
    int looks = 0; // one after the other that found it asleep: at first it may wait for a disk
    while (looks < 20 && std::chrono::steady_clock::now() < latest) {
        looks = isAsleep(*keeper.begin()) ? looks + 1 : 0;
        std::this_thread::sleep_for(5ms);
    }
    EXPECT_EQ(looks, 20);
}
