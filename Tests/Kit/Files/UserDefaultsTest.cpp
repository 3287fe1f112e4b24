#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Kit/Files/Scratch.h"

#include <QDateTime>

#include <sys/wait.h>
#include <unistd.h>

#include <limits>
#include <thread>

class UserDefaults : public Scratch
{
public:
    const QString store = path(QStringLiteral("config/Zelto/defaults.json"));
    const QString key = QStringLiteral("Key");
};

TEST_F(UserDefaults, KeepEveryTypeForTheNextProcess)
{
    const QVariantMap values = {
        {QStringLiteral("bool"), true},
        {QStringLiteral("integer"), qlonglong(9007199254740993)},
        {QStringLiteral("negative"), qlonglong(-5)},
        {QStringLiteral("fraction"), 0.1},
        {QStringLiteral("whole"), 3.0},
        {QStringLiteral("infinite"), std::numeric_limits<double>::infinity()},
        {QStringLiteral("text"), QStringLiteral("“ü” \n 💡")},
        {QStringLiteral("data"), QByteArray("\0\xff\1", 3)},
        {QStringLiteral("date"), QDateTime::fromMSecsSinceEpoch(1700000000123, Qt::UTC)},
        {QStringLiteral("list"),
         QVariantList{1LL, QStringLiteral("a"), QVariantMap{{QStringLiteral("$data"), QByteArray("x")}}}},
        {QStringLiteral("map"), QVariantMap{{QStringLiteral("inner"), QVariantList{}}}},
    };
    {
        ZQUserDefaults defaults(store);
        for (auto it = values.cbegin(); it != values.cend(); ++it) {
            defaults.setObjectForKey(it.value(), it.key());
        }
    }
    const ZQUserDefaults defaults(store);
    EXPECT_EQ(defaults.keys(), values.keys());
    for (auto it = values.cbegin(); it != values.cend(); ++it) {
        EXPECT_EQ(defaults.objectForKey(it.key()), it.value()) << qPrintable(it.key());
        EXPECT_EQ(defaults.objectForKey(it.key()).typeId(), it.value().typeId()) << qPrintable(it.key());
    }
}

TEST_F(UserDefaults, LieOverRegisteredOnes)
{
    ZQUserDefaults defaults(store);
    defaults.registerDefaults({{key, 32}});
    EXPECT_EQ(defaults.integerForKey(key), 32);
    EXPECT_FALSE(defaults.isSet(key));
    EXPECT_FALSE(QFile::exists(store));
    defaults.setObjectForKey(5, key);
    EXPECT_EQ(defaults.integerForKey(key), 5);
    EXPECT_TRUE(defaults.isSet(key));
    defaults.removeObjectForKey(key);
    EXPECT_EQ(defaults.integerForKey(key), 32);
    EXPECT_FALSE(defaults.objectForKey(QStringLiteral("Unknown")).isValid());
}

TEST_F(UserDefaults, MergeTheWritesOfSeveralProcesses)
{
    constexpr int processes = 4;
    constexpr int writes = 25;
    for (int process = 0; process < processes; ++process) {
        if (fork() == 0) {
            ZQUserDefaults defaults(store);
            for (int i = 0; i < writes; ++i) {
                defaults.setObjectForKey(i, QStringLiteral("%1-%2").arg(process).arg(i));
            }
            _exit(0);
        }
    }
    for (int process = 0; process < processes; ++process) {
        int status = 1;
        wait(&status);
        EXPECT_EQ(status, 0);
    }
    EXPECT_EQ(ZQUserDefaults(store).keys().size(), processes * writes);
}

TEST_F(UserDefaults, NoticeAnotherInstancesChangeAtTheNextReading)
{
    ZQUserDefaults one(store);
    ZQUserDefaults other(store);
    for (int i = 0; i < 50; ++i) {
        one.setObjectForKey(i, key);
        EXPECT_EQ(other.integerForKey(key), i);
    }
}

TEST_F(UserDefaults, SetADamagedFileAsideAndGoOn)
{
    folder(QStringLiteral("config/Zelto"));
    write(store, "{ \"Key\": 1, damaged");
    ZQUserDefaults defaults(store);
    EXPECT_FALSE(defaults.objectForKey(key).isValid());
    EXPECT_EQ(read(store + QStringLiteral(".damaged")), "{ \"Key\": 1, damaged");
    defaults.setObjectForKey(2, key);
    EXPECT_EQ(ZQUserDefaults(store).integerForKey(key), 2);
}

TEST_F(UserDefaults, KeepInMemoryWhatCannotBeWrittenAndWriteItLater)
{
    folder(QStringLiteral("config"));
    const QString obstacle = file(QStringLiteral("config/Zelto"), "a file where the folder belongs");
    ZQUserDefaults defaults(store);
    defaults.setObjectForKey(7, key);
    EXPECT_EQ(defaults.integerForKey(key), 7);
    ASSERT_TRUE(QFile::remove(obstacle));
    defaults.synchronize();
    EXPECT_EQ(ZQUserDefaults(store).integerForKey(key), 7);
}

TEST_F(UserDefaults, TellObserversOfChangesOnly)
{
    ZQUserDefaults defaults(store);
    QStringList told;
    auto token = defaults.observe([&](const QString &changed) {
        told.append(changed + QString::number(defaults.integerForKey(changed))); // may read
    });
    defaults.setObjectForKey(1, key);
    defaults.setObjectForKey(1, key);
    defaults.removeObjectForKey(key);
    token.reset();
    defaults.setObjectForKey(3, key);
    EXPECT_EQ(told, QStringList({QStringLiteral("Key1"), QStringLiteral("Key0")}));
}

TEST_F(UserDefaults, MayBeUsedFromSeveralThreads)
{
    ZQUserDefaults defaults(store);
    std::vector<std::thread> threads;
    for (int thread = 0; thread < 4; ++thread) {
        threads.emplace_back([&, thread] {
            for (int i = 0; i < 20; ++i) {
                defaults.setObjectForKey(i, QString::number(thread * 100 + i));
                EXPECT_EQ(defaults.integerForKey(QString::number(thread * 100 + i)), i);
            }
        });
    }
    for (std::thread &thread : threads) {
        thread.join();
    }
    EXPECT_EQ(ZQUserDefaults(store).keys().size(), 80);
}
