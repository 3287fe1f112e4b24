#include "Classes/Interface/Compare/ComparePane.h"

#include "Classes/Interface/Detail/DetailPainting.h"
#include "Classes/Interface/RatingField.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QBoxLayout>
#include <QEvent>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

#include <cmath>

namespace {

constexpr int headHeight = 36;
constexpr int markHeight = 2;
constexpr int sideMargin = 14;
constexpr int leastTitleWidth = 40;
constexpr int leastForZoom = 270; // what is narrower shows less, rather than cut
constexpr int leastForRating = 220;

QString marked(const CompareFact &fact, const QString &part)
{
    const QString text = part.toHtmlEscaped();
    return fact.differs(part) ? QStringLiteral("<b>%1</b>").arg(text) : text;
}

QString marked(const CompareFact &fact, const QStringList &parts)
{
    QStringList texts;
    for (const QString &part : parts) {
        texts.append(marked(fact, part));
    }
    return texts.join(fact.separator);
}

// Rich text takes no direction from its label.
QString tableOf(const QList<CompareFact> &facts, qsizetype index, Qt::LayoutDirection direction)
{
    const bool isMirrored = direction == Qt::RightToLeft;
    QString rows;
    for (const CompareFact &fact : facts) {
        if (!fact.parts.at(index).isEmpty() || fact.differs()) {
            const QString value =
                fact.parts.at(index).isEmpty() ? QStringLiteral("<b>–</b>") : marked(fact, fact.parts.at(index));
            const QString cells = isMirrored
                                      ? QStringLiteral("<td align='right'>%3</td>"
                                                       "<td align='right' style='color:%1; padding-left:14px'>%2</td>")
                                      : QStringLiteral("<td style='color:%1; padding-right:14px'>%2</td><td>%3</td>");
            rows += QStringLiteral("<tr>%1</tr>")
                        .arg(cells.arg(zqColor(ZQColorRole::TextMuted).name(), fact.name.toHtmlEscaped(), value));
        }
    }
    return QStringLiteral("<table align='%1' cellspacing='0' cellpadding='1'>%2</table>")
        .arg(isMirrored ? QStringLiteral("right") : QStringLiteral("left"), rows);
}

QString lineOf(const QList<CompareFact> &facts, qsizetype index, Qt::LayoutDirection direction)
{
    QStringList texts;
    for (const CompareFact &fact : facts) {
        for (const QString &part : fact.parts.at(index)) {
            if (fact.differs(part)) {
                const QString text = marked(fact, part);
                texts.append(fact.isNamed ? zqFormat(zqLocalized("%@: %@"), {fact.name.toHtmlEscaped(), text}) : text);
            }
        }
    }
    return QStringLiteral("<div align='%1' dir='%2'>%3</div>")
        .arg(direction == Qt::RightToLeft ? QStringLiteral("right") : QStringLiteral("left"),
             direction == Qt::RightToLeft ? QStringLiteral("rtl") : QStringLiteral("ltr"),
             texts.join(QStringLiteral(" · ")));
}

QString spokenOf(const QList<CompareFact> &facts, qsizetype index)
{
    QStringList texts;
    for (const CompareFact &fact : facts) {
        if (const QStringList &parts = fact.parts.at(index); !parts.isEmpty()) {
            texts.append(zqFormat(fact.differs() ? zqLocalized("%@: %@, which differs") : zqLocalized("%@: %@"),
                                  {fact.name, parts.join(fact.separator)}));
        }
    }
    return texts.join(u'\n');
}

} // namespace

ComparePane::ComparePane(const Picture &picture, QWidget *parent)
    : QWidget(parent), m_picture(picture), m_title(new QLabel(this)), m_zoom(new QLabel(this)),
      m_rating(new RatingField(this)), m_canvas(new CompareCanvas(this)), m_reject(new QToolButton(this)),
      m_facts(new QLabel(this))
{
    zqSetAccessibleRole(this, QAccessible::Grouping);
    m_title->setObjectName(QStringLiteral("Strong"));
    m_title->setMinimumWidth(leastTitleWidth);
    m_title->setTextFormat(Qt::PlainText);
    m_zoom->setObjectName(QStringLiteral("SmallMuted"));
    m_facts->setObjectName(QStringLiteral("Small"));
    m_facts->setTextFormat(Qt::RichText);
    m_facts->setWordWrap(true);
    m_facts->setContentsMargins(sideMargin, 6, sideMargin, 10);
    m_facts->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Minimum);
    m_reject->setIcon(ZQIcon::icon(QStringLiteral("close")));
    m_reject->setFixedSize(24, 24);
    m_reject->setFocusPolicy(Qt::TabFocus);
    m_reject->setToolTip(zqLocalized("Take out of the comparison (X)"));
    connect(m_reject, &QToolButton::clicked, this, &ComparePane::rejected);
    connect(m_rating, &RatingField::edited, this, [this](double stars) { Q_EMIT rated(int(std::lround(stars))); });
    m_rating->installEventFilter(this);
    connect(m_canvas, &CompareCanvas::documentChanged, this, [this] {
        showZoom();
        describe();
    });
    connect(m_canvas, &CompareCanvas::roomChanged, this, &ComparePane::showZoom);
    connect(m_canvas, &CompareCanvas::scaleChanged, this, &ComparePane::showZoom);
    auto *head = new QHBoxLayout;
    head->setContentsMargins(sideMargin, markHeight, 8, 0);
    head->setSpacing(8);
    head->addWidget(m_title, 1);
    head->addWidget(m_zoom);
    head->addWidget(m_rating);
    head->addWidget(m_reject);
    auto *row = new QWidget(this);
    row->setFixedHeight(headHeight);
    row->setLayout(head);
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(row);
    column->addWidget(m_canvas, 1);
    column->addWidget(m_facts);
    setRating(picture.rating);
    setTitle(picture.title);
    m_reject->setAccessibleName(m_reject->toolTip());
    m_canvas->open(picture.source);
}

void ComparePane::setRating(int stars)
{
    m_picture.rating = stars;
    m_rating->setRating(stars, false);
}

void ComparePane::setTitle(const QString &title)
{
    m_picture.title = title;
    m_title->setToolTip(title);
    setAccessibleName(title);
    m_title->setAccessibleName(title);
    m_canvas->setAccessibleName(title);
    m_rating->setAccessibleDescription(title); // whose it is
    m_reject->setAccessibleDescription(title);
    elideTitle();
}

void ComparePane::elideTitle()
{
    m_title->setText(m_title->fontMetrics().elidedText(m_picture.title, Qt::ElideMiddle, m_title->width()));
}

void ComparePane::showZoom()
{
    m_zoom->setText(m_canvas->zoomText());
}

void ComparePane::setCurrent(bool isCurrent)
{
    m_isCurrent = isCurrent;
    m_canvas->setCurrent(isCurrent);
    update();
}

void ComparePane::showFacts(const QList<CompareFact> &facts, qsizetype index, bool isBrief)
{
    m_spoken = spokenOf(facts, index);
    m_facts->setText(isBrief ? lineOf(facts, index, layoutDirection()) : tableOf(facts, index, layoutDirection()));
    m_facts->setToolTip(isBrief ? m_spoken : QString());
    m_facts->setAccessibleName(m_spoken);
    describe();
}

void ComparePane::describe()
{
    QStringList texts{DetailPainting::messageOf(m_canvas->document()), m_spoken};
    texts.removeAll(QString());
    m_canvas->setAccessibleDescription(texts.join(u'\n'));
}

void ComparePane::paintEvent(QPaintEvent * /*event*/)
{
    QPainter painter(this);
    painter.fillRect(rect(), zqColor(ZQColorRole::Ground));
    if (m_isCurrent) {
        painter.fillRect(QRect(0, 0, width(), markHeight), zqColor(ZQColorRole::Accent));
    }
}

void ComparePane::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    m_zoom->setVisible(width() >= leastForZoom);
    m_rating->setVisible(width() >= leastForRating);
    elideTitle();
}

void ComparePane::mousePressEvent(QMouseEvent * /*event*/)
{
    m_canvas->setFocus(Qt::MouseFocusReason);
}

bool ComparePane::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::FocusIn) {
        Q_EMIT entered();
    }
    return QWidget::eventFilter(object, event);
}
