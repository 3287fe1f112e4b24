#pragma once

#include "Classes/Capture/WebCaptureDelegate.h"
#include "Classes/Capture/WebPageCapture.h"
#include "Classes/Import/TemporaryFolder.h"
#include "Kit/Operations/ZQOperationQueue.h"

#include <QRect>
#include <QWidget>

#include <memory>

class QBoxLayout;
class QCheckBox;
class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;
class QScrollArea;
class ZQProgressLine;

// The window in which a web page becomes a picture: its address, how it is captured, and what came of it, which goes to
// the delegate when the person wants it. What is shown is what is saved. Hidden when it is closed. Main thread.
class ZQScreenshotWebWindowController : public QWidget
{
    Q_OBJECT
public:
    // The delegate outlives it.
    explicit ZQScreenshotWebWindowController(WebCaptureDelegate &delegate, QWidget *parent = nullptr);
    ~ZQScreenshotWebWindowController() override;

    // Comes forward. An address is loaded at once; `frame` of the browser's window that shows it: this one goes there,
    // and the page is as wide. Empty or null: not known.
    void showWebCapture(const QString &pageURL, const QRect &frame);

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void closeEvent(QCloseEvent *event) override;

private:
    QBoxLayout *makeAddressRow();
    QBoxLayout *makeChoices();
    QBoxLayout *makeFooter();
    void readChoices();
    void chose(const QString &key, const QVariant &value);
    int pageWidth() const;
    WebCaptureRequest request() const;

    void load();
    void reload(); // after a choice, what was loaded
    void cancel();
    void captureDidEnd(const std::shared_ptr<WebPageCapture> &capture);
    void showResult();
    void showMessage(const QString &text, bool isError);
    void discard();
    void save();

    WebCaptureDelegate &m_delegate;
    QLineEdit *m_address;
    QPushButton *m_load;
    QComboBox *m_width;
    QComboBox *m_area;
    QComboBox *m_format;
    QCheckBox *m_isDouble;
    QScrollArea *m_scroll;
    QLabel *m_preview;
    QLabel *m_note;
    ZQProgressLine *m_progress;
    QPushButton *m_save;

    QString m_askedAddress;                    // the last one that a page asked for, and no person typed
    QString m_loadedAddress;                   // or being loaded
    std::shared_ptr<WebPageCapture> m_capture; // the one that is waited for
    WebCaptureResult m_result;
    std::unique_ptr<TemporaryFolder> m_folder; // of the result, until it is handed over
    ZQOperationQueue m_queue{QStringLiteral("web capture")};
};
