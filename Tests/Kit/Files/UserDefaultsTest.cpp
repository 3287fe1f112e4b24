#include "Kit/Files/ZQUserDefaults.h"
#include "Tests/Kit/Files/Scratch.h"

#include <QDateTime>
#include <QPoint>
#include <QUrl>

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

TEST_F(UserDefaults, BeginAnewWhenTheirFileIsDamagedWhileTheyAreInUse)
{
    ZQUserDefaults defaults(store);
    defaults.setObjectForKey(1, key);
    write(store, "damaged");
    EXPECT_FALSE(defaults.isSet(key)) << "as for the next process";
    EXPECT_EQ(read(store + QStringLiteral(".damaged")), "damaged");
    EXPECT_FALSE(QFile::exists(store));
    write(store, "damaged anew");
    EXPECT_FALSE(defaults.isSet(key));
    EXPECT_EQ(read(store + QStringLiteral(".damaged")), "damaged") << "not written over";
    EXPECT_EQ(read(store + QStringLiteral(".damaged-2")), "damaged anew");
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

TEST_F(UserDefaults, LeaveAFileAloneThatIsProtectedOrCannotBeRead)
{
    ZQUserDefaults(store).setObjectForKey(1, QStringLiteral("Other"));
    const QByteArray before = read(store);
    ASSERT_TRUE(QFile::setPermissions(store, QFileDevice::ReadOwner));
    ZQUserDefaults defaults(store);
    defaults.setObjectForKey(7, key);
    ZQError error;
    EXPECT_FALSE(defaults.synchronize(&error));
    EXPECT_TRUE(error.localizedDescription().contains(store)) << qPrintable(error.localizedDescription());
    EXPECT_EQ(read(store), before);
    ASSERT_TRUE(QFile::setPermissions(store, QFileDevice::ReadOwner | QFileDevice::WriteOwner));
    EXPECT_TRUE(defaults.synchronize(&error));
    EXPECT_EQ(ZQUserDefaults(store).integerForKey(key), 7);
    EXPECT_EQ(ZQUserDefaults(store).integerForKey(QStringLiteral("Other")), 1);

    ASSERT_TRUE(QFile::remove(store));
    folder(QStringLiteral("config/Zelto/defaults.json/kept"));
    ZQUserDefaults unreadable(store);
    unreadable.setObjectForKey(8, key);
    EXPECT_FALSE(unreadable.synchronize(&error));
    EXPECT_EQ(unreadable.integerForKey(key), 8);
    EXPECT_TRUE(QFileInfo(store + QStringLiteral("/kept")).isDir());
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

TEST_F(UserDefaults, TellObserversOfWhatAnotherProcessChanged)
{
    const QString list = QStringLiteral("List");
    const QString gone = QStringLiteral("Gone");
    ZQUserDefaults other(store);
    other.setObjectForKey(1, key);
    other.setObjectForKey(1, gone);
    ZQUserDefaults defaults(store);
    defaults.setObjectForKey(QStringList{QStringLiteral("a")}, list);
    QStringList told;
    const auto token = defaults.observe(
        [&](const QString &changed) { told.append(changed + QString::number(defaults.integerForKey(changed))); });
    defaults.refresh();
    EXPECT_EQ(told, QStringList()) << "what held when they began is no change";

    other.setObjectForKey(2, key);
    other.removeObjectForKey(gone);
    defaults.refresh();
    told.sort();
    EXPECT_EQ(told, QStringList({QStringLiteral("Gone0"), QStringLiteral("Key2")}));

    other.setObjectForKey(3, key);
    told.clear();
    EXPECT_EQ(defaults.integerForKey(key), 3);
    EXPECT_EQ(told, QStringList(QStringLiteral("Key3"))) << "by any reading";
    other.setObjectForKey(4, key);
    told.clear();
    defaults.setObjectForKey(4, key);
    EXPECT_EQ(told, QStringList(QStringLiteral("Key4"))) << "also when it is what is chosen here";
}

TEST_F(UserDefaults, ThatAPersonChoosesHoldOnceTheyAreWritten)
{
    folder(QStringLiteral("config"));
    const QString obstacle = file(QStringLiteral("config/Zelto"), "a file where the folder belongs");
    const QString kept = QStringLiteral("Kept");
    ZQUserDefaults defaults(store);
    defaults.registerDefaults({{key, 5}});
    defaults.setObjectForKey(1, kept);
    QStringList told;
    const auto token = defaults.observe([&](const QString &changed) { told.append(changed); });
    ZQError error;
    EXPECT_FALSE(defaults.storeObjectForKey(7, key, &error));
    EXPECT_TRUE(error.localizedDescription().contains(store)) << qPrintable(error.localizedDescription());
    EXPECT_FALSE(defaults.storeObjectForKey({}, kept));
    EXPECT_EQ(defaults.integerForKey(key), 5);
    EXPECT_EQ(defaults.integerForKey(kept), 1);
    EXPECT_EQ(told, QStringList());
    ASSERT_TRUE(QFile::remove(obstacle));
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(ZQUserDefaults(store).keys(), QStringList(kept)) << "nothing comes back that was refused";
    EXPECT_TRUE(defaults.storeObjectForKey(7, key, &error));
    EXPECT_EQ(ZQUserDefaults(store).integerForKey(key), 7);
    EXPECT_EQ(told, QStringList(key));
}

TEST_F(UserDefaults, WriteNothingOverADamagedFileThatCannotBeSetAside)
{
    folder(QStringLiteral("config/Zelto/defaults.json.damaged/kept"));
    write(store, "damaged");
    ZQUserDefaults defaults(store);
    EXPECT_FALSE(defaults.objectForKey(key).isValid());
    EXPECT_FALSE(defaults.storeObjectForKey(1, key));
    EXPECT_EQ(read(store), "damaged");
    ASSERT_TRUE(QDir(store + QStringLiteral(".damaged")).removeRecursively());
    EXPECT_TRUE(defaults.storeObjectForKey(1, key));
    EXPECT_EQ(read(store + QStringLiteral(".damaged")), "damaged");
    EXPECT_EQ(ZQUserDefaults(store).integerForKey(key), 1);
}

TEST_F(UserDefaults, SayOnceOfADamagedFileThatItStays)
{
    static int said;
    said = 0;
    folder(QStringLiteral("config/Zelto/defaults.json.damaged/kept"));
    write(store, "damaged");
    ZQUserDefaults defaults(store);
    const auto before = qInstallMessageHandler([](QtMsgType, const QMessageLogContext &, const QString &text) {
        said += text.contains(QStringLiteral("cannot be set aside")) ? 1 : 0;
    });
    for (const int expected : {1, 2}) {
        for (int i = 0; i < 3; ++i) {
            EXPECT_FALSE(defaults.storeObjectForKey(i, key));
            EXPECT_FALSE(defaults.isSet(key));
        }
        EXPECT_EQ(said, expected);
        write(store, "damaged otherwise");
    }
    qInstallMessageHandler(before);
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

TEST_F(UserDefaults, AreReadAsTheTypeThatIsAskedFor)
{
    ZQUserDefaults defaults(store);
    defaults.registerDefaults({{key, 2.5}, {QStringLiteral("Registered"), 1}});
    EXPECT_EQ(defaults.doubleForKey(key), 2.5);
    EXPECT_EQ(defaults.stringForKey(key), QStringLiteral("2.5"));
    EXPECT_TRUE(defaults.boolForKey(key));
    EXPECT_TRUE(defaults.dataForKey(key).isNull());
    defaults.setObjectForKey(QByteArray("d"), key);
    EXPECT_EQ(defaults.dataForKey(key), "d");
    defaults.setObjectForKey(QStringLiteral("text"), key);
    EXPECT_TRUE(defaults.dataForKey(key).isEmpty());
    defaults.setObjectForKey(QStringLiteral("Another"), QStringLiteral("Another"));
    EXPECT_EQ(defaults.keys(), (QStringList{QStringLiteral("Another"), key, QStringLiteral("Registered")}));
}

TEST_F(UserDefaults, LieInTheirFileAsAnybodyCanReadThem)
{
    ZQUserDefaults defaults(store);
    const struct
    {
        QVariant value;
        const char *json;
        QVariant back;
    } rows[] = {
        {QVariant(), "null", {}},
        {true, "true", true},
        {5, "5", qlonglong(5)},
        {0.5, "0.5", 0.5},
        {2.0, R"({"$real": "2"})", 2.0},
        {QByteArray("ab"), R"({"$data": "YWI="})", QByteArray("ab")},
        {QDateTime::fromMSecsSinceEpoch(1700000000123, Qt::UTC), R"({"$date": "2023-11-14T22:13:20.123Z"})",
         QDateTime::fromMSecsSinceEpoch(1700000000123, Qt::UTC)},
        {QStringList{QStringLiteral("a")}, R"(["a"])", QVariantList{QStringLiteral("a")}},
        {QVariantMap{{QStringLiteral("$x"), 1}}, R"({"$map": {"$x": 1}})", QVariantMap{{QStringLiteral("$x"), 1LL}}},
        {QVariantMap{{QStringLiteral("x"), QVariant()}}, R"({"x": null})",
         QVariantMap{{QStringLiteral("x"), QVariant()}}},
        {QVariantMap{{QStringLiteral("$real"), QStringLiteral("1")}, {QStringLiteral("b"), true}},
         R"({"$map": {"$real": "1", "b": true}})",
         QVariantMap{{QStringLiteral("$real"), QStringLiteral("1")}, {QStringLiteral("b"), true}}},
        {QUrl(QStringLiteral("http://a")), R"("http://a")", QStringLiteral("http://a")},
        {QVariantList{QPoint()}, "[null]", QVariantList{QVariant()}}};
    for (const auto &row : rows) {
        defaults.setObjectForKey(QVariantList{row.value}, key);
        const QByteArray written = read(store).simplified().replace(" ", "");
        EXPECT_EQ(written, "{\"Key\":[" + QByteArray(row.json).replace(" ", "") + "]}");
        EXPECT_EQ(ZQUserDefaults(store).objectForKey(key).toList().value(0), row.back) << row.json;
    }
}

TEST_F(UserDefaults, ThatCannotBeWrittenAreKeptEachAndTheirRemovalToo)
{
    folder(QStringLiteral("config"));
    const QString other = QStringLiteral("Other");
    {
        ZQUserDefaults before(store);
        before.setObjectForKey(1, key);
        before.setObjectForKey(2, other);
    }
    ZQUserDefaults defaults(store);
    EXPECT_EQ(defaults.integerForKey(key), 1);
    QDir(path(QStringLiteral("config/Zelto"))).removeRecursively();
    const QString obstacle = file(QStringLiteral("config/Zelto"), "a file where the folder belongs");
    defaults.setObjectForKey(7, key);
    defaults.removeObjectForKey(other);
    EXPECT_EQ(defaults.integerForKey(key), 7);
    EXPECT_FALSE(defaults.isSet(other));
    EXPECT_FALSE(defaults.synchronize());
    ASSERT_TRUE(QFile::remove(obstacle));
    {
        ZQUserDefaults another(store); // which knows nothing of it
        another.setObjectForKey(3, other);
    }
    EXPECT_EQ(defaults.integerForKey(key), 7);
    EXPECT_FALSE(defaults.isSet(other)) << "what was done last here holds";
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_TRUE(defaults.synchronize());
    EXPECT_EQ(ZQUserDefaults(store).integerForKey(key), 7);
    EXPECT_FALSE(ZQUserDefaults(store).isSet(other));
    EXPECT_EQ(QDir(QFileInfo(store).path()).entryList(QDir::Files, QDir::Name),
              (QStringList{QStringLiteral("defaults.json"), QStringLiteral("defaults.json.lock")}));
}
