#pragma once

#include "Kit/Files/ZQUserDefaults.h"

#include <QDialog>
#include <QList>
#include <QPointer>

class BackupSchedule;
class LibraryPane;
class PreferencesPane;
class QListWidget;
class QStackedWidget;
class ZQNotificationBubble;
class tamberin_AppDelegate;

// The preferences: the names of the panes and the one that is chosen, as it was left. Lies above its main window, which
// goes on working, and makes room while that one asks something. Deletes itself when it is closed. Main thread.
class PreferencesWindow : public QDialog
{
    Q_OBJECT
public:
    PreferencesWindow(tamberin_AppDelegate &delegate, BackupSchedule &backups, QWidget *mainWindow);
    void showPane(const QString &objectName); // one of those below
    static inline const QString cloudPane = QStringLiteral("CloudPane");
    static inline const QString libraryPane = QStringLiteral("LibraryPane");
    void verifyLibrary(); // shows the pane of the library, and begins there

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void hideEvent(QHideEvent *event) override;
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void addPane(PreferencesPane *pane, const QString &icon);
    void preferenceDidChange(const QString &key);

    QPointer<QWidget> m_mainWindow;
    QListWidget *m_names;
    LibraryPane *m_library = nullptr;
    QStackedWidget *m_stack; // of what scrolls each pane
    QList<PreferencesPane *> m_panes;
    ZQNotificationBubble *m_bubble;
    bool m_makesRoom = false;
    ZQUserDefaults::Token m_token;
};
