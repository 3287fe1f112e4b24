#pragma once

#include "Classes/Services/HotKey.h"

#include <QTimer>
#include <QWidget>

#include <optional>

// A field with the keys of a command, a cap for each. A click, Return or Space begins to record; then the first keys
// that can be taken are the new ones. Backspace clears, Esc leaves them as they were. It shows what it is told, and
// keeps nothing. Main thread.
class HotKeyField : public QWidget
{
    Q_OBJECT
public:
    explicit HotKeyField(const QString &name, QWidget *parent = nullptr);

    void setHotKey(const std::optional<HotKey> &hotKey);
    const std::optional<HotKey> &hotKey() const { return m_hotKey; }
    bool isRecording() const { return m_isRecording; }
    void endRecording();
    QSize sizeHint() const override;

Q_SIGNALS:
    void chosen(const std::optional<HotKey> &hotKey); // nothing: cleared
    void refused(const QString &reason);              // of keys that were pressed; it goes on recording
    void recordingChanged(bool isRecording);

protected:
    bool event(QEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void keyReleaseEvent(QKeyEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void beginRecording();
    void record(const QKeyEvent &event);
    void didRelease(); // all that was held
    void choose(const std::optional<HotKey> &hotKey);
    QStringList texts() const;
    void updateSpokenText();

    std::optional<HotKey> m_hotKey;
    Qt::KeyboardModifiers m_held;
    bool m_hasSeenKey = false; // since the first of what is held was pressed
    QTimer m_heldWatch;        // asks the display: releases go to who took the key
    bool m_isRecording = false;
};
