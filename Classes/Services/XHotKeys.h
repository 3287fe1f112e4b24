#pragma once

#include "Classes/Application/ControllerInterfaces.h"
#include "Classes/Services/HotKey.h"
#include "Kit/Desktop/ZQXConnection.h"

#include <QMap>
#include <QObject>
#include <QSocketNotifier>
#include <QTimer>

#include <functional>
#include <memory>
#include <optional>

// Keys of an X display, grabbed over a connection of its own and given up with it. They work whatever locks are on
// (Caps Lock, Num Lock, Scroll Lock), run once however long they are held, and follow the keyboard's layout. Main
// thread.
class XHotKeys : public QObject, public HotKeyRegistering
{
    Q_OBJECT
public:
    explicit XHotKeys(std::unique_ptr<ZQXConnection> connection);
    ~XHotKeys() override;

    QString registerHotKey(const QString &command, const QVariantMap &setting, std::function<void()> run) override;
    QString problemOfHotKey(const QString &command) const override;

private:
    struct Grab
    {
        xcb_keycode_t keycode;
        quint16 modifiers; // without locks
    };
    struct Entry
    {
        std::optional<HotKey> key; // nothing: these can't be taken
        std::function<void()> run;
        QList<Grab> grabs = {};
        QString problem = {}; // empty: the keys are taken
    };
    void readKeyboard();
    QList<xcb_keycode_t> keycodesFor(quint32 keysym) const;
    std::optional<quint16> modifiersFor(const HotKey &key) const;
    QList<quint16> lockVariants() const;
    void take(Entry &entry); // which has none
    void letGo(Entry &entry);
    bool takeWhatFailed();
    bool grab(const Grab &grab);
    void ungrab(const Grab &grab);
    void takeAllAnew();
    void readEvents();
    void keyWasPressed(const xcb_key_press_event_t &event);

    std::unique_ptr<ZQXConnection> m_connection;
    QSocketNotifier m_notifier;
    QTimer m_keyboardChanged;        // its announcements come many at a time
    QMap<QString, Entry> m_entries;  // by command
    QList<QList<quint32>> m_keysyms; // by keycode, from the first one on
    xcb_keycode_t m_firstKeycode = 0;
    quint16 m_alt = 0; // masks of modifiers
    quint16 m_super = 0;
    quint16 m_numLock = 0;
    quint16 m_scrollLock = 0;
    xcb_keycode_t m_released = 0; // the last key that was, and when
    xcb_timestamp_t m_releaseTime = 0;
};
