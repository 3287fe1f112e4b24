#include "Classes/Interface/Sheets/Sheet.h"

#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Widgets/ZQTheme.h"

#include <QApplication>
#include <QBoxLayout>
#include <QEventLoop>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QPainter>
#include <QPainterPath>
#include <QPushButton>

#include <algorithm>
#include <utility>

namespace {

// Keeps the pointer from what lies under a sheet.
class Cover : public QWidget
{
public:
    explicit Cover(QWidget *window) : QWidget(window) {}

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), zqColor(ZQColorRole::Shadow));
    }
    void mousePressEvent(QMouseEvent *event) override { event->accept(); }
};

constexpr int radius = 12;

// Those that hang from their windows, the topmost last. Main thread.
QList<Sheet *> &shownSheets()
{
    static QList<Sheet *> sheets;
    return sheets;
}
constexpr qsizetype longestTitle = 400;

// As they are seen, from the top and from the left; of a group of buttons also those that Tab passes by for now.
void appendFocusable(QLayout &layout, QList<QWidget *> &widgets)
{
    for (int i = 0; i < layout.count(); ++i) {
        QLayoutItem &item = *layout.itemAt(i);
        if (item.layout()) {
            appendFocusable(*item.layout(), widgets);
        } else if (QWidget *widget = item.widget(); widget && widget->focusPolicy() != Qt::NoFocus) {
            widgets.append(widget);
        } else if (widget && widget->layout()) {
            appendFocusable(*widget->layout(), widgets);
        }
    }
}

} // namespace

Sheet::Sheet(QWidget *window, const QString &title)
    : QDialog(window, Qt::Widget), m_window(window), m_cover(new Cover(window)), m_content(new QVBoxLayout),
      m_footer(new QHBoxLayout)
{
    setParent(m_cover, Qt::Widget);
    setObjectName(QStringLiteral("Sheet"));
    setAccessibleName(zqShortened(title, longestTitle));
    auto *heading = new QLabel(zqForLabel(title, longestTitle), this);
    heading->setObjectName(QStringLiteral("SheetTitle"));
    heading->setWordWrap(true);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(22, 20, 22, 20);
    layout->setSpacing(0);
    layout->addWidget(heading);
    layout->addSpacing(12);
    layout->addLayout(m_content);
    layout->addSpacing(18);
    layout->addLayout(m_footer);
    m_footer->setSpacing(10);
    m_footer->addStretch(1);
}

QPushButton *Sheet::addButton(const QString &text, int code, bool isDefault)
{
    auto *button = new QPushButton(text, this);
    button->setAutoDefault(false);
    button->setProperty("primary", isDefault);
    m_default = isDefault ? button : m_default;
    connect(button, &QPushButton::clicked, this, [this, code] { done(code); });
    m_footer->addWidget(button);
    if (m_rejectCode == 0) { // the first one stands at the left: what changes least
        m_rejectCode = code;
    }
    return button;
}

void Sheet::setWidth(int width)
{
    m_width = width;
}

void Sheet::place()
{
    const int top = ZQMeasure::toolbarHeight + 1;
    m_cover->setGeometry(0, top, m_window->width(), m_window->height() - top);
    // Buttons of other languages may need more than what suits the text.
    const QMargins margins = layout()->contentsMargins();
    const int needed = m_footer->minimumSize().width() + margins.left() + margins.right();
    const int width = std::min(std::max(m_width, needed), m_window->width() - 40);
    setFixedWidth(width);
    layout()->activate();
    const int height = layout()->hasHeightForWidth() ? layout()->totalHeightForWidth(width) : sizeHint().height();
    setGeometry((m_cover->width() - width) / 2, 0, width, std::min(height, m_cover->height()));
}

// Parts are made in whatever order, and the footer takes some before others that are there.
void Sheet::orderFocus()
{
    QList<QWidget *> widgets;
    appendFocusable(*layout(), widgets);
    for (qsizetype i = 1; i < widgets.size(); ++i) {
        setTabOrder(widgets[i - 1], widgets[i]);
    }
}

void Sheet::begin()
{
    orderFocus();
    m_focusBefore = m_window->focusWidget();
    m_window->setProperty(isShownProperty, m_window->property(isShownProperty).toInt() + 1);
    for (QAction *action : m_window->actions()) {
        if (action->isEnabled()) {
            action->setEnabled(false);
            m_paused.append(action);
        }
    }
    place();
    m_cover->raise();
    m_cover->show();
    show();
    shownSheets().append(this);
    qApp->installEventFilter(this);
    takeFocus();
}

bool Sheet::isOnTop() const
{
    const auto &sheets = shownSheets();
    const auto top =
        std::find_if(sheets.rbegin(), sheets.rend(), [this](const Sheet *each) { return each->m_window == m_window; });
    return top != sheets.rend() && *top == this;
}

void Sheet::takeFocus()
{
    if (!isOnTop() || isInside(m_window->focusWidget())) {
        return;
    }
    QWidget *wanted = m_default && m_default->isEnabled() ? m_default : nullptr;
    for (QWidget *next = nextInFocusChain(); !wanted && next != this; next = next->nextInFocusChain()) {
        const bool takesTab = (next->focusPolicy() & Qt::TabFocus) != 0;
        wanted = takesTab && isAncestorOf(next) && next->isVisible() && next->isEnabled() ? next : nullptr;
    }
    (wanted ? wanted : this)->setFocus();
}

// The window is there still.
void Sheet::end()
{
    const int left = m_window->property(isShownProperty).toInt() - 1;
    m_window->setProperty(isShownProperty, left > 0 ? QVariant(left) : QVariant());
    for (const QPointer<QAction> &action : std::as_const(m_paused)) {
        if (action) {
            action->setEnabled(true);
        }
    }
    const bool wasOnTop = isOnTop();
    qApp->removeEventFilter(this);
    shownSheets().removeAll(this);
    for (Sheet *other : std::as_const(shownSheets())) {
        if (other->m_focusBefore && isInside(other->m_focusBefore)) {
            other->m_focusBefore = m_focusBefore; // it outlives the sheet it lies over
        }
    }
    m_cover->hide();
    setParent(nullptr);
    m_cover->deleteLater();
    if (wasOnTop && m_focusBefore) {
        m_focusBefore->setFocus();
    }
}

int Sheet::run()
{
    begin();
    QEventLoop loop;
    int code = m_rejectCode;
    connect(this, &QDialog::finished, &loop, [&](int result) {
        code = result;
        loop.quit();
    });
    connect(m_cover, &QObject::destroyed, &loop, &QEventLoop::quit); // the window went
    loop.exec();
    if (m_cover) {
        end();
    }
    return code;
}

void Sheet::open(std::function<void(std::optional<int>)> then)
{
    m_then = std::move(then);
    begin();
    connect(this, &QDialog::finished, this, [this](int code) {
        end();
        deleteLater();
        std::exchange(m_then, nullptr)(code);
    });
}

Sheet::~Sheet()
{
    shownSheets().removeAll(this);
    if (m_then) {
        m_then(std::nullopt);
    }
}

void Sheet::dismissOpened(QWidget *window)
{
    const auto sheets = window->findChildren<Sheet *>();
    for (Sheet *sheet : sheets) {
        if (sheet->m_then) {
            sheet->reject();
        }
    }
}

void Sheet::keyPressEvent(QKeyEvent *event)
{
    if (event->key() != Qt::Key_Return && event->key() != Qt::Key_Enter) {
        QDialog::keyPressEvent(event);
        return;
    }
    auto *focused = qobject_cast<QPushButton *>(QApplication::focusWidget());
    QPushButton *chosen = focused ? focused : m_default;
    if (chosen && chosen->isEnabled()) {
        chosen->click();
    }
}

void Sheet::reject()
{
    done(m_rejectCode);
}

bool Sheet::eventFilter(QObject *object, QEvent *event)
{
    if (object == m_window && event->type() == QEvent::Resize) {
        place();
    }
    auto *widget = object->isWidgetType() ? static_cast<QWidget *>(object) : nullptr;
    if (widget && widget->window() == m_window && isOnTop()) {
        if (event->type() == QEvent::ShortcutOverride) {
            event->accept(); // the key goes to what has the focus, and is no shortcut of the window
            return true;
        }
        if (!isInside(widget) && keepsFrom(widget, event)) {
            return true;
        }
    }
    return QDialog::eventFilter(object, event);
}

bool Sheet::keepsFrom(QWidget *widget, QEvent *event)
{
    switch (event->type()) {
    case QEvent::FocusIn:
        // Whoever moved the focus may still be about it.
        QMetaObject::invokeMethod(this, &Sheet::takeFocus, Qt::QueuedConnection);
        return false;
    case QEvent::KeyPress:
        takeFocus();
        return true;
    case QEvent::KeyRelease:
    case QEvent::InputMethod:
    case QEvent::MouseButtonPress:
    case QEvent::MouseButtonDblClick:
    case QEvent::ContextMenu:
    case QEvent::Wheel:
        return widget != m_cover;
    default:
        return false;
    }
}

bool Sheet::focusNextPrevChild(bool next)
{
    QWidget *focused = QApplication::focusWidget();
    for (QWidget *candidate = focused ? (next ? focused->nextInFocusChain() : focused->previousInFocusChain())
                                      : nullptr;
         candidate && candidate != focused;
         candidate = next ? candidate->nextInFocusChain() : candidate->previousInFocusChain()) {
        if (isAncestorOf(candidate) && candidate->isVisible() && candidate->isEnabled() &&
            (candidate->focusPolicy() & Qt::TabFocus)) {
            candidate->setFocus(next ? Qt::TabFocusReason : Qt::BacktabFocusReason);
            return true;
        }
    }
    return true;
}

void Sheet::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.fillRect(QRect(0, 0, width(), height() - radius), zqColor(ZQColorRole::Raised));
    QPainterPath path;
    path.addRoundedRect(QRectF(rect()).adjusted(0.5, -radius, -0.5, -0.5), radius, radius);
    painter.setPen(QPen(zqColor(ZQColorRole::Border), 1));
    painter.setBrush(zqColor(ZQColorRole::Raised));
    painter.drawPath(path);
}
