#include "Classes/Interface/Compare/CompareView.h"

#include "Classes/Interface/Detail/DetailPainting.h"
#include "Kit/Foundation/ZQLocalized.h"
#include "Kit/Foundation/ZQShortened.h"
#include "Kit/Operations/ZQOperationQueue.h"
#include "Kit/Widgets/ZQAccessible.h"
#include "Kit/Widgets/ZQIcon.h"

#include <QBoxLayout>
#include <QFrame>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QPushButton>
#include <QStackedWidget>
#include <QToolButton>
#include <QToolTip>

#include <algorithm>
#include <utility>

namespace {

constexpr int footHeight = 48;
constexpr qsizetype mostInOneRow = 3;
constexpr qsizetype longestInButton = 24;
constexpr int leastForTitle = 420; // in the button
constexpr double keyPan = 0.15;    // of the room

qsizetype columnsFor(qsizetype count)
{
    return count <= mostInOneRow ? std::max<qsizetype>(count, 1) : count == 4 ? 2 : 3;
}

} // namespace

CompareView::CompareView(QWidget *parent)
    : QWidget(parent), m_pages(new QStackedWidget(this)), m_grid(new QFrame(this)), m_cells(new QGridLayout(m_grid)),
      m_difference(new CompareCanvas(this)),
      m_queue(std::make_unique<ZQOperationQueue>(QStringLiteral("difference"), 1))
{
    zqSetAccessibleRole(this, QAccessible::Grouping);
    setAccessibleName(zqLocalized("Compare"));
    m_grid->setObjectName(QStringLiteral("Hairline")); // what shows between the pictures
    m_cells->setContentsMargins(0, 1, 0, 0);
    m_cells->setSpacing(1);
    m_difference->setAccessibleName(zqLocalized("Difference"));
    m_pages->addWidget(m_grid);
    m_pages->addWidget(m_difference);
    connect(m_difference, &CompareCanvas::viewChanged, this,
            [this](const CompareZoom &view) { follow(m_difference, view); });
    auto *column = new QVBoxLayout(this);
    column->setContentsMargins(0, 0, 0, 0);
    column->setSpacing(0);
    column->addWidget(makeHead());
    column->addWidget(m_pages, 1);
    column->addWidget(makeFoot());
    connect(&ZQTheme::current(), &ZQTheme::changed, this, &CompareView::showFacts);
}

CompareView::~CompareView()
{
    m_queue->cancelAllOperations();
}

QToolButton *CompareView::textButton(const QString &text, const QString &toolTip)
{
    auto *made = new QToolButton(this);
    made->setObjectName(QStringLiteral("Pop"));
    made->setText(text);
    made->setToolTip(toolTip);
    made->setCheckable(true);
    made->setFocusPolicy(Qt::TabFocus);
    return made;
}

QWidget *CompareView::makeHead()
{
    auto *back = new QToolButton(this);
    back->setIcon(ZQIcon::icon(QStringLiteral("close")));
    back->setFixedSize(30, 28);
    back->setFocusPolicy(Qt::TabFocus);
    back->setToolTip(zqLocalized("Back to the items (Esc)"));
    back->setAccessibleName(back->toolTip());
    connect(back, &QToolButton::clicked, this, &CompareView::closed);
    m_title = new QLabel(zqLocalized("Compare"), this);
    m_title->setObjectName(QStringLiteral("Title"));
    m_count = new QLabel(this);
    m_count->setObjectName(QStringLiteral("Muted"));
    m_sideBySide = textButton(zqLocalized("Side by side"), zqLocalized("Side by side (D)"));
    m_differenceButton = textButton(zqLocalized("Difference"), {});
    m_linked = textButton(zqLocalized("Linked"), zqLocalized("Zoom and pan all together (L)"));
    m_linked->setChecked(true);
    m_fit = textButton(zqLocalized("Fit"), zqLocalized("Fit (Ctrl+0)"));
    m_actual = textButton(zqLocalized("100 %"), zqLocalized("Actual size (Z)"));
    m_fit->setCheckable(false);
    m_actual->setCheckable(false);
    connect(m_sideBySide, &QToolButton::clicked, this, [this] { setShowsDifference(false); });
    connect(m_differenceButton, &QToolButton::clicked, this, [this] { setShowsDifference(true); });
    connect(m_linked, &QToolButton::toggled, this, [this](bool isLinked) {
        m_isLinked = isLinked;
        if (const CompareCanvas *canvas = isLinked ? zoomedCanvas() : nullptr) {
            follow(canvas, canvas->view());
        }
    });
    connect(m_fit, &QToolButton::clicked, this, &CompareView::zoomToFit);
    connect(m_actual, &QToolButton::clicked, this, &CompareView::zoomToActualSize);
    m_head = new QWidget(this);
    m_head->setFixedHeight(ZQMeasure::headHeight);
    auto *row = new QHBoxLayout(m_head);
    row->setContentsMargins(12, 0, 14, 0);
    row->setSpacing(8);
    row->addWidget(back);
    row->addWidget(m_title);
    row->addWidget(m_count);
    row->addStretch(1);
    for (QWidget *each : {m_sideBySide, m_differenceButton, m_linked, m_fit, m_actual}) {
        row->addWidget(each);
    }
    return m_head;
}

QWidget *CompareView::makeFoot()
{
    auto *foot = new QWidget(this);
    foot->setFixedHeight(footHeight);
    m_status = new QLabel(foot);
    m_status->setObjectName(QStringLiteral("SmallMuted"));
    m_status->setSizePolicy(QSizePolicy::Ignored, QSizePolicy::Preferred);
    m_bringBack = new QToolButton(foot);
    m_bringBack->setObjectName(QStringLiteral("Link"));
    m_bringBack->setText(zqLocalized("Bring back"));
    m_bringBack->setToolTip(zqLocalized("Bring back what was taken out last (Shift+X)"));
    m_bringBack->setFocusPolicy(Qt::TabFocus);
    connect(m_bringBack, &QToolButton::clicked, this, &CompareView::bringBack);
    auto *keepAll = new QPushButton(zqLocalized("Keep All"), foot);
    keepAll->setToolTip(zqLocalized("Back to the items (Esc)"));
    connect(keepAll, &QPushButton::clicked, this, &CompareView::closed);
    m_keep = new QPushButton(foot);
    m_keep->setProperty("primary", true);
    m_keep->setToolTip(zqLocalized("It takes over the projects and tags of the others, which are deleted (K)"));
    m_keep->setAccessibleDescription(m_keep->toolTip());
    connect(m_keep, &QPushButton::clicked, this, [this] { Q_EMIT keepRequested(currentItem()); });
    auto *row = new QHBoxLayout(foot);
    row->setContentsMargins(16, 0, 16, 0);
    row->setSpacing(10);
    row->addWidget(m_status, 1);
    row->addWidget(m_bringBack);
    row->addWidget(keepAll);
    row->addWidget(m_keep);
    return foot;
}

void CompareView::showPictures(const QList<Picture> &pictures)
{
    clear();
    for (const Picture &picture : pictures.first(std::min<qsizetype>(pictures.size(), most))) {
        addPane(picture, m_panes.size());
    }
    layOut();
    markCurrent(m_panes.value(0));
}

void CompareView::clear()
{
    ++m_generation;
    m_queue->cancelAllOperations();
    m_showsDifference = false;
    m_differenceOf = {};
    m_difference->showImage({}, {});
    m_difference->setView({});
    m_pages->setCurrentWidget(m_grid);
    m_rejected.clear();
    m_facts.clear();
    m_note.clear();
    m_current = nullptr;
    for (ComparePane *pane : std::exchange(m_panes, {})) {
        m_cells->removeWidget(pane);
        pane->hide();
        pane->deleteLater(); // one of its own signals may have led here
    }
}

ComparePane *CompareView::addPane(const Picture &picture, qsizetype at)
{
    auto *pane = new ComparePane(picture, m_grid);
    m_panes.insert(at, pane);
    CompareCanvas *canvas = &pane->canvas();
    connect(canvas, &CompareCanvas::chosen, this, [this, pane] { markCurrent(pane); });
    connect(canvas, &CompareCanvas::viewChanged, this,
            [this, canvas](const CompareZoom &view) { follow(canvas, view); });
    connect(canvas, &CompareCanvas::roomChanged, this, &CompareView::fitTogether);
    connect(canvas, &CompareCanvas::documentChanged, this, [this] {
        fitTogether();
        updateDifference();
        updateTexts();
    });
    connect(pane, &ComparePane::entered, this, [this, pane] { markCurrent(pane); });
    connect(pane, &ComparePane::rejected, this, [this, pane] { reject(pane); });
    connect(pane, &ComparePane::rated, this, [this, pane](int stars) {
        markCurrent(pane);
        Q_EMIT rated(pane->picture().item, stars);
    });
    return pane;
}

QList<ZQObjectID> CompareView::items() const
{
    QList<ZQObjectID> items;
    for (const ComparePane *pane : m_panes) {
        items.append(pane->picture().item);
    }
    return items;
}

ComparePane *CompareView::currentPane() const
{
    return m_panes.contains(m_current.data()) ? m_current.data() : nullptr;
}

ComparePane *CompareView::paneOf(const ZQObjectID &item) const
{
    const auto found = std::find_if(m_panes.begin(), m_panes.end(),
                                    [&](const ComparePane *pane) { return pane->picture().item == item; });
    return found == m_panes.end() ? nullptr : *found;
}

ZQObjectID CompareView::currentItem() const
{
    const ComparePane *pane = currentPane();
    return pane ? pane->picture().item : ZQObjectID();
}

void CompareView::setCurrentItem(const ZQObjectID &item)
{
    if (ComparePane *pane = paneOf(item)) {
        markCurrent(pane);
    }
}

void CompareView::markCurrent(ComparePane *pane)
{
    if (pane == m_current.data()) {
        return;
    }
    m_current = pane;
    for (ComparePane *each : std::as_const(m_panes)) {
        each->setCurrent(each == pane);
    }
    updateTexts();
    if (pane) {
        Q_EMIT currentChanged(pane->picture().item);
    }
}

void CompareView::choose(qsizetype index)
{
    if (index >= 0 && index < m_panes.size()) {
        markCurrent(m_panes.at(index));
        if (!m_showsDifference) {
            m_panes.at(index)->canvas().setFocus(Qt::TabFocusReason);
        }
    }
}

void CompareView::setFacts(const QList<CompareFact> &facts)
{
    m_facts = facts;
    showFacts();
}

void CompareView::showFacts()
{
    const bool isBrief = m_panes.size() > mostInOneRow;
    const bool isOfThese = std::all_of(m_facts.begin(), m_facts.end(),
                                       [this](const CompareFact &fact) { return fact.parts.size() == m_panes.size(); });
    for (qsizetype i = 0; isOfThese && i < m_panes.size(); ++i) {
        m_panes.at(i)->showFacts(m_facts, i, isBrief);
    }
}

void CompareView::setRating(const ZQObjectID &item, int stars)
{
    ComparePane *pane = paneOf(item);
    if (!pane) {
        return;
    }
    const bool isAnother = pane->picture().rating != stars;
    pane->setRating(stars);
    if (isAnother && pane->canvas().hasFocus()) { // by a key, which is not heard of elsewhere
        zqAnnounce(&pane->canvas(), zqFormat(zqLocalized("Rating: %@ of 5"), {QString::number(stars)}));
    }
}

void CompareView::setTitle(const ZQObjectID &item, const QString &title)
{
    if (ComparePane *pane = paneOf(item); pane && pane->picture().title != title) {
        pane->setTitle(title);
        updateTexts();
    }
}

void CompareView::setNote(const QString &note)
{
    m_note = note;
    updateTexts();
}

void CompareView::removePane(ComparePane *pane)
{
    const qsizetype index = m_panes.indexOf(pane);
    const bool hadFocus = pane->isAncestorOf(focusWidget());
    const bool wasCurrent = pane == m_current.data();
    m_panes.removeAt(index);
    m_cells->removeWidget(pane);
    ComparePane *next = wasCurrent ? m_panes.value(std::min(index, m_panes.size() - 1)) : currentPane();
    if (hadFocus) { // before it is hidden, which would give the focus to the stars of another one
        next ? next->canvas().setFocus(Qt::OtherFocusReason) : setFocus(Qt::OtherFocusReason);
    }
    pane->hide();
    pane->deleteLater();
    m_facts.clear();
    m_note.clear();
    layOut();
    if (wasCurrent) {
        markCurrent(next);
    }
}

void CompareView::take(const ZQObjectID &item)
{
    m_rejected.removeIf([&](const Rejected &each) { return each.picture.item == item; });
    if (ComparePane *pane = paneOf(item)) {
        removePane(pane);
    }
    updateTexts();
}

void CompareView::reject(ComparePane *pane)
{
    if (!pane || m_panes.size() <= 1) {
        return;
    }
    const Picture picture = pane->picture();
    m_rejected.append({picture, m_panes.indexOf(pane)});
    removePane(pane);
    zqAnnounce(this, zqFormat(zqLocalized("“%@” was taken out of the comparison."), {picture.title}));
    Q_EMIT itemsChanged();
}

void CompareView::bringBack()
{
    if (m_rejected.isEmpty()) {
        return;
    }
    const Rejected last = m_rejected.takeLast();
    ComparePane *pane = addPane(last.picture, std::min(last.at, m_panes.size()));
    if (const ComparePane *other = currentPane(); other && m_isLinked) {
        pane->canvas().setView(other->canvas().view());
    }
    layOut();
    choose(m_panes.indexOf(pane));
    Q_EMIT itemsChanged();
}

void CompareView::layOut()
{
    while (QLayoutItem *old = m_cells->takeAt(0)) {
        delete old;
    }
    for (int i = 0; i < most; ++i) {
        m_cells->setColumnStretch(i, 0);
        m_cells->setRowStretch(i, 0);
    }
    const qsizetype columns = columnsFor(m_panes.size());
    QWidget *before = nullptr;
    for (qsizetype i = 0; i < m_panes.size(); ++i) {
        const int row = int(i / columns);
        const int column = int(i % columns);
        m_cells->addWidget(m_panes.at(i), row, column);
        m_cells->setColumnStretch(column, 1);
        m_cells->setRowStretch(row, 1);
        m_panes.at(i)->show();
        if (before) {
            setTabOrder(before, m_panes.at(i));
        }
        before = m_panes.at(i);
    }
    qDeleteAll(std::exchange(m_empty, {}));
    for (qsizetype i = m_panes.size(); i % columns != 0; ++i) {
        auto *room = new QFrame(m_grid);
        room->setObjectName(QStringLiteral("Ground"));
        m_cells->addWidget(room, int(i / columns), int(i % columns));
        m_empty.append(room);
        room->show();
    }
    showFacts();
    updateDifference();
    updateTexts();
}

// Where there is no room for all of the head, that goes which can be missed most, rather than all of it being cut.
void CompareView::fitHead()
{
    const QLayout &row = *m_head->layout();
    const QMargins margins = row.contentsMargins();
    int needed = margins.left() + margins.right();
    for (int i = 0; i < row.count(); ++i) {
        const QWidget *each = row.itemAt(i)->widget();
        needed += each ? each->sizeHint().width() + row.spacing() : 0;
    }
    for (QWidget *each : {static_cast<QWidget *>(m_count), static_cast<QWidget *>(m_title),
                          static_cast<QWidget *>(m_fit), static_cast<QWidget *>(m_actual)}) {
        const bool hasRoom = needed <= width();
        each->setVisible(hasRoom);
        needed -= hasRoom ? 0 : each->sizeHint().width() + row.spacing();
    }
}

void CompareView::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    updateTexts();
}

void CompareView::updateTexts()
{
    m_count->setText(zqCounted({"1 picture", "%@ pictures"}, m_panes.size()));
    const bool isComparison = m_panes.size() >= fewest;
    const ComparePane *pane = currentPane();
    fitHead();
    m_keep->setText(pane && width() >= leastForTitle
                        ? zqFormat(zqLocalized("Keep “%@”"), {zqShortened(pane->picture().title, longestInButton)})
                        : zqLocalized("Keep This One"));
    m_keep->setEnabled(isComparison && pane);
    m_bringBack->setVisible(!m_rejected.isEmpty());
    QStringList texts;
    if (!isComparison) {
        texts.append(zqLocalized("There is nothing left to compare it with."));
    } else if (m_showsDifference && !m_differenceText.isEmpty()) {
        texts.append(m_differenceText);
    } else if (!m_note.isEmpty()) {
        texts.append(m_note);
    }
    if (!m_rejected.isEmpty()) {
        texts.append(zqCounted({"1 taken out", "%@ taken out"}, m_rejected.size()));
    }
    m_status->setText(texts.join(QStringLiteral(" · ")));
    m_differenceButton->setEnabled(canShowDifference());
    m_differenceButton->setToolTip(m_differenceButton->isEnabled()
                                       ? zqLocalized("Difference (D)")
                                       : zqLocalized("Two pictures of the same size in pixels show their difference"));
    m_differenceButton->setChecked(m_showsDifference);
    m_sideBySide->setChecked(!m_showsDifference);
}

// One zoom for all of them, or for one.
void CompareView::follow(const CompareCanvas *origin, const CompareZoom &view)
{
    for (ComparePane *pane : std::as_const(m_panes)) {
        if (&pane->canvas() != origin && (m_isLinked || origin == m_difference)) {
            pane->canvas().setView(view);
        }
    }
    if (origin != m_difference) {
        m_difference->setView(view);
    }
}

// Fitted pictures are seen at one size, whatever they measure, and the largest of them no larger than it is.
void CompareView::fitTogether()
{
    double least = 0;
    for (const ComparePane *pane : std::as_const(m_panes)) {
        const double scale = pane->canvas().naturalSize().isEmpty() ? 0 : pane->canvas().roomScale();
        least = least == 0 || (scale > 0 && scale < least) ? scale : least;
    }
    const double shrink = least > devicePixelRatioF() ? devicePixelRatioF() / least : 0;
    for (ComparePane *pane : std::as_const(m_panes)) {
        pane->canvas().setLargestFit(shrink * pane->canvas().roomScale());
    }
}

CompareCanvas *CompareView::zoomedCanvas() const
{
    ComparePane *pane = currentPane();
    return m_showsDifference ? m_difference : pane ? &pane->canvas() : nullptr;
}

void CompareView::zoomToFit()
{
    if (CompareCanvas *canvas = zoomedCanvas()) {
        canvas->setView({});
        follow(canvas, {});
    }
}

void CompareView::zoomToActualSize()
{
    if (CompareCanvas *canvas = zoomedCanvas()) {
        canvas->zoomTo(1);
    }
}

void CompareView::zoomIn()
{
    if (CompareCanvas *canvas = zoomedCanvas()) {
        canvas->zoomBy(DetailPainting::keyZoom);
    }
}

void CompareView::zoomOut()
{
    if (CompareCanvas *canvas = zoomedCanvas()) {
        canvas->zoomBy(1 / DetailPainting::keyZoom);
    }
}

void CompareView::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    if (CompareCanvas *canvas = zoomedCanvas()) {
        canvas->setFocus(event->reason());
    }
}

void CompareView::keyPressEvent(QKeyEvent *event)
{
    if (event->modifiers() & (Qt::ControlModifier | Qt::AltModifier | Qt::MetaModifier)) {
        QWidget::keyPressEvent(event); // of commands, or of nobody
        return;
    }
    const bool isShifted = event->modifiers() & Qt::ShiftModifier;
    const qsizetype index = m_panes.indexOf(currentPane());
    const qsizetype columns = columnsFor(m_panes.size());
    const auto go = [&](const QPointF &pan, qsizetype step) {
        CompareCanvas *canvas = zoomedCanvas();
        if (canvas && (isShifted || m_showsDifference)) {
            canvas->panBy(pan * keyPan);
        } else {
            choose(index + step);
        }
    };
    switch (event->key()) {
    case Qt::Key_Escape:
        Q_EMIT closed();
        return;
    case Qt::Key_Left:
        return go({-1, 0}, layoutDirection() == Qt::RightToLeft ? 1 : -1);
    case Qt::Key_Right:
        return go({1, 0}, layoutDirection() == Qt::RightToLeft ? -1 : 1);
    case Qt::Key_Up:
        return go({0, -1}, -columns);
    case Qt::Key_Down:
        return go({0, 1}, columns);
    case Qt::Key_X:
        return isShifted ? bringBack() : reject(currentPane());
    case Qt::Key_D:
        if (!m_showsDifference && !canShowDifference()) {
            QToolTip::showText(m_differenceButton->mapToGlobal(m_differenceButton->rect().bottomLeft()),
                               m_differenceButton->toolTip(), m_differenceButton);
            zqAnnounce(this, m_differenceButton->toolTip());
        }
        return setShowsDifference(!m_showsDifference);
    case Qt::Key_L:
        return m_linked->toggle();
    case Qt::Key_K:
        return m_keep->click();
    case Qt::Key_PageUp:
    case Qt::Key_PageDown:
        for (ComparePane *pane : std::as_const(m_panes)) {
            if (m_isLinked || pane == currentPane()) {
                DetailDocument &document = pane->canvas().document();
                document.setPage(document.page() + (event->key() == Qt::Key_PageUp ? -1 : 1));
            }
        }
        return;
    default:
        QWidget::keyPressEvent(event);
    }
}
