#include "Kit/Widgets/ZQProgressLine.h"

#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QBoxLayout>
#include <QFontMetrics>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

class ZQProgressLine::Bar : public QWidget, public ZQAccessibleNumber
{
public:
    explicit Bar(QWidget *parent) : QWidget(parent) { setFixedHeight(4); }
    double fraction = 0;

    QAccessible::Role accessibleRole() const override { return QAccessible::ProgressBar; }
    double accessibleNumber() const override { return std::max(0, int(fraction * 100)); }
    double accessibleLimit() const override { return 100; }
    QString accessibleNumberText() const override { return accessibleDescription(); }
    void tellNumber() { accessibleNumberDidChange(this, accessibleNumber()); }

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setRenderHint(QPainter::Antialiasing);
        painter.setPen(Qt::NoPen);
        painter.setBrush(zqColor(ZQColorRole::Raised2));
        painter.drawRoundedRect(rect(), 2, 2);
        painter.setBrush(zqColor(ZQColorRole::Accent));
        const double share = fraction < 0 ? 0.3 : std::min(1.0, fraction);
        const double done = width() * share;
        painter.drawRoundedRect(QRectF(isRightToLeft() ? width() - done : 0, 0, done, height()), 2, 2);
    }
};

class ZQProgressLine::Label : public QLabel
{
public:
    using QLabel::QLabel;
    QString shortened; // of the text, without what is kept
    QString kept;

protected:
    void paintEvent(QPaintEvent * /*event*/) override
    {
        QPainter painter(this);
        painter.setPen(palette().color(foregroundRole()));
        painter.drawText(rect(), Qt::AlignLeft | Qt::AlignVCenter, fitted(shortened, kept, fontMetrics(), width()));
    }
};

QString ZQProgressLine::fitted(const QString &text, const QString &kept, const QFontMetrics &metrics, int width)
{
    if (metrics.horizontalAdvance(text + kept) <= width) {
        return text + kept;
    }
    if (kept.isEmpty()) {
        return metrics.elidedText(text, Qt::ElideMiddle, width);
    }
    const QString end = u' ' + kept;
    const QString beginning = metrics.elidedText(text, Qt::ElideRight, width - metrics.horizontalAdvance(end));
    return beginning.size() > 1 ? beginning + end : kept; // a dot of a name says nothing
}

ZQProgressLine::ZQProgressLine(bool canCancel, QWidget *parent)
    : QWidget(parent), m_label(new Label(this)), m_cancel(new QToolButton(this)), m_bar(new Bar(this))
{
    m_label->setObjectName(QStringLiteral("SmallMuted"));
    m_label->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_cancel->setIcon(ZQIcon::icon(QStringLiteral("close")));
    m_cancel->setIconSize({10, 10});
    m_cancel->setFixedSize(18, 18);
    m_cancel->setAccessibleName(zqLocalized("Cancel"));
    m_cancel->setToolTip(zqLocalized("Cancel"));
    m_cancel->setVisible(canCancel);
    connect(m_cancel, &QToolButton::clicked, this, &ZQProgressLine::cancelled);
    auto *line = new QHBoxLayout;
    line->addWidget(m_label, 1);
    line->addWidget(m_cancel);
    auto *layout = new QVBoxLayout(this);
    layout->setContentsMargins(14, 8, 14, 10);
    layout->setSpacing(6);
    layout->addLayout(line);
    layout->addWidget(m_bar);
}

void ZQProgressLine::setText(const QString &text, const QString &kept)
{
    m_label->shortened = text;
    m_label->kept = kept;
    m_label->setText(text + kept);
    m_label->setToolTip(text + kept);
    m_bar->setAccessibleName(text + kept);
}

void ZQProgressLine::setFraction(double fraction)
{
    const int before = int(m_bar->fraction * 100);
    m_bar->fraction = fraction;
    const QString share = zqFormat(zqLocalized("%@ %%"), {QString::number(int(fraction * 100))});
    m_bar->setAccessibleDescription(fraction < 0 ? QString() : share);
    if (before != int(fraction * 100)) {
        m_bar->tellNumber();
    }
    m_bar->update();
}
