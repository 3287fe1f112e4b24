#pragma once

#include "Classes/Application/UserInteraction.h"
#include "Classes/Services/SystemNotifications.h"
#include "Kit/Widgets/ZQNotificationBubble.h"

#include <QPointer>
#include <QWidget>

class QVBoxLayout;

// Talks to the person through the main window: sheets, bubbles, progress lines. Before there is a window, alerts are
// plain dialogs and the rest waits or is dropped.
class WindowUserInteraction : public QObject, public UserInteraction
{
    Q_OBJECT
public:
    WindowUserInteraction();
    ~WindowUserInteraction() override;

    struct Places
    {
        QPointer<QWidget> window;
        QPointer<QWidget> browser;
        QPointer<QWidget> sidebar;
        QVBoxLayout *progress = nullptr; // lives as long as the sidebar
    };
    void setPlaces(const Places &places);

    void presentError(const ZQError &error) override;
    int ask(const UserQuestion &question) override;
    void showNotificationWithText(const QString &text, NotificationPlace position,
                                  std::chrono::milliseconds time) override;
    // With things a person may do about it, of which each ends it.
    void showNotification(const QString &text, NotificationPlace position, std::chrono::milliseconds time,
                          const QList<ZQNotificationAction> &actions);
    void importDidEnd(const ImportOutcome &outcome) override;
    std::function<void(const ImportOutcome &)> onImportEnd; // who shows it; null: its text is shown
    void showSystemNotification(const QString &title, const QString &text) override;
    void importDidEndLate(const QString &title, const QString &text) override;
    void tellWhenAway(const AwayNotice &notice) override;
    std::function<void()> onShowImport; // goes to what the last import brought; null: nothing can
    QStringList chooseFilesToOpen(const FileChoice &choice) override;
    std::optional<QString> chooseFileToSave(const FileChoice &choice) override;
    bool resolveUnreadableFiles(QList<FileConflict> &conflicts) override;
    std::optional<DuplicateAnswers> resolveDuplicates(const QList<DuplicatePair> &pairs, bool archivesFollow) override;
    void dismissQuestions() override;
    std::shared_ptr<UserProgress> beginProgress(const QString &text, double maximum,
                                                std::function<void()> cancel) override;

private:
    template <class SheetClass, class... Arguments>
    typename SheetClass::Answer answerOf(const typename SheetClass::Answer &withoutWindow, Arguments... arguments);
    void bringForward() const;
    bool hasWindow() const { return m_places.window && m_places.window->isVisible(); }

    Places m_places;
    SystemNotifications m_system;
    QPointer<ZQNotificationBubble> m_bubbles[3];
};
