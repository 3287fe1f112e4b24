#include "Classes/Interface/Capture/ZQScreenshotWebWindowController.h"

#include "Classes/Capture/WebCaptureErrors.h"
#include "Kit/Files/ZQUserDefaults.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Operations/ZQMainThread.h"
#include "Kit/Widgets/ZQProgressLine.h"
#include "Kit/Widgets/ZQTheme.h"
#include "Kit/Widgets/ZQWindowPlace.h"

#include <QAccessible>
#include <QAction>
#include <QBoxLayout>
#include <QCheckBox>
#include <QCloseEvent>
#include <QComboBox>
#include <QFileInfo>
#include <QGuiApplication>
#include <QIntValidator>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPointer>
#include <QPushButton>
#include <QScreen>
#include <QScrollArea>

#include <algorithm>
#include <array>
#include <utility>

namespace {

const QString widthKey = QStringLiteral("WebCaptureWidth");
const QString visibleKey = QStringLiteral("WebCaptureVisible");
const QString layeredKey = QStringLiteral("WebCaptureLayered");
const QString doubleKey = QStringLiteral("WebCaptureDouble");
const QString geometryKey = QStringLiteral("WebCaptureGeometry");

constexpr std::array widths{320, 768, 1024, 1280, 1440, 1920};
constexpr int usualWidth = 1280;
constexpr int previewWidth = 640;
constexpr QSize usualSize(760, 640);
constexpr QSize leastSize(560, 420);

ZQUserDefaults &defaults()
{
    return ZQUserDefaults::standardUserDefaults();
}

// Null for one that is on none of them.
const QScreen *screenWithMostOf(const QRect &frame)
{
    const QScreen *found = nullptr;
    qint64 most = 0;
    for (const QScreen *const screen : QGuiApplication::screens()) {
        const QRect part = screen->geometry().intersected(frame);
        const qint64 area = part.isEmpty() ? 0 : qint64(part.width()) * part.height();
        if (area > most) {
            most = area;
            found = screen;
        }
    }
    return found;
}

QComboBox *makeChoice(const QString &name, const QStringList &texts, QWidget *parent)
{
    auto *choice = new QComboBox(parent);
    choice->setAccessibleName(name);
    choice->setToolTip(name);
    choice->addItems(texts);
    return choice;
}

} // namespace

ZQScreenshotWebWindowController::ZQScreenshotWebWindowController(WebCaptureDelegate &delegate, QWidget *parent)
    : QWidget(parent, Qt::Window), m_delegate(delegate), m_scroll(new QScrollArea(this)), m_preview(new QLabel(this)),
      m_note(new QLabel(this)), m_progress(new ZQProgressLine(true, this))
{
    setObjectName(QStringLiteral("WebCapture"));
    setWindowTitle(zqLocalized("Capture Web Page"));
    setMinimumSize(leastSize);
    setAttribute(Qt::WA_QuitOnClose, false);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(16, 16, 16, 16);
    column->setSpacing(12);
    column->addLayout(makeAddressRow());
    column->addLayout(makeChoices());
    m_preview->setAlignment(Qt::AlignCenter);
    m_preview->setWordWrap(true);
    m_preview->setContentsMargins(24, 24, 24, 24);
    m_scroll->setWidget(m_preview);
    m_scroll->setWidgetResizable(true);
    m_scroll->setAccessibleName(zqLocalized("Preview"));
    column->addWidget(m_scroll, 1);
    column->addLayout(makeFooter());
    connect(m_progress, &ZQProgressLine::cancelled, this, &ZQScreenshotWebWindowController::cancel);
    auto *close = new QAction(this);
    close->setShortcut(Qt::CTRL | Qt::Key_W);
    connect(close, &QAction::triggered, this, &QWidget::close);
    addAction(close);
    readChoices();
    showMessage(zqLocalized("Type an address and press Enter to see the page."), false);
    if (!zqRestoreGeometry(*this, defaults().dataForKey(geometryKey))) {
        resize(usualSize);
    }
}

ZQScreenshotWebWindowController::~ZQScreenshotWebWindowController()
{
    cancel();
}

QBoxLayout *ZQScreenshotWebWindowController::makeAddressRow()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    m_address = new QLineEdit(this);
    m_address->setAccessibleName(zqLocalized("Address of the page"));
    m_address->setPlaceholderText(zqLocalized("Address of a web page"));
    m_address->setClearButtonEnabled(true);
    m_load = new QPushButton(zqLocalized("Load"), this);
    m_load->setAutoDefault(false);
    connect(m_address, &QLineEdit::returnPressed, this, &ZQScreenshotWebWindowController::load);
    connect(m_load, &QPushButton::clicked, this, &ZQScreenshotWebWindowController::load);
    row->addWidget(m_address, 1);
    row->addWidget(m_load);
    return row;
}

QBoxLayout *ZQScreenshotWebWindowController::makeChoices()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(8);
    QStringList texts;
    for (const int width : widths) {
        texts.append(QString::number(width));
    }
    m_width = makeChoice(zqLocalized("Width of the page in pixels"), texts, this);
    m_width->setEditable(true);
    m_width->setInsertPolicy(QComboBox::NoInsert);
    m_width->setValidator(new QIntValidator(1, WebCaptureRequest::mostWidth, m_width));
    m_area =
        makeChoice(zqLocalized("What is captured"), {zqLocalized("Whole page"), zqLocalized("Visible area")}, this);
    m_format =
        makeChoice(zqLocalized("Kind of file"), {zqLocalized("Picture (PNG)"), zqLocalized("Layers (PSD)")}, this);
    m_isDouble = new QCheckBox(zqLocalized("Double resolution"), this);
    auto *label = new QLabel(zqLocalized("Width"), this);
    label->setBuddy(m_width);
    for (QWidget *widget : std::initializer_list<QWidget *>{label, m_width, m_area, m_format, m_isDouble}) {
        row->addWidget(widget);
    }
    row->addStretch(1);
    return row;
}

QBoxLayout *ZQScreenshotWebWindowController::makeFooter()
{
    auto *row = new QHBoxLayout;
    row->setSpacing(12);
    m_note->setObjectName(QStringLiteral("SmallMuted"));
    m_note->setWordWrap(true);
    m_note->setTextFormat(Qt::PlainText);
    m_preview->setTextFormat(Qt::PlainText);
    m_progress->hide();
    m_save = new QPushButton(zqLocalized("Save to Screenshots"), this);
    m_save->setDefault(true);
    m_save->setEnabled(false);
    connect(m_save, &QPushButton::clicked, this, &ZQScreenshotWebWindowController::save);
    row->addWidget(m_progress, 1);
    row->addWidget(m_note, 1);
    row->addWidget(m_save);
    return row;
}

void ZQScreenshotWebWindowController::readChoices()
{
    const int width = int(defaults().integerForKey(widthKey));
    m_width->setCurrentText(QString::number(width > 0 ? std::min(width, WebCaptureRequest::mostWidth) : usualWidth));
    m_area->setCurrentIndex(defaults().boolForKey(visibleKey) ? 1 : 0);
    m_format->setCurrentIndex(defaults().boolForKey(layeredKey) ? 1 : 0);
    m_isDouble->setChecked(defaults().boolForKey(doubleKey));
    connect(m_width, &QComboBox::activated, this, [this] { chose(widthKey, pageWidth()); });
    connect(m_width->lineEdit(), &QLineEdit::editingFinished, this, [this] { chose(widthKey, pageWidth()); });
    connect(m_area, &QComboBox::activated, this, [this](int index) { chose(visibleKey, index == 1); });
    connect(m_format, &QComboBox::activated, this, [this](int index) { chose(layeredKey, index == 1); });
    connect(m_isDouble, &QCheckBox::clicked, this, [this](bool isDouble) { chose(doubleKey, isDouble); });
}

int ZQScreenshotWebWindowController::pageWidth() const
{
    return std::clamp(m_width->currentText().toInt(), WebCaptureRequest::leastWidth, WebCaptureRequest::mostWidth);
}

void ZQScreenshotWebWindowController::chose(const QString &key, const QVariant &value)
{
    m_width->setCurrentText(QString::number(pageWidth()));
    if (defaults().objectForKey(key) == value) {
        return; // leaving the field of the width is no choice
    }
    defaults().setObjectForKey(value, key);
    reload();
}

WebCaptureRequest ZQScreenshotWebWindowController::request() const
{
    WebCaptureRequest request;
    request.url = m_loadedAddress;
    request.isFromPage = m_loadedAddress == m_askedAddress;
    request.width = pageWidth();
    request.scale = m_isDouble->isChecked() ? 2 : 1;
    request.visible = m_area->currentIndex() == 1;
    request.layered = m_format->currentIndex() == 1;
    request.previewWidth = int(previewWidth * devicePixelRatio());
    return request;
}

void ZQScreenshotWebWindowController::showWebCapture(const QString &pageURL, const QRect &frame)
{
    if (const QScreen *const screen = screenWithMostOf(frame)) {
        const QRect available = screen->availableGeometry();
        const QSize size = frame.size().expandedTo(leastSize).boundedTo(available.size());
        setGeometry(QRect(QPoint(std::clamp(frame.x(), available.left(), available.right() + 1 - size.width()),
                                 std::clamp(frame.y(), available.top(), available.bottom() + 1 - size.height())),
                          size));
    }
    if (!frame.isEmpty() && !pageURL.isEmpty()) { // as it is seen there, and the person's own choice stays kept
        m_width->setCurrentText(QString::number(frame.width()));
        m_width->setCurrentText(QString::number(pageWidth()));
    }
    show();
    raise();
    activateWindow();
    m_address->setFocus();
    m_address->selectAll();
    if (!pageURL.isEmpty()) {
        m_address->setText(pageURL);
        m_askedAddress = WebCaptureRequest::addressFor(pageURL, false);
        load();
    }
}

void ZQScreenshotWebWindowController::load()
{
    ZQError error;
    const QString address = WebCaptureRequest::addressFor(m_address->text(), false, &error);
    if (address.isEmpty()) {
        cancel();
        discard();
        m_loadedAddress.clear();
        showMessage(error.localizedDescription(), true);
        return;
    }
    m_address->setText(address);
    m_loadedAddress = address;
    reload();
}

void ZQScreenshotWebWindowController::reload()
{
    if (m_loadedAddress.isEmpty()) {
        return;
    }
    cancel();
    discard();
    showMessage(zqLocalized("The page is being captured."), false);
    m_note->hide();
    m_progress->setFraction(0);
    m_progress->show();
    const auto onMain = [self = QPointer(this)](std::function<void(ZQScreenshotWebWindowController &)> run) {
        zqOnMainThread([self, run = std::move(run)] {
            if (self) {
                run(*self);
            }
        });
    };
    // Its number says for which capture it is: one that was called off may still tell something.
    const auto current = std::make_shared<std::weak_ptr<WebPageCapture>>();
    m_capture = std::make_shared<WebPageCapture>(request(), [onMain, current](double done, const QString &what) {
        onMain([current, done, what](ZQScreenshotWebWindowController &window) {
            if (window.m_capture && window.m_capture == current->lock()) {
                window.m_progress->setText(what);
                window.m_progress->setFraction(done);
            }
        });
    });
    *current = m_capture;
    m_capture->setCompletionBlock([onMain, current] {
        onMain([capture = current->lock()](ZQScreenshotWebWindowController &window) {
            if (capture) {
                window.captureDidEnd(capture);
            }
        });
    });
    m_queue.addOperation(m_capture);
}

void ZQScreenshotWebWindowController::cancel()
{
    if (m_capture) {
        m_capture->cancel();
    }
}

void ZQScreenshotWebWindowController::captureDidEnd(const std::shared_ptr<WebPageCapture> &capture)
{
    const WebCaptureResult &result = capture->result();
    std::unique_ptr<TemporaryFolder> folder;
    if (!result.file.isEmpty()) {
        folder = std::make_unique<TemporaryFolder>(QFileInfo(result.file).path());
    }
    if (capture != m_capture) {
        return; // another one was asked for since
    }
    m_capture.reset();
    m_progress->hide();
    m_note->show();
    if (!folder) {
        showMessage(result.error.localizedDescription(), result.error.code != WebCaptureErrors::Cancelled);
        return;
    }
    m_result = result;
    m_folder = std::move(folder);
    showResult();
}

void ZQScreenshotWebWindowController::showResult()
{
    QImage preview = m_result.preview;
    preview.setDevicePixelRatio(devicePixelRatio());
    m_preview->setPixmap(QPixmap::fromImage(preview));
    m_scroll->setAccessibleDescription(m_result.title);
    QStringList lines{
        zqFormat(zqLocalized("%@, %d × %d pixels"), {m_result.title, m_result.size.width(), m_result.size.height()})};
    if (m_result.layers > 0) {
        lines.front() += QStringLiteral(", ") + zqFormat(zqLocalized("%d layers"), {m_result.layers});
    }
    lines.append(m_result.notes);
    m_note->setText(lines.join(u'\n'));
    m_save->setEnabled(true);
    if (isActiveWindow()) {
        m_save->setFocus();
    }
}

void ZQScreenshotWebWindowController::showMessage(const QString &text, bool isError)
{
    m_preview->setPixmap({});
    QPalette colors = palette();
    colors.setColor(QPalette::WindowText, zqColor(isError ? ZQColorRole::Danger : ZQColorRole::TextMuted));
    m_preview->setPalette(colors);
    m_preview->setText(text);
    m_scroll->setAccessibleDescription(text);
    m_note->clear();
    if (isError) {
        QAccessibleEvent alert(m_preview, QAccessible::Alert);
        QAccessible::updateAccessibility(&alert);
    }
}

void ZQScreenshotWebWindowController::discard()
{
    m_result = {};
    m_folder.reset();
    m_save->setEnabled(false);
}

void ZQScreenshotWebWindowController::save()
{
    if (!m_folder) {
        return;
    }
    m_folder->keep();
    const WebCaptureResult result = std::exchange(m_result, {});
    discard();
    m_loadedAddress.clear(); // what is chosen next captures nothing unasked
    const QString saving = zqLocalized("Saving to Screenshots…");
    m_note->setText(saving);
    m_delegate.screenshotWebWindowController(
        result.file, result.pageURL, result.title, [self = QPointer(this), saving](const ZQError &error) {
            if (self && self->m_note->text() == saving) { // else another page is there
                self->m_note->setText(error.isNull() ? zqLocalized("Saved to Screenshots.")
                                                     : error.localizedDescription());
            }
        });
    m_address->setFocus();
    m_address->selectAll();
}

void ZQScreenshotWebWindowController::keyPressEvent(QKeyEvent *event)
{
    const bool isReturn = event->key() == Qt::Key_Return || event->key() == Qt::Key_Enter;
    if (event->key() == Qt::Key_Escape) {
        m_capture ? cancel() : void(close());
    } else if (isReturn && !m_address->hasFocus() && m_save->isEnabled()) {
        save();
    } else {
        QWidget::keyPressEvent(event);
    }
}

void ZQScreenshotWebWindowController::closeEvent(QCloseEvent *event)
{
    defaults().setObjectForKey(saveGeometry(), geometryKey);
    cancel();
    discard();
    m_loadedAddress.clear();
    showMessage(zqLocalized("Type an address and press Enter to see the page."), false);
    QWidget::closeEvent(event);
}
