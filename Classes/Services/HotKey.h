#pragma once

#include <QString>
#include <QStringList>
#include <QVariantMap>

#include <optional>

// A key with its modifiers, as the user defaults keep it: "code" is a virtual key code (18 to 21 are the keys 1 to 4 of
// the main row), "flags" a mask of modifiers. What each stands for on this desktop is one table in HotKey.cpp; the
// mask's Command is Ctrl here, Option Super, Control Alt.
//
// Only what may be taken from every other program is a HotKey: keys that write or move need Ctrl, Alt or Super,
// function keys and Print need nothing.
struct HotKey
{
    static constexpr quint32 shift = 0x20000;
    static constexpr quint32 control = 0x40000;
    static constexpr quint32 option = 0x80000;
    static constexpr quint32 command = 0x100000;

    quint32 code = 0;
    quint32 flags = 0;

    // Nothing when it names no key that can be taken.
    static std::optional<HotKey> fromSetting(const QVariantMap &setting);
    QVariantMap setting() const; // "code", "flags"

    // As a key event has them. `nativeScanCode` tells which digit is meant where Shift turned it into another sign.
    static std::optional<HotKey> fromQt(int key, Qt::KeyboardModifiers modifiers, quint32 nativeScanCode = 0);

    QString text() const;     // "Ctrl+Super+1", localized
    QStringList caps() const; // the same, a text for each key that is held

    quint32 keysym() const; // of an X display
    Qt::KeyboardModifiers modifiers() const;
    QString portalTrigger() const; // "CTRL+LOGO+1", as desktops take it

    static QString instead(); // how a person has keys without this program's taking them, localized

    bool operator==(const HotKey &) const = default;
};
