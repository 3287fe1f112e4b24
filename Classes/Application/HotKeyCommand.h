#pragma once

#include <QList>
#include <QString>
#include <QVariantMap>

class ScreenCaptureControlling;

// What can be done by keys that work while other programs have the focus: the one table of it. A command is known
// everywhere by the user default that keeps its keys.
struct HotKeyCommand
{
    QString preference;  // the user default, "ScreenshotAreaHotkey"
    quint32 defaultCode; // the virtual code of its key while the person chose none
    const char *name;    // key of a text, with its access key, for the preferences
    const char *meaning; // the same as a sentence, for a desktop that asks the person
    void (ScreenCaptureControlling::*run)();

    QVariantMap defaultSetting() const; // "code", "flags"

    // In the order in which they are shown.
    static const QList<HotKeyCommand> &all();
    static const HotKeyCommand *find(const QString &preference); // null: there is none

    static inline const QString area = QStringLiteral("ScreenshotAreaHotkey");
    static inline const QString window = QStringLiteral("ScreenshotWindowHotkey");
    static inline const QString fullScreen = QStringLiteral("ScreenshotFullScreenHotkey");
    static inline const QString showZelto = QStringLiteral("ShowZeltoHotkey");
};
