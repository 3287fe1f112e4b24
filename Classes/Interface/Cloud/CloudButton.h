#pragma once

#include "Classes/Interface/Export/PresetDrag.h"

#include <QToolButton>
#include <QVariantAnimation>

class QMenu;

// The button that shares. A click asks to share what is selected; while files go up it is a ring that fills, and a
// click asks to cancel. A preset that is dropped on it exports what is selected for an upload, or for the next one;
// anything else that is dropped counts as a click. Its menu opens by a right click, the Down key or the menu key. Main
// thread.
class CloudButton : public QToolButton, public PresetReceiver
{
    Q_OBJECT
public:
    explicit CloudButton(QWidget *parent = nullptr);

    void setCloudMenu(QMenu *menu) { m_menu = menu; } // whose parent it is
    QMenu *cloudMenu() const { return m_menu; }
    void showCloudMenu(); // below it, and within its window
    void setHasSelection(bool hasSelection);

    bool isUploading() const { return m_total > 0; }
    qint64 totalFiles() const { return m_total; }
    double filesDone() const { return m_done; } // with what is done of the current one
    QString progressText() const;               // localized; empty while nothing is uploaded
    void uploadDidStart(qint64 files);
    void uploadDidUpdate(double filesDone);
    void uploadDidFinish();
    void setIsWaiting(bool isWaiting); // for the keyring

    // Also while files go up: these wait for their turn.
    void setFileToUploadAfterExport(const QStringList &paths) override;

Q_SIGNALS:
    void presetDropped(const QStringList &paths); // where the files of its export will be; not empty
    void uploadingChanged();                      // it begins or ends
    void progressChanged();                       // the same, and all that happens between

protected:
    void paintEvent(QPaintEvent *event) override;
    void contextMenuEvent(QContextMenuEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dragLeaveEvent(QDragLeaveEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void changeEvent(QEvent *event) override;

private:
    void showState();
    void moveRingTo(double fraction);

    QMenu *m_menu = nullptr;
    qint64 m_total = 0; // 0: nothing is uploaded
    double m_done = 0;
    bool m_hasSelection = false;
    bool m_isWaiting = false;
    QVariantAnimation m_ring; // the fraction that is shown
};
