#pragma once

#include "Classes/Interface/Preferences/PreferencesPane.h"
#include "Classes/Services/HotKey.h"

#include <QList>

#include <memory>
#include <optional>

class HotKeyField;
class tamberin_AppDelegate;

// The keys of captures, and what happens after one. While keys are recorded none of those that hold does anything.
// Main thread.
class ScreenshotsPane : public PreferencesPane
{
    Q_OBJECT
public:
    explicit ScreenshotsPane(tamberin_AppDelegate &delegate, QWidget *parent = nullptr);
    ~ScreenshotsPane() override;

private:
    struct Row
    {
        QString key; // the user default
        QString name;
        HotKeyField *field;
        QLabel *problem;
    };
    void addKeys();
    Row addRow(QGridLayout *grid, const QString &key, const QString &text);
    void choose(const Row &row, const std::optional<HotKey> &hotKey);
    QString otherWithKeys(const Row &row, const HotKey &hotKey) const; // its name, or empty
    void setPaused(bool paused);
    void showProblem(const Row &row, const QString &problem);
    void showProblems(); // of the keys as they are

    tamberin_AppDelegate &m_delegate;
    QList<Row> m_rows;
    bool m_isPaused = false;
    std::shared_ptr<void> m_token; // for what becomes of the keys
};
