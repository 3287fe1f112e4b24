#include "Classes/Interface/InfoPanel/TagField.h"

#include "Classes/Interface/InfoPanel/FlowLayout.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QAbstractItemView>
#include <QCompleter>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QStringListModel>
#include <QStyledItemDelegate>
#include <QToolButton>

namespace {

// A rounded tag with a button that takes it away.
class Chip : public QWidget
{
public:
    Chip(const QString &text, bool canRemove, QWidget *parent)
        : QWidget(parent), m_text(text), m_button(canRemove ? new QToolButton(this) : nullptr)
    {
        zqSetAccessibleRole(this, QAccessible::ListItem);
        setAccessibleName(text);
        if (m_button) {
            m_button->setFocusPolicy(Qt::TabFocus);
            m_button->setToolTip(zqFormat(zqLocalized("Remove the tag %@"), {text}));
            m_button->setIcon(ZQIcon::icon(QStringLiteral("close")));
            m_button->setIconSize({8, 8});
            m_button->setAccessibleName(zqFormat(zqLocalized("Remove the tag %@"), {text}));
        }
    }
    QToolButton *button() const { return m_button; }
    QSize sizeHint() const override
    {
        const QFontMetrics metrics(ZQTheme::current().font(ZQMeasure::smallTextSize));
        return {metrics.horizontalAdvance(m_text) + 14 + (m_button ? 16 : 0), 20};
    }

protected:
    void resizeEvent(QResizeEvent * /*event*/) override
    {
        if (m_button) {
            m_button->setGeometry(width() - 18, 2, 16, 16);
        }
    }
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(zqColor(m_button ? ZQColorRole::Select : ZQColorRole::Raised2));
        painter.drawRoundedRect(rect(), 5, 5);
        painter.setFont(ZQTheme::current().font(ZQMeasure::smallTextSize));
        painter.setPen(zqColor(m_button ? ZQColorRole::Text : ZQColorRole::TextMuted));
        const QRect text = rect().adjusted(7, 0, m_button ? -19 : -7, 0);
        painter.drawText(text, Qt::AlignVCenter,
                         painter.fontMetrics().elidedText(m_text, Qt::ElideRight, text.width() + 1));
    }

private:
    QString m_text;
    QToolButton *m_button;
};

} // namespace

TagField::TagField(QWidget *parent) : QFrame(parent), m_flow(new FlowLayout), m_edit(new QLineEdit(this))
{
    zqSetAccessibleRole(this, QAccessible::List);
    setAccessibleName(zqLocalized("Tags"));
    m_flow->setContentsMargins(8, 6, 8, 6);
    setLayout(m_flow);
    m_edit->setFrame(false);
    m_edit->setStyleSheet(QStringLiteral("border: 0; padding: 0; background: transparent;"));
    m_edit->setPlaceholderText(zqLocalized("Add tag…"));
    m_edit->setAccessibleName(zqLocalized("Add tag"));
    m_edit->setMinimumWidth(70);
    m_edit->setMaximumHeight(20);
    m_edit->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    auto *completer = new QCompleter(QStringList(), this);
    completer->setCaseSensitivity(Qt::CaseInsensitive);
    completer->popup()->setObjectName(QStringLiteral("Completion"));
    completer->popup()->setItemDelegate(new QStyledItemDelegate(completer)); // its own follows no style sheet
    m_edit->setCompleter(completer);
    m_edit->installEventFilter(this);
    connect(m_edit, &QLineEdit::textEdited, this, [this](const QString &text) {
        if (text.endsWith(u',')) {
            add(text.chopped(1));
        }
    });
    connect(m_edit, &QLineEdit::returnPressed, this, [this] { add(m_edit->text()); });
    connect(
        completer, qOverload<const QString &>(&QCompleter::activated), this, [this](const QString &text) { add(text); },
        Qt::QueuedConnection);
    rebuild();
}

void TagField::setKnownTags(const QStringList &tags)
{
    static_cast<QStringListModel *>(m_edit->completer()->model())->setStringList(tags);
}

void TagField::dropTyped()
{
    m_edit->clear();
}

void TagField::setTags(const QStringList &tags, bool hasOthers)
{
    if (tags == m_tags && hasOthers == m_hasOthers) {
        return;
    }
    m_tags = tags;
    m_hasOthers = hasOthers;
    rebuild();
}

void TagField::rebuild()
{
    while (m_flow->count() > 0) {
        delete m_flow->takeAt(0);
    }
    for (QWidget *chip : m_chips) {
        chip->deleteLater();
        chip->hide();
    }
    m_chips.clear();
    for (const QString &tag : m_tags) {
        auto *chip = new Chip(tag, true, this);
        connect(chip->button(), &QToolButton::clicked, this, [this, tag] { remove(tag); });
        m_chips.append(chip);
    }
    if (m_hasOthers) {
        m_chips.append(new Chip(zqLocalized("Multiple values"), false, this));
    }
    for (QWidget *chip : m_chips) {
        m_flow->addWidget(chip);
        chip->show();
    }
    m_flow->addWidget(m_edit);
    updateGeometry();
}

void TagField::add(const QString &text)
{
    const QString tag = text.trimmed();
    m_edit->setText(QString()); // not `clear`, which undo takes back: what is to be undone is the tag
    if (!tag.isEmpty() && !m_tags.contains(tag)) {
        m_tags.append(tag);
        rebuild();
        Q_EMIT edited(m_tags);
    }
}

void TagField::remove(const QString &tag)
{
    m_tags.removeAll(tag);
    rebuild();
    Q_EMIT edited(m_tags);
}

bool TagField::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::FocusIn || event->type() == QEvent::FocusOut) {
        update();
    }
    // A field takes the keys of undo even when it has nothing to undo; the window then should.
    if (event->type() == QEvent::ShortcutOverride) {
        auto *keys = static_cast<QKeyEvent *>(event);
        if ((keys->matches(QKeySequence::Undo) && !m_edit->isUndoAvailable()) ||
            (keys->matches(QKeySequence::Redo) && !m_edit->isRedoAvailable())) {
            keys->ignore();
            return true;
        }
    }
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Down &&
        m_edit->text().isEmpty()) {
        m_edit->completer()->setCompletionPrefix(QString());
        m_edit->completer()->complete();
        return true;
    }
    if (event->type() == QEvent::KeyPress && static_cast<QKeyEvent *>(event)->key() == Qt::Key_Backspace &&
        m_edit->text().isEmpty() && !m_tags.isEmpty()) {
        remove(m_tags.last());
        return true;
    }
    return QFrame::eventFilter(object, event);
}

// Wherever it is, and on a tag, too.
void TagField::mousePressEvent(QMouseEvent * /*event*/)
{
    m_edit->setFocus(Qt::MouseFocusReason);
}

void TagField::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(QPen(zqColor(m_edit->hasFocus() ? ZQColorRole::Accent : ZQColorRole::ControlBorder), 1));
    painter.setBrush(zqColor(ZQColorRole::Ground));
    painter.drawRoundedRect(QRectF(rect()).adjusted(0.5, 0.5, -0.5, -0.5), 6, 6);
}
