#pragma once

#include "Kit/Foundation/ZQError.h"

#include <QString>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

#include <functional>
#include <memory>

// What the user set, by key, in one file of the configuration folder ($XDG_CONFIG_HOME/Zelto/defaults.json), over
// defaults that the application registers. Writes are atomic and merge with those of other processes (a lock file
// beside it); reading notices a changed file. Values: bool, integers, doubles, QString, QByteArray, QDateTime, lists
// and maps of them. Any thread.
class ZQUserDefaults
{
public:
    static ZQUserDefaults &standardUserDefaults();
    explicit ZQUserDefaults(const QString &path); // for tests
    ~ZQUserDefaults();

    void registerDefaults(const QVariantMap &defaults); // kept in memory only

    QVariant objectForKey(const QString &key) const; // invalid when neither set nor registered
    bool boolForKey(const QString &key) const;
    qint64 integerForKey(const QString &key) const;
    double doubleForKey(const QString &key) const;
    QString stringForKey(const QString &key) const;
    QByteArray dataForKey(const QString &key) const;

    void setObjectForKey(const QVariant &value, const QString &key); // an invalid value removes the key
    void removeObjectForKey(const QString &key);
    // The same for what a person chooses: false with an error, and as it was, where it cannot be written.
    bool storeObjectForKey(const QVariant &value, const QString &key, ZQError *error = nullptr);
    QStringList keys() const; // set or registered, sorted
    bool isSet(const QString &key) const;
    // Writes what is not on the disk yet; false with an error when that cannot be done. It stays to be written. A file
    // that is write-protected, cannot be read, or is damaged and cannot be set aside, is left as it is.
    bool synchronize(ZQError *error = nullptr);

    const QString &path() const;
    void refresh() const; // looks whether another process changed the file, as each reading does

    // Called after a value changed, on the thread that changed it or found the file changed by another process.
    using Token = std::shared_ptr<void>;
    [[nodiscard]] Token observe(std::function<void(const QString &key)> observer);

private:
    struct Private;
    std::unique_ptr<Private> d;
};
