#pragma once

#include "Classes/Application/tamberin_AppDelegate.h"
#include "Tests/Power/SimulatedDisk.h"
#include "Tests/Support/ScriptedUser.h"

#include <QHash>
#include <QTemporaryDir>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

// One user's world on a disk whose power fails at each moment of what a test does between `begin` and `cutThePower`.
class PowerTest : public testing::Test
{
protected:
    void SetUp() override;
    void TearDown() override;

    static QString world(); // the same place for all tests: the settings keep theirs
    static QString path(const QString &relative) { return world() + u'/' + relative; }
    static QString library() { return path(QStringLiteral("Test.ztlibrary")); }
    static QString store() { return library() + QStringLiteral("/storedata"); }
    // No two numbers give the same file. A large one gets a thumbnail of its own in the library.
    enum class Picture { Small, Large };
    static QString writePicture(const QString &relative, int number, Picture kind = Picture::Small);
    static QByteArray contentOf(const QString &path);

    // Opens the library at this place as a command does.
    void open(const QString &bundle = library());
    void close(); // everything that was asked for is done first
    ZQManagedObjectContext &context() const { return *delegate->managedObjectContext(); }

    void begin() { m_disk = std::make_unique<SimulatedDisk>(world().toUtf8(), seed); }
    SimulatedDisk &disk() const { return *m_disk; }
    void report() { m_disk->report(); }
    // For each disk that a power cut may leave: puts it in the world's place and has it looked at, with the number of
    // reports made before. Ends at the first failure.
    void cutThePower(const std::function<void(int reports)> &look, int chances = 45);

    // That the open library is whole: its store, the file of each item, the keys.
    void expectWholeLibrary() const;

    ScriptedUser user;
    std::unique_ptr<tamberin_AppDelegate> delegate;

private:
    static constexpr quint32 seed = 20240229;
    std::unique_ptr<SimulatedDisk> m_disk;
};
